#!/usr/bin/python3
"""Dumps a hive through another reader, in the form of dump(): the judge of what we read and write."""
import sys

import hivex


def escaped(name):
    units = name.encode("utf-16-le", "surrogatepass")
    out = ""
    for i in range(0, len(units), 2):
        u = units[i] | units[i + 1] << 8
        out += chr(u) if 0x20 < u < 0x7F and u != 0x5C else "\\u%04x" % u
    return out


def main(path):
    hive = hivex.Hivex(path)
    todo = [(hive.root(), "")]
    out = []
    while todo:
        node, where = todo.pop()
        out.append("K " + where)
        for value in hive.node_values(node):
            kind, data = hive.value_value(value)
            out.append("V %s %s %d %s" % (where, escaped(hive.value_key(value)), kind & 0xFFFFFFFF, data.hex()))
        children = [(child, where + "/" + escaped(hive.node_name(child))) for child in hive.node_children(node)]
        todo.extend(reversed(children))
    sys.stdout.write("\n".join(out) + "\n")


main(sys.argv[1])
