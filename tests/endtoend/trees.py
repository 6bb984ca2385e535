#!/usr/bin/env python3
"""Makes databases by chance and at limits that chance does not come to, damages them, and runs txcheck and the oracle on each:
every document, exit status, log and byte of the disk has to agree.
Usage: trees.py DIRECTORY-OF-THE-PROGRAMS [FIRST-SEED [COUNT [STEP]]]
With STEP it takes instead each STEP-th change of a field of a sample from that of number FIRST-SEED, COUNT of them."""

import json
import os
import pathlib
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
import oracle
from oracle import contents, counted, field

PROGRAMS = pathlib.Path(sys.argv[1]).resolve()
FIRST, COUNT, STEP = [int(word) for word in sys.argv[2:]] + [1, 100, 0][len(sys.argv) - 2:]
# Every damage but files cut off, whose records could not be read.
READABLE = ("duplicates,experiment-duplicates,blank-keys,orphans,empty-files,corrupt-files,side-files,missing-directories,"
            "case-variants,odd-bytes")
LONG = b"long-key-of-sixty-bytes-0123456789-0123456789-0123456789-67"
KEYS = [b"", b"", b"a", b"A", b"b", b"B/#2", b"b/#2", b"dbkey/#2", b"x", b"_", b"[", b"\xe4", b"\xc4", b"M\xc3\xbcller", b"50%s",
        b"two\nlines", LONG + b"8", LONG + b"9", LONG[:57] + b"/#2", LONG[:55],
        bytes(range(0x80, 0xA0))]
NUMBERS = [-2 ** 31, -1, 0, 1, 2, 5, 60, 61, 62, 70, 255, 999, 1000, 1001, 2 ** 31 - 1]
TYPES = [b"T", b"t", b"API 20", b"", b"%d"]


def integer(number):
    return struct.pack("<i", number)


def chunks(header, *parts):
    """A file of chunks, each a tag with its body, perhaps with an end that isn't its own; other bytes stand as they are."""
    data = header
    for part in parts:
        if isinstance(part, bytes):
            data += part
        else:
            tag, body, *end = part
            data += b"TG" + tag + integer(*end or [len(data) + 9 + len(body)]) + body
    return data


def records(count, *fields):
    return b"ENT", integer(count) + b"".join(fields)


def odd(length, capacity, rest):
    return struct.pack("<ii", length, capacity) + rest


def data_file(fileclass, kind, *keys):
    _, _, header, typetag, tag, integers = oracle.CLASSES[fileclass][:6]
    fields = [field(key) + field(kind) * (fileclass in (1, 5)) + b"iiii" * integers for key in keys]
    return chunks(counted(header), *[(typetag, field(kind) if fileclass else integer(0))] * (typetag is not None),
                  (tag, integer(len(keys)) * (fileclass != 5) + b"".join(fields)))


def numbered(form, header, *contents):
    """Files of these chunks."""
    return {form % i: chunks(header, *parts) for i, parts in enumerate(contents, 1)}


