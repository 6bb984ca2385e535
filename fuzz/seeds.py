#!/usr/bin/env python3
"""Makes the first inputs of each fuzz target from two small samples, a sound one and one with every damage, and beside them
the database whose undo files are read.  Usage: seeds.py DIRECTORY-OF-THE-PROGRAMS CORPUS"""

import pathlib
import re
import shutil
import struct
import subprocess
import sys

programs, corpus = (pathlib.Path(word).resolve() for word in sys.argv[1:])
source = pathlib.Path(__file__).with_name("target.cpp").read_text()
places = [pathlib.PurePath(path) for path in re.findall(r'"([\w/.]+\.(?:DBS|DEF|CNF|CMP))"', source)]


def sample(damage):
    root = corpus / damage
    shutil.rmtree(root, ignore_errors=True)
    subprocess.run([programs / "txsample", *"--files 1 --types 1 --experiments 1 --fields 1 --entries 3 --records 3".split(),
                    *["--damage", damage] * (damage != "none"), root], check=True, stdout=subprocess.DEVNULL)
    return root


def write(target, name, content):
    (corpus / target).mkdir(exist_ok=True)
    (corpus / target / name).write_bytes(content)


for damage in "none", "all":
    root = sample(damage)
    for target, first, count in re.findall(r'\{"(\w+)", (\d+), ([1-9]\d*)\}', source):
        parts = []
        for path in filter(pathlib.Path.is_file, sorted(root.rglob("*"))):
            content, name = path.read_bytes(), path.relative_to(root)
            parts += [struct.pack("<BH", number, len(content)) + content for number, place in enumerate(
                places[int(first):int(first) + int(count)]) if (place.parent, place.suffix) == (name.parent, name.suffix)][:1]
        for number, part in enumerate([*parts, b"".join(parts)]):
            write(target, damage + str(number), part)
database, undo = sample("duplicates,orphans,empty-files"), corpus / "undo"
shutil.copytree(database, corpus / "database", dirs_exist_ok=True)
undo.unlink(missing_ok=True)
subprocess.run([programs / "txcheck", *"--quiet --solve-all empty:1 --preen --save --undo".split(), undo, database],
               stdout=subprocess.DEVNULL)
frames, seed = undo.read_bytes()[80:], b""
while frames:
    kind, length, _ = struct.unpack_from("<BII", frames)
    if kind != 4:  # the head, which the target writes
        seed += struct.pack("<BH", kind, length) + frames[9:9 + length]
    frames = frames[9 + length:]
write("fuzz_undo", "0", seed)
write("fuzz_settings", "0", b"[DIR]\n/a/b\n[BACKCOL]\n1 -2 192\n[OTHER]\nx\n")
