"""A second reading of the same rules: reads a database, finds what is wrong, repairs and saves it, and says what the log and
the document of txcheck must hold.  Written from the description of the formats and repairs, not from the programs.  Texts
are bytes."""

import argparse
import os
import pathlib
import stat
import struct

# directory, extension, header, tag of the type chunk, of the records, integers of a record, header of its .CNF files,
# names in the log: of the scan, of a file; indent of a record; in the messages: an empty class, a corrupted file
CLASSES = [("DBASE", "DBS", b"TX-DBS-v1.0", b"FLD", b"ENT", 0, None, "dbase", "dbase", b"  ", "", "database"),
           ("fprint", "DEF", b"GEL-DEF-v1.0", b"GTP", b"eEN", 1, b"GELTYPE-CNF-v1.0", "gel", "gel", b"  ", "gel", "gel"),
           ("char", "DEF", b"PHEN-DEF-v1.0", b"TPE", b"eEN", 1, b"PHENTYPE-CNF-v1.0", "character", "character", b"  ",
            "character", "character"),
           ("seq", "DEF", b"SEQ-DEF-v1.0", b"TPE", b"eEN", 1, b"SEQTYPE-CNF-v1.0", "seq", "seq", b" ", "seq", "sequence"),
           ("matrix", "DEF", b"PAIRSIMDEF-v1.0", b"TPE", b"eEN", 3, b"PAIRSIMTYPE-CNF-v1.0", "pairsim", "pair", b"  ",
            "pair", "similarity"),
           ("gel2d", "DEF", b"GEL2D-DEF-v1.0", None, b"KEY", 1, b"GEL2DTYPE-CNF-v1.0", "2D gel", "gel2d", b" ", "gel2d", "")]
COMPARISON = b"TX-COMP-v1.0"
DIRECTORIES = ["dbase", "fprint", "images", "char", "seq", "matrix", "library", "bundles"]
SOLUTIONS = {1: [(7001, "Remove all empty files", "deletes")],
             2: [(7002, "Remove all duplicate keys", "clears"), (7003, "Rename all duplicate keys", "safe")],
             3: [(7004, "Create keys", "safe")],
             4: [(7005, "Remove these experiment keys", "clears"), (7006, "Add database entries for these keys", "safe")],
             5: [(7007, "Create directory", "safe")],
             6: [(7008, "Delete this corrupted file", "deletes")], 7: [(7009, "Delete this corrupted file", "deletes")]}
WORDS = [None, "empty", "duplicate", "blank", "orphan", "missing", "corrupt", "side"]
STARS = b"     **************************\n"
HEAD = b"\n" + STARS + b"     *         Log file       *\n" + STARS + b"\n\n"
TRAILER = b"\n\n" + STARS[:-3] + b"\n     *  End of TX log file  *\n" + STARS[:-3] + b"\n"


def number(bytes_):
    return struct.unpack("<i", bytes_.ljust(4, b"\0"))[0]


def counted(text):
    return struct.pack("<i", len(text)) + text


def field(key):
    return struct.pack("<ii", len(key), 61) + key.ljust(61, b"\0")


def dbs(keys):
    return (counted(b"TX-DBS-v1.0") + b"TGFLD" + struct.pack("<ii", 28, 0) + b"TGENT" +
            struct.pack("<ii", 41 + 69 * len(keys), len(keys)) + b"".join(map(field, keys)))


def text(name, bytes_):
    """The members of a document for a text: as the windows show it, and its bytes where these are no UTF-8."""
    try:
        return {name: bytes_.decode()}
    except UnicodeDecodeError:
        shown = "".join(chr(byte) if byte in b"\x81\x8d\x8f\x90\x9d" else bytes([byte]).decode("cp1252") for byte in bytes_)
        return {name: shown, name + "_hex": bytes_.hex()}


def bytes_of(thing, member):
    """The bytes of a text of a document."""
    return bytes.fromhex(thing[member + "_hex"]) if member + "_hex" in thing else thing[member].encode()


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


