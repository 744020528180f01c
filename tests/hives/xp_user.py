"""The hive of a user of Windows XP after some months: what the system, its shell and a few programs keep there."""
import struct

from regf_writer import Hive, descriptor, sid, utf16

NONE, SZ, EXPAND_SZ, BINARY, DWORD, DWORD_BIG_ENDIAN, LINK, MULTI_SZ, RESOURCES, FULL_RESOURCES, REQUIREMENTS, QWORD = range(12)

SYSTEM, ADMINISTRATORS, RESTRICTED = sid(5, 18), sid(5, 32, 544), sid(5, 12)
USER = sid(5, 21, 1417001333, 854245398, 1801674531, 1004)
ALL, READ, INHERITED = 0xF003F, 0x20019, 0x03
OWN = descriptor(USER, SYSTEM, (INHERITED, ALL, USER), (INHERITED, ALL, SYSTEM), (INHERITED, ALL, ADMINISTRATORS),
                 (INHERITED, READ, RESTRICTED))
POLICIES = descriptor(ADMINISTRATORS, SYSTEM, (INHERITED, READ, USER), (INHERITED, ALL, SYSTEM),
                      (INHERITED, ALL, ADMINISTRATORS), (INHERITED, READ, RESTRICTED))
SECRET = descriptor(SYSTEM, SYSTEM, (INHERITED, ALL, SYSTEM))

MS = "Software\\Microsoft\\"
CURRENT = MS + "Windows\\CurrentVersion\\"
EXPLORER = CURRENT + "Explorer\\"


def text(words):
    return SZ, utf16(words + "\0")


def path(words):
    return EXPAND_SZ, utf16(words + "\0")


def number(value):
    return DWORD, struct.pack("<I", value)


def noise(seed, length):
    """Bytes without a pattern, the same in every run."""
    out, state = bytearray(), seed * 2654435761 & 0xFFFFFFFF
    while len(out) < length:
        state = (state * 1664525 + 1013904223) & 0xFFFFFFFF
        out.append(state >> 24)
    return BINARY, bytes(out)


PLACES = ["AppData", "Cache", "Cookies", "Desktop", "Favorites", "History", "NetHood", "Personal", "PrintHood", "Programs", "Recent",
          "SendTo", "Start Menu", "Startup", "Templates"]
CLASSES = {EXPLORER + "RunMRU": "Shell", "Software\\Intel": "Application User Data", EXPLORER + "MenuOrder\\Start Menu": "Menu order"}


def values():
    """Keys, with the names and contents of their values: text, a number, or its type and data."""
    for name, value in {"ForegroundLockTimeout": 200000, "Pattern": "(None)", "SCRNSAVE.EXE": "C:\\WINDOWS\\System32\\logon.scr",
                        "UserPreferencesMask": (BINARY, b"\x9e\x3e\x07\x80"), "OriginalWallpaper": "",
                        "Wallpaper": "C:\\WINDOWS\\web\\wallpaper\\Bliss.bmp", "WallpaperStyle": "2"}.items():
        yield "Control Panel\\Desktop", name, value
    yield from (("Control Panel\\don't load", name, "No") for name in ("ncpa.cpl", "odbccp32.cpl"))
    yield "Control Panel\\Sound", "Beep", "yes"
    yield CURRENT + "Policies\\Explorer", "NoDriveTypeAutoRun", 0x91
    yield MS + "Windows NT\\CurrentVersion\\Devices", "Fax", "winspool,Ne00:"
    yield CURRENT + "Run", "ctfmon.exe", "C:\\WINDOWS\\system32\\ctfmon.exe"
    for name in PLACES:
        yield EXPLORER + "Shell Folders", name, "C:\\Documents and Settings\\Anna\\" + name
        yield EXPLORER + "User Shell Folders", name, path("%USERPROFILE%\\" + name)
    for number_, (where, name, length) in enumerate((("StartPage", "ProgramsCache", 19242), ("StartPage", "FavoritesResolve", 1600),
                                                     ("TrayNotify", "IconStreams", 5440), ("MenuOrder\\Start Menu", "Order", 1200))):
        yield EXPLORER + where, name, noise(number_, length)
    for zone in range(5):
        for action in range(0x1400, 0x1436):
            yield CURRENT + "Internet Settings\\Zones\\%d" % zone, "%X" % action, action % 4
    for number_ in range(45):
        yield EXPLORER + "FileExts\\.%d\\OpenWithProgids" % number_, "file", (NONE, b"")
        yield EXPLORER + "FileExts\\.%d\\OpenWithList" % number_, "a", "notepad.exe"
        yield MS + "Windows\\ShellNoRoam\\Bags\\%d\\Shell" % number_, "WinPos1024x768(1).left", number_ * 16
        yield MS + "Windows\\ShellNoRoam\\Bags\\%d\\Shell" % number_, "ItemPos1024x768(1)", noise(number_, 40 + number_ * 9)
        yield MS + "Windows\\ShellNoRoam\\BagMRU\\0\\%d" % (number_ % 9), str(number_), noise(number_, 61)
    for i in range(130):
        yield MS + "Windows\\ShellNoRoam\\MUICache", "@C:\\WINDOWS\\system32\\shell%02d.dll,-%d" % (i % 7, 4000 + i), "Text %d" % i
    for i in range(230):
        name = "%08x" % (i * 0x9E3779B1 & 0xFFFFFFFF)
        yield MS + "Advanced INF Setup\\Zone Info\\RegBackup\\0", name, noise(i, 4 + i % 90)
        yield MS + "Advanced INF Setup\\Zone Info\\RegBackup\\0.map", name, ",1,HKCU,Software\\Microsoft\\Zone%d," % i


