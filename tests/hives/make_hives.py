#!/usr/bin/env python3
"""Writes the hives that the tests read into a folder:

sound/         Windows wrote such ones; NAME.txt tells what a reader must find
tolerated/     Windows loads them in spite of a fault, and they may be edited
read-only/     can be looked at, but an edit might make them worse
refused/       a walk over them might never end
recoverable/   unfinished writes with the logs that complete them; hive.recovered is what must come of them
unrecoverable/ unfinished writes that nothing completes
"""
import pathlib
import sys

from regf_writer import BLOCK, NIL, Hive, dirty_pages, log_entry, log_header, old_log, with_fields
from xp_user import OWN, POLICIES, SECRET, SZ, every_type, noise, number, text, xp_user

folder = pathlib.Path(sys.argv[1])


def write(name, image, contents=None):
    file = folder / name
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_bytes(image)
    if contents is not None:
        file.with_name(file.name + ".txt").write_text(contents)


def sound(name, hive, step=BLOCK, tail=b""):
    write("sound/" + name, hive.image(step) + tail, hive.dump())


# --- sound

def versions():
    sound("xp-user.NTUSER.DAT", xp_user(), 262144)
    for minor in (3, 4, 5):
        hive = Hive(minor, "C:\\WINDOWS\\system32\\config\\software", OWN)
        every_type(hive)
        for length in (16343, 16344, 16345, 32688, 32689, 81725):
            hive.set("Long data", "%d bytes" % length, *noise(length, length))
        hive.set("Long data", "looks like big data", 3, b"db\2\0" + bytes(16))
        for length in (40000, 17000, 60000):  # grown and shrunk
            hive.set("Long data", "changing", *noise(length, length))
        for count in (507, 508, 1012, 1013, 2600):
            for i in range(count):
                hive.key("Lists\\%d\\%s%d" % (count, "Odd" if i % 2 else "even", i * 7919 % count))
        hive.delete_key(hive.key("Lists\\508\\even0"))
        sound("version-1.%d" % minor, hive)


def names():
    for minor in (3, 5):
        hive = Hive(minor, "names", OWN)
        for name in ("\u00ebigenaardig", "\u041f\u0440\u0438\u0432\u0435\u0442", "CR\r\nLF", "NUL\0inside", "\u009f", "\u0178",
                     "\u00df2", "ss1", "SS3", "\U0001F600", "\u03c2", "\u0131", "\u01c5", "x" * 255,
                     "\u0436" * 255, "a", "A1", "_", "[", "{", " ", "2", "3", "\u0430"):
            hive.key(name)
            hive.set("\u00ebigenaardig", name, *text(name))
        sound("names-1.%d" % minor, hive)
    hive = Hive(3, "halves", OWN)
    for name in ("\ud83d", "\ude00", "key\ud81d", "key\ud81e"):
        hive.key(name)
        hive.set("\ud83d", name, *text("x"))
    sound("halves-of-pairs", hive)


def shapes():
    hive = Hive(3, "mini.dat", OWN, "ROOT")
    sound("smallest", hive)
    hive.clock = hive.root.written = 0
    hive.changed[hive.root] = True
    sound("without-times", hive)
    hive = Hive(5, "owners", OWN, "CMI-CreateHive{F10156BE-0E87-4EFB-969E-5DA29D131144}")
    for i, security in enumerate([POLICIES, SECRET, OWN] * 7):
        hive.key("Key %d\\Inner" % i, security=security, class_name="Class of %d" % i, flags=0x1000)
    hive.delete_key(hive.key("Key 3"))
    old_bins = bytes(hive.space.bytes)  # a tail that looks like bins
    sound("owners", hive, tail=old_bins + b"garbage")
    hive = Hive(3, "deep", OWN)
    hive.key("\\".join(str(level) for level in range(500)))
    sound("deep", hive)


# --- faults: each damages a small hive whose cells it knows

