#!/usr/bin/env python3
"""Kills zifora-cli with SIGKILL at random moments while it saves a book of 10,000 postings,
and checks after every kill that the database decodes and holds exactly the old or the new
content; at the end a start removes the temporary files the killed saves left.
Usage: kill_during_save.py ZIFORA_CLI [KILLS]"""
import json
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import makebook  # noqa: E402

SAVES_PER_RUN = 40
SEED = 20261125


def main():
    cli = sys.argv[1]
    kills = int(sys.argv[2]) if len(sys.argv) > 2 else 60
    home = tempfile.mkdtemp(prefix="zifora-kill-")
    try:
        return trial(cli, kills, home)
    finally:
        shutil.rmtree(home, ignore_errors=True)


def run_cli(cli, env, *args, stdin=None):
    return subprocess.run([cli, *args], env=env, input=stdin, capture_output=True, text=True)


def temporary_files(*folders):
    """The temporary files of our naming in `folders`, as paths."""
    return {os.path.join(f, n) for f in folders if os.path.isdir(f) for n in os.listdir(f)
            if n.startswith(".Zifora.zfdb4.tmp-") or n.startswith(".Zifora.plist.tmp-")}


def trial(cli, kills, home):
    env = dict(os.environ, HOME=home, LANG="de_DE.UTF-8", TZ="Europe/Berlin")
    env.pop("XDG_DATA_HOME", None)
    env.pop("XDG_CONFIG_HOME", None)
    folder = os.path.join(home, ".local", "share", "Zifora")
    config = os.path.join(home, ".config", "Zifora")
    os.makedirs(folder)
    database = os.path.join(folder, "Zifora.zfdb4")
    book = json.dumps(makebook.book(10000, "Firma 0"), ensure_ascii=False)
    loaded = run_cli(cli, env, "load", "-", database, stdin=book)
    assert loaded.returncode == 0, loaded.stderr
    settings = '{"settings":{"veryFirstAlertDone":{"bool":true},"isWelcomeerShown":{"bool":true},' \
               '"isMigration_4.0_done":{"bool":true}}}\n'
    assert run_cli(cli, env, "run", "-", stdin=settings).returncode == 0

    def dump():
        out = run_cli(cli, env, "dump", database)
        if out.returncode != 0:
            raise AssertionError(f"the database no longer decodes: {out.stderr}")
        return out.stdout

    def script(company):
        lines = ['{"start":true}', '{"advance":1}',
                 json.dumps({"set": {"record": "client", "key": "company",
                                     "value": {"string": company}}}, ensure_ascii=False)]
        lines += ['{"do":"save:"}'] * SAVES_PER_RUN
        return "\n".join(lines) + "\n"

    current, company = dump(), "Firma 0"
    # One run to its end measures how long a run lasts; the kills fall anywhere in it.
    began = time.monotonic()
    calibration = run_cli(cli, env, "run", "-", stdin=script("Firma 1"))
    window = time.monotonic() - began
    assert calibration.returncode == 0, calibration.stdout
    expected = current.replace('"company":{"string":"Firma 0"}', '"company":{"string":"Firma 1"}')
    assert dump() == expected, "a run that was not killed did not save the new content"
    current, company = expected, "Firma 1"

    rng = random.Random(SEED)
    counts = {"old": 0, "new": 0, "mid-save": 0, "ended before the kill": 0}
    seen = set()
    started = time.monotonic()
    for n in range(2, kills + 2):
        new_company = f"Firma {n}"
        with tempfile.TemporaryFile("w+") as lines:
            lines.write(script(new_company))
            lines.seek(0)
            process = subprocess.Popen([cli, "run", "-"], env=env, stdin=lines,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            time.sleep(rng.uniform(0, window))
            if process.poll() is None:
                process.send_signal(signal.SIGKILL)
            else:
                counts["ended before the kill"] += 1
            process.wait()
        left = temporary_files(folder, config)
        if left - seen:
            counts["mid-save"] += 1
        seen |= left
        now = dump()
        new = current.replace(f'"company":{{"string":"{company}"}}',
                              f'"company":{{"string":"{new_company}"}}')
        if now == current:
            counts["old"] += 1
        elif now == new:
            counts["new"] += 1
            current, company = new, new_company
        else:
            raise AssertionError(f"kill {n - 1}: the database holds neither the old nor the new book")
    elapsed = time.monotonic() - started

    start = run_cli(cli, env, "run", "-", stdin='{"start":true}\n{"quit":true}\n')
    assert start.returncode == 0, start.stdout
    assert not temporary_files(folder, config), f"the start left {temporary_files(folder, config)}"
    assert dump() == current
    print(f"{kills} SIGKILLs in {elapsed:.1f} s (a run lasts {window:.2f} s): "
          f"{counts['old']} old, {counts['new']} new content, {counts['mid-save']} kills left "
          f"a temporary file, {counts['ended before the kill']} runs ended before the kill; "
          f"{len(seen)} temporary files left by killed saves, all removed by later starts")
    return 0


if __name__ == "__main__":
    sys.exit(main())
