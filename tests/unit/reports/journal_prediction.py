#!/usr/bin/env python3
"""Checks the amounts of a settlement journal's HTML against an independent prediction from
the book: the payments of the status table, the three tables of tax per rate and every item
row (its number, order, open-item prefix, net amount, rate, gross amount and mark).

Usage: journal_prediction.py BOOK.json JOURNAL.html YEAR PERIOD SORTORDER CURRENCY RATE1 RATE2 RATE3
(RATE "-" for an unset rate; CURRENCY "-" for none). Prints one line per check that failed and
exits 1 if any did.

The rules, German locale: an amount is written with two decimals, rounded from the 32-bit
value; "plain" has no group sign, "grouped" a point every three digits. Sums and figures take
the plain form strictly between -1000 and 1000, else the grouped one; item rows the same but
0 gives "(null)"; tax sums and payments the plain form below 1000 (negatives always).
"""
import html as htmllib
import json
import re
import struct
import sys


def f32(x):
    return struct.unpack("<f", struct.pack("<f", x))[0]


def two_decimals(x):
    text = "%.2f" % abs(x)
    whole, frac = text.split(".")
    return whole, frac


def plain(x):
    whole, frac = two_decimals(x)
    return ("-" if x < 0 else "") + whole + "," + frac


def grouped(x):
    whole, frac = two_decimals(x)
    whole = whole.rjust(4, "0")
    groups = []
    while len(whole) > 3:
        groups.insert(0, whole[-3:])
        whole = whole[:-3]
    groups.insert(0, whole)
    return ("-" if x < 0 else "") + ".".join(groups) + "," + frac


def total_rule(x):
    return plain(x) if -1000 < x < 1000 else grouped(x)


def row_rule(x):
    return None if x == 0 else total_rule(x)


def below_thousand(x):
    return plain(x) if x < 1000 else grouped(x)


def percent(x):
    return plain(x) + " %"


def value(props, key, default=None):
    if key not in props:
        return default
    (kind, v), = props[key].items()
    return f32(float(v)) if kind == "float" else v


def main():
    book_path, html_path, year, period, order, currency = sys.argv[1:7]
    rates = [None if r == "-" else f32(float(r)) for r in sys.argv[7:10]]
    book = json.load(open(book_path, encoding="utf-8"))
    text = open(html_path, encoding="utf-8").read()
    thelist = book["clients"][0]["theYears"][int(year)]["thelists"][int(period)]
    props = thelist["properties"]
    items = [i["properties"] for i in thelist["items"]]
    cur = " " + ("" if currency == "-" else currency)
    problems = []

    def expect(what, got, want):
        if got != want:
            problems.append("%s: %r, predicted %r" % (what, got, want))

    # The status table of a marked period.
    if value(props, "taxBool"):
        row = re.search(r"<td>Zahlung</td>.*?</tr><tr>(.*?)</tr>", text).group(1)
        cells = [re.sub(r"</?b>", "", c) for c in re.findall(r"<td>(.*?)</td>", row)]
        want = [below_thousand(value(props, k, 0.0)) + cur
                for k in ("payment", "additionalPayment", "rePayment", "balance")]
        expect("status", cells, want)
    else:
        expect("status", "Voranmeldung noch nicht erstellt" in text, True)

    # Tax per rate: taxed items of tags 1 to 3, in the period's order, 32-bit sums.
    income, expense = [0.0] * 3, [0.0] * 3
    for p in items:
        tag = value(p, "taxTag", 0)
        if value(p, "taxBool") is True and 1 <= tag <= 3:
            if value(p, "kind", 0) == 1:
                expense[tag - 1] = f32(expense[tag - 1] + value(p, "taxFeeGet", 0.0))
            else:
                income[tag - 1] = f32(income[tag - 1] + value(p, "taxFeePay", 0.0))
    labels = ["" if r is None else percent(r) for r in rates]
    heads = "<td></td>" + "".join("<td>Steuersatz %d (%s)</td>" % (i + 1, labels[i])
                                  for i in range(3))
    for title, values in (("Einnahmen", [below_thousand(x) for x in income]),
                          ("Ausgaben", [below_thousand(x) for x in expense]),
                          ("Saldo", [total_rule(f32(a - b)) for a, b in zip(income, expense)])):
        want = heads + "</tr><tr><td>%s</td>" % title + "".join(
            "<td>%s%s</td>" % (v, cur) for v in values)
        expect("table " + title, want in text, True)

    # The item list.
    rows = re.findall(r"<tr><td><b>(\d+)</b></td>(.*?)</tr>", text)
    if "<h4>" not in text:
        expect("rows without list", rows, [])
        return report(problems)
    if int(order) == 0:
        ordered = sorted(items, key=lambda p: p["date"]["date"], reverse=True)
    else:
        ordered = sorted(items, key=lambda p: value(p, "misc1", "").encode("utf-8"))
    expect("number of rows", len(rows), len(ordered))
    for n, ((number, row), p) in enumerate(zip(rows, ordered), 1):
        cells = re.findall(r"<td>(.*?)</td>", row)
        expect("row %d number" % n, int(number), n)
        title = value(p, "title", "")
        if value(p, "unpaidBool"):
            title = "(Offener Posten)<br>" + title
        expect("row %d title" % n, cells[1], title)
        taxed = value(p, "taxBool") is True
        gross = row_rule(value(p, "finalAmount", 0.0))
        net = row_rule(value(p, "finalAmountWithout", 0.0))
        expect("row %d net" % n, cells[5], ("(null)" if net is None else net) + cur if taxed else "")
        expect("row %d rate" % n, cells[6],
               "<small>%s</small>" % (percent(value(p, "taxPerecent", 0.0)) if taxed else ""))
        expect("row %d gross" % n, cells[7], ("(null)" if gross is None else gross) + cur)
        mark = "\u21e5" if value(p, "kind", 0) == 1 else "\u21e4"
        expect("row %d mark" % n, htmllib.unescape(cells[8]), '<font size="1">%s</font>' % mark)
    return report(problems)


def report(problems):
    for p in problems:
        print(p)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