def order(name):
    return os.fsencode(name).upper(), os.fsencode(name)


def find(directory, name):
    """The entry of that name, else the first that equals it ignoring case, else None."""
    names = sorted(os.listdir(directory), key=order) if directory and os.path.isdir(directory) else []
    same = [entry for entry in names if os.fsencode(entry).lower() == os.fsencode(name).lower()]
    return os.path.join(directory, name if name in same else same[0]) if same else None


UNREAD = b"".join([b"??", b"?"])  # a text that could not be read, and no other text, is this very object


class Stream:
    """A file with its path as the log shows it."""

    def __init__(self, place, path, log):
        with open(place, "rb") as file:
            self.data = file.read()
        self.path, self.log, self.at, self.ended = path, log, 0, False

    def error(self, form, *values):
        self.log.append(b"Local error: TSXbinfile: " + form % values)

    def take(self, count):
        bytes_ = self.data[self.at:self.at + count]
        self.at += len(bytes_)
        self.ended = self.ended or len(bytes_) < count
        return bytes_ if len(bytes_) == count else None

    def integer(self):
        bytes_ = self.take(4)
        return None if bytes_ is None else number(bytes_)

    def count(self):
        value = self.integer()
        if value is None:
            self.error(b"could not read int from %s", self.path)
        return value or 0

    def string(self, capacity=300, wide=False):
        first = self.integer()
        length = first or 0
        if length >= capacity:
            self.error(b"length of string exceeded capacity (%d>=%d)", length, capacity)
            length = capacity - 1
        width = (self.integer() or 0) if wide else 0
        text = None
        if first is not None and length >= 0:
            text = self.take(length) if length else b""
        if width > max(0, length) and not self.ended:
            self.take(width - max(0, length))
        if text is None:
            self.error(b"could not read string from %s (%d 0 %d)", self.path, first is not None, length)
            return UNREAD
        return text.split(b"\0")[0]

    def tag(self):
        """The tag of the chunk that stands here, b"" at the end of the file, None where there is no chunk."""
        frame = self.take(5)
        if self.ended:
            return b""
        if frame[:2] != b"TG":
            self.error(b"could not read tag from %s (--%s--) 1", self.path, frame.split(b"\0")[0])
            return None
        self.end = number(self.data[self.at:self.at + 4])
        self.whole = self.take(4) is not None
        self.body = self.at
        return frame[2:]

    def skip(self):
        if not self.whole or 0 <= self.end < self.body:
            self.error(b"chunk end does not lead on in %s (%d)", self.path, self.end)
            return False
        if self.end >= 0:
            self.at, self.ended = self.end, False
        return True


class Record:
    def __init__(self, key, kind, at, unread=False, changed=False, odd=False):
        self.key, self.kind, self.at, self.unread, self.changed, self.odd = key, kind, at, unread, changed, odd


