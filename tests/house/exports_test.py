#!/usr/bin/env python3
"""Compares what a shared library shows with its golden list, or writes that anew with KQ_UPDATE_GOLDEN=1.

    exports_test.py NM LIBRARY GOLDEN
"""
import difflib
import os
import subprocess
import sys


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    nm, library, golden = sys.argv[1:]
    # "address type name"; a small letter is a local symbol, but for "u", one for the whole process. Constructors and
    # destructors are there more than once under the same name.
    lines = subprocess.run([nm, "--dynamic", "--defined-only", "--demangle", library], capture_output=True, text=True,
                           check=True).stdout.splitlines()
    rows = [line.split(" ", 2) for line in lines]
    shown = sorted({name for _, kind, name in rows if kind.isupper() or kind == "u"})
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