DBS, COMPARED = counted(b"TX-DBS-v1.0"), oracle.COMPARISON
FIELDS, ONE, MANY = (b"FLD", integer(0)), records(1, field(b"one")), [b"k%d" % i for i in range(1001)]
# What is put, by its name: bytes, a link's target, or nothing where something is to go; and runs of txcheck.
CASES = {
    "chunk ends": [
        numbered("DBASE/%d.DBS", DBS, [(b"ABC", b"", 0), FIELDS, ONE], [FIELDS, ONE, (b"ABC", b"", 15)],
                 [(b"ABC", b"", 23), FIELDS, ONE], [(b"ABC", b"", 24), FIELDS, ONE], [FIELDS, ONE, (b"ABC", b"", 2 ** 31 - 1)],
                 [(b"ABC", b"", -1), FIELDS, ONE], [(b"ABC", b"body", -2 ** 31), FIELDS, ONE], [FIELDS, ONE, b"TGABC\x9c\0\0"]),
        numbered("gel2d/%d.DEF", counted(b"GEL2D-DEF-v1.0"),
                 *([(b"KEY", field(b"one") + field(b"PAGE") + integer(1), end)] for end in (18, 99999))),
        numbered("seq/%d.CNF", counted(b"SEQTYPE-CNF-v1.0"), [(b"SET", b"", 20)], [b"TGSET"], [(b"SET", b"", -1), (b"SET", b"")]),
        ["--all"]],
    "lengths and capacities of fields": [
        numbered("DBASE/%d.DBS", DBS, *([FIELDS, records(*rest)] for rest in [
            (2, odd(61, 61, b"0123456789" * 6 + b"0"), field(b"next")), (2, odd(70, 80, b"0123456789" * 8), field(b"after")),
            (2, odd(5, 0, b"small"), odd(3, 3, b"two")), (1, odd(70, 0, b"0123456789" * 7)),
            (2, odd(-1, 6, b"passed"), field(b"after")), (2, odd(4, 2 ** 31 - 1, b"huge"), field(b"gone"))]),
                 [(b"FLD", integer(2 ** 31 - 1) + counted(b"name")), ONE]), ["--all"]],
    "counts of records": [
        numbered("DBASE/%d.DBS", DBS, [FIELDS, records(0)], [FIELDS, records(-1, field(b"one"))], [ONE],
                 [FIELDS, records(2, field(b"old"), field(b"older")), ONE],
                 [FIELDS, records(2, field(b"old"), field(b"older")), b"TGENT\0\1\0\0\1\0"]),
        {"DBASE/FULL.DBS": data_file(0, b"", *MANY[:1000]), "DBASE/OVER.DBS": data_file(0, b"", *MANY)}, ["--all"]],
    "201 types, of which the last two are one": [
        {"DBASE/A.DBS": data_file(0, b"", b"k1", b"k2"), "gel2d/D.DEF": data_file(5, b"x", b"k2"),
         "gel2d/E.DEF": data_file(5, b"y", b"k2")},
        {"fprint/%d.DEF" % i: data_file(1, b"%d" % i, b"k1") for i in range(199)}, ["--all"], ["--solve", "1:2", "--save"]],
    "side files and libraries": [
        numbered("matrix/%d.CNF", b"", [b""], [counted(b"PAIRSIMTYPE-CNF-v1.0")], [counted(b"PAIRSIMTYPE-CNF-v1.0")[:20]],
                 [counted(b"pairsimTYPE-CNF-v1.0")], [b"PAIRSIMTYPE-CNF-v1.0"], [counted(b"PHENTYPE-CNF-v1.0")]),
        numbered("%d.CMP", COMPARED, [], [(b"CMP", b"")] * 5 + [b"XGCMP\0\0\0\0", (b"CMP", b"")], [(b"CMP", b""), b"TG"]),
        {"SHORT.CMP": COMPARED[:-2], "fprint/DIR.CNF/a": b"", "LINK.CMP": "nowhere", "Library/B.LIB/BAD.CMP": counted(COMPARED),
         "Library/a.lib/bad.cmp": COMPARED.lower(), "Library/OTHER/BAD.CMP": b"", "Library/BAD.CMP": b"", "Library/PLAIN.LIB": b""},
        ["--all"], ["--solve", "3:1", "--solve", "1:1", "--save"]],
    "pieces of the tree": [
        {"DBASE/A.DBS": data_file(0, b"", b"one"), "images": None, "gel2d": None, "Library": None, "matrix": None},
        {"matrix": b"plain"}, ["--all"],
        ["--solve", "1:1", "--solve", "2:1"], {"matrix": None}, ["--solve", "1:1"], {"DBASE": None}, [], ["--preen"]],
}