class DataFile:
    def __init__(self, database, fileclass, name, entry=None):
        self.database, self.fileclass, self.name, self.entry = database, fileclass, name, entry
        row = CLASSES[fileclass]
        self.path = b"%s/%s/%s.%s" % (database.shown, *map(os.fsencode, (row[0], name, row[1])))
        self.valid = self.ondisk = self.unread = False
        self.type, self.fields, self.records, self.type_unread = 0, 0, [], False
        database.log.append(b"   found %s file '%s'" % (row[8].encode(), os.fsencode(name)))
        stream = database.open(self.path)
        if stream is None:
            self.valid = fileclass == 0
            self.unread = os.path.lexists(database.place(self.path))
            if self.unread:
                database.unreadable(database.name_of(self.path), "whole")
        elif stream.string(100) == row[2]:
            self.ondisk = True
            self.valid = self.walk(stream, *row[3:5])
        elif fileclass == 4:
            database.log.append(b"Invalid file")
        for number, record in enumerate(self.records, 1):
            if record.unread:
                database.unreadable(database.name_of(self.path), "record", "unread:%%s#%d" % number)

    def walk(self, stream, typetag, recordtag):
        while not stream.ended:
            tag = stream.tag()
            if not tag:
                return tag == b""
            if tag == typetag and self.fileclass == 0:
                self.fields = stream.count()
                self.pass_strings(stream)
            elif tag == typetag:
                self.type, self.type_unread = self.read_type(stream)
            elif tag == recordtag:
                count = 1 if self.fileclass == 5 else stream.count()
                self.records = []
                if not 1 <= count <= 1000:
                    self.ondisk = False
                    return False
                for _ in range(count):
                    self.read_record(stream)
            if (tag not in (typetag, recordtag) or self.fileclass == 5) and not stream.skip():
                return False
        return True

    def read_type(self, stream):
        name = stream.string(61, wide=True)
        return self.database.addtype(self.fileclass, name), name is UNREAD

    def pass_strings(self, stream):
        for _ in range(self.fields):
            if stream.ended:
                break
            stream.string()

    def read_record(self, stream):
        at, key = stream.at, stream.string(61, wide=True)
        own = self.fileclass in (1, 5)
        kind, type_unread = self.read_type(stream) if own else (self.type, self.type_unread)
        if self.fileclass == 5:
            self.type = kind
        for _ in range(CLASSES[self.fileclass][5]):
            stream.count()
        self.pass_strings(stream)
        odd = len(stream.data) >= at + 8 and number(stream.data[at + 4:at + 8]) != 61
        self.records.append(Record(key, kind, at, key is UNREAD or type_unread, odd=odd))
        self.database.log.append(CLASSES[self.fileclass][9] + key + (b" | %d" % kind if self.fileclass else b""))

    def save(self):
        changed = [record for record in self.records if record.changed]
        if not changed:
            return
        place = self.database.place(self.path)
        if self.ondisk:
            with open(place, "rb") as file:
                data = bytearray(file.read())
            for record in changed:
                data.extend(bytes(max(0, record.at - len(data))))
                data[record.at:record.at + 69] = field(record.key)
        elif os.path.isdir(os.path.dirname(place)):
            data = dbs([record.key for record in self.records])
        else:
            self.database.log.append(b"Local error: TSXbinfile: Could not open file " + self.path)
            return
        with open(place, "wb") as file:
            file.write(data)
        self.ondisk = True
        self.database.touched |= bool(changed)
        for record in changed:
            record.changed = False

    def rename(self, record, key):
        self.database.left = self.database.left or (record.odd and not record.unread)
        if not record.unread and not record.odd:
            record.key, record.changed = key, True


def encoded(about):
    """What stands in an id."""
    return "".join("".join("%%%02x" % byte for byte in char.encode("utf-8", "surrogateescape")) if char < " " or
                   char in "%\x7f" or "\ud800" <= char < "\ue000" else char for char in os.fsdecode(about))


class Problem:
    def __init__(self, kind, sub, message, name, index, about):
        self.kind, self.sub, self.message, self.name, self.index = kind, sub, message, name, index
        self.id = WORDS[kind] + ":" + encoded(about)

    def same(self, other):
        return (self.kind, self.sub, self.name) == (other.kind, other.sub, other.name)


