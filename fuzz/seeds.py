"""Puts what the fuzzers begin with into CORPUS/<fuzzer>: hives as the tests make them, with scripts of edits; hives with their
logs; records, restriction files and .ini files of a few lines.

usage: seeds.py CORPUS
"""
import pathlib
import struct
import subprocess
import sys
import zlib

corpus = pathlib.Path(sys.argv[1])
hives = corpus / "made-hives"
largest = 40000


def put(fuzzer, name, content):
    folder = corpus / fuzzer
    folder.mkdir(parents=True, exist_ok=True)
    (folder / ("seed-" + name)).write_bytes(content)


def frame(kind, content):
    content = kind + content
    return struct.pack("<II", len(content), zlib.crc32(content)) + content


def counted(text):
    return struct.pack("<I", len(text)) + text


def wide(text):
    return struct.pack("<I", len(text)) + text.encode("utf-16-le")


def change(kind, path, name="", data=b""):
    return frame(b"C", bytes([kind]) + wide(path) + wide(name) + struct.pack("<I", 4) + counted(data) + struct.pack("<Q", 5))


def records():
    mount = frame(b"M", counted(b"Anna") + counted(b"C:\\NTUSER.DAT") + struct.pack("<QIII", 8192, 1, 1, 7))
    edits = (change(1, "Software\\New") + change(3, "Software\\New", "v", b"\1\0\0\0") + change(4, "Software\\New", "v")
             + change(2, "Software\\New"))
    yield "mounted", mount
    yield "sealed", mount + edits + frame(b"S", b"")
    yield "written", mount + edits + frame(b"S", b"") + frame(b"W", struct.pack("<QIII", 8192, 2, 2, 9)) + frame(b"F", b"")


scripts = [bytes((i * step) % 256 for i in range(128)) for step in (1, 7, 37, 101)]
if not hives.exists():
    subprocess.run([sys.executable, "-B", "tests/hives/make_hives.py", hives], check=True)
for file in sorted(path for path in hives.rglob("*") if path.is_file() and path.suffix != ".txt"):
    content = file.read_bytes()
    logs = [path.read_bytes() for path in sorted(file.parent.glob(file.name + ".LOG*"))]
    name = "-".join(file.relative_to(hives).parts)
    if len(content) > largest:
        continue
    for number, script in enumerate(scripts):
        put("hive_fuzz", "%s-%d" % (name, number), script + content)
    if logs and sum(map(len, logs)) < largest:
        first, second = (logs + [b"", b""])[:2]
        put("log_fuzz", name, struct.pack("<II", len(content), len(first)) + content + first + second)
for name, content in records():
    put("record_fuzz", name, content)
put("files_fuzz", "start", b'"BRLCK"\r\n' + b"1\r\n0\r\n" * 60)
put("profile_fuzz", "msdos", b"[Paths]\r\nWinDir=C:\\WINDOWS\r\n\r\n[Options]\r\nBootMenu=0\r\n;x\r\nAutoScan=1\r\n")
