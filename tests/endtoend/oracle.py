"""Reads a database and finds what is wrong with it, from the description of the formats alone: what the programs say
is compared with this.  Texts are bytes."""

import os
import struct

# directory, extension, header, tag of the type chunk, of the records, integers of a record, header of its .CNF files
CLASSES = [("DBASE", "DBS", b"TX-DBS-v1.0", None, b"ENT", 0, None),
           ("fprint", "DEF", b"GEL-DEF-v1.0", b"GTP", b"eEN", 1, b"GELTYPE-CNF-v1.0"),
           ("char", "DEF", b"PHEN-DEF-v1.0", b"TPE", b"eEN", 1, b"PHENTYPE-CNF-v1.0"),
           ("seq", "DEF", b"SEQ-DEF-v1.0", b"TPE", b"eEN", 1, b"SEQTYPE-CNF-v1.0"),
           ("matrix", "DEF", b"PAIRSIMDEF-v1.0", b"TPE", b"eEN", 3, b"PAIRSIMTYPE-CNF-v1.0"),
           ("gel2d", "DEF", b"GEL2D-DEF-v1.0", None, b"KEY", 1, b"GEL2DTYPE-CNF-v1.0")]
COMPARISON = b"TX-COMP-v1.0"
DIRECTORIES = ["dbase", "fprint", "images", "char", "seq", "matrix", "library", "bundles"]


def field(key):
    return struct.pack("<ii", len(key), 61) + key.ljust(61, b"\0")


def text(name, bytes_):
    """The members of a document for a text: as the windows show it, and its bytes where these are no UTF-8."""
    try:
        return {name: bytes_.decode()}
    except UnicodeDecodeError:
        shown = "".join(chr(byte) if byte in b"\x81\x8d\x8f\x90\x9d" else bytes([byte]).decode("cp1252") for byte in bytes_)
        return {name: shown, name + "_hex": bytes_.hex()}


def order(name):
    return os.fsencode(name).upper(), os.fsencode(name)


def find(directory, name):
    """The entry of that name, else the first that equals it ignoring case, else None."""
    names = sorted(os.listdir(directory), key=order) if os.path.isdir(directory) else []
    same = [entry for entry in names if os.fsencode(entry).lower() == os.fsencode(name).lower()]
    return os.path.join(directory, name if name in same else same[0]) if same else None


def search(directory, extension, kind=os.path.isfile):
    """The paths with that extension, less those that would be read twice."""
    end = "." + extension
    for name in sorted(os.listdir(directory), key=order) if directory else []:
        path = os.path.join(directory, name)
        if name.lower().endswith(end.lower()) and kind(path) and find(directory, name[:-len(end)] + end) == path:
            yield path


class Stream:
    def __init__(self, path):
        with open(path, "rb") as file:
            self.data = file.read()
        self.at, self.ended, self.end = 0, False, None

    def take(self, count):
        bytes_ = self.data[self.at:self.at + count]
        self.at += len(bytes_)
        self.ended = self.ended or len(bytes_) < count
        return bytes_ if len(bytes_) == count else None

    def integer(self):
        bytes_ = self.take(4)
        return None if bytes_ is None else struct.unpack("<i", bytes_)[0]

    def string(self, capacity=300, wide=False):
        length = self.integer()
        width = (self.integer() or 0) if wide else 0
        length = None if length is None else min(length, capacity - 1)
        text = None if length is None or length < 0 else self.take(length)
        if not self.ended:
            self.take(max(0, width - max(0, length or 0)))
        return b"???" if text is None else text.split(b"\0")[0]

    def key(self):
        return self.string(61, True)

    def tag(self):
        """The tag of the chunk that stands here, b"" at the end of the file, None where there is no chunk."""
        frame = self.take(5)
        if self.ended:
            return b""
        if frame[:2] != b"TG":
            return None
        self.end = self.integer()
        self.body = self.at
        return frame[2:]

    def skip(self):
        if self.end is None or 0 <= self.end < self.body:
            return False
        if self.end >= 0:
            self.at, self.ended = self.end, False
        return True


