"""What the tools for Windows programs share: the code of a program, told from the tables that the linker puts after it."""

import re
import subprocess

# The list of constructors is the first of them: a number of -1, which is no instruction.
TABLES = re.compile(r"^[0-9a-f]+ <__CTOR_LIST__>:$|(?:^ *[0-9a-f]+:\tff +\t\(bad\)\n){3}", re.M)


def objdump(*options):
    return subprocess.run(["i686-w64-mingw32-objdump", *options], check=True, capture_output=True, text=True).stdout


def code_of(program):
    """The lines of the disassembler."""
    listing = objdump("-d", "-j", ".text", "--insn-width=16", program)
    tables = TABLES.search(listing)
    if not tables:
        raise SystemExit(f"{program}: nothing tells where its code ends")
    return listing[:tables.start()].splitlines()
