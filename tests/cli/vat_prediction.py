#!/usr/bin/env python3
"""Predicts the figures of one period's advance return from a dumped book, independently of
the program, and compares them with what `zifora-cli vat --json` printed, bit for bit.

Usage: vat_prediction.py DUMP.json VAT.json CLIENT YEAR PERIOD

The items are taken in date order (equal dates in stored order); every sum is a 32-bit float
with one rounding per addition, in the order the advance return adds them. The overall
figures of the period are sums without rounding between the additions, read as 32-bit
floats at the end. Prints one line per figure; a mismatch makes the exit status 1.
"""
import json
import struct
import sys


def f32(x):
    return struct.unpack("<f", struct.pack("<f", x))[0]


def value(props, key):
    """A numeric read with dictionary semantics: absent or non-numeric reads 0."""
    v = props.get(key)
    if v is None:
        return 0.0
    kind, raw = next(iter(v.items()))
    if kind in ("float", "double", "int", "integer"):
        return float(raw)
    if kind == "bool":
        return 1.0 if raw else 0.0
    if kind == "string":
        num = ""
        for ch in raw.strip():
            if ch.isdigit() or ch in "+-.eE" and not (ch in "+-" and num):
                num += ch
            else:
                break
        try:
            return float(num)
        except ValueError:
            return 0.0
    return 0.0


def exactly_true(props, key):
    """True for a bool true and for a number equal to 1 (an old file's 1); a text never."""
    v = props.get(key)
    if v is None:
        return False
    kind, raw = next(iter(v.items()))
    if kind == "bool":
        return raw is True
    return kind in ("float", "double", "int", "integer") and float(raw) == 1.0


def date_of(props):
    v = props.get("date")
    return v["date"] if v and "date" in v else ""


def predict(items):
    G = [0.0] * 5
    X = [0.0] * 5
    P = [0.0] * 5
    N = [0.0] * 5
    for item in items:
        p = item["properties"]
        tag = int(value(p, "taxTag"))
        if not exactly_true(p, "taxBool") or tag < 1 or tag > 5:
            continue
        i = tag - 1
        if int(value(p, "kind")) == 1:
            G[i] = f32(G[i] + f32(value(p, "taxFeeGet")))
            X[i] = f32(X[i] + f32(value(p, "expenseWith")))
        else:
            P[i] = f32(P[i] + f32(value(p, "taxFeePay")))
            N[i] = f32(N[i] + f32(value(p, "incomeWithout")))

    def left_sum(xs):
        s = 0.0
        for x in xs:
            s = f32(s + x)
        return s

    V = left_sum(G)
    Xs = left_sum(X)
    D = f32(Xs + f32(Xs * -2.0))
    B = f32(left_sum(P) - V)
    figures = {
        "steuerfreieUmsaetzeField": N[3], "tax1SumField": N[0], "tax2SumField": N[1],
        "tax3SumField": N[2], "tax1AmountField": P[0], "tax2AmountField": P[1],
        "tax3AmountField": P[2], "nichtSteuerbarField": N[4], "abziehbareBetraegeField": D,
        "abziehbareBetraegeSteuerAmountField": V, "saldoField": B,
    }

    def plain_sum(key):
        return sum(f32(value(i["properties"], key)) for i in items)

    income_gross = f32(plain_sum("incomeWith"))
    expense_gross = f32(plain_sum("expenseWith"))
    income_net = f32(income_gross - f32(plain_sum("taxFeePay")))
    expense_net = f32(expense_gross + f32(plain_sum("taxFeeGet")))
    balance = {
        "expenseGross": expense_gross, "incomeGross": income_gross,
        "balanceGross": f32(income_gross + expense_gross),
        "expenseNet": expense_net, "incomeNet": income_net,
        "balanceNet": f32(income_net + expense_net),
        "openWith": f32(plain_sum("openWith")), "openWithout": f32(plain_sum("openWithout")),
    }
    kennzahlen = {"81": N[0], "86": N[1], "35": N[2], "45": N[4], "48": N[3], "66": V, "83": B}
    return figures, balance, kennzahlen


def main():
    dump = json.load(open(sys.argv[1]))
    printed = json.load(open(sys.argv[2]))
    client, year, period = int(sys.argv[3]), sys.argv[4], sys.argv[5]
    years = dump["clients"][client]["theYears"]
    y = next(y for y in years if y["properties"]["dateValue"]["string"] == year)
    p = next(p for p in y["thelists"] if p["properties"]["title"]["string"] == period)
    items = sorted(p["items"], key=date_of)  # sorted() is stable
    figures, balance, kennzahlen = predict(items)
    bad = 0
    for group, predicted in (("figures", figures), ("balance", balance),
                             ("kennzahlen", kennzahlen)):
        for key, want in predicted.items():
            got = printed[group][key]
            ok = f32(got) == want
            bad += not ok
            print(f"{group}.{key}: {got} {'ok' if ok else 'predicted %r' % want}")
    print(f"{len(items)} items, {bad} mismatches")
    return 1 if bad else 0


sys.exit(main())