class Tree:
    """A database of a few small files that hold what files can hold, most of it sound."""

    def __init__(self, root, seed):
        self.chance, self.root = random.Random(seed), root
        self.pick = self.chance.choice
        self.often = self.pick(KEYS)
        for name in ["images", "DBASE", "fprint", "char", "seq", "matrix", "gel2d", "Library", "bundles", "Library/A.LIB"]:
            if self.rarely(12):
                name = self.pick([name.lower(), name.upper(), "away", name, name + "/../" + name.title()])
            elif self.rarely(15) and os.path.isdir(root) and "/" not in name:
                os.symlink(name, os.path.join(root, name.swapcase()))
            os.makedirs(os.path.join(root, name), 0o555 if ".." in name else 0o777, exist_ok=True)
        for fileclass, row in enumerate(oracle.CLASSES):
            names = ["A", "b", "B", "_", "z", "dbsf001", "\\c" if self.rarely(9) else ".c"]
            for name in self.chance.sample(names, self.pick([0, 1, 1, 2, 3])):
                self.put(row[0], name, row[1], self.data_file(fileclass))
            if row[6] and self.rarely(3):
                self.put(row[0], "S", "CNF", self.side_file(counted(row[6])))
        for below in ".", "Library/A.LIB":
            self.put(below, "S", "CMP", self.side_file(oracle.COMPARISON))

    def rarely(self, times):
        return self.chance.randrange(times) == 0

    def put(self, below, name, extension, content):
        """Writes a file, now and then a damaged one, in other letters, as a link, or something else in its place."""
        directory = os.path.join(self.root, below)
        path = pathlib.Path(directory, name + "." + (extension.lower() if self.rarely(10) else extension))
        if not os.path.isdir(directory) or self.rarely(15):
            return
        for _ in range(self.pick([0, 0, 0, 0, 1, 1, 2])):
            content = self.damaged(content)
        if self.rarely(25):
            path.mkdir()
        elif self.rarely(12):
            path.symlink_to(self.pick(["nowhere", "../images", "A." + extension, "A." + extension]))
        elif self.rarely(25):
            path.with_suffix(".real").write_bytes(content)
            path.symlink_to(path.with_suffix(".real").name)
        else:
            path.write_bytes(content)

    def side_file(self, header):
        return self.chunks(header, [(b"SET", b"body"), (b"COL", b"")][:self.chance.randrange(3)])

    def data_file(self, fileclass):
        row = oracle.CLASSES[fileclass]
        kind, fields = field(self.pick(TYPES)), self.pick([0, 0, 2])
        records = [self.record(row, fileclass, fields) for _ in range(1 if fileclass == 5 else self.pick([0, 1, 2, 3, 4, 5, 8, 40]))]
        names = integer(fields) + counted(b"name") * fields
        known = [(row[3], kind if fileclass else names)] if row[3] else []
        if records:
            known.append((row[4], b"".join([integer(len(records))] * (fileclass != 5) + records)))
        if self.rarely(10):
            known.reverse()
        return self.chunks(counted(row[2]), known)

    def record(self, row, fileclass, fields):
        key = self.pick([self.often, self.pick(KEYS), b"k%d" % self.chance.randrange(12)])
        capacity = self.pick([61] * 12 + [60, 70])
        record = struct.pack("<ii", len(key), capacity) + key.ljust(capacity, b"\0")
        if fileclass in (1, 5):
            record += field(self.pick(TYPES))
        return record + b"int." * row[5] + b"".join(counted(self.pick([b"", b"value"])) for _ in range(fields))

    def chunks(self, header, known):
        return chunks(header, *sum(([*self.unknown(), chunk] for chunk in known), []), *self.unknown())

    def unknown(self):
        return [(self.pick([b"XYZ", b"ent", b"TGT"]), b"TGENT"[:self.chance.randrange(6)]) for _ in range(self.pick([0, 0, 1]))]

    def damaged(self, data):
        at = self.chance.randrange(len(data) + 1)
        numbers = [i for i in range(len(data) - 3) if data[i] and data[i + 1:i + 4] == b"\0\0\0"]
        kind = self.chance.randrange(6)
        if kind == 0:
            return data[:at]
        if kind == 1:
            return data[:at] + bytes(self.chance.randrange(256) for _ in range(self.pick([1, 4]))) + data[at:]
        if kind == 2 or not numbers:
            return data[:at] + bytes([self.chance.randrange(256)]) + data[at + 1:]
        at = self.pick(numbers)
        return data[:at] + integer(self.pick(NUMBERS + [at - 5, at + 3, at + 4, at + 5])) + data[at + 4:]


