#!/usr/bin/env python3
"""Makes the texts of a language that nobody speaks, for tests of layouts.

    pseudo_language.py OUTPUT.txt 1033.txt

Every letter of a text gets an accent, so a plain letter on the screen is a text that was never taken from the table.
Every text becomes at least 40 % longer and stands in square brackets, so a missing bracket is a text that was cut
off. Placeholders, digits, punctuation and double blanks stay. The output has the form of its source; name it by a
locale identifier (1281 is free for this) to let generate_strings.py take it.
"""
import sys

import generate_strings

PLAIN = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
ACCENTED = "ÀÞÇÐÉƑĜĤÎĴĶĹṀÑÖÞǪŔŠŢÛṼŴẊÝŽàƀçðéƒĝĥîĵķĺɱñöþǫŕšţûṽŵẋýž"
ACCENTS = str.maketrans(PLAIN, ACCENTED)

# What fills a text up; words, so that a long text can be wrapped where it would be in any other language.
FILLER = "öñé ţŵö ţĥŕéé ƒöûŕ ƒîṽé šîẋ šéṽéñ éîĝĥţ ñîñé ţéñ "
GROWTH = 40  # percent


def pseudo(text):
    """The text in the language that nobody speaks."""
    least = -(-len(text) * (100 + GROWTH) // 100)
    accented = text.translate(ACCENTS)
    missing = least - len(accented) - len("[ ]")
    if missing <= 0:
        return f"[{accented}]" if len(accented) + 2 >= least else f"[{accented}~]"
    filler = (FILLER * (missing // len(FILLER) + 1))[:missing]
    if filler.endswith(" "):
        filler = filler[:-1] + "~"
    return f"[{accented} {filler}]"


def main(arguments):
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    output, source = arguments
    try:
        entries = generate_strings.read_language(source)
    except (generate_strings.BadLine, OSError) as error:
        print(error, file=sys.stderr)
        return 1
    with open(output, "w", encoding="utf-8", newline="\n") as file:
        file.writelines(f"{number}, {pseudo(text)}\n" for number, text in entries)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
