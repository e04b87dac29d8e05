#!/usr/bin/env python3
"""Checks the items of one period of a dumped book against an independent prediction of
their amounts, key for key and kind for kind.

Usage: zifora-cli dump DB | items_prediction.py CLIENT YEAR PERIOD RATE1 RATE2 RATE3

For every item of the period the amounts are worked out again from its stored inputs
("amount", "kind", "taxBool", "taxTag", "unpaidBool") in 32-bit floats, one rounding per
operation, and compared bit for bit with what was stored. Every other key must stand in the
order of a new item and hold a new item's default, unless it is one of the keys the form
writes. One line per item is printed, then a summary; mismatches are printed and make the
exit status 1.
"""
import json
import struct
import sys

def f32(x):
    return struct.unpack("<f", struct.pack("<f", x))[0]

# The keys of a new item in the order of its initialiser, with their default kinds and values
# (dates are "now" and are only checked for their kind).
DEFAULTS = [("image", "image", "miniItemGrey"), ("kind", "int", 0), ("UUID", "string", ""),
            ("parentUUID", "string", ""), ("parentTab", "string", ""),
            ("parentYear", "string", ""), ("kindTitle", "string", ""), ("group", "string", ""),
            ("account", "string", ""), ("accountNumber", "string", ""),
            ("account2", "string", ""), ("account3", "string", ""), ("date", "date", None),
            ("title", "string", ""), ("number", "string", ""), ("amount", "string", ""),
            ("taxBool", "bool", False), ("taxTag", "int", 0), ("taxPerecent", "float", 0.0),
            ("taxFee", "float", 0.0), ("taxFeeGet", "float", 0.0), ("taxFeePay", "float", 0.0),
            ("incomeWith", "float", 0.0), ("expenseWithout", "float", 0.0),
            ("incomeWithout", "float", 0.0), ("expenseWith", "float", 0.0),
            ("finalAmount", "float", 0.0), ("finalAmountWith", "float", 0.0),
            ("finalAmountWithout", "float", 0.0), ("atSum", "float", 0.0),
            ("unpaidBool", "bool", False), ("openWith", "float", 0.0),
            ("openWithout", "float", 0.0), ("comment", "string", ""),
            ("fileBool", "bool", False), ("fileTitle", "string", ""),
            ("filePath", "string", ""), ("fileNote", "string", ""),
            ("customDatevData", "bool", False), ("customDatevAccount", "string", ""),
            ("customDatevKey", "string", "")]
DEFAULTS += [("misc%d" % i, "string", "") for i in range(1, 10)]
DEFAULTS += [("templateTitle", "string", "")]
DEFAULTS += [("bool%d" % i, "bool", False) for i in range(1, 4)]
DEFAULTS += [("float%d" % i, "float", 0.0) for i in range(1, 4)]
DEFAULTS += [("string%d" % i, "string", "") for i in range(1, 4)]
DEFAULTS += [("additionalDate%d" % i, "date", None) for i in range(1, 4)]

# Keys the form and the making of an item write; any value of the default kind is right.
FORM_KEYS = {"kind", "UUID", "parentTab", "parentYear", "group", "account", "accountNumber",
             "date", "title", "number", "amount", "taxBool", "unpaidBool", "comment"}

AMOUNT_KEYS = ["taxPerecent", "taxFee", "taxFeeGet", "taxFeePay", "incomeWith",
               "expenseWithout", "incomeWithout", "expenseWith", "finalAmount",
               "finalAmountWith", "finalAmountWithout", "openWith", "openWithout"]


def predict(s, kind, taxed, tag, unpaid, rates):
    """The amount keys, the tag and the icon of an item, or None where nothing is written."""
    if kind not in (1, 2):
        return None
    r = rates[tag - 1] if tag in (1, 2, 3) else 0.0
    out = dict.fromkeys(AMOUNT_KEYS, 0.0)
    tax = f32(s - f32(f32(s * 100.0) / f32(100.0 + r))) if taxed else 0.0
    if kind == 1:
        gross = f32(s - f32(s * 2.0))
        net = f32(gross + tax) if taxed else gross
        out.update(expenseWith=gross, expenseWithout=net, taxFeeGet=tax)
        image = "miniItemRedTax" if taxed else "miniItemRed"
    else:
        gross = s
        net = f32(s - tax) if taxed else gross
        out.update(incomeWith=gross, incomeWithout=net, taxFeePay=tax)
        image = "miniItemGreenTax" if taxed else "miniItemGreen"
    out.update(taxFee=tax, taxPerecent=r if taxed else 0.0, finalAmount=gross,
               finalAmountWith=gross, finalAmountWithout=net)
    if unpaid:
        out.update(openWith=gross, openWithout=net)
    return out, (tag if taxed else 0), image


def bits(x):
    return struct.pack("<f", x)


def value_of(tagged):
    (kind, value), = tagged.items()
    if kind == "float":
        value = f32(float(value))
    return kind, value


def check_item(props, rates):
    problems = []
    keys = list(props)
    expected_order = [k for k, _, _ in DEFAULTS]
    if keys != expected_order:
        problems.append("keys out of the order of a new item: %s" % keys)
    values = {k: value_of(v) for k, v in props.items()}
    amount = values.get("amount", ("string", ""))[1]
    s = f32(float(amount)) if amount not in ("", None) else 0.0
    kind = values["kind"][1]
    taxed = values["taxBool"] == ("bool", True)
    tag = values["taxTag"][1]
    unpaid = values["unpaidBool"] == ("bool", True)
    prediction = predict(s, kind, taxed, tag, unpaid, rates)
    expected = {}
    if prediction:
        amounts, expected_tag, image = prediction
        expected = {k: ("float", v) for k, v in amounts.items()}
        expected["image"] = ("image", image)
        expected["taxTag"] = ("int", expected_tag)
    for key, kind_name, default in DEFAULTS:
        if key not in values:
            continue
        got_kind, got = values[key]
        if key in expected:
            want_kind, want = expected[key]
        elif key in FORM_KEYS or key == "taxTag":
            want_kind, want = kind_name, got
        else:
            want_kind, want = kind_name, default if default is not None else got
        same = got_kind == want_kind and (
            bits(got) == bits(want) if want_kind == "float" else got == want)
        if not same:
            problems.append("%s is %s %r, predicted %s %r" % (key, got_kind, got, want_kind, want))
    return s, prediction is not None, problems


def main():
    client, year, period = (int(a) for a in sys.argv[1:4])
    rates = [f32(float(a)) for a in sys.argv[4:7]]
    book = json.load(sys.stdin)
    items = book["clients"][client]["theYears"][year]["thelists"][period]["items"]
    failed = 0
    for item in items:
        props = item["properties"]
        _, calculated, problems = check_item(props, rates)
        shown = {k: next(iter(props[k].values()), None) if k in props else None
                 for k in ("title", "amount", "kind", "taxTag", "taxFee", "finalAmount",
                           "finalAmountWithout", "openWith")}
        state = "wie vorhergesagt" if calculated else "nicht berechnet"
        if problems:
            state += ", ABWEICHUNG"
        print("%(title)s: amount %(amount)r kind %(kind)s taxTag %(taxTag)s taxFee %(taxFee)s "
              "finalAmount %(finalAmount)s finalAmountWithout %(finalAmountWithout)s "
              "openWith %(openWith)s" % shown + ": " + state)
        for p in problems:
            print("  " + p)
        failed += bool(problems)
    print("%d Posten geprüft, %d mit Abweichungen" % (len(items), failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
