#!/usr/bin/env python3
"""Runs txcheck and txsample as a script would, and looks at their documents, exit statuses and what they leave on the
disk.  Usage: companion.py DIRECTORY-OF-THE-PROGRAMS [TEST...]"""

import json
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

sys.dont_write_bytecode = True
import oracle

PROGRAMS = pathlib.Path(sys.argv[1]).resolve()
BUSY = "(Error code 32: The process cannot access the file because it is being used by another process.)"
# Every damage but files cut off, whose records could not be read.
READABLE = ("duplicates,experiment-duplicates,blank-keys,orphans,empty-files,corrupt-files,side-files,missing-directories,"
            "case-variants,odd-bytes")
TWIN = "txcheck: Passed over: DBASE/twin.dbs: Another file is read under this name.\n"
RECORDS = 400  # of each file of the large database


def contents(root):
    """Every file below with its bytes, every directory with None; the marker left out."""
    found = {}
    for directory, names, files in os.walk(root):
        found.update({os.path.relpath(os.path.join(directory, name), root): None for name in names})
        for name in files:
            path = os.path.join(directory, name)
            found[os.path.relpath(path, root)] = pathlib.Path(path).read_bytes()
    found.pop("open_db.txf", None)
    return found


class ProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.work = folder.name
        self.root = os.path.join(self.work, "db")
        self.environment = dict(os.environ, XDG_CONFIG_HOME=os.path.join(self.work, "config"), LC_ALL="C")

    def run_program(self, program, *arguments, **options):
        return subprocess.run([PROGRAMS / program, *arguments], capture_output=True, env=self.environment,
                              cwd=self.work, timeout=120, **options)

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
        if status < 8 and not error:
            self.assertIn(said, ("", TWIN))
        return json.loads(done.stdout) if done.stdout else None

    def assert_tree(self, before):
        after = contents(self.root)
        self.assertEqual([path for path in sorted({*before, *after}) if before.get(path, 0) != after.get(path, 0)], [])

    def assert_only_keys_changed(self, before, old, new):
        """Compares the tree with what it was, given both readings of it: a key field is as it was or holds the key that
        is now read there, and new .DBS files consist of their keys."""
        old_files = {os.path.relpath(file.path, self.root): file for files in old.files for file in files}
        for path, content in contents(self.root).items():
            if path in before and content is not None:
                expected = bytearray(before[path])
                file = next((f for fs in new.files for f in fs if os.path.relpath(f.path, self.root) == path), None)
                for was, now in zip(old_files[path].records, file.records) if file else []:
                    if was[0] != now[0]:
                        expected[now[2]:now[2] + 69] = oracle.field(now[0])
                self.assertEqual(content, bytes(expected), path)
            elif path not in before:
                file = next(f for f in new.files[0] if os.path.relpath(f.path, self.root) == path)
                self.assertEqual(content, dbs([key for key, _, _ in file.records]), path)
        self.assertEqual(set(before) - set(contents(self.root)), set())


def dbs(keys):
    body = b"TX-DBS-v1.0TGFLD".join([b"\x0b\0\0\0", b"\x1c\0\0\0" + bytes(4)]) + b"TGENT"
    count = len(keys).to_bytes(4, "little")
    return body + (41 + 69 * len(keys)).to_bytes(4, "little") + count + b"".join(map(oracle.field, keys))