def changed_fields(data):
    """The data with each number in it, and each other byte that isn't padding, changed in each of eight ways."""
    for at in (i for i, byte in enumerate(data) if byte):
        size = 4 if data[at + 1:at + 4] == b"\0\0\0" else 1
        value, bits = int.from_bytes(data[at:at + size], "little"), 8 * size
        for new in {0, (1 << bits) - 1, value ^ 1 << bits - 1, value ^ 1 << bits // 2, value ^ 1, value + 1, value - 1, value * 7 + at}:
            yield data[:at] + (new % (1 << bits)).to_bytes(size, "little") + data[at + size:]


def differences(expected, found):
    return [path for path in {*expected, *found} if expected.get(path, 0) != found.get(path, 0)]


class Trees(unittest.TestCase):
    maxDiff = 4000

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.work, self.root = folder.name, os.path.join(folder.name, "db")

    def begin_anew(self):
        self.doCleanups()
        self.setUp()

    def run_program(self, program, *arguments):
        environment = dict(os.environ, XDG_CONFIG_HOME=self.work + "/config", XDG_STATE_HOME=self.work + "/state", LC_ALL="C")
        return subprocess.run([PROGRAMS / program, *arguments], capture_output=True, env=environment, cwd=self.work, timeout=120)

    def compare(self, *options):
        """Runs txcheck on the tree, under a relative path and with a log, and the oracle on a copy.  The document."""
        model = self.work + "/model"
        shutil.copytree(self.root, model, symlinks=True)
        before = contents(self.root)
        expected = oracle.Run(model, "db", options)
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
        self.assertEqual(differences(contents(model), contents(self.root)), [])
        shutil.rmtree(model)
        return found

    def without_changes(self, log, changes, tree):
        """Makes the changes of a document on the tree as it was, which has to give the tree as it is, and takes their lines
        out of the log."""
        now = contents(self.root)
        for change in changes:
            kind = next(iter(change))
            name = oracle.bytes_of(change, kind)
            line = b"*** %s '%s' ***\n" % (kind.title().encode(), name)
            place = os.fsdecode(name)
            if kind == "deleted":
                del tree[place]
            elif kind == "made":
                self.assertNotIn(place, tree)
                tree[place] = now.get(place)
            else:
                old, new, at = oracle.bytes_of(change, "old"), oracle.bytes_of(change, "new"), change["offset"]
                line = b"*** Changed key '%s' to '%s' in '%s', record %d ***\n" % (old, new, name, change["record"])
                while isinstance(tree[place], str):
                    place = os.path.normpath(os.path.join(os.path.dirname(place), tree[place]))
                data = tree[place]
                self.assertEqual(data[at + 8:at + 8 + len(old)], old)
                tree[place] = data[:at] + field(new) + data[at + 69:]
            self.assertIn(line, log)
            log = log.replace(line, b"", 1)
        self.assertEqual(differences(tree, now), [])
        return log

    def put(self, name, content):
        path = pathlib.Path(self.root, name)
        if content is None:
            shutil.rmtree(path) if path.is_dir() else path.unlink()
        else:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.symlink_to(content) if isinstance(content, str) else path.write_bytes(content)

    def test_limits(self):
        for name, steps in CASES.items():
            with self.subTest(case=name):
                self.begin_anew()
                for folder in [*(row[0] for row in oracle.CLASSES), "images", "Library", "bundles"]:
                    os.makedirs(os.path.join(self.root, folder))
                for step in steps:
                    if isinstance(step, list):
                        self.compare(*step)
                    else:
                        for path, content in step.items():
                            self.put(path, content)

    def test_agree_with_the_oracle(self):
        print("trees: seeds %d to %d" % (FIRST, FIRST + COUNT - 1))
        for seed in range(FIRST, FIRST + COUNT):
            with self.subTest(seed=seed):
                self.begin_anew()
                self.walk(Tree(self.root, seed).chance)

    def test_samples_with_every_damage_are_repaired(self):
        for seed in range(1, 4):
            self.begin_anew()
            self.run_program("txsample", "--damage", READABLE, "--seed", str(seed), "--entries", "5", "--records", "5", self.root)
            found = self.compare("--all")
            kinds = "".join(str(problem["kind"]) for problem in found["problems"])
            self.assertEqual(kinds, "7777755666666666111232224")
            self.compare("--preen")
            found = self.compare("--preen", "--save")
            while found["problems"]:
                found = self.compare("--solve", "1:1", *["--save"] * (found["problems"][0]["kind"] < 5))

    def walk(self, chance):
        """Takes a few steps on a database, each in a run of its own."""
        self.compare("--all", "--entry", chance.choice(KEYS))
        for _ in range(chance.randrange(7)):
            found = self.compare()
            options = ["--save"] * chance.choice([0, 1, 1])
            rows = ["%d:%d" % (row, n) for row, problem in enumerate(found["problems"], 1)
                    for n, _ in enumerate(problem["solutions"], 1)]
            keys = [key for key in found["keys"] if key["key"][:1] != "-"]  # which the oracle would take for an option
            kind = chance.randrange(6)
            if kind == 0:
                options.append("--preen")
            elif kind == 1 and keys:
                options += self.change_key(chance, keys)
            elif rows:
                what = chance.choice(rows)
                row, n = map(int, what.split(":"))
                problem = found["problems"][row - 1]
                options += chance.choice([["--solve", what], ["--solve", "%s:%d" % (problem["id"], n)],
                                          ["--solve-all", "%d:%d" % (problem["kind"], n)]])
            self.compare(*options)

    @staticmethod
    def change_key(chance, keys):
        key = chance.choice(keys)
        used = [kind for kind, count in enumerate(key["counts"]) if count] + [0]
        kind = chance.choice(used)
        new = chance.choice(KEYS + [b"new"])
        number = 1 + chance.randrange(key["counts"][kind] + chance.choice([0, 0, 1]) or 1)
        key = oracle.bytes_of(key, "key")
        return ["--change-key", key, str(kind), str(number), new] + chance.choice([[], ["--yes"]])

    def each_changed_field(self):
        pristine = self.work + "/pristine"
        self.run_program("txsample", *"--files 1 --entries 3 --types 1 --experiments 1 --records 3".split(), pristine)
        files = [path for path in sorted(pathlib.Path(pristine).rglob("*")) if path.is_file()]
        points = [(path.relative_to(pristine), data) for path in files for data in changed_fields(path.read_bytes())]
        for number, (path, data) in list(enumerate(points))[FIRST:][::STEP][:COUNT]:
            with self.subTest(number=number, path=path):
                for what in ["1:1", "1:2"]:
                    shutil.rmtree(self.root, ignore_errors=True)
                    shutil.copytree(pristine, self.root)
                    pathlib.Path(self.root, path).write_bytes(data)
                    found = self.compare("--all")
                    if found["problems"] and what[2] <= str(len(found["problems"][0]["solutions"])):
                        self.compare("--solve", what, "--save")


if __name__ == "__main__":
    unittest.main(argv=[*sys.argv[:1], "Trees.each_changed_field" if STEP else "Trees"], failfast=True)
