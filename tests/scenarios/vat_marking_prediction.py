#!/usr/bin/env python3
"""Checks what the marking of an advance return stored, against an independent prediction.

Usage: zifora-cli dump DB | vat_marking_prediction.py CLIENT YEAR TAKEN OWN

Period TAKEN was marked with the program's figures: `payment` is the tax of the three rates
(P1 + P2 + P3), `rePayment` the deductible input tax (V = G1 + … + G5) and `balance` the
balance of the return (P1 + … + P5 - V), each summed in 32-bit floats in date order. Period OWN
was marked with own figures: its `payment` and `rePayment` stay as in the book (none), its
balance is (payment + additional payment) - repayment as typed before. Both got the clock's
moment as `date`; TAKEN keeps its additional payment and gets the comment.
"""
import json
import struct
import sys


def f32(x):
    return struct.unpack("<f", struct.pack("<f", x))[0]


def num(props, key):
    v = props.get(key)
    if not v:
        return 0.0
    kind, raw = next(iter(v.items()))
    if kind == "float":
        return f32(float(raw))  # the dump writes a float as its shortest text
    return float(raw) if kind in ("double", "int", "integer") else 0.0


def taxed(props):
    v = props.get("taxBool")
    if not v:
        return False
    kind, raw = next(iter(v.items()))
    return raw is True if kind == "bool" else kind in ("int", "integer", "float", "double") and float(raw) == 1.0


def marking(items):
    G, P = [0.0] * 5, [0.0] * 5
    for item in sorted(items, key=lambda i: i["properties"].get("date", {}).get("date", "")):
        p = item["properties"]
        tag = int(num(p, "taxTag"))
        if not taxed(p) or not 1 <= tag <= 5:
            continue
        if int(num(p, "kind")) == 1:
            G[tag - 1] = f32(G[tag - 1] + num(p, "taxFeeGet"))
        else:
            P[tag - 1] = f32(P[tag - 1] + num(p, "taxFeePay"))
    V = 0.0
    for g in G:
        V = f32(V + g)
    owed = 0.0
    for x in P:
        owed = f32(owed + x)
    return f32(f32(P[0] + P[1]) + P[2]), V, f32(owed - V)


def report(name, got, want):
    ok = got == want
    print(json.dumps({"check": f"{name} {got} {'as predicted' if ok else 'predicted %r' % want}"},
                     ensure_ascii=False, separators=(",", ":")))
    return ok


book = json.load(sys.stdin)
client, year, taken, own = (int(a) for a in sys.argv[1:5])
periods = book["clients"][client]["theYears"][year]["thelists"]
good = True
t = periods[taken]["properties"]
payment, re_payment, balance = marking(periods[taken]["items"])
good &= report("Übernehmen: payment", num(t, "payment"), payment)
good &= report("Übernehmen: rePayment", num(t, "rePayment"), re_payment)
good &= report("Übernehmen: balance", num(t, "balance"), balance)
good &= report("Übernehmen: additionalPayment", num(t, "additionalPayment"), 20.25)
good &= report("Übernehmen: date", t.get("date"), {"date": "2026-03-02T09:00:07.000Z"})
good &= report("Übernehmen: comment", t.get("voranmeldungComment"),
               {"string": "Zusammenfassende Meldung abgegeben"})
o = periods[own]["properties"]
good &= report("Eigene: payment", num(o, "payment"), 0.0)
good &= report("Eigene: rePayment", num(o, "rePayment"), 0.0)
good &= report("Eigene: additionalPayment", num(o, "additionalPayment"), 10.75)
good &= report("Eigene: balance", num(o, "balance"), f32(f32(0.0 + 10.75) - 0.0))
good &= report("Eigene: taxBool", o.get("taxBool"), {"bool": True})
good &= report("Eigene: date", o.get("date"), {"date": "2026-03-02T09:00:06.000Z"})
sys.exit(0 if good else 1)
