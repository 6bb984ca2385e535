#!/usr/bin/env python3
"""Compares what txcheck writes, as a whole, with the files in golden/.  Usage: reports.py DIRECTORY-OF-THE-PROGRAMS; with
--write behind it they are made anew, to be read before they are kept."""

import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

programs, golden = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(__file__).with_name("golden")
SAMPLE = ("--files 1 --entries 3 --types 1 --experiments 1 --records 2 --seed 5 --damage "
          "duplicates,blank-keys,orphans,truncated,side-files,missing-directories,odd-bytes")
SMALL = SAMPLE.split("duplicates")[0] + "duplicates,missing-directories,empty-files"
WHOLE = SAMPLE.replace("truncated", "corrupt-files,empty-files")
KEY = "Stämme 株式会社 e\u0301"  # wide and combining characters
STEPS = ["--solve", "1:1", "--solve", "1:1", "--solve", "blank:Database:1", "--solve-all", "duplicate:2", "--preen",
         "--change-key", "isolate 00001", "0", "1", KEY, "--entry", KEY, "--all", "--save"]
PAGE = ["--report", "page.html", "--solve-all", "2:2", "--solve-all", "7:1", "--entry", "isolate 00001", "--all"]
# Each file of golden/: the sample and the runs over it, one after the other.
RUNS = {
    "document.json": (SAMPLE, [[*STEPS, "--json"]]),
    "report.txt": (SAMPLE, [STEPS]),
    "page.html": (WHOLE, [[*PAGE, "--quiet"]]),
    "explained.txt": (WHOLE, [["--quiet", "--explain", str(row)] for row in (1, 6, 8, 17, 18, 20, 21, 22)] + [["--explain", "7:?:x"]]),
    "known.txt": (SMALL, [["--write-known", "known.txt"], ["--known", "known.txt", "--solve-all", "5:1"],
                          ["--known", "nowhere"], ["--known", "db"], ["--write-known", "nowhere/known.txt"],
                          ["--write-known", "DB/DBASE\\DBSF001.DBS", "--quiet"], ["--solve", "1:2"], ["--log", ""]]),
    "undone.txt": (SMALL, [
        ["--undo-list"], ["--plan", "--preen", "--rename", "isolate 00001", KEY], ["--rename", "isolate 00001", "REF-4000001"],
        ["--rename", "nobody", "new"], ["--rename", "isolate 00001", KEY, "--save"], ["--undo-list"],
        ["--preen", "--solve-all", "empty:1", "--save", "--undo", ".\\a.undo"], ["--undo-list"],
        ["--restore", "a.undo", "--plan"], ["--restore", "a.undo", "--undo", "b.undo"], ["--restore", "a.undo"],
        ["--restore", "a.undo", "--yes", "--no-undo"], ["--restore", "nowhere"], ["--quiet", "--json"]]),
    "sound.txt": ("--damage none", [["--quiet"], [], ["--home", "home", "--database", "My base"], ["--database", "none"],
                                    ["--quiet", "--rename", "BK-00011.1", "K 11", "--save"]]),
    "help.txt": ("--damage none", [["--help"]]),
}


def told(done):
    """The streams and the status, without what differs from run to run."""
    text = "%s\nexit status %d\n%s" % (done.stdout.decode(), done.returncode, done.stderr.decode())
    text = re.sub(r"\d{4}-\d\d-\d\d[ T-]\d\d[:-]?\d\d[:-]?\d\d(\.\d+)?(-\d+)?", "TIME", text.replace(os.getcwd(), "WORK"))
    return re.sub(r"\b\d{8}-?T?\d{6}\S*\.undo", "TIME.undo", text)


def transcript(sample, runs):
    subprocess.run([programs / "txsample", *sample.split(), "--home", "home", "--name", "My base", "db"], check=True,
                   stdout=subprocess.DEVNULL)
    pathlib.Path("db/seq/<img src=x>&\u202e.DEF" if "page.html" in runs[0] else "page.html").touch()
    found = ""
    for options in runs:
        where = [] if {"--undo-list", "--database"} & set(options) else ["db"]
        done = subprocess.run([programs / "txcheck", *options, *where], capture_output=True,
                              env=dict(os.environ, XDG_STATE_HOME=os.getcwd() + "/state", XDG_CONFIG_HOME=os.getcwd(), COLUMNS="100"))
        found += "$ txcheck %s\n" % " ".join(options + where) + told(done)
    return found + pathlib.Path("page.html").read_text()


failed = False
for name, (sample, runs) in RUNS.items():
    with tempfile.TemporaryDirectory(dir="/tmp") as work:  # its length shows in lines and sizes
        os.chdir(work)
        found = transcript(sample, runs)
        os.chdir("/")
    if "--write" in sys.argv:
        (golden / name).write_text(found)
    expected = (golden / name).read_text() if (golden / name).exists() else ""
    failed = failed or found != expected
    sys.stdout.writelines(difflib.unified_diff(expected.splitlines(True), found.splitlines(True), name, "found"))
sys.exit(failed)
