#!/usr/bin/env python3
"""Writes reports_book.json, the book of the report and advance-return tests, in the dump
format of `zifora-cli load`. Every item carries the amounts that the item calculation gives
for its inputs under the rates 19, 7 and 10.7 (worked out here independently, in 32-bit
floats), and every key of a new item in its order.

Usage: make_reports_book.py | zifora-cli load - BOOK && zifora-cli dump BOOK > reports_book.json
(the file is kept in the dump's own spelling, so that dump and load give it back unchanged)

The book: the client "Grafikbüro Kranich & Co." (tax number 21/815/08150), the year 2025
with the periods
  Januar   marked, filed on 2025-02-10; payment 150, balance 150; a few items
  Februar  not marked; a few items
  März     marked, filed on 2025-04-10; payments of four digits; every tax class 0 to 5 on
           both sides, an open item, an item of exactly 0 gross, a title of 29 and one of 30
           characters, vouchers ("misc1") that sort differently as text and as numbers
  April    not marked and empty
and the year 2024 with one marked period "4. Kalendervierteljahr".
"""
import json
import os
import struct
import sys

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "scenarios"))
from items_prediction import DEFAULTS, f32, predict  # noqa: E402

RATES = [f32(19.0), f32(7.0), f32(10.7)]


def short_float(x):
    """The shortest text that reads back to the same 32-bit float."""
    x = f32(x)
    for digits in range(1, 18):
        text = "%.*g" % (digits, x)
        if f32(float(text)) == x:
            return text
    return repr(x)


def tagged(kind, value):
    if kind == "float":
        return {"float": float(short_float(value))}
    return {kind: value}


def iso(day, hour=10):
    return "%sT%02d:00:00.000Z" % (day, hour)


def item(day, kind, amount, title, tax=0, unpaid=False, number="", voucher="", group="",
         account="", account_number="", hour=10):
    s = f32(float(amount)) if amount != "" else 0.0
    taxed = tax != 0
    amounts, tag, image = predict(s, kind, taxed, tax, unpaid, RATES)
    values = {
        "image": ("image", image), "kind": ("int", kind),
        "UUID": ("string", "%d" % (hash_of(day, title))),
        "group": ("string", group), "account": ("string", account),
        "accountNumber": ("string", account_number), "date": ("date", iso(day, hour)),
        "title": ("string", title), "number": ("string", number),
        "amount": ("string", amount), "taxBool": ("bool", taxed), "taxTag": ("int", tag),
        "unpaidBool": ("bool", unpaid), "misc1": ("string", voucher),
    }
    for key, value in amounts.items():
        values[key] = ("float", value)
    props = {}
    for key, kind_name, default in DEFAULTS:
        if key in values:
            props[key] = tagged(*values[key])
        elif kind_name == "date":
            props[key] = {"date": iso(day, hour)}
        else:
            props[key] = tagged(kind_name, default)
    return {"class": "Item", "properties": props}


def hash_of(day, title):
    return sum(ord(c) * (i + 1) for i, c in enumerate(day + title)) + 1700000000


def period(title, items, marked=False, filed=None, payment=0.0, additional=0.0,
           repayment=0.0):
    balance = f32(f32(payment + additional) - repayment)
    return {"class": "Thelist", "properties": {
        "title": {"string": title}, "comment": {"string": ""},
        "date": {"date": iso(filed or "2025-01-01", 9)}, "image": {"image": "miniList"},
        "taxBool": {"bool": marked}, "payment": tagged("float", payment),
        "additionalPayment": tagged("float", additional),
        "rePayment": tagged("float", repayment), "balance": tagged("float", balance)},
        "items": items, "files": []}


def year(value, periods):
    return {"class": "Year", "properties": {
        "check": {"string": "2014"}, "dateValue": {"string": value}, "comment": {"string": ""},
        "image": {"image": "miniYearTemplate"}, "date": {"date": iso(value + "-01-01", 9)},
        "taxBool": {"bool": False}},
        "thelists": periods, "files": [], "items": [], "array": []}


TITLE_29 = "Plakatserie Frühjahrskampagne"   # 29 characters, 30 bytes
TITLE_30 = "Plakatserie Frühjahrskampagnen"  # 30 characters, 31 bytes
assert len(TITLE_29) == 29 and len(TITLE_30) == 30

