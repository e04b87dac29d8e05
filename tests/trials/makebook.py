#!/usr/bin/env python3
"""Writes a book of N postings in the dump format of zifora-cli: one client, one year with
twelve monthly periods. Usage: makebook.py N COMPANY > book.json"""
import json
import sys


def tagged_string(text):
    return {"string": text}


def book(postings, company):
    periods = []
    months = ["Januar", "Februar", "März", "April", "Mai", "Juni", "Juli", "August",
              "September", "Oktober", "November", "Dezember"]
    for month in range(12):
        periods.append({"class": "Thelist",
                        "properties": {"title": tagged_string(months[month])},
                        "items": [], "files": []})
    for n in range(postings):
        month = n % 12
        day = 1 + n % 28
        item = {"class": "Item", "properties": {
            "title": tagged_string(f"Posten {n}"),
            "amount": tagged_string(f"{(n * 37) % 5000}.{n % 100:02d}"),
            "kind": {"int": 1 + n % 2},
            "taxBool": {"bool": n % 3 != 0},
            "taxTag": {"int": 1 + n % 2},
            "finalAmount": {"float": float((n * 37) % 5000)},
            "date": {"date": f"2025-{month + 1:02d}-{day:02d}T10:00:00.000Z"},
            "group": tagged_string("Büro"),
            "account": tagged_string("Bank"),
        }}
        periods[month]["items"].append(item)
    year = {"class": "Year", "properties": {"dateValue": tagged_string("2025")},
            "thelists": periods, "files": [], "items": [], "array": []}
    client = {"class": "Client", "properties": {"company": tagged_string(company)},
              "theYears": [year]}
    return {"clients": [client]}


if __name__ == "__main__":
    json.dump(book(int(sys.argv[1]), sys.argv[2]), sys.stdout, ensure_ascii=False)