class Database:
    """The tree at a place, which the texts show under another path.  Repairs change the tree."""

    def __init__(self, root, shown_as):
        self.root, self.shown, self.log, self.touched = root, os.fsencode(shown_as), [], False
        self.left = False
        self.types, self.unread, self.looking = [], [], False  # name, weight, whether found by the last analysis, id
        self.newtype(0, b"Database")
        self.files = [[] for _ in CLASSES]
        # By directory: the first name of a file, what is passed over for the sake of a name, and waits since that has gone
        self.first, self.sake, self.waiting = {}, {}, set()
        for fileclass, row in enumerate(CLASSES):
            pattern = b"%s/%s/*.%s" % (self.shown, row[0].encode(), row[1].encode())
            self.log.append(b"*** Scanning %s files at %s ***" % (row[7].encode(), pattern))
            self.twins(row[0], "whole")
            self.read(fileclass, [name for name, is_file in self.search(row[0], row[1]) if is_file])
        self.analyse()

    def twins(self, folder, weight):
        read = self.place(self.shown + b"/" + folder.encode())
        for path in [os.path.join(self.root, name) for name in sorted(os.listdir(self.root), key=order)]:
            if os.path.basename(path).lower() == folder.lower() and path != read and os.path.isdir(path):
                self.unreadable(os.fsencode(os.path.basename(path)), "told" if os.path.samefile(path, read) else weight)

    def read(self, fileclass, names):
        """Reads these plain files, each under its first name."""
        folder, files = CLASSES[fileclass][0], self.files[fileclass]
        for name in names:
            path = self.place(b"%s/%s/%s" % (self.shown, folder.encode(), os.fsencode(name)))
            file = os.stat(path) if os.path.exists(path) else None
            first = self.first.setdefault((folder, (file.st_dev, file.st_ino) if file else path), name)
            if first != name:
                self.sake[folder, name] = first
                self.unreadable(self.name_in(folder, name), "told")
                continue
            files.append(DataFile(self, fileclass, name[:-4], name))
            files.sort(key=lambda file: (file.entry is None, order(file.entry or "")))

    def leaves(self, file):
        """A file that has gone leaves the list; what was passed over for its sake waits to be read."""
        folder = CLASSES[file.fileclass][0]
        self.files[file.fileclass].remove(file)
        self.unread = [row for row in self.unread if row[:2] != (self.name_in(folder, file.entry), "record")]
        self.first = {key: first for key, first in self.first.items() if (key[0], first) != (folder, file.entry)}
        self.waiting |= {key for key, first in self.sake.items() if (key[0], first) == (folder, file.entry)}

    def read_waiting(self):
        for fileclass, (folder, extension, *_) in enumerate(CLASSES if self.waiting else []):
            found = self.search(folder, extension, tells=False)
            names = [name for name, is_file in found if is_file and (folder, name) in self.waiting]
            for name in names:
                self.unread = [row for row in self.unread if row[:2] != (self.name_in(folder, name), "told")]
                self.read(fileclass, [name])
        self.waiting = set()

    def name_in(self, folder, name):
        return os.path.normpath(self.name_of(self.shown + b"/" + folder.encode()) + b"/" + os.fsencode(name))

    def unreadable(self, name, weight, form="unread:%s"):
        """Notes what could not be read; a name once, but each of its records, and what is told of it alone."""
        if weight in ("record", "told") or not self.is_unread(name):
            self.log.append(b"   %s '%s': " % (b"passed over" if weight == "told" else b"could not read", name))
            self.unread.append((name, weight, self.looking, form % encoded(name)))

    def is_unread(self, name):
        return any(known == name and weight in ("part", "whole") for known, weight, *_ in self.unread)

    def lacks(self, *weights):
        return any(weight in weights for _, weight, *_ in self.unread)

    def name_of(self, path):
        return os.path.relpath(os.fsencode(self.place(path)), os.fsencode(self.root))

    def place(self, path):
        """Where a path that is shown stands, or would be made."""
        found = self.root
        for name in os.fsdecode(path[len(self.shown):].replace(b"\\", b"/")).split("/"):
            if name not in ("", "."):
                found = find(found, name) or os.path.join(found, name)
        return found

    def open(self, path):
        place = self.place(path)
        if os.path.isfile(place):
            return Stream(place, path, self.log)
        self.log.append(b"Local error: TSXbinfile: Could not open file " + path)
        return None

    def search(self, below, extension, tells=True):
        """The names with that extension, and whether each counts as a plain file."""
        end, found = "." + extension, []
        directory = self.place(self.shown + b"/" + below.encode())
        for name in sorted(os.listdir(directory), key=order) if os.path.isdir(directory) else []:
            path = os.path.join(directory, name)
            if not name.lower().endswith(end.lower()):
                continue
            read = None if "\\" in name else find(directory, name[:-len(end)] + end)
            if read == path:
                plain = not os.path.isdir(path)
                found.append((name, plain or (not found and (name[0] == "." or not os.stat(path).st_mode & 0o222))))
                continue
            if tells:
                weight = "told" if read else "whole" if extension in ("DBS", "DEF") else "part"
                self.unreadable(self.name_in(below, name), weight)
            if read:
                self.sake[below, name] = os.path.basename(read)
        return found

    def newtype(self, fileclass, name):
        self.types.append((fileclass, name))
        self.log.append(b">>>>>>>>>> Added new experiment type %d %s" % (fileclass, name))

    def addtype(self, fileclass, name):
        for index, (known_class, known) in enumerate(self.types[1:], 1):
            if known_class == fileclass and known.lower() == name.lower():
                return index
        if len(self.types) <= 200:
            self.newtype(fileclass, name)
        else:
            self.unreadable(CLASSES[fileclass][0].encode() + b"/" + name, "whole", "unread:type/%s")
        return len(self.types) - 1

    def add(self, kind, sub, message, about=b"Database", name=b"", index=0):
        message = message.encode() if isinstance(message, str) else message
        self.problems.append(Problem(kind, sub, message, name, index, about))

    def scan(self, below, extension, header, raw):
        self.log.append(b"*** Scanning corrupt files at %s/%s/*.%s ***" % (self.shown, os.fsencode(below), extension.encode()))
        for name, is_file in self.search(below, extension):
            if not is_file:
                continue
            path = b"%s/%s/%s" % (self.shown, os.fsencode(below), os.fsencode(name))
            self.log.append(b"   found file '%s'" % path)
            damage = self.damage_of(path, header, raw)
            if damage:
                self.log.append(b"        ! corrupt: " + damage)
                self.add(7, 0, b"The file '%s' is corrupted" % path, self.name_of(path), path)

    def damage_of(self, path, header, raw):
        stream = self.open(path)
        if stream is None:
            self.unreadable(self.name_of(path), "part")
            return b"could not open"
        if (stream.take(len(header)) if raw else stream.string(100)) != header:
            return b"invalid header"
        while not stream.ended:
            tag = stream.tag()
            if tag == b"":
                break
            if tag is None or not stream.skip():
                return b"invalid tag"
        return None

    def scan_side_files(self):
        for row in CLASSES[1:]:
            self.scan(row[0], "CNF", row[6], False)
        self.scan(".", "CMP", COMPARISON, True)
        self.log.append(b"*** Scanning library directories at %s/Library/*.LIB ***" % self.shown)
        self.twins("Library", "part")
        for name, is_file in self.search("Library", "LIB"):
            path = self.shown + b"/Library/" + os.fsencode(name)
            if not is_file:
                self.scan("Library/" + name, "CMP", COMPARISON, True)
            elif os.path.isdir(self.place(path)) or not os.path.exists(self.place(path)):
                self.unreadable(self.name_of(path), "told" if os.path.exists(self.place(path)) else "part")
        for path in [self.shown] + [self.shown + b"\\" + name.encode() for name in DIRECTORIES]:
            if not os.path.isdir(self.place(path)):
                if os.path.isfile(self.place(path)):
                    self.log.append(b"   no directory '%s': A file of that name stands there." % self.name_of(path))
                self.add(5, 1, b"Missing database directory '%s'" % path, self.name_of(path), path)

    def analyse(self):
        self.problems = []
        self.read_waiting()
        self.unread = [row for row in self.unread if not row[2]]
        self.looking = True
        self.scan_side_files()
        self.looking = False
        for sub, files in enumerate(self.files):
            for index, file in enumerate(files, 1):
                if not file.valid:
                    name = os.fsencode(file.name)
                    message = b"The %s file '%s' is corrupted" % (CLASSES[sub][11].encode(), name)
                    self.add(6, sub, message if sub < 5 else "Unknown error", self.name_of(file.path), name, index)
        for sub, files in enumerate(self.files):
            if any(file.valid and not file.records for file in files):
                self.add(1, sub, "There are empty experiment file(s)     (Experiment class '%s')" % CLASSES[sub][10]
                         if sub else "There are empty database file(s)", CLASSES[sub][0].encode())
        self.index()
        for kind in range(len(self.types)):
            if any(key and self.count(key, kind) > 1 for key in self.keys):
                fileclass, name = self.types[kind]
                self.add(2, kind, b"Some experiment entries have identical keys     (Experiment type '%s')" % name if kind else
                         "Some database entries have identical keys", CLASSES[fileclass][0].encode() + b"/" + name if kind else
                         b"Database")
            if kind == 0 and self.count(b"", 0) > 1:
                self.add(3, 0, "Some database entries have no keys")
        if any(map(self.orphan, self.keys)):
            self.add(4, 0, "Some experiment keys have no database entries")
        self.visible = [key for key in self.keys if self.orphan(key) or any(
            len(uses) > 1 and (key or kind == 0) for kind, uses in self.entries[key][1].items())]

    def index(self):
        self.counted = [file for files in self.files for file in files if file.valid]
        self.entries = {}  # key in small letters: as first met, with its records by type
        for files in self.files:
            for file in files:
                for record in file.records if file.valid else []:
                    self.use(record.key, record.kind, file, record)
        self.keys = sorted(self.entries)

    def use(self, key, kind, file, record):
        self.entries.setdefault(key.lower(), (key, {}))[1].setdefault(kind, []).append((file, record))

    def count(self, key, kind):
        return len(self.entries.get(key.lower(), (b"", {}))[1].get(kind, []))

    def orphan(self, key):
        return bool(key) and self.count(key, 0) == 0

    def later(self, kind):
        """Each later use of each key in a type, with the key."""
        return [(key, use) for key in self.keys if key for use in self.entries[key][1].get(kind, [])[1:]]

    def name_anew(self, key, kind, file, record):
        if record.unread:
            return
        suffixes = (b"/#%d" % n for n in range(2, 10 ** 6))
        free = next(new for new in (key[:59 - len(suffix)] + suffix for suffix in suffixes) if not self.count(new, kind))
        file.rename(record, free)
        if not record.odd:
            self.use(free, kind, file, record)

    def solve(self, problem, command):
        """Whether it succeeds and leaves nothing out.  An analysis has to follow."""
        self.left = False
        return self.carry_out(problem, command) and not self.left

    def carry_out(self, problem, command):
        if 7002 <= command <= 7006 and self.lacks("whole"):
            return False
        if command == 7001:
            empty = [file for file in self.files[problem.sub] if file.valid and not file.records]
            gone = [file for file in empty if not file.unread and self.remove(file.path)]
            for file in gone:
                self.leaves(file)
            return gone == empty
        elif command in (7002, 7003):
            for key, (file, record) in self.later(problem.sub):
                if command == 7002:
                    file.rename(record, b"")
                else:
                    self.name_anew(self.entries[key][0], problem.sub, file, record)
        elif command == 7004:
            for file, record in [(file, record) for file in self.files[0] for record in file.records if not record.key]:
                self.name_anew(b"dbkey", 0, file, record)
        elif command == 7005:
            for key in filter(self.orphan, self.keys):
                for file, record in sum(self.entries[key][1].values(), []):
                    file.rename(record, b"")
        elif command == 7006:
            self.add_entries([key for key in self.keys if self.orphan(key) and any(
                not record.unread for uses in self.entries[key][1].values() for _, record in uses)])
        elif command == 7007:
            return self.make_directory(problem.name)
        elif command == 7008:
            file = self.files[problem.sub][problem.index - 1]
            if file.unread or not self.remove(file.path):
                return False
            self.leaves(file)
        elif command == 7009:
            return not self.is_unread(self.name_of(problem.name)) and self.remove(problem.name)
        return True

    def add_entries(self, keys):
        for first in range(0, len(keys), 100):
            taken = {file.name.lower() for file in self.files[0]}
            names = ("DBSF%03d" % n for n in range(1, 10 ** 6))
            folder = self.place(self.shown + b"/DBASE")
            name = next(name for name in names if name.lower() not in taken and not find(folder, name + ".DBS"))
            file = DataFile(self, 0, name)
            file.records = [Record(self.entries[key][0], 0, -1, changed=True) for key in keys[first:first + 100]]
            self.files[0].append(file)

    def make_directory(self, path):
        place = self.place(path)
        if os.path.lexists(place) or not os.path.isdir(os.path.dirname(place)):
            return False
        os.mkdir(place)
        self.touched = True
        return True

    def remove(self, path):
        place = self.place(path)
        if not os.path.lexists(place) or stat.S_ISDIR(os.lstat(place).st_mode):
            return False
        os.remove(place)
        self.touched = True
        return True

    def change_key(self, key, kind, n, new, yes):
        """True changed, None nothing to do, False refused."""
        folders = [row[0].encode() for row in CLASSES]
        counted = folders[:1] if kind == 0 else folders[1:self.types[kind][0] + 1] if kind < len(self.types) else []
        if any(weight == "whole" and name.split(b"/")[0].lower() in [folder.lower() for folder in counted]
               for name, weight, *_ in self.unread) or n < 1 or n > self.count(key, kind):
            return False
        old = self.entries[key.lower()]
        if new.lower() == key.lower():
            return None
        file, record = old[1][kind][n - 1]
        if record.unread or record.odd or (self.count(new, kind) and not yes):
            return False
        file.rename(record, new)
        return True

    def modified(self):
        return any(record.changed for files in self.files for file in files for record in file.records)

    def save(self):
        for files in self.files:
            for file in files:
                file.save()


