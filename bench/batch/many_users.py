#!/usr/bin/python3
"""Restricts many users of an installation made for it, two times over: how long, with how much memory, and
whether the second run changes a byte. One hive is damaged, one is locked.

usage: many_users.py BIN_FOLDER [COUNT [HIVE]]   (300; a hive to give every user, otherwise the sample's own)"""
import fcntl, hashlib, os, resource, shutil, subprocess, sys, tempfile, time

import hivex

bin_folder = os.path.abspath(sys.argv[1])
folder = tempfile.mkdtemp(prefix="brightlock-")
disk = folder + "/disk"
profiles = disk + "/Documents and Settings"
britlock = bin_folder + "/britlock"
password = "secret"


def hive_of(user):
    return f"{profiles}/{user}/NTUSER.DAT"


def set_password():
    stored = bytes(a ^ b for a, b in zip(password.encode(), b"7392" * 5)).decode("latin-1")
    name = next(n for n in os.listdir(disk) if n.lower() == "windows")
    software = hivex.Hivex(f"{disk}/{name}/system32/config/software", write=True)
    key = software.root()
    for part in ("Morvane", "BRLCK"):
        key = software.node_get_child(key, part) or software.node_add_child(key, part)
    software.node_set_value(key, {"key": "UserPW", "t": 1, "value": (stored + "\0").encode("utf-16-le")})
    software.commit(None)


def digests():
    return {u: hashlib.sha256(open(hive_of(u), "rb").read()).hexdigest() for u in os.listdir(profiles)
            if os.path.exists(hive_of(u))}


def run(*words):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    start = time.monotonic()
    done = subprocess.run([britlock, *words, "--machine", disk, "--state", folder + "/state", "--password-fd", "0"],
                          input=password + "\n", capture_output=True, text=True)
    seconds = time.monotonic() - start
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    cpu = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    lines = done.stdout.splitlines()
    good = sum(line.endswith(": done") for line in lines)
    print(f"{words[0]}: exit code {done.returncode}, {len(lines)} lines, {good} done, {seconds:.1f} s, "
          f"{cpu:.1f} s of processor, at most {after.ru_maxrss / 1024:.0f} MB in one process")
    print(*(["  " + line for line in lines if not line.endswith(": done")][:6] if words[0] == "apply" else []),
          *("  " + line for line in done.stderr.splitlines()), sep="\n", end="\n")
    return done


def changed(before, after):
    return sum(before[user] != after[user] for user in before)


try:
    subprocess.run([britlock, "--make-sample", disk], check=True)
    set_password()
    source = sys.argv[3] if len(sys.argv) > 3 else hive_of("Anna")
    for number in range(int(sys.argv[2]) if len(sys.argv) > 2 else 300):
        os.makedirs(f"{profiles}/pupil{number:03}")
        shutil.copy(source, hive_of(f"pupil{number:03}"))
        os.chmod(hive_of(f"pupil{number:03}"), 0o600)
    print(f"a hive has {os.path.getsize(source)} bytes")
    with open(folder + "/set.brl", "wb") as brl:
        ones = lambda count: b",".join([b"1"] * count) + b"\r\n"
        brl.write(b'"BRLCK"\r\n"NEVER EDIT THIS FILE!"\r\n' + ones(10) + ones(1) * 39 + ones(10) + ones(8) +
                  b'"C:\\WINDOWS\\x.bmp"\r\n' + ones(1) + b'20\r\n' + b'"PROGRAM.EXE"\r\n' * 20 + ones(26) + ones(8) +
                  ones(10) + b'"1","2"\r\n"C:\\"\r\n')
    with open(hive_of("pupil010"), "r+b") as damaged:
        damaged.seek(0x1000)
        damaged.write(b"nope")
    locked = open(hive_of("pupil020"), "rb")
    fcntl.flock(locked, fcntl.LOCK_EX)

    fresh = digests()
    run("apply", folder + "/set.brl", "--all-users")
    first = digests()
    run("apply", folder + "/set.brl", "--all-users")
    second = digests()
    shown = run("show", "--json", "--all-users")
    print(f"hives changed by the first run: {changed(fresh, first)}, by the second: {changed(first, second)}, "
          f"by show: {changed(second, digests())}; of the damaged and the locked one: "
          f"{changed({u: fresh[u] for u in ('pupil010', 'pupil020')}, second)}")
    ticked = shown.stdout.count('"c11"')
    print(f"users shown with box 11 ticked: {ticked}")
finally:
    shutil.rmtree(folder)