class Documents(ProgramTest):
    def compare(self, *options, status):
        expected = oracle.Database(self.root)
        found = self.check(*options, "--no-lock", status=status)
        self.assertEqual(" ".join(found), "directory problems types keytotal keys solved modified saved changes unread status")
        wanted = expected.document(expected.keys if "--all" in options else None)
        wanted.update(solved=[], modified=0, saved=0, changes=[], status=status)
        del found["unread"]
        for row, problem in enumerate(found["problems"], 1):
            self.assertEqual(problem.pop("row"), row)
            del problem["id"], problem["message"], problem["solutions"]
            problem.pop("message_hex", None)
        self.maxDiff = 2000
        self.assertEqual(found, wanted)
        return expected

    def test_agree_with_the_files(self):
        for number, (options, status) in enumerate([
                ([], 0), (["--types", "7", "--fields", "0", "--seed", "5"], 0), (["--files", "0", "--experiments", "0"], 0),
                (["--damage", READABLE], 4), (["--damage", READABLE, "--seed", "77", "--types", "1", "--fields", "12"], 4)]):
            self.root = os.path.join(self.work, str(number))
            self.sample(*options)
            self.compare(status=status)
            self.compare("--all", status=status)

    def test_tell_the_records_of_a_key_byte_by_byte(self):
        self.sample("--damage", "odd-bytes,orphans")
        database = oracle.Database(self.root)
        for key in [database.entries[name][0] for name in database.keys if name[:1] in b"m\x80\xd1\"t1"]:
            entry = self.check("--entry", key.swapcase() if key.isascii() else key, status=4)["entry"]
            records = [{"type": kind, "class": file.fileclass, **oracle.text("file", file.name), "record": number} for kind, found in
                       sorted(database.entries[key.lower()][1].items()) for file, number in found]
            self.assertEqual(entry, {**oracle.text("key", key), "occurrences": records})
        for given in b"\x80No\x81One", "hex:804E6f814f6E65":
            self.assertEqual(self.check("--entry", given, status=4)["entry"],
                             {"key": "\u20acNo\x81One", "key_hex": "804e6f814f6e65", "occurrences": []})

    def test_name_each_solution(self):
        self.sample("--damage", READABLE)
        seen = {}
        for problem in self.check(status=4)["problems"]:
            seen[problem["kind"]] = [(s["command"], s["label"]) for s in problem["solutions"]]
        corrupted = "Delete this corrupted file"
        self.assertEqual(seen, {
            1: [(7001, "Remove all empty files")],
            2: [(7002, "Remove all duplicate keys"), (7003, "Rename all duplicate keys")],
            3: [(7004, "Create keys")],
            4: [(7005, "Remove these experiment keys"), (7006, "Add database entries for these keys")],
            5: [(7007, "Create directory")], 6: [(7008, corrupted)], 7: [(7009, corrupted)]})


