#!/usr/bin/env python3
"""Loads a database file with Python's plistlib, the peer our load is measured against.

    plistlib_peer.py FILE [--runs N]

Prints one line for people and one "PEER file=... load_s=..." line for bench/run. The time
covers reading the file and parsing it into Python objects (best of N runs).
"""
import argparse
import gc
import plistlib
import sys
import time


def load_once(path):
    start = time.perf_counter()
    with open(path, "rb") as f:
        data = f.read()
    root = plistlib.loads(data)
    elapsed = time.perf_counter() - start
    objects = len(root.get("$objects", ())) if isinstance(root, dict) else 0
    del root, data
    gc.collect()
    return elapsed, objects


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("file")
    parser.add_argument("--runs", type=int, default=3)
    args = parser.parse_args()
    best, objects = None, 0
    for _ in range(max(1, args.runs)):
        elapsed, objects = load_once(args.file)
        best = elapsed if best is None else min(best, elapsed)
    print(f"plistlib {args.file}: {best:.3f} s ({objects} archive objects, "
          f"best of {max(1, args.runs)})")
    print(f"PEER file={args.file} load_s={best:.4f} objects={objects}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
