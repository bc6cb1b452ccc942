#!/usr/bin/env python3
"""Checks that the guide for automation hosts shows the script that the tests run.

    guide_test.py GUIDE SCRIPT
"""
import sys


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as guide, open(sys.argv[2], encoding="utf-8") as script:
        if f"```vbscript\n{script.read()}```\n" not in guide.read():
            sys.exit(f"{sys.argv[1]} shows another script than {sys.argv[2]}")


if __name__ == "__main__":
    main()