class Repairs(ProgramTest):
    def test_preen_and_save_change_only_keys_and_a_third_run_nothing(self):
        self.sample("--damage", READABLE)
        before, old = contents(self.root), oracle.Database(self.root)
        self.assertEqual({problem[0] for problem in old.problems}, set(range(1, 8)))
        lost = self.check("--preen", status=4)
        self.assertEqual((lost["modified"], lost["saved"]), (1, 0))
        directories = {"images", "bundles"}  # made at once
        for name in directories:
            os.rmdir(os.path.join(self.root, name))
        self.assert_tree(before)
        saved = self.check("--preen", "--save", status=4)
        self.assertEqual({step["command"] for step in saved["solved"]}, {7003, 7004, 7006, 7007})
        self.assertEqual((saved["modified"], saved["saved"]), (0, 1))
        before.update(dict.fromkeys(directories))
        new = oracle.Database(self.root)
        self.assert_only_keys_changed(before, old, new)
        self.assertEqual({problem[0] for problem in new.problems}, {1, 6, 7})
        third = contents(self.root)
        self.assertEqual(self.check("--preen", "--save", status=4)["problems"], saved["problems"])
        self.assert_tree(third)

    def test_deleting_solutions_end_with_a_sound_database(self):
        self.sample("--damage", READABLE)
        rows = self.check("--preen", "--save", status=4)["problems"]
        done = self.check(*["--solve=%d:1" % row["row"] for row in rows], "--save", status=1)
        self.assertEqual((done["problems"], {step["result"] for step in done["solved"]}), ([], {1}))
        self.assertEqual(oracle.Database(self.root).problems, [])
        self.check(status=0)

    def test_statuses_follow_what_is_left(self):
        self.sample("--damage", "duplicates,blank-keys,orphans,missing-directories")
        self.check(status=4)
        self.check("--preen", status=4)
        done = self.check("--preen", "--save", status=1)
        self.assertEqual((done["problems"], done["modified"], done["saved"]), ([], 0, 1))
        self.check("--preen", "--save", status=0)
        key = self.check("--all", status=0)["keys"][0]["key"]
        self.assertEqual(self.check("--change-key", key, "0", "1", "another key", status=4)["modified"], 1)

    def test_a_failed_step_ends_the_work_with_a_report(self):
        self.sample("--damage", "duplicates,blank-keys")
        before = contents(self.root)
        keys = {key["counts"][0]: key["key"] for key in self.check("--all", status=4)["keys"]}
        used, other = keys[1], keys[3]
        for options, error, solved in [
                (["--solve", "9:1"], "9:1", 0), (["--solve", "0:1"], "0:1", 0), (["--solve", "1:3"], "1:3", 0),
                (["--solve", "1:2", "--solve", "3:1", "--preen"], "Left out, since --solve 3:1 failed: --preen, --save", 1),
                (["--change-key", used, "0", "2", "new"], "no occurrence 2", 0),
                (["--change-key", "nobody", "0", "1", "new"], "no occurrence 1", 0),
                (["--change-key", used, "99", "1", "new"], "no occurrence 1", 0),
                (["--change-key", used, "0", "1", other], "This database entry exists already", 0)]:
            with self.subTest(options=options):
                done = self.check(*options, "--save", status=8, error=error)
                self.assertEqual((len(done["solved"]), done["saved"]), (solved, 0))
                self.assert_tree(before)
        self.check("--change-key", used, "0", "1", used.swapcase(), "--save", status=4)
        self.assert_tree(before)
        self.check("--change-key", used, "0", "1", other, "--yes", "--save", status=4, error="exists already")
        self.assertEqual(oracle.Database(self.root).count(other.lower().encode("latin-1"), 0), 4)

    def test_preen_goes_on_behind_a_solution_that_fails(self):
        self.sample("--damage", "duplicates,missing-directories")
        pathlib.Path(self.root, "images").write_bytes(b"")
        done = self.check("--preen", "--save", status=8, error="Unable to create the directory '%s\\images'" % self.root)
        self.assertEqual([(step["command"], step["result"]) for step in done["solved"]], [(7007, 0), (7007, 1), (7003, 1)])
        self.assertEqual(([p["kind"] for p in done["problems"]], done["modified"], done["saved"]), ([5], 0, 1))

    def test_a_file_that_cannot_be_written_stays_changed(self):
        self.sample("--damage", "duplicates")
        program = self.run_as_nobody()
        os.chmod(os.path.join(self.root, "DBASE", "DUPL2.DBS"), 0o444)
        before = contents(self.root)
        done = self.check("--preen", "--save", status=8, error="Could not write in file '%s/DBASE/DUPL2.DBS'" % self.root,
                          **program)
        self.assertEqual((done["modified"], done["saved"]), (1, 0))
        self.assertEqual(contents(self.root)["DBASE/DUPL2.DBS"], before["DBASE/DUPL2.DBS"])

    def run_as_nobody(self):
        """What makes a program run without root's rights, with the work given to it; skips the test where it can't."""
        if os.geteuid() != 0:
            return {}
        nobody = {"user": 65534, "group": 65534, "extra_groups": []}
        for directory, names, files in os.walk(self.work):
            for name in [".", *names, *files]:
                os.chown(os.path.join(directory, name), 65534, 65534)
        try:
            self.assertEqual(self.run_program("txcheck", "--version", **nobody).returncode, 0)
        except (PermissionError, AssertionError):
            self.skipTest("the programs are in a place that nobody else may enter")
        return nobody