def options_of(words):
    parser = argparse.ArgumentParser(allow_abbrev=False)
    for flag in "--all", "--preen", "--save", "--yes":
        parser.add_argument(flag, action="store_true")
    parser.add_argument("--entry")
    for steps in "--solve", "--solve-all":
        parser.add_argument(steps, action="append", dest="solve", default=[], type=lambda word, steps=steps: (
            steps == "--solve-all", *word.rpartition(":")[::2]))
    parser.add_argument("--change-key", nargs=4)
    return parser.parse_known_args([os.fsdecode(word) for word in words])[0]


class Run:
    """What a run of txcheck with these options does to the tree, and what it has to say."""

    def __init__(self, root, shown_as, words):
        self.options = options_of(words)
        self.database = Database(root, shown_as)
        self.loaded = self.database.problems
        self.failed, self.saved, self.solved = False, False, []
        steps = [lambda step=step: self.solve_step(*step) for step in self.options.solve]
        steps += [step for wanted, step in [(self.options.preen, self.preen), (self.options.change_key, self.change_key),
                                            (self.options.save, self.save)] if wanted]
        self.failed = not all(step() for step in steps) or self.failed
        if self.database.touched and not all(step["result"] for step in self.solved):
            self.database.analyse()

    def solve(self, problem, n):
        row, command = self.database.problems.index(problem) + 1, SOLUTIONS[problem.kind][n - 1][0]
        done = self.database.solve(problem, command)
        self.solved.append({"row": row, "id": problem.id, "command": command, "result": int(done)})
        if done:
            self.database.analyse()
        return done

    def solve_step(self, is_all, what, n):
        if is_all and what in ("1", "5", "6", "7", "empty", "missing", "corrupt", "side"):
            return self.solve_together(what, int(n))
        if is_all:
            return self.solve_each(lambda p: int(n) if what in (WORDS[p.kind], str(p.kind)) else 0, False)
        meant = self.loaded[int(what) - 1] if what.isdigit() else next(p for p in self.loaded if p.id == what)
        for problem in self.database.problems:
            if problem.same(meant):
                return self.solve(problem, int(n))
        self.solved.append({"row": int(what) if what.isdigit() else 0, "id": meant.id,
                            "command": SOLUTIONS[meant.kind][int(n) - 1][0], "result": 2})
        return True

    def solve_together(self, what, n):
        """What deletes or makes goes as one group with one analysis behind it; the last first, so that positions stay."""
        chosen = [(row, p) for row, p in enumerate(self.database.problems, 1) if what in (WORDS[p.kind], str(p.kind))]
        command = SOLUTIONS[chosen[0][1].kind][n - 1][0] if chosen else 0
        results = [self.database.solve(p, command) for _, p in reversed(chosen)][::-1]
        self.solved += [{"row": row, "id": p.id, "command": command, "result": int(done)}
                        for (row, p), done in zip(chosen, results)]
        if any(results):
            self.database.analyse()
        return all(results)

    def solve_each(self, choose, goes_on):
        """Solves the first problem for which a solution is chosen, then looks at the new list from the top."""
        taken, position = [], 0
        while position < len(self.database.problems):
            problem = self.database.problems[position]
            n = choose(problem)
            position += 1
            if n and not any(map(problem.same, taken)):
                taken.append(problem)
                if self.solve(problem, n):
                    position = 0
                elif goes_on:
                    self.failed = True
                else:
                    return False
        return True

    def preen(self):
        folders = [row[0].lower() for row in CLASSES]
        only_directories = any(p.kind == 5 and p.id.split(":")[1].lower() in folders for p in self.loaded)
        return self.solve_each(lambda p: 0 if only_directories and p.kind != 5 else max(
            [n for n, solution in enumerate(SOLUTIONS[p.kind], 1) if solution[2] == "safe"], default=0), True)

    def change_key(self):
        key, kind, n, new = self.options.change_key
        done = self.database.change_key(os.fsencode(key), int(kind), int(n), os.fsencode(new), self.options.yes)
        if done:
            self.database.analyse()
        return done is not False

    def save(self):
        self.database.save()
        self.saved = not self.database.modified()
        return self.saved

    def status(self):
        failed = self.failed or self.database.lacks("record", "part", "whole")
        return 8 * failed + 4 * bool(self.database.problems or self.database.modified()) + self.database.touched

    def log(self):
        return HEAD + b"".join(line + b"\n" for line in self.database.log) + TRAILER

    def document(self):
        database, types = self.database, range(len(self.database.types))
        files = database.counted
        records = [record for file in files for record in file.records]
        found = {
            **text("directory", database.shown),
            "problems": [{"row": row, "id": p.id, "kind": p.kind, "subkind": p.sub, **text("name", p.name), "fileindex": p.index,
                          **text("message", p.message), "solutions": [{"command": command, "label": label, "cost": cost}
                                                                      for command, label, cost in SOLUTIONS[p.kind]]}
                         for row, p in enumerate(database.problems, 1)],
            "types": [{"index": i, "class": database.types[i][0], **text("name", database.types[i][1]),
                       "files": sum(file.type == i for file in files),
                       "entries": sum(record.kind == i for record in records)} for i in types],
            "keytotal": len(database.keys),
            "keys": [{**text("key", database.entries[key][0]), "counts": [database.count(key, i) for i in types]}
                     for key in (database.keys if self.options.all else database.visible)]}
        if self.options.entry is not None:
            found["entry"] = self.entry(os.fsencode(self.options.entry))
        return {**found, "solved": self.solved, "modified": int(database.modified()), "saved": int(self.saved),
                "unread": [{"id": id, **text("name", name)} for name, _, _, id in database.unread], "status": self.status()}

    def entry(self, key):
        stored, uses = self.database.entries.get(key.lower(), (key, {}))
        return {**text("key", stored), "occurrences": [
            {"type": kind, "class": file.fileclass, **text("file", os.fsencode(file.name)),
             "record": file.records.index(record) + 1} for kind in sorted(uses) for file, record in uses[kind]]}
