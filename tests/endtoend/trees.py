#!/usr/bin/env python3
"""Makes databases by chance, damages them, and runs txcheck and the oracle on each: every document, exit status, log and
byte of the disk has to agree.  Usage: trees.py DIRECTORY-OF-THE-PROGRAMS [FIRST-SEED [COUNT [STEP]]]
With STEP it takes instead each STEP-th change of a field of a sample from that of number FIRST-SEED, COUNT of them."""

import os
import pathlib
import random
import shutil
import struct
import sys
import unittest

from programtest import READABLE, ProgramTest, load_programs, oracle

ProgramTest.programs = load_programs()
FIRST, COUNT, STEP = [int(word) for word in sys.argv[1:]] + [1, 100, 0][len(sys.argv) - 1:]
LONG = b"long-key-of-sixty-bytes-0123456789-0123456789-0123456789-67"
KEYS = [b"", b"", b"a", b"A", b"b", b"B/#2", b"b/#2", b"dbkey/#2", b"x", b"_", b"[", b"\xe4", b"\xc4", b"M\xc3\xbcller", b"50%s",
        b"two\nlines", LONG + b"8", LONG + b"9", LONG[:57] + b"/#2", LONG[:55],
        bytes(range(0x80, 0xA0))]
NUMBERS = [-2 ** 31, -1, 0, 1, 2, 5, 60, 61, 62, 70, 255, 999, 1000, 1001, 2 ** 31 - 1]
TYPES = [b"T", b"t", b"API 20", b"", b"%d"]


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
                self.put(row[0], "S", "CNF", self.side_file(oracle.counted(row[6])))
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
        kind, fields = oracle.field(self.pick(TYPES)), self.pick([0, 0, 2])
        records = [self.record(row, fileclass, fields) for _ in range(1 if fileclass == 5 else self.pick([0, 1, 2, 3, 4, 5, 8, 40]))]
        names = struct.pack("<i", fields) + oracle.counted(b"name") * fields
        known = [(row[3], kind if fileclass else names)] if row[3] else []
        if records:
            known.append((row[4], b"".join([struct.pack("<i", len(records))] * (fileclass != 5) + records)))
        if self.rarely(10):
            known.reverse()
        return self.chunks(oracle.counted(row[2]), known)

    def record(self, row, fileclass, fields):
        key = self.pick([self.often, self.pick(KEYS), b"k%d" % self.chance.randrange(12)])
        capacity = self.pick([61] * 12 + [60, 70])
        record = struct.pack("<ii", len(key), capacity) + key.ljust(capacity, b"\0")
        if fileclass in (1, 5):
            record += oracle.field(self.pick(TYPES))
        return record + b"int." * row[5] + b"".join(oracle.counted(self.pick([b"", b"value"])) for _ in range(fields))

    def chunks(self, header, known):
        data = header
        for tag, body in sum(([*self.unknown(), chunk] for chunk in known), []) + self.unknown():
            data += b"TG" + tag + struct.pack("<i", len(data) + 9 + len(body)) + body
        return data

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
        return data[:at] + struct.pack("<i", self.pick(NUMBERS + [at - 5, at + 3, at + 4, at + 5])) + data[at + 4:]


def changed_fields(data):
    """The data with each number in it, and each other byte that isn't padding, changed in each of eight ways."""
    for at in (i for i, byte in enumerate(data) if byte):
        size = 4 if data[at + 1:at + 4] == b"\0\0\0" else 1
        value, bits = int.from_bytes(data[at:at + size], "little"), 8 * size
        for new in {0, (1 << bits) - 1, value ^ 1 << bits - 1, value ^ 1 << bits // 2, value ^ 1, value + 1, value - 1, value * 7 + at}:
            yield data[:at] + (new % (1 << bits)).to_bytes(size, "little") + data[at + size:]


class Fields(ProgramTest):
    def test_each_changed_field_is_read_and_repaired_as_by_the_oracle(self):
        pristine = self.work + "/pristine"
        self.sample("--files", "1", "--entries", "3", "--types", "1", "--experiments", "1", "--records", "3", root=pristine)
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


class Trees(ProgramTest):
    def test_agree_with_the_oracle(self):
        print("trees: seeds %d to %d" % (FIRST, FIRST + COUNT - 1))
        for seed in range(FIRST, FIRST + COUNT):
            with self.subTest(seed=seed):
                self.root = os.path.join(self.work, "db")
                chance = Tree(self.root, seed).chance
                self.walk(chance)
            self.doCleanups()
            self.setUp()

    def test_samples_with_every_damage_are_repaired(self):
        for seed in range(1, 4):
            self.sample("--damage", READABLE, "--seed", str(seed), "--entries", "5", "--records", "5")
            found = self.compare("--all")
            kinds = "".join(str(problem["kind"]) for problem in found["problems"])
            self.assertEqual(kinds, "7777755666666666111232224")
            self.compare("--preen")
            found = self.compare("--preen", "--save")
            while found["problems"]:
                found = self.compare("--solve", "1:1", *["--save"] * (found["problems"][0]["kind"] < 5))
            self.check(status=0)
            self.doCleanups()
            self.setUp()

    def walk(self, chance):
        """Takes a few steps on a database, each in a run of its own."""
        self.compare("--all", "--entry", chance.choice(KEYS))
        for _ in range(chance.randrange(7)):
            found = self.compare()
            options = ["--save"] * chance.choice([0, 1, 1])
            # The oracle reads no name in place of one that has gone, which it was passed over for.
            twins = any(weight == "told" for _, weight, *_ in self.expected.database.unread)
            rows = ["%d:%d" % (row, n) for row, problem in enumerate(found["problems"], 1)
                    for n, _ in enumerate(problem["solutions"], 1) if not (twins and problem["kind"] in (1, 6, 7))]
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
        key = bytes.fromhex(key["key_hex"]) if "key_hex" in key else key["key"].encode()
        return ["--change-key", key, str(kind), str(number), new] + chance.choice([[], ["--yes"]])


if __name__ == "__main__":
    unittest.main(argv=[*sys.argv[:1], "Fields" if STEP else "Trees"], failfast=True)
