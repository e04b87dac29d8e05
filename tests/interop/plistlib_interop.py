#!/usr/bin/env python3
"""Checks the archive format against an independent implementation, Python's plistlib:
plistlib reads what we write, and we read what plistlib writes."""

import datetime
import json
import os
import plistlib
import subprocess
import sys
import tempfile

CLI = sys.argv[1]
failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def run(args, env=None, stdin=None):
    return subprocess.run([CLI] + args, input=stdin, capture_output=True, text=True, env=env)


def first_start_database(home):
    env = dict(os.environ, HOME=home)
    env.pop("XDG_DATA_HOME", None)
    env.pop("XDG_CONFIG_HOME", None)
    script = '{"start":true}\n{"advance":1}\n{"quit":true}\n'
    result = run(["run", "-"], env=env, stdin=script)
    check(result.returncode == 0, "first start failed: " + result.stdout + result.stderr)
    return os.path.join(home, ".local/share/Zifora/Zifora.zfdb4")


def test_plistlib_reads_our_database(home):
    path = first_start_database(home)
    with open(path, "rb") as f:
        archive = plistlib.load(f)
    check(archive["$archiver"] == "NSKeyedArchiver", "$archiver is not NSKeyedArchiver")
    check(archive["$version"] == 100000, "$version is not 100000")
    objects = archive["$objects"]
    check(objects[0] == "$null", "object 0 is not $null")
    root = objects[archive["$top"]["root"].data]
    keys = [objects[k.data] for k in root["NS.keys"]]
    check(keys == ["clients"], "the root dictionary does not hold exactly 'clients': %r" % keys)
    clients = objects[root["NS.objects"][0].data]
    client = objects[clients["NS.objects"][0].data]
    check(objects[client["$class"].data]["$classname"] == "Client", "the first client is no Client")
    props = objects[client["properties"].data]
    names = [objects[k.data] for k in props["NS.keys"]]
    values = [objects[v.data] for v in props["NS.objects"]]
    check(dict(zip(names, values)).get("company") == "Neue Firma", "company is not 'Neue Firma'")
    # The float marker must stay a 4-byte real: look for it in the raw bytes of a float value.
    with open(path, "rb") as f:
        raw = f.read()
    check(raw.startswith(b"bplist00"), "the database is not a binary property list")


class Archive:
    """A minimal keyed archiver written from the published format, independent of ours."""

    def __init__(self):
        self.objects = ["$null"]
        self.classes = {}

    def add(self, obj):
        self.objects.append(obj)
        return plistlib.UID(len(self.objects) - 1)

    def cls(self, name, chain):
        if name not in self.classes:
            self.classes[name] = self.add({"$classname": name, "$classes": chain})
        return self.classes[name]

    def dict(self, mapping):
        uid = self.add(None)
        keys = [self.add(k) for k in mapping]
        values = [self.value(v) for v in mapping.values()]
        self.objects[uid.data] = {"$class": self.cls("NSMutableDictionary",
                                                     ["NSMutableDictionary", "NSDictionary", "NSObject"]),
                                  "NS.keys": keys, "NS.objects": values}
        return uid

    def array(self, items):
        uid = self.add(None)
        members = [self.value(v) for v in items]
        self.objects[uid.data] = {"$class": self.cls("NSMutableArray",
                                                     ["NSMutableArray", "NSArray", "NSObject"]),
                                  "NS.objects": members}
        return uid

    def date(self, seconds_since_2001):
        return self.add({"$class": self.cls("NSDate", ["NSDate", "NSObject"]), "NS.time": seconds_since_2001})

    def record(self, name, props, lists=()):
        uid = self.add(None)
        body = {"$class": self.cls(name, [name, "NSObject"]), "properties": self.dict(props)}
        for key, items in lists:
            body[key] = self.array(items)
        self.objects[uid.data] = body
        return uid

    def value(self, v):
        if isinstance(v, plistlib.UID):
            return v
        if isinstance(v, dict):
            return self.dict(v)
        if isinstance(v, list):
            return self.array(v)
        return self.add(v)

    def write(self, root, path):
        archive = {"$archiver": "NSKeyedArchiver", "$version": 100000,
                   "$top": {"root": root}, "$objects": self.objects}
        with open(path, "wb") as f:
            plistlib.dump(archive, f, fmt=plistlib.FMT_BINARY)


