"""Lets every system call of an Apply fail in turn, once and from then on, and lets the process die there: in the program, in
the tool that loads the hive and in the one that unloads it. The hive must be the old or the new one, the answer true, and the
next Apply must heal what is left.

usage: every_call_fails.py BIN_FOLDER [STRIDE]      one case in so many, otherwise BRITLOCK_CASES or 600 of all, evenly
"""
import glob
import os
import re
import shutil
import subprocess
import sys
import tempfile
import collections

import hivex

bin_folder = os.path.abspath(sys.argv[1])
folder = tempfile.mkdtemp(prefix="brightlock-calls-")
disk, state, tools = (folder + "/" + name for name in ("disk", "state", "tools"))
profile = disk + "/Documents and Settings/Anna"
hive = profile + "/NTUSER.DAT"
password = "secret"

# What a call may plausibly fail with; all others fail with EIO.
ERRORS = {
    "openat": ("EMFILE", "EACCES"), "open": ("EMFILE",), "write": ("ENOSPC", "EIO"), "pwrite64": ("ENOSPC", "EIO"),
    "copy_file_range": ("ENOSPC", "EXDEV"), "sendfile": ("EIO", "EINVAL"), "mmap": ("ENOMEM",),
    "memfd_create": ("EMFILE",), "mprotect": ("ENOMEM",), "fcntl": ("EMFILE",), "renameat": ("EACCES", "ENOSPC"),
    "fchown": ("EPERM",), "fchmod": ("EPERM",), "socketpair": ("EMFILE",), "clone": ("EAGAIN",), "clone3": ("EAGAIN",),
    "vfork": ("EAGAIN",), "execve": ("ENOMEM",), "pidfd_open": ("EMFILE",), "flock": ("ENOLCK",),
}
# That fail for nobody, or whose failure means nothing: what ends a process and what waits; and brk, which answers to a failure
# with where the break still is, not with an error.
NEVER = {"brk", "wait4", "poll", "futex", "geteuid", "munmap", "exit_group", "exit", "rt_sigreturn", "restart_syscall", "arch_prctl", "set_tid_address", "set_robust_list", "rseq"}


def set_password():
    stored = bytes(a ^ b for a, b in zip(password.encode(), b"7392" * 5)).decode("latin-1")
    software = hivex.Hivex(disk + "/WINDOWS/system32/config/software", write=True)
    key = software.root()
    for part in ("Morvane", "BRLCK"):
        key = software.node_get_child(key, part) or software.node_add_child(key, part)
    software.node_set_value(key, {"key": "UserPW", "t": 1, "value": (stored + "\0").encode("utf-16-le")})
    software.commit(None)


def make_tool():
    """A regg.exe that runs the real one under strace where the environment asks for it: the first one loads, the second unloads."""
    os.mkdir(tools)
    shutil.copy(bin_folder + "/britlock", tools)
    with open(tools + "/regg.exe", "w") as tool:
        tool.write('#!/bin/sh\nset -C\nfor number in load unload spare; do (: > "$TRACE.$number") 2>/dev/null && break; done\n'
                   '[ "$number" = "$TRACED" ] && exec strace -f -o "$TRACE" $INJECT "%s/regg.exe"\n'
                   'exec "%s/regg.exe"\n' % (bin_folder, bin_folder))
    os.chmod(tools + "/regg.exe", 0o755)


def make_set():
    ones = lambda count: b",".join([b"1"] * count) + b"\r\n"
    with open(folder + "/set.brl", "wb") as brl:
        brl.write(b'"BRLCK"\r\n"NEVER EDIT THIS FILE!"\r\n' + ones(10) + ones(1) * 39 + ones(10) + ones(8)
                  + b'"C:\\WINDOWS\\x.bmp"\r\n' + ones(1) + b'3\r\n' + b'"PROGRAM.EXE"\r\n' * 3 + ones(26) + ones(8)
                  + ones(10) + b'"1","2"\r\n"C:\\"\r\n')


def content():
    """Keys and values of the hive as another reader sees them, without times; None where it cannot."""
    def walk(reader, node):
        values = sorted((reader.value_key(v), reader.value_value(v)) for v in reader.node_values(node))
        return reader.node_name(node), values, [walk(reader, child) for child in reader.node_children(node)]
    try:
        reader = hivex.Hivex(hive)
        return walk(reader, reader.root())
    except RuntimeError:
        return None