class Small(Hive):
    def __init__(self, minor=3):
        super().__init__(minor, "small", OWN)
        for path in ("Alpha\\Deep\\Deeper", "Alpha\\Second", "Beta\\Inner", "Delta"):
            self.key(path)
        self.key("Gamma", security=POLICIES, class_name="Class")
        for name in ("one", "two"):
            self.set("Alpha", name, *text("text of " + name))
        self.settle()

    def put(self, rel, field, value, size=4):
        self.space.write(rel, value.to_bytes(size, "little"), field)

    def put_key(self, path, field, value, size=4):
        self.put(self.key(path).rel, field, value, size)

    def list_of(self, path):
        return self.key(path).lists[0][0]

    def swap(self, path, first, second):
        keys = self.key(path).subkeys
        keys[first], keys[second] = keys[second], keys[first]
        self.changed[self.key(path)] = True

    def orphan(self):
        self.space.allocate(20, b"nk left by nobody")

    def adjacent_free_cells(self):
        at, room = max(self.space.free.items(), key=lambda cell: cell[1])
        self.space.mark_free(at, 16)
        self.space.mark_free(at + 16, room - 16)


TOLERATED = {
    "count-of-security-too-high": lambda h: h.put(h.securities[OWN][0], 12, 99),
    "count-of-security-turns-negative": lambda h: h.put(h.securities[OWN][0], 12, 0x7FFFFFFF),
    "count-of-security-wraps": lambda h: h.put(h.securities[OWN][0], 12, 0xFFFFFFFE),
    "count-of-security-is-full": lambda h: h.put(h.securities[OWN][0], 12, 0xFFFFFFFF),
    "orphan": Small.orphan,
    "adjacent-free-cells": Small.adjacent_free_cells,
    "root-without-its-flag": lambda h: (h.put_key("", 2, 0x28, 2), setattr(h.root, "flags", 0x28)),
    "wrong-hint": lambda h: h.put(h.list_of(""), 8, 0x58585858),
    "wrong-hash": lambda h: h.put(h.list_of(""), 8, 0x58585858),
    "largest-name-too-small": lambda h: h.put_key("Alpha", 60, 2),
}
READ_ONLY = {
    "wrong-parent": lambda h: h.put_key("Beta\\Inner", 16, h.key("Alpha").rel),
    "count-of-subkeys": lambda h: h.put_key("Alpha", 20, 3),
    "name-beyond-the-cell": lambda h: h.put_key("Delta", 72, 200, 2),
    "list-in-a-list": lambda h: h.put(h.list_of(""), 0, 0x00016972),
    "security-ring": lambda h: h.put(h.securities[OWN][0], 4, h.securities[OWN][0]),
    "count-of-security-too-low": lambda h: h.put(h.securities[OWN][0], 12, 1),
    "descriptor-of-no-kind": lambda h: h.put(h.securities[POLICIES][0], 20, 0),
    "data-outside": lambda h: h.put(h.key("Alpha").values[0].rel, 8, 0x7FFFFFF8),
    "value-list-too-long": lambda h: h.put_key("Alpha", 36, 5000),
    "no-list": lambda h: h.put_key("Alpha", 28, NIL),
    "list-of-a-later-version": lambda h: h.put(h.list_of("Alpha"), 0, 0x686C, 2),
    "class-nowhere": lambda h: h.put_key("Gamma", 48, NIL),
    "bin-without-its-mark": lambda h: h.space.append_bin(32) and h.space.bytes.__setitem__(slice(BLOCK, BLOCK + 4), b"xxxx"),
}
REFUSED = {
    "one-list-of-two-keys": lambda h: (h.put_key("Delta", 20, 1), h.put_key("Delta", 28, h.list_of("Beta"))),
    "one-key-in-two-lists": lambda h: h.put(h.list_of("Beta"), 4, h.key("Alpha\\Second").rel),
    "key-below-itself": lambda h: h.put(h.list_of("Alpha\\Deep"), 4, h.key("Alpha").rel),
    "no-root": lambda h: h.put_key("", 0, 0),
}


