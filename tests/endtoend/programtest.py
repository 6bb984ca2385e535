"""What the tests of the real programs share: a place for a database, a run of a program, and the comparison of a run of
txcheck with the oracle."""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(__file__))
import oracle

TWIN = "txcheck: Passed over: DBASE/twin.dbs: Another file is read under this name.\n"
# Every damage but files cut off, whose records could not be read.
READABLE = ("duplicates,experiment-duplicates,blank-keys,orphans,empty-files,corrupt-files,side-files,missing-directories,"
            "case-variants,odd-bytes")
BUSY = "(Error code 32: The process cannot access the file because it is being used by another process.)"


def contents(root):
    """What stands below: a file with its bytes, a link with its target, a directory with None; the marker left out."""
    found = {}
    for directory, names, files in os.walk(root):
        for name in names + files:
            path = os.path.join(directory, name)
            found[os.path.relpath(path, root)] = (os.readlink(path) if os.path.islink(path) else
                                                  None if os.path.isdir(path) else pathlib.Path(path).read_bytes())
    found.pop("open_db.txf", None)
    return found


def bytes_of(thing, member):
    """The bytes of a text of the document."""
    return bytes.fromhex(thing[member + "_hex"]) if member + "_hex" in thing else thing[member].encode()


def load_programs():
    """The directory of the programs, which is the first word of the command line."""
    return pathlib.Path(sys.argv.pop(1)).resolve()


class ProgramTest(unittest.TestCase):
    programs = None
    maxDiff = 4000

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        os.chmod(folder.name, 0o755)
        self.work = folder.name
        self.root = os.path.join(self.work, "db")
        self.environment = dict(os.environ, XDG_CONFIG_HOME=self.work + "/config", XDG_STATE_HOME=self.work + "/state",
                                LC_ALL="C")

    def run_program(self, program, *arguments, **options):
        settings = {"capture_output": True, "env": self.environment, "cwd": self.work, "timeout": 120, **options}
        return subprocess.run([self.programs / program, *arguments], **settings)

    def sample(self, *options, root=None):
        done = self.run_program("txsample", *options, root or self.root)
        self.assertEqual((done.returncode, done.stderr), (0, b""))

    def check(self, *options, status, error="", directory=None, **more):
        """Runs txcheck, expects the exit status and a text among its errors, and gives its document, None without one."""
        where = [self.root] if directory is None else directory
        done = self.run_program("txcheck", "--json", *where, *options, **more)
        said = done.stderr.decode("utf-8", "replace")
        self.assertEqual(done.returncode, status, said)
        self.assertIn(error, said)
        if not status & 8 and not error:
            self.assertIn(said, ("", TWIN))
        return json.loads(done.stdout) if done.stdout else None

    def compare(self, *options):
        """Runs txcheck on the tree, under a relative path and with a log, and the oracle on a copy: document, exit status,
        log and every byte of the tree have to agree.  The document."""
        model = self.work + "/model"
        shutil.copytree(self.root, model, symlinks=True)
        before = contents(self.root)
        self.expected = expected = oracle.Run(model, "db", options)
        done = self.run_program("txcheck", "--json", "--log", ".", "db", *options)
        self.assertEqual(done.returncode, expected.status(), done.stderr)
        found = json.loads(done.stdout)
        changes = found.pop("changes")
        for thing in found["unread"]:
            for member in "reason", "reason_hex":
                thing.pop(member, None)
        self.assertEqual(found, expected.document())
        log = self.without_changes(pathlib.Path(self.work, "TXLOG.TXT").read_bytes(), changes, before)
        log = re.sub(rb"(?m)^(   (?:could not read|passed over) '.*?': ).*$", rb"\1", log)
        self.assertEqual(log.split(b"\n"), expected.log().split(b"\n"))
        self.assert_tree(contents(model))
        shutil.rmtree(model)
        return found

    def without_changes(self, log, changes, tree):
        """Makes the changes of a document on the tree as it was, which has to give the tree as it is, and takes their lines
        out of the log."""
        now = contents(self.root)
        for change in changes:
            kind = next(iter(change))
            name = bytes_of(change, kind)
            line = b"*** %s '%s' ***\n" % (kind.title().encode(), name)
            place = os.fsdecode(name)
            if kind == "deleted":
                del tree[place]
            elif kind == "made":
                self.assertNotIn(place, tree)
                tree[place] = now.get(place)
            else:
                old, new, at = bytes_of(change, "old"), bytes_of(change, "new"), change["offset"]
                line = b"*** Changed key '%s' to '%s' in '%s', record %d ***\n" % (old, new, name, change["record"])
                while isinstance(tree[place], str):
                    place = os.path.normpath(os.path.join(os.path.dirname(place), tree[place]))
                data = tree[place]
                self.assertEqual(data[at + 8:at + 8 + len(old)], old)
                tree[place] = data[:at] + oracle.field(new) + data[at + 69:]
            self.assertIn(line, log)
            log = log.replace(line, b"", 1)
        self.assertEqual([path for path in {*tree, *now} if tree.get(path, 0) != now.get(path, 0)], [])
        return log

    def assert_tree(self, expected):
        found = contents(self.root)
        self.assertEqual([path for path in sorted({*expected, *found}) if expected.get(path, 0) != found.get(path, 0)], [])
