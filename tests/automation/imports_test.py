#!/usr/bin/env python3
"""Checks that a DLL is one file to copy: it is of the kind that is wanted, imports nothing but what every Windows has,
and exports what it must.

    imports_test.py OBJDUMP DLL FORMAT           FORMAT as objdump names it: pei-x86-64, pei-i386
"""
import re
import subprocess
import sys

SYSTEM = {"advapi32.dll", "bcrypt.dll", "comctl32.dll", "comdlg32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll",
          "ole32.dll", "oleaut32.dll", "shell32.dll", "shlwapi.dll", "user32.dll", "uxtheme.dll", "version.dll",
          "ws2_32.dll"}
EXPORTS = {"DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer", "DllUnregisterServer"}


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    text = subprocess.run([sys.argv[1], "-f", "-p", sys.argv[2]], capture_output=True, text=True, check=True).stdout
    if not re.search(rf"file format {re.escape(sys.argv[3])}$", text, re.MULTILINE):
        sys.exit(f"{sys.argv[2]} is no {sys.argv[3]}")
    imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", text)}
    table = text.partition("[Ordinal/Name Pointer] Table")[2].partition("\n\n")[0]
    exports = set(re.findall(r"(\w+)$", table, re.MULTILINE))
    if not imports or imports - SYSTEM:
        sys.exit(f"imports beyond the system: {sorted(imports - SYSTEM)}")
    if exports != EXPORTS:
        sys.exit(f"exports: {sorted(exports)}")


if __name__ == "__main__":
    main()
