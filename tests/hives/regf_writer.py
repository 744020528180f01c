"""Lays out registry hive files as Windows does, with what its edits leave behind: cells freed and used again, remnants
in slack and free cells, lists with room to grow. It shares no line with the library under test, which reads the result.
"""
import bisect
import functools
import operator
import struct
import types

NIL = 0xFFFFFFFF
BLOCK = 4096
SEGMENT = 16344  # the most that one cell of big data holds
LONGEST = {"lf": 507, "li": 1012, "lh": 1012}  # elements of a leaf
HALF = 506  # of a leaf that was split


def u32(value):
    return struct.pack("<I", value & NIL)


def round_up(size, unit):
    return (size + unit - 1) // unit * unit


def units(name):
    """UTF-16 code units; a name may hold half a surrogate pair."""
    raw = name.encode("utf-16-le", "surrogatepass")
    return struct.unpack("<%dH" % (len(raw) // 2), raw)


def upcase(unit):
    upper = chr(unit).upper()
    plain = len(upper) == 1 and ord(upper) <= 0xFFFF and (unit < 0x80) == (ord(upper) < 0x80)
    return ord(upper) if plain and unit not in (0xB5, 0x131, 0x17F, 0x1C5, 0x345, 0x3C2, 0x3D0) else unit


@functools.cache
def sort_key(name):
    return tuple(upcase(unit) for unit in units(name))


@functools.cache
def name_hash(name):
    total = 0
    for unit in sort_key(name):
        total = (total * 37 + unit) & NIL
    return total


def name_hint(name):
    first = units(name)[:4]
    return bytes(4) if any(unit > 0xFF for unit in first) else bytes(first).ljust(4, b"\0")


def stored_name(name):
    """The bytes of a name, and whether they are one for each character."""
    compressed = all(unit <= 0xFF for unit in units(name))
    return (bytes(units(name)) if compressed else name.encode("utf-16-le", "surrogatepass")), compressed


def utf16(text):
    return text.encode("utf-16-le", "surrogatepass")


# --- security descriptors

def sid(*parts):
    return struct.pack("<BB6s", 1, len(parts) - 1, parts[0].to_bytes(6, "big")) + b"".join(u32(p) for p in parts[1:])


def descriptor(owner, group, *entries):
    """Entries: (flags, mask, SID), all of them allowing."""
    aces = b"".join(struct.pack("<BBHI", 0, flags, 8 + len(who), mask) + who for flags, mask, who in entries)
    acl = struct.pack("<BBHHH", 2, 0, 8 + len(aces), len(entries), 0) + aces
    at = 20 + len(acl)
    return struct.pack("<BBHIIII", 1, 0, 0x8004, at, at + len(owner), 0, 20) + acl + owner + group


# --- cells

class Space:
    """The bins of a hive. Offsets count from the first of them."""

    def __init__(self):
        self.bytes = bytearray()
        self.free = {}  # offset: size

    def allocate(self, length, data=b""):
        size = round_up(length + 4, 8)
        fitting = [(room, at) for at, room in self.free.items() if room >= size]
        at = min(fitting)[1] if fitting else self.append_bin(size)
        room = self.free.pop(at)
        if room > size:
            self.mark_free(at + size, room - size)
        self.bytes[at:at + 4] = struct.pack("<i", -size)
        self.write(at, data)  # what lay here before shows in the rest of the cell
        return at

    def append_bin(self, size):
        at, size = len(self.bytes), round_up(size + 32, BLOCK)
        self.bytes += struct.pack("<4sII20x", b"hbin", at, size) + bytes(size - 32)
        self.mark_free(at + 32, size - 32)
        return at + 32

    def mark_free(self, at, size):
        self.free[at] = size
        self.bytes[at:at + 4] = struct.pack("<i", size)

    def release(self, at):
        size = self.size(at)
        if at + size in self.free:  # a free cell never follows the end of a bin at once: its header lies between
            size += self.free.pop(at + size)
        before = [other for other, room in self.free.items() if other + room == at]
        for other in before:
            size += self.free.pop(other)
            at = other
        self.mark_free(at, size)

    def size(self, at):
        return abs(struct.unpack_from("<i", self.bytes, at)[0])

    def write(self, at, data, field=0):
        assert field + len(data) + 4 <= self.size(at)
        self.bytes[at + 4 + field:at + 4 + field + len(data)] = data


# --- keys and values

class Key:
    def __init__(self, name, parent, security, flags=0, class_name=""):
        self.name, self.parent, self.security, self.flags, self.class_name = name, parent, security, flags, class_name
        self.subkeys, self.by_name, self.values = [], {}, []
        self.largest = [0, 0, 0, 0]  # bytes: name of a subkey, its class, name of a value, its data
        self.lists, self.value_list, self.class_cell = [], (NIL, 0), NIL  # lists: (offset, elements that fit)
        self.list_kind = None


class Hive:
    def __init__(self, minor, file_name, security, root_name="$$$PROTO.HIV", started=127000000000000000):
        self.minor, self.file_name, self.clock, self.sequence = minor, file_name, started, 1
        self.space, self.securities, self.changed = Space(), {}, {}
        self.root = self.new_key(root_name, None, security, 0x0C)
        self.root_residue = (0x638, 2, 0x80000C88)  # what the root's unused fields hold after a load
        self.settle()

    # - edits

    def new_key(self, name, parent, security, flags=0, class_name=""):
        key = Key(name, parent, security, flags, class_name)
        stored, compressed = stored_name(name)
        key.flags |= 0x20 if compressed else 0
        key.rel = self.space.allocate(76 + len(stored))
        if class_name:
            key.class_cell = self.space.allocate(len(utf16(class_name)), utf16(class_name))
        if security not in self.securities:
            self.securities[security] = [self.space.allocate(20 + len(security)), 0]
        self.securities[security][1] += 1
        self.touch(key)
        return key

    def key(self, path, security=None, class_name="", flags=0, start=None):
        """Finds or makes a key by its path; what is made takes its parent's security unless told otherwise."""
        key = start or self.root
        parts = path.split("\\") if path else []
        for number, name in enumerate(parts):
            last = number == len(parts) - 1
            if sort_key(name) in key.by_name:
                key = key.by_name[sort_key(name)]
                continue
            made = self.new_key(name, key, last and security or key.security, flags if last else 0,
                                class_name if last else "")
            bisect.insort(key.subkeys, made, key=lambda child: sort_key(child.name))
            key.by_name[sort_key(name)] = made
            key.largest[0] = max(key.largest[0], 2 * len(units(name)))
            key.largest[1] = max(key.largest[1], len(utf16(made.class_name)))
            self.touch(key)
            key = made
        return key

    def set(self, key, name, kind, data):
        key = self.key(key) if isinstance(key, str) else key
        value = next((v for v in key.values if sort_key(v.name) == sort_key(name)), None)
        stored, compressed = stored_name(name)
        if value is None:
            value = types.SimpleNamespace(name=name, cells=[])
            value.rel = self.space.allocate(20 + len(stored))
            key.values.append(value)
        for cell in value.cells:
            self.space.release(cell)
        value.kind, value.data = kind, data
        size, where, value.cells = self.store(data)
        self.space.write(value.rel, struct.pack("<2sHIIIHH", b"vk", len(stored), size, where, kind,
                                                1 if compressed and name else 0, 0) + stored)
        key.largest[2] = max(key.largest[2], 2 * len(units(name)))
        key.largest[3] = max(key.largest[3], len(data))
        self.touch(key)

    def store(self, data):
        """Size field, data field, cells in use."""
        length = len(data)
        if length <= 4:
            return 0x80000000 | length, int.from_bytes(data, "little"), []
        if length <= SEGMENT or self.minor < 4:
            size = length if length <= SEGMENT else (1 << (length + 3).bit_length()) - 4
            cell = self.space.allocate(size, data)
            return length, cell, [cell]
        parts = [self.space.allocate(SEGMENT + 4, data[at:at + SEGMENT]) for at in range(0, length, SEGMENT)]
        listed = self.space.allocate(4 * len(parts), b"".join(map(u32, parts)))
        head = self.space.allocate(12, struct.pack("<2sHI", b"db", len(parts), listed))
        return length, head, [head, listed] + parts

    def delete_value(self, key, name):
        value = next(v for v in key.values if sort_key(v.name) == sort_key(name))
        key.values.remove(value)
        for cell in value.cells + [value.rel]:
            self.space.release(cell)
        if not key.values:
            key.largest[2:] = 0, 0
        self.touch(key)

    def delete_key(self, key):
        for child in list(key.subkeys):
            self.delete_key(child)
        self.settle()
        for value in list(key.values):
            self.delete_value(key, value.name)
        cells = [rel for rel, _ in key.lists] + [c for c in (key.value_list[0], key.class_cell) if c != NIL]
        for cell in cells + [key.rel]:
            self.space.release(cell)
        self.securities[key.security][1] -= 1
        key.parent.subkeys.remove(key)
        del key.parent.by_name[sort_key(key.name)]
        self.changed.pop(key, None)
        if not key.parent.subkeys:
            key.parent.largest[:2] = 0, 0
        self.touch(key.parent)

    def touch(self, key):
        self.clock += 1562500  # a tick of the clock of that time
        key.written = self.clock
        self.changed[key] = True
        if len(self.changed) > 40:
            self.settle()

    # - records

    def settle(self):
        """Brings lists and keys up to date; often, so that lists grow as they do in use."""
        if not self.changed:
            return
        for key in self.changed:
            self.write_values(key)
            self.write_subkeys(key)
            self.write_key(key)
        self.changed = {}
        ring = list(self.securities.items())
        for i, (data, (rel, count)) in enumerate(ring):
            after, before = ring[(i + 1) % len(ring)][1][0], ring[i - 1][1][0]
            self.space.write(rel, struct.pack("<2s2xIIII", b"sk", after, before, count, len(data)) + data)

    def room_for(self, old, count, width, head, longest=NIL):
        """A list cell for so many elements: the old one as long as they fit."""
        rel, capacity = old
        if count <= capacity and count:
            return old
        if rel != NIL:
            self.space.release(rel)
        if not count:
            return NIL, 0
        capacity = min(count + count // 2, longest) if capacity else count
        return self.space.allocate(head + capacity * width), capacity

    def write_values(self, key):
        key.value_list = self.room_for(key.value_list, len(key.values), 4, 0)
        if key.values:
            self.space.write(key.value_list[0], b"".join(u32(v.rel) for v in key.values))

    def write_leaf(self, old, kind, keys):
        old = self.room_for(old, len(keys), 4 if kind == "li" else 8, 4, LONGEST[kind])
        extra = {"li": lambda name: b"", "lf": name_hint, "lh": lambda name: u32(name_hash(name))}[kind]
        self.space.write(old[0], struct.pack("<2sH", kind.encode(), len(keys)) +
                         b"".join(u32(k.rel) + extra(k.name) for k in keys))
        return old

    def write_subkeys(self, key):
        keys, was = key.subkeys, key.list_kind
        key.list_kind = leaf = "lh" if self.minor >= 5 else "li" if was == "li" or len(keys) > LONGEST["lf"] else "lf"
        groups = [keys] if len(keys) <= LONGEST[leaf] else [keys[i:i + HALF] for i in range(0, len(keys), HALF)]
        if len(key.lists) > 1 or len(groups) > 1 or not keys or leaf != was:
            for rel, _ in key.lists:
                self.space.release(rel)
            key.lists = []
        if not keys:
            return
        had = key.lists or [(NIL, 0)] * len(groups)
        leaves = [self.write_leaf(old, leaf, group) for old, group in zip(had, groups)]
        if len(leaves) > 1:
            index = self.space.allocate(4 + 4 * len(leaves), struct.pack("<2sH", b"ri", len(leaves)) +
                                        b"".join(u32(rel) for rel, _ in leaves))
            leaves.insert(0, (index, len(leaves)))
        key.lists = leaves

    def write_key(self, key):
        stored, _ = stored_name(key.name)
        parent, volatile, volatile_list = (key.parent.rel, 0, NIL) if key.parent else getattr(
            self, "root_residue", (0, 0, NIL))
        listed = key.lists[0][0] if key.subkeys else NIL
        self.space.write(key.rel, struct.pack(
            "<2sHQ10IHBB4IHH", b"nk", key.flags, key.written, 0, parent, len(key.subkeys), volatile, listed,
            volatile_list, len(key.values), key.value_list[0], self.securities[key.security][0], key.class_cell,
            key.largest[0], 0, 0, *key.largest[1:], 0, len(stored), len(utf16(key.class_name))) + stored)

    # - the file

    def image(self, step=BLOCK):
        """The clean file; `step`: its length is a multiple of it, as the system grows files."""
        self.settle()
        self.space.bytes[20:28] = struct.pack("<Q", self.clock)  # the first bin holds the time of the last write
        out = bytearray(base_block(self)) + self.space.bytes
        return out + bytes(round_up(len(out), step) - len(out))

    def dump(self):
        """What a reader must find, one line for each key and value."""
        self.settle()
        out = []

        def lines(key, path):
            out.append("K %s t%d f%d c%s s%s" % (path, key.written, key.flags, escaped(key.class_name),
                                                 key.security.hex()))
            out.extend("V %s %s %d %s" % (path, escaped(v.name), v.kind, v.data.hex()) for v in key.values)
            for child in key.subkeys:
                lines(child, path + "/" + escaped(child.name))
        lines(self.root, "")
        return "\n".join(out) + "\n"


def escaped(name):
    return "".join(chr(u) if 0x20 < u < 0x7F and u != 0x5C else "\\u%04x" % u for u in units(name))


def base_block(hive):
    name = utf16(hive.file_name[-31:]).ljust(64, b"\0")
    block = bytearray(struct.pack("<4sIIQ7I", b"regf", hive.sequence, hive.sequence, hive.clock, 1, hive.minor, 0, 1,
                                  hive.root.rel, len(hive.space.bytes), 1) + name).ljust(BLOCK, b"\0")
    set_checksum(block)
    return block


def set_checksum(block):
    total = functools.reduce(operator.xor, struct.unpack_from("<127I", block))
    block[508:512] = u32({NIL: NIL - 1, 0: 1}.get(total, total))


def with_fields(image, **fields):
    """The image with other fields of the base block, and the checksum that belongs to them."""
    places = dict(s1=4, s2=8, minor=24, type=28, root=36, bins=40)
    out = bytearray(image)
    for name, value in fields.items():
        out[places[name]:places[name] + 4] = u32(value)
    set_checksum(out)
    return out


# --- logs

def dirty_pages(old, new, size):
    return [at for at in range(BLOCK, len(new), size) if old[at:at + size] != new[at:at + size]]


def log_header(image, kind, sequence, length=512):
    return bytearray(with_fields(image, s1=sequence, s2=sequence, type=kind)[:512]).ljust(length, b"\0")


def old_log(old, new, sequence, kind=1, clustering=1, step=BLOCK):
    """Up to Windows 8: a bitmap with a bit for each page of 512 bytes, then the pages. XP marks blocks of 4096."""
    unit = 512 * clustering
    bins = struct.unpack_from("<I", new, 40)[0]
    new = new[:BLOCK + bins]
    bits = bytearray(bins // BLOCK)
    pages = [page for at in dirty_pages(old, new, step) for page in range(at, at + step, 512)]
    for page in pages:
        bits[(page - BLOCK) // 512 // 8] |= 1 << (page - BLOCK) // 512 % 8
    head = bytearray(new[:512])
    head[44:48] = u32(clustering)
    log = log_header(head, kind, sequence, unit) + b"DIRT" + bits
    return log.ljust(round_up(len(log), unit), b"\0") + b"".join(new[page:page + 512] for page in pages)


def marvin32(data):
    high, low = 0x82EF4D88, 0x7A4E55C5

    def turned(value, by):
        return (value << by | value >> (32 - by)) & NIL
    for word in struct.unpack("<%dI" % (len(data) // 4), data) + (0x80, 0):
        low = (low + word) & NIL
        high ^= low
        low = (turned(low, 20) + high) & NIL
        high = turned(high, 9) ^ low
        low = (turned(low, 27) + high) & NIL
        high = turned(high, 19)
    return high << 32 | low


def log_entry(old, new, sequence, count=None, beyond=0):
    """From Windows 8.1 on: what one write changed, with two hashes. May lie of how many pages there are and where they belong."""
    bins = struct.unpack_from("<I", new, 40)[0]
    new = new[:BLOCK + bins]
    pages = dirty_pages(old, new, BLOCK)
    body = b"".join(struct.pack("<II", at - BLOCK + beyond, BLOCK) for at in pages) + b"".join(
        bytes(new[at:at + BLOCK]) for at in pages)
    size = round_up(40 + len(body), 512)
    body = body.ljust(size - 40, b"\0")
    head = struct.pack("<4s5IQ", b"HvLE", size, 0, sequence & NIL, bins, count or len(pages), marvin32(body))
    return head + struct.pack("<Q", marvin32(head)) + body


# Published figures of both hashes.
assert marvin32(b"") == 0xB39EFCA403966E08 and marvin32(bytes(range(32))) == 0xC64FEEE425C2E24C
assert name_hash("Software") == 0xE9FE1463 and name_hash("\u041f\u0440\u0438\u0432\u0435\u0442") == 0x81C3D610
