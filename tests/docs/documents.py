#!/usr/bin/env python3
"""Runs the commands of a document as they are written there, and checks that every document can be run so.

    documents.py check ROOT COUNT DOCUMENT...
                                        every block of every document says what it is; COUNT blocks are not run, and
                                        the DOCUMENTs are those with commands that are
    documents.py run DOCUMENT ROOT WORK [FOLDER...]
                                        runs the blocks of one document in order; WORK: a folder that is made anew,
                                        for the reader's home; FOLDER: where the reader's programs are

A block is what is between two lines of three backquotes; the word after the first ones is its language. Comments
before it, each on a line, say what a reader of the rendered text knows from its sentences:

    <!-- block: file NAME -->           the block is that file in the reader's folder
    <!-- block: given NAME: LINE -->    the reader has a file of that name with that line
    <!-- block: source -->              the commands run in the source tree, not in the reader's folder
    <!-- block: until TEXT -->          the commands run on in another terminal; a line with that text, there or in an
                                        earlier one, shows that they have begun
    <!-- block: window TITLE: KEYS -->  that window comes, and the user presses these keys there (see press_keys.cpp)
    <!-- block: input LINES -->         what is typed, "|" between two lines
    <!-- block: not run, REASON -->     the commands or the program cannot be run here

Blocks of commands (sh) run; blocks of programs and their build files (cpp, cmake) are files that commands use.
"""
import dataclasses
import os
import re
import shlex
import shutil
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
COMMENT = re.compile(r"<!-- block: (.*) -->")
KEYS = {"file": True, "given": True, "source": False, "until": True, "window": True, "input": True, "not run": True}
RUN = {"sh"}  # languages whose blocks run
FILES = {"cpp", "cmake"}  # languages whose blocks are files
# Languages that others look at: the guide's script, the bytes of a frame; and plain examples.
OTHERS = {"vbscript", "hexdump", "xml", "text"}


class BadDocument(Exception):
    """The message names the document, the line and what is wrong there."""


@dataclasses.dataclass
class Block:
    line: int
    language: str
    notes: dict  # by key; "window" holds a list
    text: str


def note_of(comment, notes, place):
    """Adds what a comment says."""
    key = next((key for key in KEYS if re.match(rf"{key}\b", comment)), None)
    rest = comment[len(key):].lstrip(", ") if key else ""
    if key is None or bool(rest) != KEYS[key]:
        raise BadDocument(f'{place}: "{comment}" says nothing about a block')
    if key == "window":
        notes.setdefault(key, []).append(rest)
    elif key in notes:
        raise BadDocument(f"{place}: {key} is said twice")
    else:
        notes[key] = rest


def blocks(text, name):
    """The blocks of a document, in order."""
    found, notes, start, lines = [], {}, None, []
    for number, line in enumerate(text.split("\n"), start=1):
        place = f"{name}:{number}"
        if start is not None and line == "```":
            found.append(Block(start[0], start[1], notes, "".join(lines)))
            notes, start, lines = {}, None, []
        elif start is not None:
            lines.append(line + "\n")
        elif line.startswith("```"):
            start = (number, line[3:])
        elif match := COMMENT.fullmatch(line):
            note_of(match[1], notes, place)
        elif notes:
            raise BadDocument(f"{place}: a block is expected after the comment about it")
    if start or notes:
        raise BadDocument(f"{name}: the last block does not end")
    return found


def wrong_in(block):
    """What is wrong with a block, None when nothing is."""
    notes = set(block.notes)
    if "not run" in notes:
        return None if notes == {"not run"} and block.language in RUN | FILES else "a block that is not run has no other note"
    if block.language in RUN:
        return "commands are not a file" if "file" in notes else None
    if block.language in FILES:
        return None if notes == {"file"} else "a program needs the name of its file, <!-- block: file NAME -->"
    if block.language in OTHERS:
        return None if notes <= {"file"} else "this is nothing that runs"
    return f'"{block.language}" is no language of a block'


