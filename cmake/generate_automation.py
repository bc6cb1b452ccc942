#!/usr/bin/env python3
"""Makes what stands beside the automation DLL out of its list of classes and the type library descriptions.

    generate_automation.py manifest COCLASSES IDL_FOLDER OUTPUT   activation without registration
    generate_automation.py resources COCLASSES VERSION OUTPUT     the resource script with the type libraries
"""
import re
import sys

# The system's proxy for interfaces that a type library describes.
TYPE_LIBRARY_PROXY = "{00020424-0000-0000-C000-000000000046}"


def rows(path, macro, row):
    """What a pattern finds in the rows of a macro of the list."""
    with open(path, encoding="utf-8") as file:
        text = file.read().replace("\\\n", " ")
    found = re.search(rf"#define {macro}\([^)]*\)(.*)", text)
    if not found or not re.search(row, found[1]):
        sys.exit(f"{path}: there is no list {macro}")
    return re.findall(row, found[1])


def libraries(path):
    """The type libraries as (resource number, name)."""
    return sorted(rows(path, "KQ_TYPE_LIBRARIES", r"X\((\d+), (\w+)\)"))


def created(path):
    """The classes that hosts create, as (library, class)."""
    return rows(path, "KQ_COCLASSES", r"X\((\w+), (\w+), \w+, Created\)")


def identifiers(path):
    """The identifiers in a description by what they stand for: "library", "coclass Timer", "interface _Timer"."""
    with open(path, encoding="utf-8") as file:
        text = file.read()
    blocks = re.findall(r"\[(?:object, )?uuid\(([0-9A-F-]+)\)[^\]]*\]\s*(library|coclass|interface)\s+(\w+)", text)
    found = {("library" if kind == "library" else f"{kind} {name}"): "{" + uuid + "}" for uuid, kind, name in blocks}
    if "library" not in found:
        sys.exit(f"{path}: there is no library")
    return found


# The assembly has not the DLL's name: the system would look for its manifest inside the DLL then. Its version is that of
# the interfaces, by which programs ask for it, not the DLL's.
def manifest(list_path, folder, output):
    lines = ['<?xml version="1.0" encoding="UTF-8" standalone="yes"?>',
             '<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">',
             '  <assemblyIdentity type="win32" name="KQAppSession.Automation" version="1.0.0.0"/>',
             '  <file name="KQAppSessionLib.dll">']
    proxies = []
    coclasses = created(list_path)
    for number, library in libraries(list_path):
        ids = identifiers(f"{folder}/{library}.idl")
        lines.append(f'    <typelib tlbid="{ids["library"]}" version="1.0" helpdir="" resourceid="{number}"/>')
        for owner, coclass in coclasses:
            if owner != library:
                continue
            name = f"{library}.{coclass}"
            lines += [f'    <comClass clsid="{ids["coclass " + coclass]}" threadingModel="Apartment" '
                      f'tlbid="{ids["library"]}" progid="{name}.1">',
                      f'      <progid>{name}</progid>',
                      '    </comClass>']
        for what, uuid in ids.items():
            if what.startswith("interface "):
                proxies.append(f'  <comInterfaceExternalProxyStub name="{what[10:]}" iid="{uuid}" '
                               f'tlbid="{ids["library"]}" proxyStubClsid32="{TYPE_LIBRARY_PROXY}"/>')
    lines += ['  </file>'] + proxies + ['</assembly>', '']
    with open(output, "w", encoding="utf-8") as file:
        file.write("\n".join(lines))


VERSION = """1 VERSIONINFO
FILEVERSION {numbers}
PRODUCTVERSION {numbers}
FILEOS 0x40004
FILETYPE 2
BEGIN
  BLOCK "StringFileInfo"
  BEGIN
    BLOCK "040904B0"
    BEGIN
      VALUE "FileDescription", "KQ Application Session Library"
      VALUE "FileVersion", "{text}"
      VALUE "InternalName", "KQAppSessionLib"
      VALUE "OriginalFilename", "KQAppSessionLib.dll"
      VALUE "ProductName", "KQAppSessionLib"
      VALUE "ProductVersion", "{text}"
    END
  END
  BLOCK "VarFileInfo"
  BEGIN
    VALUE "Translation", 0x0409, 0x04B0
  END
END
"""


def resources(list_path, version, output):
    numbers = (version.split(".") + ["0"] * 4)[:4]
    with open(output, "w", encoding="utf-8") as file:
        for number, library in libraries(list_path):
            file.write(f'{number} TYPELIB "{library}.tlb"\n')
        file.write(VERSION.format(numbers=",".join(numbers), text=".".join(numbers)))


def main():
    commands = {"manifest": (manifest, 3), "resources": (resources, 3)}
    command, count = commands.get(sys.argv[1] if len(sys.argv) > 1 else "", (None, 0))
    if command is None or len(sys.argv) != count + 2:
        sys.exit(__doc__)
    command(*sys.argv[2:])


if __name__ == "__main__":
    main()
