#!/usr/bin/env python3
"""Takes the C++ program out of README.md, so that the tests can compile it.

    readme_example.py README.md OUTPUT.cpp
"""
import re
import sys

BLOCK = re.compile(r"^```cpp\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def example(text):
    """The text of the one block marked cpp."""
    blocks = BLOCK.findall(text)
    if len(blocks) != 1:
        raise ValueError(f"one C++ program is expected, {len(blocks)} are there")
    return blocks[0]


def main(arguments):
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    readme, output = arguments
    try:
        with open(readme, encoding="utf-8") as file:
            program = example(file.read())
        with open(output, "w", encoding="utf-8") as file:
            file.write(program)
    except (OSError, ValueError) as error:
        print(f"{readme}: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