def copy(to, of):
    for name in ("/disk", "/state"):
        shutil.rmtree(to + name, ignore_errors=True)
        shutil.copytree(of + name, to + name, symlinks=True)


def apply(process=None, inject=()):
    words = [tools + "/britlock", "apply", folder + "/set.brl", "--user", "Anna", "--machine", disk, "--state", state,
             "--password-fd", "0"]
    trace = folder + "/trace"
    for old_trace in glob.glob(trace + ".*"):
        os.remove(old_trace)
    environment = dict(os.environ, TRACED=process or "", TRACE=trace, INJECT=" ".join(inject))
    if process == "program":
        words = ["strace", "-o", trace, *inject, *words]
    try:
        done = subprocess.run(words, input=password + "\n", text=True, capture_output=True, env=environment, timeout=60)
    except subprocess.TimeoutExpired:
        return None, "it hangs"
    return done.returncode, done.stdout + done.stderr


def calls_of(process):
    """How often each system call is made after the process is itself."""
    while True:
        copy(folder, folder + "/fresh")
        apply(process)
        calls = re.findall(r"^(?:\d+ +)?(\w+)\(", open(folder + "/trace").read(), re.MULTILINE)
        # The one that loads reads the hive. The second tool is started while the first begins, and may overtake it.
        if process == "program" or ("sendfile" in calls) == (process == "load"):
            return collections.Counter(calls)


def cases():
    for process in ("program", "load", "unload"):
        for call, count in sorted(calls_of(process).items()):
            if call in NEVER:
                continue
            for n in range(1, count + 1):
                yield process, "%s:signal=KILL:when=%d" % (call, n)
                for error in ERRORS.get(call, ("EIO",)):
                    yield from ((process, "%s:error=%s:when=%d%s" % (call, error, n, lasting)) for lasting in ("", "+"))


def fault_of(process, injected, old, new):
    copy(folder, folder + "/fresh")
    code, said = apply(process, ("-e", "inject=" + injected))
    found = content()
    if code is None:
        return said, ""
    # A run-time error ends the writing half-way, and what is written till then stands.
    half = code == 1 and "run-time error" in said and found is not None
    if found not in (old, new) and not half:
        return "the hive is neither the old nor the new one", said
    if code == 0 and found != new:
        return "done was said, and the hive is the old one", said
    if code > 0 and found == new and "KILL" not in injected:  # of what died nobody can tell
        return "a failure was told, and the hive is the new one", said
    end = "new" if found == new else "old" if found == old else "half new"
    results[(process, "KILL" if "KILL" in injected else "error", code, end)] += 1
    code, said = apply()
    if code != 0 or content() != new:
        return "the next Apply does not heal it: exit code %d" % code, said
    left = [name for name in os.listdir(profile) if name.startswith(".brightlock")]
    left += [name for place in os.walk(state + "/mounts") for name in place[2]]
    return ("left behind: " + " ".join(left), said) if left else None


failed = tried = 0
results = collections.Counter()
try:
    subprocess.run([bin_folder + "/britlock", "--make-sample", disk], check=True)
    os.mkdir(state, 0o700)
    set_password()
    make_tool()
    make_set()
    copy(folder + "/fresh", folder)
    old, (code, said), new = content(), apply(), content()
    assert code == 0 and old and new and old != new, said
    every = list(cases())
    stride = int(sys.argv[2]) if len(sys.argv) > 2 else max(1, len(every) // int(os.environ.get("BRITLOCK_CASES", 600)))
    for process, injected in every[::stride]:
        tried += 1
        if fault := fault_of(process, injected, old, new):
            failed += 1
            print("%s, %s: %s\n%s" % (process, injected, *fault), flush=True)
    for result, count in sorted(results.items()):
        print("%5d  %s: %s, exit code %d, the hive is the %s one" % (count, *result))
    print("%d of %d cases, %d failed" % (tried, len(every), failed))
finally:
    shutil.rmtree(folder, ignore_errors=True)
sys.exit(failed > 0 or tried < 10)
