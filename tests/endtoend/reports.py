#!/usr/bin/env python3
"""Runs the command lines of the transcripts in golden/, those behind "$ ", each transcript in a place of its own, and compares
all that they print with what stands there.  Usage: reports.py DIRECTORY-OF-THE-PROGRAMS; with --write behind it the transcripts
are made anew, to be read before they are kept."""

import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

programs, golden = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(__file__).with_name("golden")
# What differs from run to run: names, times and sizes of undo files, which hold paths and times.
VARYING = [(r'"maygo": ?\d+', '"maygo": 0'), (r"until \d{4}-\d\d-\d\d or longer, \d+", "until DAY or longer, 0"),
           (r"\d{8}-\d{6}-\d{3}", "MOMENT"), (r'"(time|size)": ?\d+', r'"\1": 0'), (r"\d{4}(-\d\d){2} (\d\d:){2}\d\d", "MOMENT"),
           (r" +\d+ bytes  ", lambda found: "#" * len(found[0]))]
failed = False
for transcript in sorted(golden.glob("*.txt")):
    expected, found = transcript.read_text(), ""
    with tempfile.TemporaryDirectory(dir="/tmp") as work:  # whose length shows in where lines are broken
        settings = dict(os.environ, PATH="%s:%s" % (programs, os.environ["PATH"]), XDG_STATE_HOME=work + "/state",
                        XDG_CONFIG_HOME=work + "/config", LC_ALL="C.UTF-8")
        for command in [line[2:] for line in expected.splitlines() if line.startswith("$ ")]:
            done = subprocess.run(["sh", "-c", command], cwd=work, env=settings, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            found += "$ %s\n%s" % (command, done.stdout.decode().replace(work, "HERE"))
            found += "(status %d)\n" % done.returncode if done.returncode else ""
    for pattern, constant in VARYING:
        found = re.sub(pattern, constant, found)
    if "--write" in sys.argv:
        transcript.write_text(found)
    elif found != expected:
        failed = True
        sys.stdout.writelines(difflib.unified_diff(expected.splitlines(True), found.splitlines(True), transcript.name, "found"))
sys.exit(failed)