class Surroundings(ProgramTest):
    def test_wrong_usage_is_told_and_touches_nothing(self):
        self.sample("--damage", "duplicates")
        before = contents(self.root)
        for options, error in [
                (["--no-lock", "--preen"], "--no-lock"), (["--no-lock", "--save"], "--no-lock"),
                (["--no-lock", "--solve", "1:1"], "--no-lock"),
                (["--no-lock", "--change-key", "a", "0", "1", "b"], "--no-lock"), (["--solve", "1"], "--solve"),
                (["--solve", "1:"], "--solve"), (["--solve", "x:1"], "--solve"), (["--solve", "1:1x"], "--solve"),
                (["--change-key", "a", "0", "1", "n" * 61], "60"), (["--change-key", "a", "0", "1"], "--change-key"),
                (["--change-key", "a", "x", "1", "b"], "--change-key"), (["--unheard-of"], "--unheard-of"),
                ([self.root], "")]:
            with self.subTest(options=options):
                self.assertIsNone(self.check(*options, status=16, error=error))
        self.assert_tree(before)
        self.assertFalse(os.path.exists(os.path.join(self.root, "open_db.txf")))
        for option in "--help", "--version":
            done = self.run_program("txcheck", option)
            self.assertEqual((done.returncode, done.stderr), (0, b""))
            self.assertIn(b"txcheck", done.stdout)
        for options in [["--damage", "unheard-of", "x"], [], ["--files", "-1", "x"], ["--home", "x", "y"]]:
            self.assertEqual(self.run_program("txsample", *options).returncode, 16, options)

    def test_work_that_cannot_be_begun_gives_no_document(self):
        self.sample()
        plain = os.path.join(self.root, "plain")
        pathlib.Path(plain).write_bytes(b"")
        for options, directory in [([], [plain]), ([], [self.root + "/nowhere"]), ([], [""]), ([], []),
                                   (["--log", self.root + "/nowhere"], [self.root])]:
            self.assertIsNone(self.check(*options, status=8, error="txcheck: ", directory=directory), directory)

    def test_a_report_that_cannot_be_written_is_a_failure(self):
        self.sample()
        with open("/dev/full", "w") as full:
            done = subprocess.run([PROGRAMS / "txcheck", self.root], stdout=full, stderr=subprocess.PIPE, timeout=120)
        self.assertEqual(done.returncode, 8, done.stderr)

    def test_the_current_database_of_the_settings_is_taken(self):
        self.sample("--home", self.work, "--name", "My base")
        store = pathlib.Path(self.work, "config", "txinspect", "settings.ini")
        store.parent.mkdir(parents=True)
        entry = "Hesperon%%20Labs\\Trelvanexis\\1.0\\%s=%s\n"
        store.write_text("[SOFTWARE]\n" + entry % ("Home%20Directory", self.work) + entry % ("Current%20Database", "My base"))
        self.assertEqual(self.check(status=0, directory=[])["directory"], os.path.realpath(self.root))

    def test_a_connected_database_is_warned_of_and_a_log_written(self):
        self.sample()
        pathlib.Path(self.root, "far.XDB").write_bytes(b"")
        self.check("--log", self.work, status=0, error="There is a connected database present")
        log = pathlib.Path(self.work, "TXLOG.TXT").read_bytes()
        self.assertTrue(log.startswith(b"\n     **************************\n     *         Log file       *\n"))
        self.assertIn(("*** Scanning dbase files at %s/DBASE/*.DBS ***\n   found dbase file 'DBSF001'\n" %
                       self.root).encode(), log)
        self.assertTrue(log.endswith(b"\n\n     ************************\n     *  End of TX log file  *\n"
                                     b"     ************************\n"))

    def test_equal_options_give_equal_samples(self):
        trees = []
        for name, seed in [("a", "3"), ("b", "3"), ("c", "4")]:
            self.sample("--damage", READABLE, "--seed", seed, root=os.path.join(self.work, name))
            trees.append(contents(os.path.join(self.work, name)))
        self.assertTrue(trees[0] == trees[1] != trees[2])