maerz = [
    item("2025-03-03", 2, "1190", "Honorar Logo", 1, number="RE-2025-031", voucher="9",
         group="Gestaltung", account="Erlöse 19 %", account_number="8400"),
    item("2025-03-04", 1, "59.5", "Druckerpatronen", 1, voucher="10", group="Büro",
         account="Bürobedarf", account_number="4930"),
    item("2025-03-05", 2, "535", "Buchillustration", 2, number="RE-2025-032", voucher="11",
         group="Gestaltung", account="Erlöse 7 %", account_number="8300"),
    item("2025-03-06", 1, "21.4", "Fachbuch Typografie", 2, voucher="12", group="Büro",
         account="Zeitschriften, Bücher", account_number="4940"),
    item("2025-03-07", 2, "442.8", "Honorar Landwirtschaft", 3, number="RE-2025-033",
         voucher="13", group="Gestaltung"),
    item("2025-03-10", 1, "110.7", "Saatgut Dekoration", 3, voucher="14", group="Büro"),
    item("2025-03-11", 2, "2500", "Ausfuhr Plakate Schweiz", 4, number="RE-2025-034",
         voucher="15", group="Gestaltung"),
    item("2025-03-12", 1, "80", "Porto Ausland", 4, voucher="16", group="Büro",
         account="Porto", account_number="4910"),
    item("2025-03-13", 2, "300", "Vortrag Ausland", 5, number="RE-2025-035", voucher="17",
         group="Vorträge"),
    item("2025-03-14", 1, "45", "Mitgliedsbeitrag", 5, voucher="18", group="Büro"),
    item("2025-03-17", 2, "250", "Zuschuss Messe", 0, voucher="19", group="Sonstiges"),
    item("2025-03-18", 1, "1234.56", "Miete Atelier", 0, voucher="2", group="Raum",
         account="Miete", account_number="4210"),
    item("2025-03-19", 2, "3570", TITLE_29, 1, unpaid=True, number="RE-2025-036",
         voucher="20", group="Gestaltung", account="Erlöse 19 %", account_number="8400"),
    item("2025-03-20", 2, "0", "Gutschrift storniert", 1, voucher="21", group="Gestaltung"),
    item("2025-03-21", 1, "999.99", TITLE_30, 1, voucher="B-3", group="Fremdleistung"),
    item("2025-03-24", 1, "0", "Kulanz ohne Betrag", 0, voucher="A-1", group="Büro"),
]

januar = [
    item("2025-01-08", 2, "892.5", "Honorar Visitenkarten", 1, number="RE-2025-001",
         voucher="1", group="Gestaltung", account="Erlöse 19 %", account_number="8400"),
    item("2025-01-15", 1, "35.7", "Papier", 1, voucher="2", group="Büro",
         account="Bürobedarf", account_number="4930"),
    item("2025-01-20", 1, "12.9", "Kontoführung", 0, voucher="3", group="Bank"),
]

februar = [
    item("2025-02-04", 2, "4165", "Honorar Geschäftsbericht", 1, number="RE-2025-011",
         voucher="1", group="Gestaltung", account="Erlöse 19 %", account_number="8400"),
    item("2025-02-12", 1, "107", "Fachzeitschrift", 2, voucher="2", group="Büro"),
    item("2025-02-26", 2, "1000", "Honorar Beratung", 4, voucher="3", group="Beratung"),
]

vierteljahr = [
    item("2024-11-04", 2, "2380", "Honorar Broschüre", 1, number="RE-2024-101", voucher="1",
         group="Gestaltung"),
    item("2024-12-02", 1, "119", "Software", 1, voucher="2", group="Büro"),
]

book = {"clients": [{
    "class": "Client",
    "properties": {"image": {"image": "client"}, "company": {"string": "Grafikbüro Kranich & Co."},
                   "taxNumber": {"string": "21/815/08150"}, "elsterNumber": {"string": "9198"},
                   "taxationKind": {"int": 2}, "datevConsultantNumber": {"string": "1001"},
                   "datevClientNumber": {"string": "10001"}},
    "theYears": [
        year("2025", [
            period("Januar", januar, marked=True, filed="2025-02-10", payment=150.0),
            period("Februar", februar),
            period("März", maerz, marked=True, filed="2025-04-10", payment=1234.5,
                   additional=20.25, repayment=1500.0),
            period("April", []),
        ]),
        year("2024", [
            period("4. Kalendervierteljahr", vierteljahr, marked=True, filed="2025-01-10",
                   payment=361.0),
        ]),
    ],
    "groups": [{"class": "Group", "properties": {"title": {"string": t}}}
               for t in ("Büro", "Gestaltung", "Raum", "Sonstiges", "Vorträge")],
    "accounts": [{"class": "Account", "properties": {"number": {"string": n},
                                                     "title": {"string": t}}}
                 for n, t in (("8400", "Erlöse 19 %"), ("8300", "Erlöse 7 %"),
                              ("4930", "Bürobedarf"), ("4210", "Miete"))],
    "items": [], "cashbooks": [], "allowances": [], "inventorys": [],
    "arrayOne": [], "arrayTwo": [], "arrayThree": []}]}

json.dump(book, sys.stdout, ensure_ascii=False, separators=(",", ":"))
sys.stdout.write("\n")