def test_we_read_plistlib_archive(folder):
    a = Archive()
    item = a.record("Item", {"title": "Büromaterial", "amount": "119", "finalAmount": 119.5,
                             "kind": 2, "taxBool": True, "date": a.date(725846400.25),
                             "misc6": {"uid": "abc", "menge": 3, "preis": 2.5}})
    period = a.record("Thelist", {"title": "Januar"}, [("items", [item]), ("files", [])])
    year = a.record("Year", {"dateValue": "2024"}, [("thelists", [period])])
    client = a.record("Client", {"company": "Python GmbH", "taxationKind": 1},
                      [("theYears", [year]), ("groups", []), ("accounts", [])])
    root = a.dict({"clients": [client]})
    path = os.path.join(folder, "python.zfdb4")
    a.write(root, path)

    result = run(["dump", path])
    check(result.returncode == 0, "dump of the plistlib archive failed: " + result.stderr)
    if result.returncode != 0:
        return
    dump = json.loads(result.stdout)
    c = dump["clients"][0]
    check(c["class"] == "Client", "the client class is lost")
    check(c["properties"]["company"] == {"string": "Python GmbH"}, "company: %r" % c["properties"].get("company"))
    check(c["properties"]["taxationKind"] == {"int": 1}, "taxationKind: %r" % c["properties"].get("taxationKind"))
    check(c["groups"] == [] and c["theYears"][0]["class"] == "Year", "the client's lists are wrong")
    i = c["theYears"][0]["thelists"][0]["items"][0]["properties"]
    check(i["title"] == {"string": "Büromaterial"}, "title: %r" % i.get("title"))
    check(i["amount"] == {"string": "119"}, "amount must stay a text: %r" % i.get("amount"))
    check(i["finalAmount"] == {"double": 119.5}, "an 8-byte real must read as a double: %r" % i.get("finalAmount"))
    check(i["taxBool"] == {"bool": True}, "taxBool: %r" % i.get("taxBool"))
    check(i["date"] == {"date": "2024-01-02T00:00:00.250Z"}, "date: %r" % i.get("date"))
    check(i["misc6"] == {"dict": {"uid": {"string": "abc"}, "menge": {"int": 3}, "preis": {"double": 2.5}}},
          "misc6: %r" % i.get("misc6"))
    check("comment" not in i, "a key the file lacks must stay absent")

    # dump -> load -> dump is the identity.
    json_path = os.path.join(folder, "dump.json")
    with open(json_path, "w") as f:
        f.write(result.stdout)
    again = os.path.join(folder, "again.zfdb4")
    loaded = run(["load", json_path, again])
    check(loaded.returncode == 0, "load failed: " + loaded.stderr)
    second = run(["dump", again])
    check(second.stdout == result.stdout, "dump -> load -> dump differs")

    # plistlib reads what `load` wrote, and a float written as float stays a 4-byte real.
    with open(again, "rb") as f:
        check(plistlib.load(f)["$archiver"] == "NSKeyedArchiver", "plistlib cannot read our archive")
    floats = os.path.join(folder, "float.json")
    with open(floats, "w") as f:
        f.write('{"clients":[{"class":"Client","properties":{"x":{"float":0.1}}}]}')
    fpath = os.path.join(folder, "float.zfdb4")
    run(["load", floats, fpath])
    with open(fpath, "rb") as f:
        raw = f.read()
    check(b"\x22\x3d\xcc\xcc\xcd" in raw, "a float is not written as a 4-byte real")
    check(json.loads(run(["dump", fpath]).stdout)["clients"][0]["properties"]["x"] == {"float": 0.1},
          "a float does not read back as the same float")


def test_refusals(folder):
    path = os.path.join(folder, "broken.zfdb4")
    with open(os.path.join(folder, "python.zfdb4"), "rb") as f:
        good = f.read()
    with open(path, "wb") as f:
        f.write(good[: len(good) // 2])
    result = run(["dump", path])
    check(result.returncode == 2 and "broken.zfdb4" in result.stderr,
          "a truncated archive must give exit code 2 and name the file: %d %r" % (result.returncode, result.stderr))
    result = run(["dump", os.path.join(folder, "missing.zfdb4")])
    check(result.returncode == 3, "a missing file must give exit code 3")


with tempfile.TemporaryDirectory() as tmp:
    home = os.path.join(tmp, "home")
    os.makedirs(home)
    test_plistlib_reads_our_database(home)
    test_we_read_plistlib_archive(tmp)
    test_refusals(tmp)

for f in failures:
    print("FAIL:", f)
sys.exit(1 if failures else 0)
