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


SOUNDS = """.Default AppGPFault Close CriticalBatteryAlarm DeviceConnect DeviceDisconnect DeviceFail LowBatteryAlarm
MailBeep Maximize MenuCommand MenuPopup Minimize Open PrintComplete RestoreDown RestoreUp ShowBand SystemAsterisk
SystemExclamation SystemExit SystemHand SystemNotification SystemQuestion SystemStart WindowsLogoff WindowsLogon""".split()
PLACES = {"AppData": "Application Data", "Cache": "Local Settings\\Temporary Internet Files", "Cookies": "Cookies",
          "Desktop": "Desktop", "Favorites": "Favorites", "History": "Local Settings\\History",
          "Local AppData": "Local Settings\\Application Data", "My Pictures": "My Documents\\My Pictures",
          "NetHood": "NetHood", "Personal": "My Documents", "PrintHood": "PrintHood", "Programs": "Start Menu\\Programs",
          "Recent": "Recent", "SendTo": "SendTo", "Start Menu": "Start Menu", "Startup": "Start Menu\\Programs\\Startup",
          "Templates": "Templates"}
COLORS = """ActiveBorder ActiveTitle AppWorkSpace Background ButtonAlternateFace ButtonDkShadow ButtonFace ButtonHilight
ButtonLight ButtonShadow ButtonText GradientActiveTitle GradientInactiveTitle GrayText Hilight HilightText HotTrackingColor
InactiveBorder InactiveTitle InactiveTitleText InfoText InfoWindow Menu MenuBar MenuHilight MenuText Scrollbar TitleText
Window WindowFrame WindowText""".split()
ENDINGS = """.ai .asf .asx .avi .bmp .cab .css .csv .dib .doc .dot .emf .eps .gif .hlp .htm .html .ico .inf .ini .jpeg .jpg
.js .log .mid .mp3 .mpeg .mpg .pdf .png .ppt .rtf .tif .tiff .txt .url .wav .wma .wmf .wmv .wri .xls .xml .xsl .zip""".split()