def every_type(hive):
    where = "Software\\Example Vendor\\Types"
    for kind, data in [(NONE, b""), text("text"), path("%TEMP%"), (BINARY, b"\0\1\2"), number(7), (DWORD_BIG_ENDIAN, b"\0\0\0\7"),
                       (LINK, utf16("\\Registry\\User")), (MULTI_SZ, utf16("one\0two\0\0")), (RESOURCES, bytes(20)),
                       (FULL_RESOURCES, bytes(16)), (REQUIREMENTS, bytes(32)), (QWORD, bytes(8)), (0xFFFF0012, b"device")]:
        hive.set(where, "type %d" % kind, kind, data)
    hive.set(where, "text without its end", SZ, utf16("cut off")[:-1])
    hive.set(where, "number of eight bytes", DWORD, bytes(8))
    hive.set(where, "Gr\u00f6\u00dfe", *text("Gr\u00f6\u00dfe"))
    hive.set(where, "\u0420\u0430\u0437\u043c\u0435\u0440", *text("\u0440\u0430\u0437\u043c\u0435\u0440"))
    hive.set(where, "with \\ and \0 inside", *text("x"))


def months_of_use(hive):
    """What is deleted and grown again leaves free cells and remnants behind."""
    for round_ in range(3):
        for entry in range(60):
            hive.set(EXPLORER + "RecentDocs", str(entry), *noise(round_ * 60 + entry, 40 + (entry * 37 + round_ * 11) % 160))
        for program in range(40):
            hive.set("Software\\Uninstalled %d\\Window %d" % (round_, program % 5), "place %d" % program, *noise(program, 12 + program * 5))
        hive.delete_key(hive.key("Software\\Uninstalled %d" % round_))
    for entry in range(0, 60, 3):
        hive.delete_value(hive.key(EXPLORER + "RecentDocs"), str(entry))


def xp_user():
    hive = Hive(3, "\\Documents and Settings\\Anna\\ntuser.dat", OWN)
    hive.key(CURRENT + "Policies", security=POLICIES)
    hive.key("Software\\Policies", security=POLICIES)
    hive.key(MS + "Protected Storage System Provider\\S-1-5-21-1417001333-854245398-1801674531-1004", security=SECRET)
    for where, name in CLASSES.items():
        hive.key(where, class_name=name)
    for where, name, value in values():
        hive.set(where, name, *(value if isinstance(value, tuple) else number(value) if isinstance(value, int) else text(value)))
    every_type(hive)
    months_of_use(hive)
    hive.sequence = 75
    return hive
