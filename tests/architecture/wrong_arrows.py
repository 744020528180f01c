"""Plants wrong arrows in a copy of the sources and of what the build tells of them: each must be found.

usage: wrong_arrows.py PYTHON -B tools/floors BUILD
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile

*tool, build = sys.argv[1:]
floors = (pathlib.Path(build) / "floors.txt").read_text()
commands = (pathlib.Path(build) / "compile_commands.json").read_text()
source = pathlib.Path(floors.splitlines()[0].split("|")[2])
views = "-I%s/layers/" % build
qt = next(word for word in commands.split() if word.endswith("/qt6/QtWidgets"))

# What is planted: a line for a file of the sources, or words to be replaced in what the build tells. What is said of it.
ARROWS = [
    ("engine/applets.cpp", "#include <unistd.h>", "engine/applets.cpp:1: includes <unistd.h>"),
    ("platform/numbers.h", "#  include <windows.h>", "platform/numbers.h:1: includes <windows.h>"),
    ("users/target.cpp", "#include <QString>", "users/target.cpp:1: includes <QString>"),
    ("users/target.h", '#include "ui/main_form.h"', "a circle: engine -> users -> ui -> "),
    ("commands", views + "engine ", views + "engine " + views + "toolkit_qt ", "engine reaches toolkit/qt/qt_toolkit.h"),
    ("commands", views + "ui ", "%sui -isystem %s " % (views, qt), "ui reaches QWidget"),
    ("commands", views + "files ", "", "files does not reach its own"),
    ("floors", "startup files report", "startup machine_offline files report", "an implementation, is linked into the program"),
    ("floors", "|machine\n", "|machine ui\n", "a circle: "),
]


def is_found(arrow):
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place)
        shutil.copytree(source / "src", folder / "src")
        (folder / "floors.txt").write_text(floors.replace("|%s|" % source, "|%s|" % folder))
        (folder / "compile_commands.json").write_text(commands)
        where, what, *instead, said = arrow
        file = folder / {"floors": "floors.txt", "commands": "compile_commands.json"}.get(where, "src/" + where)
        whole = file.read_text()
        assert not instead or what in whole, "nothing to plant: " + what
        file.write_text(whole.replace(what, instead[0]) if instead else what + "\n" + whole)
        run = subprocess.run(tool + [place], text=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        if run.returncode == 1 and said in run.stderr:
            return True
        print("not found: %s\n%d %s" % (arrow, run.returncode, run.stderr))


sys.exit(not all([is_found(arrow) for arrow in ARROWS]))