def faults():
    for kind, table in (("tolerated", TOLERATED), ("read-only", READ_ONLY), ("refused", REFUSED)):
        for name, damage in table.items():
            hive = Small(5 if "hash" in name else 3)
            damage(hive)
            write("%s/%s" % (kind, name), hive.image(), hive.dump() if kind == "tolerated" else None)
    for name, first, second in (("wrong-order", 0, 1), ("wrong-order-at-the-end", 2, 3)):
        hive = Small()
        hive.swap("", first, second)
        write("read-only/" + name, hive.image(), hive.dump())
    hive = Small()
    hive.key("Alpha").name, hive.key("Beta").name = "Same", "sAME"
    hive.changed = dict.fromkeys(hive.root.subkeys)
    write("read-only/duplicate-names", hive.image(), hive.dump())
    whole = Small().image()
    write("read-only/later-version", with_fields(whole, minor=6))
    write("read-only/cut-off", with_fields(whole, bins=BLOCK * 2))


# --- unfinished writes

class Writes:
    """A hive before and after one write, and the state in which the power went."""

    def __init__(self, minor=3, sequence=7):
        hive = Hive(minor, "\\Documents and Settings\\Anna\\NTUSER.DAT", OWN)
        every_type(hive)
        for i in range(90):
            hive.set("Before\\%d" % i, "v", *noise(i, 60 + i))
        hive.sequence = sequence
        self.states, self.texts = [hive.image()], [hive.dump()]
        for step in range(3):
            for i in range(40):
                hive.set("After %d\\%d" % (step, i), "v", *noise(i, 90 + i))
                hive.set("Before\\%d" % i, "v", *noise(i + step, 30 + i))
            hive.delete_key(hive.key("Before\\%d" % (50 + step)))
            self.states.append(hive.image())
            self.texts.append(hive.dump())
        self.sequence = sequence

    def torn(self, to, written=lambda index: index % 2 == 0, **head):
        """The base block is out; of the pages, some."""
        old, new = self.states[0], self.states[to]
        out = bytearray(with_fields(new, **head)[:BLOCK]) + old[BLOCK:]
        for index, at in enumerate(dirty_pages(old, new, BLOCK)):
            if written(index):
                out = out.ljust(at + BLOCK, b"\0")
                out[at:at + BLOCK] = new[at:at + BLOCK]
        return out

    def recovered(self, to, sequence):
        return with_fields(self.states[to], s1=sequence, s2=sequence)


def dirty(case, hive, logs, writes=None, to=None, sequence=None, expected=None):
    place = ("recoverable/" if to is not None else "unrecoverable/") + case
    write(place + "/hive", hive)
    for name, log in logs.items():
        write("%s/hive.%s" % (place, name), log)
    if to is not None:
        write(place + "/hive.recovered", writes.recovered(to, sequence) if expected is None else expected)
        write(place + "/hive.txt", writes.texts[to].encode())


def spoiled(data, at, bits=1):
    out = bytearray(data)
    out[at] ^= bits
    return out


