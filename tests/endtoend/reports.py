#!/usr/bin/env python3
"""Compares the report and the document of txcheck, as a whole, with those in golden/.  Usage: reports.py
DIRECTORY-OF-THE-PROGRAMS; with --write behind it the ones there are made anew, to be read before they are kept."""

import difflib
import os
import pathlib
import subprocess
import sys
import tempfile

programs, golden = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(__file__).with_name("golden")
SAMPLE = ("--files 1 --entries 3 --types 1 --experiments 1 --records 2 --seed 5 --damage "
          "duplicates,blank-keys,orphans,truncated,side-files,missing-directories,odd-bytes")
KEY = "Stämme 株式会社 e\u0301"  # wide and combining characters
STEPS = ["--solve", "1:1", "--solve", "1:1", "--solve", "blank:Database:1", "--solve-all", "duplicate:2", "--preen",
         "--change-key", "isolate 00001", "0", "1", KEY, "--entry", KEY, "--all", "--save"]
failed = False
for name, options in [("document.json", ["--json"]), ("report.txt", [])]:
    with tempfile.TemporaryDirectory() as work:
        subprocess.run([programs / "txsample", *SAMPLE.split(), "db"], cwd=work, check=True, stdout=subprocess.DEVNULL)
        done = subprocess.run([programs / "txcheck", *STEPS, *options, "db"], cwd=work, capture_output=True)
    found = "%s\nexit status %d\n%s" % (done.stdout.decode(), done.returncode, done.stderr.decode())
    if "--write" in sys.argv:
        (golden / name).write_text(found)
    expected = (golden / name).read_text()
    failed = failed or found != expected
    sys.stdout.writelines(difflib.unified_diff(expected.splitlines(True), found.splitlines(True), name, "found"))
with tempfile.TemporaryDirectory() as work:  # nothing of a name becomes markup
    subprocess.run([programs / "txsample", "db"], cwd=work, check=True, stdout=subprocess.DEVNULL)
    pathlib.Path(work, "db/seq/<img src=x>&\u202e.CNF").touch()
    subprocess.run([programs / "txcheck", "--report", "page.html", "db"], cwd=work, stdout=subprocess.DEVNULL)
    page = pathlib.Path(work, "page.html").read_text()
    failed = failed or "<bdi>The file &#39;db/seq/&lt;img src=x&gt;&amp;\\xE2\\x80\\xAE.CNF" not in page or "<img" in page
sys.exit(failed)
