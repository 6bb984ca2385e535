#!/usr/bin/env python3
"""Runs txcheck and txsample as a script would, where what is around them is in the way: a database that another holds,
files that can't be written.  Usage: companion.py DIRECTORY-OF-THE-PROGRAMS"""

import fcntl
import os
import pathlib
import struct
import sys
import unittest

from programtest import BUSY, ProgramTest, contents, load_programs

ProgramTest.programs = load_programs()


class Rights(ProgramTest):
    def test_what_permissions_refuse_is_told_and_stays(self):
        self.sample("--damage", "duplicates,corrupt-files")
        program = self.run_as_nobody()
        os.chmod(self.root + "/open_db.txf", 0o444)
        self.check(status=8, error="Ask its owner", **program)
        os.chmod(self.root + "/open_db.txf", 0o666)
        os.chmod(self.root + "/DBASE/DUPL2.DBS", 0o444)
        os.chmod(self.root + "/fprint", 0o555)
        before = contents(self.root)
        done = self.check("--preen", "--save", status=13, error="Could not write in file '%s/DBASE/DUPL2.DBS'" % self.root,
                          **program)
        self.assertEqual((done["modified"], done["saved"]), (1, 0))
        row = next(row for row, problem in enumerate(done["problems"], 1) if (problem["kind"], problem["subkind"]) == (6, 1))
        self.check("--solve", "%d:1" % row, status=12, error="Unable to remove the file '%s/fprint/" % self.root, **program)
        after = contents(self.root)
        self.assertEqual(set(before), set(after))
        self.assertEqual(after["DBASE/DUPL2.DBS"], before["DBASE/DUPL2.DBS"])

    def run_as_nobody(self):
        """What makes a program run without root's rights, with the work given to it; skips the test where it can't."""
        if os.geteuid() != 0:
            return {}
        nobody = {"user": 65534, "group": 65534, "extra_groups": []}
        for directory, names, files in os.walk(self.work):
            for name in [".", *names, *files]:
                os.chown(os.path.join(directory, name), 65534, 65534)
        try:
            self.assertEqual(self.run_program("txcheck", "--json", self.root, **nobody).returncode, 4)
        except (PermissionError, AssertionError):
            self.skipTest("the programs are in a place that nobody else may enter")
        return nobody


class Surroundings(ProgramTest):
    def test_one_that_another_holds_is_refused_and_not_touched(self):
        self.sample("--damage", "duplicates")
        log = pathlib.Path(self.work, "TXLOG.TXT")
        log.write_bytes(b"of the run before")
        with open(self.root + "/open_db.txf", "w") as marker:
            whole = struct.pack("hhqqi4x", fcntl.F_WRLCK, os.SEEK_SET, 0, 0, 0)
            fcntl.fcntl(marker, fcntl.F_OFD_SETLK, whole)
            before = contents(self.root)
            self.assertIsNone(self.check("--preen", "--save", "--log", self.work, status=8, error=BUSY))
            self.check("--no-lock", status=4)
            self.assert_tree(before)
            self.assertEqual(log.read_bytes(), b"of the run before")
        self.check("--preen", "--save", status=1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