def old_logs():
    w = Writes()
    old, new, n = w.states[0], w.states[1], w.sequence
    torn = w.torn(1, s1=n + 1, s2=n)
    log = old_log(old, new, n)
    dirty("xp", torn, {"LOG": log}, w, 1, n + 2)
    dirty("nt4", torn, {"LOG": old_log(old, new, n, kind=2, step=512)}, w, 1, n + 2)
    dirty("nothing-written", w.torn(1, lambda index: False, s1=n + 1, s2=n), {"LOG": log}, w, 1, n + 2)
    dirty("vista", torn, {"LOG1": old_log(old, w.states[2], n), "LOG2": old_log(old, new, n + 1), "LOG": b""}, w, 1, n + 2)
    dirty("remnants-after-the-log", torn, {"LOG": log + noise(1, 5000)[1]}, w, 1, n + 2)
    for clustering in (2, 8):
        dirty("clustering-%d" % clustering, torn, {"LOG": old_log(old, new, n, clustering=clustering)}, w, 1, n + 2)
    from_log = bytearray(with_fields(new, s1=n + 1, s2=n + 1))
    dirty("garbage-for-a-head", b"\xee" * 500 + torn[500:], {"LOG": log}, w, 1, n + 1, from_log)
    dirty("old-log-broken-base-block", spoiled(torn, 24, 2), {"LOG": log}, w, 1, n + 1, from_log)
    no_bin_yet = w.torn(1, lambda index: index == 3, s1=n + 1, s2=n)
    dirty("old-log-broken-base-block-old-bin", spoiled(no_bin_yet, 24, 2), {"LOG": log}, w, 1, n + 1, from_log)
    other_time = old_log(old, w.states[2], n)
    for case, image, logs in (
            ("no-log", torn, {}), ("bad-check-sum-of-the-log", torn, {"LOG": spoiled(log, 508)}),
            ("no-bitmap", torn, {"LOG": spoiled(log, 512)}), ("log-cut-off", torn, {"LOG": log[:-1]}),
            ("bitmap-alone", torn, {"LOG": log[:1024]}), ("log-of-another-time", torn, {"LOG": other_time}),
            ("log-of-an-unfinished-write", torn, {"LOG": with_fields(log, s1=n, s2=n - 1)}),
            ("log-leads-to-damage", torn, {"LOG": spoiled(log, len(log) - BLOCK)}),
            ("garbage-and-bad-check-sum", spoiled(old, 100) + b"garbage", {}),
            ("head-tells-less", spoiled(with_fields(old, bins=BLOCK), 508), {})):
        dirty(case, image, logs)


def new_logs(n, ending=""):
    w = Writes(5, n)
    zero, one, both, three = w.states
    head = log_header(zero, 6, n)
    first, second = log_entry(zero, one, n), log_entry(one, both, n + 1)
    later = log_header(zero, 6, n + 2) + log_entry(both, three, n + 2)
    torn = w.torn(0, s1=n + 1, s2=n)

    def expected(to, last):
        """The base block stays but for its size and its sequence numbers."""
        return with_fields(zero, s1=last + 1, s2=last + 1, bins=len(w.states[to]) - BLOCK)[:BLOCK] + w.states[to][BLOCK:]
    two = head + first + second
    for case, image, logs, to in (
            ("two-entries", torn, {"LOG1": two, "LOG2": b""}, 2), ("later-log-first", torn, {"LOG1": later, "LOG2": two}, 3),
            ("remnant-entries", torn, {"LOG1": head + first + log_entry(zero, three, n - 3)}, 1),
            ("spoiled-second-entry", torn, {"LOG1": head + first + spoiled(second, 700)}, 1),
            ("gap-between-logs", torn, {"LOG1": head + first, "LOG2": later}, 1),
            ("new-log-broken-base-block", spoiled(torn, 24, 4), {"LOG1": two}, 2)):
        dirty(case + ending, image, logs, w, to, None, expected(to, n + to - 1))
    for case, logs in (
            ("stale-new-log", {"LOG1": log_header(zero, 6, n - 1) + log_entry(zero, one, n - 1)}),
            ("spoiled-head-of-the-new-log", {"LOG1": spoiled(head, 508) + first}), ("empty-new-log", {"LOG1": head}),
            ("unknown-between-logs", {"LOG1": head, "LOG2": log_header(zero, 6, n + 1) + log_entry(zero, three, n + 1)}),
            ("more-pages-than-there-are", {"LOG1": head + log_entry(zero, one, n, count=NIL)}),
            ("pages-outside", {"LOG1": head + log_entry(zero, one, n, beyond=len(one))}),
            *(("spoiled-entry-%d" % at, {"LOG1": head + spoiled(first, at)}) for at in (8, 24, 32, 60, len(first) - 1))):
        dirty(case + ending, torn, logs)


for make in (versions, names, shapes, faults, old_logs):
    make()
new_logs(7)
new_logs(NIL, "-wrapping")