def documents(root):
    """Paths of all documents, relative to the root."""
    for folder, inside, names in os.walk(root):
        inside[:] = sorted(name for name in inside if name not in ("build", ".git"))
        for name in sorted(names):
            if name.endswith(".md"):
                yield os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/")


def read(root, document):
    with open(os.path.join(root, document), encoding="utf-8") as file:
        return blocks(file.read(), document)


def check(root, expected_left, expected_run):
    """Every mistake in the documents, a line for each; and the places that are not run, with their reasons."""
    mistakes, runs, left = [], set(), []
    for document in documents(root):
        try:
            for block in read(root, document):
                place = f"{document}:{block.line}"
                wrong = wrong_in(block)
                if wrong:
                    mistakes.append(f"{place}: {wrong}")
                elif "not run" in block.notes:
                    left.append(f"{place}: {block.notes['not run']}")
                elif block.language in RUN:
                    runs.add(document)
        except BadDocument as error:
            mistakes.append(str(error))
    if runs != set(expected_run):
        mistakes.append(f"documents with commands are {sorted(runs)}, the tests run those of {sorted(expected_run)}")
    if len(left) != expected_left:
        mistakes.append(f"{len(left)} blocks are not run, {expected_left} are expected")
    return mistakes, left


def script_of(document, found, root, home):
    """The commands of a document's blocks as one script; see terminals."""
    parts = [f". {shlex.quote(os.path.join(HERE, 'terminals'))}"]
    for block in found:
        if block.language not in RUN or "not run" in block.notes:
            continue
        notes = block.notes
        typed = "".join(f"{line}\n" for line in notes["input"].split("|")) if "input" in notes else ""
        words = [f"{document}:{block.line}", root if "source" in notes else home, typed, *notes.get("window", [])]
        parts.append("begin " + " ".join(shlex.quote(word) for word in words))
        if "until" in notes:
            parts.append(f"commands() {{\n{block.text}}}\nother_terminal {shlex.quote(notes['until'])}")
        else:
            parts.append(block.text.rstrip())
        parts.append("finish")
    return "\n".join(parts) + "\n"


def run(document, root, work, folders):
    found = read(root, document)
    home = os.path.join(work, "home")
    shutil.rmtree(work, ignore_errors=True)
    os.makedirs(home)
    for block in found:
        given, _, line = block.notes.get("given", "").partition(": ")
        for name, text in ((block.notes.get("file"), block.text), (given, f"{line}\n")):
            if name:
                path = os.path.join(home, name)
                os.makedirs(os.path.dirname(path), exist_ok=True)
                with open(path, "w", encoding="utf-8") as file:
                    file.write(text)
    script = os.path.join(work, "commands")
    with open(script, "w", encoding="utf-8") as file:
        file.write(script_of(document, found, root, home))
    environment = {**os.environ, "HOME": home, "TMPDIR": work, "PATH": os.pathsep.join([*folders, os.environ["PATH"]])}
    for name in ("XDG_CONFIG_HOME", "PKG_CONFIG_PATH", "CMAKE_PREFIX_PATH", "LD_LIBRARY_PATH"):
        environment.pop(name, None)
    return subprocess.run(["bash", script], env=environment, stdin=subprocess.DEVNULL, check=False,
                          start_new_session=True).returncode


def main(arguments):
    try:
        if len(arguments) >= 3 and arguments[0] == "check":
            mistakes, left = check(arguments[1], int(arguments[2]), arguments[3:])
            for place in left:
                print(f"not run: {place}")
            for mistake in mistakes:
                print(mistake, file=sys.stderr)
            return 1 if mistakes else 0
        if len(arguments) >= 4 and arguments[0] == "run":
            document, root, work = arguments[1:4]
            return run(document, os.path.abspath(root), os.path.abspath(work), arguments[4:])
    except BadDocument as error:
        print(error, file=sys.stderr)
        return 1
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
