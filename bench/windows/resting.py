#!/usr/bin/env python3
"""The Windows edition at rest, in 32-bit Wine beside Wine's own notepad: time from start to window, memory and processor time
of the idle program, processor time while the hive tool takes ten seconds.

Memory is what is private and written to, as Linux counts it (Private_Dirty in /proc/PID/smaps_rollup): Wine's libraries count
for both programs. ./check windows must have run before; the screen is one of its own (Xvfb).

usage: resting.py [RUNS]
"""
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import time

root = pathlib.Path(__file__).resolve().parent.parent.parent
stage = root / "build/windows/bench"
drive = stage / "prefix-winxp/drive_c"
folder = drive / "Program Files/Brightlock Suite"
program = r"C:\Program Files\Brightlock Suite\britlock.exe"
main_window = "^Brightlock Suite$"
runs = int(sys.argv[1]) if len(sys.argv) > 1 else 9
ticks = os.sysconf("SC_CLK_TCK")


def inside(*words, **options):
    return subprocess.Popen([root / "tools/wine32", stage, "winxp", *words], stderr=subprocess.DEVNULL, **options)


def xdotool(*words):
    return subprocess.run(["xdotool", *words], capture_output=True, text=True, timeout=60, check=False).stdout


def wait_for(title):
    while not xdotool("search", "--onlyvisible", "--name", title).strip():
        time.sleep(0.005)


def process(name):
    """The number of the program itself, not of what has started it."""
    for entry in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if (entry / "cmdline").read_bytes().split(b"\0")[0].endswith(name.encode()):
                return int(entry.name)
        except OSError:
            pass
    raise SystemExit(f"{name} does not run")


def seconds_used(number):
    words = pathlib.Path(f"/proc/{number}/stat").read_text().rpartition(")")[2].split()
    return (int(words[11]) + int(words[12])) / ticks


def private_kilobytes(number):
    text = pathlib.Path(f"/proc/{number}/smaps_rollup").read_text()
    return next(int(line.split()[1]) for line in text.splitlines() if line.startswith("Private_Dirty:"))


def used_within(number, length):
    before = seconds_used(number)
    time.sleep(length)
    return 1000 * (seconds_used(number) - before) / length


def start(words, title):
    begin = time.monotonic()
    running = inside(*words)
    wait_for(title)
    return running, time.monotonic() - begin


def stop(running, name):
    os.kill(process(name), 9)
    running.wait()
    time.sleep(0.5)


def install():
    shutil.rmtree(stage, ignore_errors=True)
    stage.mkdir()
    for file in ("en/britlock-setup.exe", "bin/stage_hand.exe"):
        shutil.copy(root / "build/windows" / file, stage)
    inside("wine", "/build/britlock-setup.exe", "/S").wait()
    inside("wine", "reg", "add", r"HKLM\Software\Morvane\BRLCK", "/v", "ProfileMainPath", "/d", "C:\\Profiles\\", stdout=subprocess.DEVNULL).wait()
    inside("wine", "/build/stage_hand.exe", "anna", r"C:\Profiles").wait()
    (drive / "MSDOS.SYS").touch()
    (folder / "regg.exe").rename(folder / "regg-real.exe")
    shutil.copy(stage / "stage_hand.exe", folder / "regg.exe")


def press(*steps):
    for step in steps:
        time.sleep(0.7)
        xdotool(*step)


def set_password():
    running, _ = start(["wine", program], "Set a Password")
    press(["key", "Return"], ["type", "secret"], ["key", "Tab"], ["type", "secret"], ["key", "Return"], ["key", "Return"])
    wait_for(main_window)
    stop(running, "britlock.exe")


def start_program(*before):
    """From start to the question for the password, and from the answer to the main window."""
    running, asked = start([*before, "wine", program], "Enter Password")
    time.sleep(0.5)
    xdotool("type", "secret")
    time.sleep(0.5)
    begin = time.monotonic()
    xdotool("key", "Return")
    wait_for(main_window)
    return running, asked, time.monotonic() - begin


def main():
    install()
    inside("wineserver", "--persistent").wait()
    set_password()
    times = {"notepad": [], "britlock, password": [], "britlock, main window": []}
    for _ in range(runs):
        running, took = start(["wine", "notepad"], "Notepad")
        times["notepad"].append(took)
        stop(running, "notepad.exe")
        running, asked, opened = start_program()
        times["britlock, password"].append(asked)
        times["britlock, main window"].append(opened)
        stop(running, "britlock.exe")
    for name, took in times.items():
        print("%-22s %4.0f ms, median of %d" % (name, 1000 * statistics.median(took), runs))

    running, _ = start(["wine", "notepad"], "Notepad")
    time.sleep(2)
    print("notepad                %d KB of private memory" % private_kilobytes(process("notepad.exe")))
    stop(running, "notepad.exe")

    running, _, _ = start_program("/usr/bin/env", "BRITLOCK_PAUSE=10000")
    time.sleep(3)
    number = process("britlock.exe")
    print("britlock, idle         %d KB of private memory, %.1f ms of processor a second"
          % (private_kilobytes(number), used_within(number, 20)))
    window = xdotool("search", "--onlyvisible", "--name", main_window).split()[-1]
    xdotool("mousemove", "--window", window, "200", "380", "click", "1")
    press(["key", "Home"], ["key", "Return"])
    time.sleep(1)
    process("regg.exe")  # it is at it
    print("britlock, tool at work %.1f ms of processor a second" % used_within(number, 6))
    stop(running, "britlock.exe")


screen = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp"],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
os.environ["DISPLAY"] = ":" + screen.stdout.readline().strip()
manager = subprocess.Popen(["openbox"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
try:
    main()
finally:
    inside("wineserver", "--kill").wait()
    manager.terminate()
    screen.terminate()