# key: values; a value without a type is text, a number a DWORD.
PLAIN = {
    "Console": dict({"ColorTable%02d" % i: 0x10101 * i * 16 for i in range(16)}, CursorSize=25, FullScreen=0, FontSize=0,
                    FaceName="", HistoryBufferSize=50, InsertMode=1, PopupColors=0xF5, QuickEdit=0, ScreenBufferSize=0x12C0050,
                    ScreenColors=7, WindowSize=0x190050),
    "Control Panel\\Accessibility\\HighContrast": {"Flags": "126", "High Contrast Scheme": "High Contrast Black (large)"},
    "Control Panel\\Accessibility\\Keyboard Response": {"AutoRepeatDelay": "1000", "Flags": "126"},
    "Control Panel\\Accessibility\\MouseKeys": {"Flags": "62", "MaximumSpeed": "80", "TimeToMaximumSpeed": "3000"},
    "Control Panel\\Accessibility\\StickyKeys": {"Flags": "510"},
    "Control Panel\\Appearance": {"Current": "Windows Standard"},
    "Control Panel\\Colors": {name: "%d %d %d" % (i * 7, 255 - i * 3, i * 5) for i, name in enumerate(COLORS)},
    "Control Panel\\Current": {"Color Schemes": "Windows Standard"},
    "Control Panel\\Cursors": dict({"": "Windows Default"}, **{c: path("%%SystemRoot%%\\cursors\\%s.cur" % c.lower()) for c in
                                   "AppStarting Arrow Crosshair Hand Help IBeam No SizeAll SizeNESW SizeNS SizeNWSE SizeWE UpArrow Wait".split()}),
    "Control Panel\\Custom Colors": {"Color" + chr(65 + i): "FFFFFF" for i in range(16)},
    "Control Panel\\Desktop": {
        "ActiveWndTrkTimeout": 0, "AutoEndTasks": "0", "CaretWidth": 1, "CoolSwitch": "1", "CoolSwitchColumns": "7",
        "CoolSwitchRows": "3", "CursorBlinkRate": "530", "DragFullWindows": "1", "DragHeight": "4", "DragWidth": "4",
        "FontSmoothing": "2", "ForegroundFlashCount": 3, "ForegroundLockTimeout": 200000, "GridGranularity": "0",
        "HungAppTimeout": "5000", "LowPowerActive": "0", "MenuShowDelay": "400", "PaintDesktopVersion": 0,
        "Pattern": "(None)", "PowerOffActive": "0", "ScreenSaveActive": "1", "ScreenSaverIsSecure": "0",
        "ScreenSaveTimeOut": "600", "SCRNSAVE.EXE": "C:\\WINDOWS\\System32\\logon.scr", "TileWallpaper": "0",
        "UserPreferencesMask": (BINARY, b"\x9e\x3e\x07\x80"), "WaitToKillAppTimeout": "20000",
        "Wallpaper": "C:\\WINDOWS\\web\\wallpaper\\Bliss.bmp", "WallpaperStyle": "2", "OriginalWallpaper": "",
        "WheelScrollLines": "3"},
    "Control Panel\\don't load": {"ncpa.cpl": "No", "odbccp32.cpl": "No"},
    "Control Panel\\International": {"iCountry": "1", "iCurrDigits": "2", "iDate": "0", "iDigits": "2", "iMeasure": "1",
                                     "iTime": "0", "Locale": "00000409", "s1159": "AM", "s2359": "PM", "sCountry": "United States",
                                     "sCurrency": "$", "sDate": "/", "sDecimal": ".", "sLanguage": "ENU", "sList": ",",
                                     "sShortDate": "M/d/yyyy", "sThousand": ",", "sTime": ":", "sTimeFormat": "h:mm:ss tt"},
    "Control Panel\\Keyboard": {"InitialKeyboardIndicators": "2", "KeyboardDelay": "1", "KeyboardSpeed": "31"},
    "Control Panel\\Mouse": {"ActiveWindowTracking": 0, "DoubleClickSpeed": "500", "MouseSpeed": "1", "MouseThreshold1": "6",
                             "SnapToDefaultButton": "0", "SwapMouseButtons": "0"},
    "Control Panel\\Sound": {"Beep": "yes", "ExtendedSounds": "yes"},
    "Environment": {"TEMP": path("%USERPROFILE%\\Local Settings\\Temp"), "TMP": path("%USERPROFILE%\\Local Settings\\Temp")},
    "Identities": {"Default User ID": "{6C1F4B0E-93D1-4E77-8E53-20AF1D5B7C11}", "Identity Ordinal": 2, "Migrated5": 1},
    "Identities\\{6C1F4B0E-93D1-4E77-8E53-20AF1D5B7C11}": {"Identity Ordinal": 1, "Username": "Main Identity"},
    "Keyboard Layout\\IMEtoggle": {}, "Keyboard Layout\\Substitutes": {}, "Keyboard Layout\\Toggle": {},
    "Keyboard Layout\\Preload": {"1": "00000409", "2": "00000407"},
    "Printers\\Connections": {},
    "Printers\\DevModePerUser": {"Laser in room 12": noise(1, 732)},
    "Printers\\DevModes2": {"Laser in room 12": noise(2, 732)},
    "UNICODE Program Groups": {}, "Windows 3.1 Migration Status\\Groups": {}, "Windows 3.1 Migration Status\\IniFiles": {},
    MS + "Internet Explorer\\Main": {"Start Page": "http://www.example.org/", "Show_FullURL": "no", "Use FormSuggest": "no",
                                     "Window_Placement": noise(3, 44), "NotifyDownloadComplete": "yes", "XMLHTTP": 1},
    MS + "Internet Explorer\\TypedURLs": {"url%d" % i: "http://school.example.org/page%d.html" % i for i in range(1, 26)},
    MS + "Windows NT\\CurrentVersion\\Devices": {"Laser in room 12": "winspool,Ne00:"},
    MS + "Windows NT\\CurrentVersion\\PrinterPorts": {"Laser in room 12": "winspool,Ne00:,15,45"},
    MS + "Windows NT\\CurrentVersion\\Windows": {"Device": "Laser in room 12,winspool,Ne00:", "load": "", "Programs": "com exe bat pif cmd"},
    MS + "Windows NT\\CurrentVersion\\Winlogon": {"ParseAutoexec": "1", "ExcludeProfileDirs": "Local Settings;Temp"},
    CURRENT + "Policies\\Explorer": {"NoDriveTypeAutoRun": 0x91},
    CURRENT + "Run": {"ctfmon.exe": "C:\\WINDOWS\\system32\\ctfmon.exe"},
    CURRENT + "Internet Settings": {"EnableHttp1_1": 1, "MigrateProxy": 1, "ProxyEnable": 0, "WarnOnPost": (BINARY, b"\1\0\0\0")},
    EXPLORER + "Advanced": {"Hidden": 2, "HideFileExt": 1, "ShowSuperHidden": 0, "WebView": 1, "Filter": 0, "TaskbarSizeMove": 0},
    EXPLORER + "Shell Folders": {name: "C:\\Documents and Settings\\Anna\\" + where for name, where in PLACES.items()},
    EXPLORER + "User Shell Folders": {name: path("%USERPROFILE%\\" + where) for name, where in PLACES.items()},
    EXPLORER + "StartPage": {"ProgramsCache": noise(4, 19242), "FavoritesResolve": noise(5, 1600)},
    EXPLORER + "TrayNotify": {"IconStreams": noise(6, 5440), "PastIconsStream": noise(7, 6692)},
    EXPLORER + "RecentDocs": {str(i): noise(20 + i, 90 + 4 * i) for i in range(60)},
}
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


def sounds(hive):
    for number_, sound in enumerate(SOUNDS):
        hive.set("AppEvents\\EventLabels\\" + sound, "", *text("Sound of " + sound))
        hive.set("AppEvents\\EventLabels\\" + sound, "DispFileName", *text("@mmsys.cpl,-%d" % (5824 + number_)))
        for scheme in (".Current", ".Default"):
            hive.set("AppEvents\\Schemes\\Apps\\.Default\\%s\\%s" % (sound, scheme), "",
                     *path("%%SystemRoot%%\\media\\Windows XP %s.wav" % sound))


def zones(hive):
    for zone, name in enumerate(["My Computer", "Local intranet", "Trusted sites", "Internet", "Restricted sites"]):
        where = CURRENT + "Internet Settings\\Zones\\%d" % zone
        fill(hive, {where: {"": "", "DisplayName": name, "Icon": "inetcpl.cpl#%05d" % (4480 + zone), "Flags": 0x21 << zone}})
        for action in list(range(0x1001, 0x1007)) + list(range(0x1200, 0x1210)) + list(range(0x1400, 0x1409)) + list(
                range(0x1601, 0x160C)) + list(range(0x1800, 0x1809)):
            hive.set(where, "%X" % action, *number(action % 4))


def shell(hive):
    for ending in ENDINGS:
        where = EXPLORER + "FileExts\\" + ending
        hive.set(where + "\\OpenWithProgids", ending[1:] + "file", NONE, b"")
        if len(ending) == 4:
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
    sounds(hive)
    zones(hive)
    shell(hive)
    every_type(hive)
    months_of_use(hive)
    hive.sequence = 75
    return hive
