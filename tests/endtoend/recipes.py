#!/usr/bin/env python3
"""Builds and damages the small trees of the recipe beside it, and compares each run of txcheck on them with the oracle.
  dbs|gel|char|seq|pair|gel2d NAME [TYPE:] KEY[=TYPE] ...     a sound data file
  file PATH PART ...     s:TEXT counted string  k:TEXT key field  i:N integer  r:BYTES  [TAG opens a chunk,
                         ] closes it with its end, ]:N with another
  cut PATH N             to N bytes, or N less than 0: by that many
  set PATH OFFSET BYTES     add PATH BYTES     mkdir PATH     rm PATH     rename PATH PATH     link PATH TARGET
  case NAME         begins one     run OPTION ...     runs txcheck
In a word \\xHH is that byte and "" is nothing; a word with {A-B} stands for one word for each of these numbers.
Usage: recipes.py DIRECTORY-OF-THE-PROGRAMS [CASE...]"""

import os
import pathlib
import re
import shutil
import sys
import unittest

from programtest import ProgramTest, load_programs, oracle

ProgramTest.programs = load_programs()
CASES = sys.argv[1:]
VERBS = ["dbs", "gel", "char", "seq", "pair", "gel2d"]


def words_of(line):
    for word in line.split():
        span = re.search(r"\{(\d+)-(\d+)\}", word)
        for number in range(int(span.group(1)), int(span.group(2)) + 1) if span else [None]:
            one = word if number is None else word.replace(span.group(), str(number))
            one = one.replace('""', "").encode()
            yield re.sub(rb"\\x(..)", lambda found: bytes([int(found.group(1), 16)]), one)


def integer(value):
    return int(value).to_bytes(4, "little", signed=True)


def encode(parts):
    data = b""
    for part in parts:
        text = part[2:]
        if part[:1] == b"[":
            data += b"TG" + part[1:] + integer(-1)
            body = len(data)
        elif part[:1] == b"]":
            data = data[:body - 4] + integer(text or len(data)) + data[body:]
        else:
            data += {b"s": oracle.counted, b"k": oracle.field, b"i": integer, b"r": bytes}[part[:1]](text)
    return data


def data_file(fileclass, records):
    _, _, header, typetag, recordtag, integers = oracle.CLASSES[fileclass][:6]
    parts, kind = [b"s:" + header], b""
    if fileclass == 0:
        parts += [b"[FLD", b"i:0", b"]"]
    if records and records[0].endswith(b":"):
        kind = records.pop(0)[:-1]
        parts += [b"[" + typetag, b"k:" + kind, b"]"]
    if records:
        parts.append(b"[" + recordtag)
        if fileclass != 5:
            parts.append(b"i:%d" % len(records))
        for key, own in ((record + b"=" + kind).split(b"=")[:2] for record in records):
            parts += [b"k:" + key] + [b"k:" + own] * (fileclass in (1, 5)) + [b"r:iiii"] * integers
        parts.append(b"]")
    return encode(parts)


class Recipes(ProgramTest):
    def build(self, verb, words):
        path = pathlib.Path(self.root, os.fsdecode(words[0]))
        if verb in VERBS:
            directory, extension = oracle.CLASSES[VERBS.index(verb)][:2]
            path = pathlib.Path(self.root, directory, path.name + "." + extension)
            path.write_bytes(data_file(VERBS.index(verb), words[1:]))
        elif verb == "file":
            path.write_bytes(encode(words[1:]))
        elif verb == "cut":
            path.write_bytes(path.read_bytes()[:int(words[1])])
        elif verb == "set":
            at = int(words[1])
            data = path.read_bytes()
            path.write_bytes(data[:at] + words[2] + data[at + len(words[2]):])
        elif verb == "add":
            path.write_bytes(path.read_bytes() + words[1])
        elif verb == "rename":
            path.rename(os.path.join(self.root, os.fsdecode(words[1])))
        elif verb == "link":
            path.symlink_to(os.fsdecode(words[1]))
        else:
            {"mkdir": path.mkdir, "rm": lambda: shutil.rmtree(path) if path.is_dir() else path.unlink()}[verb]()

    def test_end_as_the_oracle_says(self):
        for case in pathlib.Path(__file__).with_name("recipe").read_text().split("case ")[1:]:
            name, *lines = case.splitlines()
            if CASES and name not in CASES:
                continue
            with self.subTest(case=name):
                self.setUp()
                for folder in [*(row[0] for row in oracle.CLASSES), "images", "Library", "bundles"]:
                    os.makedirs(os.path.join(self.root, folder))
                for verb, *words in (line.split(None, 1) for line in lines if line[0] != "#"):
                    words = [*words_of("".join(words))]
                    self.compare(*words) if verb == "run" else self.build(verb, words)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
