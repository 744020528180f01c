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

# key: values; a value without a type is text, a number a DWORD.
PLAIN = {
    "Control Panel\\Desktop": {"ForegroundLockTimeout": 200000, "Pattern": "(None)", "ScreenSaveActive": "1",
                               "SCRNSAVE.EXE": "C:\\WINDOWS\\System32\\logon.scr", "TileWallpaper": "0",
                               "UserPreferencesMask": (BINARY, b"\x9e\x3e\x07\x80"), "OriginalWallpaper": "",
                               "Wallpaper": "C:\\WINDOWS\\web\\wallpaper\\Bliss.bmp", "WallpaperStyle": "2"},
    "Control Panel\\don't load": {"ncpa.cpl": "No", "odbccp32.cpl": "No"},
    "Control Panel\\Sound": {"Beep": "yes", "ExtendedSounds": "yes"},
    CURRENT + "Policies\\Explorer": {"NoDriveTypeAutoRun": 0x91},
    CURRENT + "Run": {"ctfmon.exe": "C:\\WINDOWS\\system32\\ctfmon.exe"},
    EXPLORER + "Shell Folders": {name: "C:\\Documents and Settings\\Anna\\" + name for name in PLACES},
    EXPLORER + "User Shell Folders": {name: path("%USERPROFILE%\\" + name) for name in PLACES},
    EXPLORER + "StartPage": {"ProgramsCache": noise(4, 19242), "FavoritesResolve": noise(5, 1600)},
    EXPLORER + "TrayNotify": {"IconStreams": noise(6, 5440), "PastIconsStream": noise(7, 6692)},
    EXPLORER + "RecentDocs": {str(i): noise(20 + i, 90 + 4 * i) for i in range(60)},
}
# Keys with a bit of everything in them, or with nothing.
OTHERS = """Console|Control Panel\\Accessibility\\HighContrast|Control Panel\\Accessibility\\MouseKeys|Control Panel\\Appearance|
Control Panel\\Colors|Control Panel\\Cursors|Control Panel\\International|Control Panel\\Mouse|Environment|
Identities\\{6C1F4B0E-93D1-4E77-8E53-20AF1D5B7C11}|Keyboard Layout\\Preload|Keyboard Layout\\Toggle|Printers\\Connections|
Printers\\DevModePerUser|Software\\Microsoft\\Internet Explorer\\Main|Software\\Microsoft\\Internet Explorer\\TypedURLs|
Software\\Microsoft\\Windows NT\\CurrentVersion\\Devices|Software\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon|
UNICODE Program Groups|Windows 3.1 Migration Status\\Groups""".replace("\n", "").split("|")
CLASSES = {EXPLORER + "FileExts\\.txt\\OpenWithList": "Shell", EXPLORER + "RunMRU": "Shell",
           "Software\\Intel": "Application User Data", "Software\\Intel\\Indeo": "Application User Data",
           "AppEvents\\Schemes\\Apps\\Explorer": "Shell"}


def typed(value):
    if isinstance(value, tuple):
        return value
    return number(value) if isinstance(value, int) else text(value)


def fill(hive, table):
    for where, values in table.items():
        hive.key(where)
        for name, value in values.items():
            hive.set(where, name, *typed(value))


def others(hive):
    for number_, where in enumerate(OTHERS):
        hive.key(where)
        for i in range(number_ * 7 % 24):
            kinds = number(i * i), text("Text %d" % i), path("%%SystemRoot%%\\part%d" % i), noise(i, 40 * i)
            hive.set(where, "Value %d" % i, *kinds[i % 4])


def sounds(hive):
    for i in range(30):
        hive.set("AppEvents\\EventLabels\\Sound%d" % i, "DispFileName", *text("@mmsys.cpl,-%d" % (5824 + i)))
        for scheme in (".Current", ".Default"):
            hive.set("AppEvents\\Schemes\\Apps\\.Default\\Sound%d\\%s" % (i, scheme), "", *path("%%SystemRoot%%\\media\\%d.wav" % i))


def zones(hive):
    for zone in range(5):
        where = CURRENT + "Internet Settings\\Zones\\%d" % zone
        fill(hive, {where: {"": "", "DisplayName": "Zone %d" % zone, "Flags": 0x21 << zone}})
        for action in range(0x1400, 0x1436):
            hive.set(where, "%X" % action, *number(action % 4))


def shell(hive):
    for ending in range(45):
        where = EXPLORER + "FileExts\\.%d" % ending
        hive.set(where + "\\OpenWithProgids", "file", NONE, b"")
        fill(hive, {where + "\\OpenWithList": {"a": "notepad.exe", "MRUList": "a"}})
    for group in ("Favorites", "Start Menu", "Start Menu2\\Programs", "Start Menu2\\Programs\\Accessories"):
        key = hive.key(EXPLORER + "MenuOrder\\" + group, class_name="Menu order")
        hive.set(key, "Order", *noise(len(group), 300 + 90 * len(group)))
    for bag in range(1, 45):
        hive.set(MS + "Windows\\ShellNoRoam\\Bags\\%d\\Shell" % bag, "WinPos1024x768(1).left", *number(bag * 16))
        hive.set(MS + "Windows\\ShellNoRoam\\Bags\\%d\\Shell" % bag, "ItemPos1024x768(1)", *noise(bag, 40 + bag * 9))
        hive.set(MS + "Windows\\ShellNoRoam\\BagMRU\\0\\%d" % (bag % 9), str(bag), *noise(bag, 61))
    for entry in range(130):
        hive.set(MS + "Windows\\ShellNoRoam\\MUICache", "@C:\\WINDOWS\\system32\\shell%02d.dll,-%d" % (entry % 7, 4000 + entry),
                 *text("Text %d" % entry))
    for entry in range(230):
        hive.set(MS + "Advanced INF Setup\\Zone Info\\RegBackup\\0", "%08x" % (entry * 0x9E3779B1 & 0xFFFFFFFF),
                 *noise(entry, 4 + entry % 90))
        hive.set(MS + "Advanced INF Setup\\Zone Info\\RegBackup\\0.map", "%08x" % (entry * 0x9E3779B1 & 0xFFFFFFFF),
                 *text(",1,HKCU,Software\\Microsoft\\Zone%d," % entry))


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
            hive.set("Software\\Uninstalled %d\\Settings\\Window %d" % (round_, program % 5), "place %d" % program,
                     *noise(program, 12 + program * 5))
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
    for store in ("ca", "disallowed", "trust", "TrustedPublisher"):
        for part in ("Certificates", "CRLs", "CTLs"):
            for place in ("Software\\Policies\\Microsoft\\SystemCertificates\\", MS + "SystemCertificates\\"):
                hive.key(place + store + "\\" + part)
    fill(hive, PLAIN)
    others(hive)
    sounds(hive)
    zones(hive)
    shell(hive)
    every_type(hive)
    months_of_use(hive)
    hive.sequence = 75
    return hive