class Processes(ProgramTest):
    def large(self, files=24):
        """A database with many keys, many files that all have the same, and experiments that have no entry."""
        self.sample("--files", "4", "--entries", "1000", "--experiments", "1")
        keys = [b"key %d" % number for number in range(RECORDS)]
        for number in range(files):
            pathlib.Path(self.root, "DBASE", "K%03d.DBS" % number).write_bytes(dbs(keys))
        orphans = b"".join(oracle.field(b"orphan %d" % n) + bytes(4) for n in range(1000))
        body = b"\x0d\0\0\0PHEN-DEF-v1.0TGeEN\xff\xff\xff\x7f" + (1000).to_bytes(4, "little")
        pathlib.Path(self.root, "char", "ORPHANS.DEF").write_bytes(body + orphans)

    def start(self, *options, **more):
        return subprocess.Popen([PROGRAMS / "txcheck", "--no-progress", *options, self.root], env=self.environment,
                                cwd=self.work, **more)

    def test_a_second_one_is_refused_and_touches_nothing(self):
        self.large()
        # A report that nobody reads to its end keeps the first one in its work.
        with self.start("--json", "--all", "--log", self.work, stdout=subprocess.PIPE) as first:
            self.assertEqual(first.stdout.read(1), b"{")
            before, log = contents(self.root), pathlib.Path(self.work, "TXLOG.TXT").read_bytes()
            options = ["--preen", "--save", "--log", self.work]
            self.assertIsNone(self.check(*options, status=8, error=BUSY))
            self.check("--no-lock", status=4)
            self.assert_tree(before)
            self.assertEqual(pathlib.Path(self.work, "TXLOG.TXT").read_bytes(), log)
            json.loads(b"{" + first.stdout.read())
        self.assertEqual(first.returncode, 4)
        self.check(status=4)

    def test_killed_while_it_saves_each_key_is_old_or_new_and_the_hold_is_free(self):
        self.large()
        pristine = self.root + ".old"
        shutil.copytree(self.root, pristine)
        old = contents(pristine)
        self.check("--preen", "--save", status=1)
        new = contents(self.root)
        names = [os.path.basename(path) for path in new if new[path] != old.get(path, 0)]
        mixed = 0
        for _ in range(40):
            shutil.rmtree(self.root)
            shutil.copytree(pristine, self.root)
            watched = os.path.join(self.root, "DBASE", random.choice(names))
            before = self.stamp(watched)
            process = self.start("--preen", "--save", stdout=subprocess.DEVNULL)
            while process.poll() is None and self.stamp(watched) == before:
                pass
            time.sleep(random.random() / 2000)
            process.send_signal(signal.SIGKILL)
            process.wait()
            mixed += self.assert_old_or_new(old, new)
            if mixed == 8:
                break
        self.assertGreater(mixed, 0, "no kill fell into the save")
        self.check("--preen", "--save", status=1)
        self.check(status=0)

    @staticmethod
    def stamp(path):
        return os.stat(path).st_mtime_ns if os.path.exists(path) else None

    def assert_old_or_new(self, old, new):
        """Whether the tree is neither the old nor the new one; each of its key fields is, and new files are whole."""
        found = contents(self.root)
        for path, content in found.items():
            if path not in old or content is None:
                self.assertEqual(content, new[path], path)
                continue
            for at in range(41, len(content), 69) if path.startswith("DBASE/K") else [0]:
                end = at + 69 if at else len(content)
                self.assertIn(content[at:end], (old[path][at:end], new[path][at:end]), path)
            self.assertEqual((len(content), content[:41]), (len(old[path]), old[path][:41]), path)
        self.assertLessEqual(set(old), set(found))
        return found not in (old, new)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
