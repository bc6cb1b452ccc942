#!/usr/bin/env python3
"""Compares what a shared library shows with its golden list, or writes that anew with KQ_UPDATE_GOLDEN=1.

    exports_test.py NM LIBRARY GOLDEN HEADERS

The list holds functions and objects. Type information, virtual tables and constants are in a library wherever the
compiler has used them, so they are not listed; they have to be those of classes that a header of the folder HEADERS marks
with KQ_EXPORT.
"""
import difflib
import os
import re
import subprocess
import sys

OF_CLASS = re.compile(r"(?:typeinfo for |typeinfo name for |vtable for )kq::(\w+)|kq::(\w+)::k[A-Z]\w*")
MARKED = re.compile(r"^class KQ_EXPORT (\w+)", re.MULTILINE)


def marked_classes(folder):
    found = set()
    for name in os.listdir(folder):
        with open(os.path.join(folder, name), encoding="utf-8") as file:
            found |= set(MARKED.findall(file.read()))
    return found


def is_of(classes, name):
    match = OF_CLASS.fullmatch(name)
    return match is not None and (match[1] or match[2]) in classes


def main():
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    nm, library, golden, headers = sys.argv[1:]
    # "address type name"; a small letter is a local symbol, but for "u". Constructors and destructors are there more than
    # once under the same name.
    lines = subprocess.run([nm, "--dynamic", "--defined-only", "--demangle", library], capture_output=True, text=True,
                           check=True).stdout.splitlines()
    rows = [line.split(" ", 2) for line in lines]
    classes = marked_classes(headers)
    shown = sorted({name for _, kind, name in rows if (kind.isupper() or kind == "u") and not is_of(classes, name)})
    if os.environ.get("KQ_UPDATE_GOLDEN"):
        with open(golden, "w", encoding="utf-8") as file:
            file.writelines(f"{name}\n" for name in shown)
    with open(golden, encoding="utf-8") as file:
        expected = file.read().splitlines()
    difference = list(difflib.unified_diff(expected, shown, golden, library, n=0, lineterm=""))
    print("\n".join(difference), end="\n" if difference else "")
    return 1 if difference or not shown else 0


if __name__ == "__main__":
    sys.exit(main())