class DataFile:
    def __init__(self, path, fileclass, addtype):
        self.path, self.fileclass, self.addtype = path, fileclass, addtype
        self.name = os.fsencode(os.path.basename(path))[:-4]
        self.valid, self.type, self.fields = False, 0, 0
        self.records = []  # key, type, offset
        stream = Stream(path)
        if stream.string(100) == CLASSES[fileclass][2]:
            self.valid = self.walk(stream)

    def walk(self, stream):
        typetag, recordtag = CLASSES[self.fileclass][3:5]
        while not stream.ended:
            tag = stream.tag()
            if not tag:
                return tag == b""
            if self.fileclass == 0 and tag == b"FLD":
                self.fields = stream.integer() or 0
                self.pass_strings(stream)
            elif tag == typetag:
                self.type = self.addtype(self.fileclass, stream.key())
            elif tag == recordtag:
                count = 1 if self.fileclass == 5 else stream.integer() or 0
                self.records = []
                if not 1 <= count <= 1000:
                    return False
                self.records = [self.record(stream) for _ in range(count)]
            if tag not in (b"FLD", typetag, recordtag) or self.fileclass == 5:
                if not stream.skip():
                    return False
        return True

    def pass_strings(self, stream):
        for _ in range(self.fields):
            if stream.ended:
                break
            stream.string()

    def record(self, stream):
        at, key = stream.at, stream.key()
        kind = self.addtype(self.fileclass, stream.key()) if self.fileclass in (1, 5) else self.type
        if self.fileclass == 5:
            self.type = kind
        for _ in range(CLASSES[self.fileclass][5]):
            stream.integer()
        self.pass_strings(stream)
        return key, kind, at


class Database:
    """The files and types, and the problems as (kind, sub-kind, name, position in the list)."""

    def __init__(self, root):
        self.root, self.types = root, [(0, b"Database")]
        self.files = [[DataFile(path, number, self.addtype) for path in search(find(root, row[0]), row[1])]
                      for number, row in enumerate(CLASSES)]
        self.problems = []
        self.scan_side_files()
        self.analyse()

    def addtype(self, fileclass, name):
        for index, (number, known) in enumerate(self.types[1:], 1):
            if number == fileclass and known.lower() == name.lower():
                return index
        if len(self.types) <= 200:
            self.types.append((fileclass, name))
        return len(self.types) - 1

    def scan(self, directory, below, extension, header, raw):
        for path in search(directory, extension):
            stream = Stream(path)
            sound = (stream.take(len(header)) if raw else stream.string(100)) == header
            while sound and not stream.ended:
                tag = stream.tag()
                sound = tag is not None and (tag == b"" or stream.skip())
            if not sound:
                name = "%s/%s/%s" % (self.root, below, os.path.basename(path))
                self.problems.append((7, 0, os.fsencode(name), 0))

    def scan_side_files(self):
        for row in CLASSES[1:]:
            self.scan(find(self.root, row[0]), row[0], "CNF", row[6], False)
        self.scan(self.root, ".", "CMP", COMPARISON, True)
        for library in search(find(self.root, "Library"), "LIB", os.path.isdir):
            self.scan(library, "Library/" + os.path.basename(library), "CMP", COMPARISON, True)
        for name in DIRECTORIES:
            if not find(self.root, name):
                self.problems.append((5, 1, os.fsencode(self.root + "\\" + name), 0))

    def analyse(self):
        for number, files in enumerate(self.files):
            self.problems += [(6, number, file.name, i) for i, file in enumerate(files, 1) if not file.valid]
        for number, files in enumerate(self.files):
            if any(file.valid and not file.records for file in files):
                self.problems.append((1, number, b"", 0))
        self.index()
        for kind in range(len(self.types)):
            twice = [key for key in self.keys if self.count(key, kind) > 1]
            if any(twice):
                self.problems.append((2, kind, b"", 0))
            if kind == 0 and b"" in twice:
                self.problems.append((3, 0, b"", 0))
        if any(self.orphan(key) for key in self.keys):
            self.problems.append((4, 0, b"", 0))
        self.wrong = [key for key in self.keys if self.orphan(key) or any(
            self.count(key, kind) > 1 and (key or kind == 0) for kind in range(len(self.types)))]

    def index(self):
        self.entries = {}  # key in small letters: as first met, with its records by type
        for files in self.files:
            for file in files:
                for number, (key, kind, _) in enumerate(file.records, 1) if file.valid else []:
                    entry = self.entries.setdefault(key.lower(), (key, {}))
                    entry[1].setdefault(kind, []).append((file, number))
        self.keys = sorted(self.entries)

    def count(self, key, kind):
        return len(self.entries[key][1].get(kind, []))

    def orphan(self, key):
        return bool(key) and self.count(key, 0) == 0

    def valid_files(self):
        return [file for files in self.files for file in files if file.valid]

    def document(self, wanted=None):
        """What a run that changes nothing has to say of it, with the keys that have something wrong."""
        files = self.valid_files()
        found = {
            **text("directory", os.fsencode(self.root)),
            "problems": [{"kind": kind, "subkind": sub, **text("name", name), "fileindex": index}
                         for kind, sub, name, index in self.problems],
            "types": [{"index": i, "class": number, **text("name", name), "files": sum(f.type == i for f in files),
                       "entries": sum(record[1] == i for f in files for record in f.records)}
                      for i, (number, name) in enumerate(self.types)],
            "keytotal": len(self.keys),
            "keys": [{**text("key", self.entries[key][0]),
                      "counts": [self.count(key, kind) for kind in range(len(self.types))]}
                     for key in (self.wrong if wanted is None else wanted)]}
        return found
