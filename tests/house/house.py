#!/usr/bin/env python3
"""Checks the rules of the house: who may include whom, what stands in public headers, where the operating system may
be asked for, how long a file may be, who may name messages and how, where documents lead and what they name, which
version this is, how errors are described.

    house.py CHECK ROOT      ROOT: the source tree
                             CHECK: includes, headers, platforms, sizes, catalogue, messages, links, names, version or
                             errors

Prints one line for each breach, "file:line: what", and fails when there is any.
"""
import os
import re
import sys

# Which rooms the files of a room may include besides their own. A room is a folder, the longest one that is named
# here; rooms of src/ are named without it. Public headers count as files of the room that owns them.
LIBS = {"libs/xmlmessage", "libs/webdata", "libs/statistics", "libs/timer", "libs/appprotocol", "libs/xmlbus"}
GROUND = {"base", "platform"}
PORT = GROUND | {"platform/loop", "platform/net"}
RENDERER = GROUND | {"forms", "platform/loop"}
BELOW = GROUND | LIBS | {"util", "forms", "messages", "session"}
PROGRAM = BELOW | {"tools/program"}
MAY_USE = {
    "base": set(),
    "platform": {"base"},
    "platform/loop": GROUND,
    "platform/net": GROUND,
    "platform/posix": PORT,
    "platform/win32": PORT,
    "forms": GROUND,
    "forms/qt": RENDERER,
    "forms/tty": RENDERER,
    "forms/win32": RENDERER | {"platform/win32"},
    "libs/xmltext": GROUND,
    "libs/xmlmessage": GROUND | {"libs/xmltext"},
    "libs/webdata": GROUND | {"libs/xmltext"},
    "libs/statistics": GROUND,
    "libs/timer": GROUND,
    "libs/appprotocol": GROUND | {"libs/xmlmessage"},
    "libs/xmlbus": GROUND | {"libs/xmlmessage", "libs/appprotocol", "libs/timer"},
    "util": GROUND,
    "messages": GROUND | {"util", "libs/xmlmessage", "libs/webdata"},
    "messages/boxes": GROUND | {"messages", "forms"},
    "session": {"base", "messages"} | LIBS,
    "dialogs": GROUND | {"forms", "messages", "messages/boxes", "libs/webdata", "libs/appprotocol"},
    "client": BELOW | {"dialogs", "messages/boxes"},
    "server": BELOW,
    "library": BELOW | {"client", "server"},
    "automation": BELOW | {"client", "server", "dialogs"},
    "tools/program": GROUND,
    "tools": PROGRAM | {"forms/tty"},
    "zeb/store": PROGRAM,
    "zeb/requests": PROGRAM | {"zeb/store"},
    "zeb/bus": PROGRAM | {"zeb/store"},
    "zeb/admin": PROGRAM | {"zeb/store"},
    "zeb": PROGRAM | {"zeb/store", "zeb/requests", "zeb/bus", "zeb/admin"},
}
# The folders of programs. Programs know these two rooms by their public headers only.
PROGRAM_FOLDERS = ("tools", "zeb")
PUBLIC_ONLY = {"client", "server"}

PUBLIC_HEADERS = {
    "Export": "base", "Error": "base", "Signal": "base", "Secret": "base", "AppObject": "base",
    "EventLoop": "platform", "Platform": "platform", "AsioEventLoop": "platform", "QtPlatform": "forms/qt",
    "TtyPlatform": "forms/tty",
    "XMLMessage": "libs/xmlmessage", "WebData": "libs/webdata", "Statistics": "libs/statistics",
    "Timer": "libs/timer", "APClient": "libs/appprotocol", "Listener": "libs/appprotocol",
    "XMLBusClient": "libs/xmlbus", "KQAppSessErrorEnum": "messages", "KQAppSessionInfo": "session",
    "KQAppSessClient": "client", "KQAppSessServer": "server",
}
# The one public header that is for hosts with an event loop of their own.
ASIO_HEADER = "include/kqappsession/AsioEventLoop.h"

STANDARD = set("""
    algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
    clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef cstdint
    cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem format forward_list fstream
    functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory
    memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator
    semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf string string_view
    strstream syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility
    valarray variant vector version""".split())
THIRD_PARTY = re.compile(r"(asio|pugixml|sqlite3|sodium|spdlog|fmt|CLI|toml|nats|benchmark|gtest|gmock|Q[A-Z]\w*)\b")
MAY_SEE_SYSTEM = ("platform/posix", "platform/win32", "forms/qt", "forms/win32", "automation", "zeb", "tools")
MAY_SEE_THIRD_PARTY = ("libs/", "platform/posix", "platform/win32", "forms/qt", "zeb", "tools")

INCLUDE = re.compile(r'\s*#\s*include\s*([<"])([^>"]+)[>"]')
WINDOWS_SWITCH = re.compile(r"\s*#\s*(if|ifdef|ifndef|elif)\b.*\b_WIN(32|64)\b")
LONGEST_FILE = 800
CATALOGUE = "src/messages/ASMessageList.h"
CATALOGUE_NAME = re.compile(r"(?:MESSAGE|FIELD)\(\S+, ([A-Z]\w*),")
QUOTED = re.compile(r'"((?:[^"\\]|\\.)*)"')
# What a library calls its own, though the catalogue has a field of that name.
OWN_NAMES = {"libs/webdata": {"Profiles", "TranslationTable"}}
LINK = re.compile(r"\]\(([^)\s]+)\)")
NAMED_PATH = re.compile(r"`((?:include|src|zeb|tools|tests|bench|docs|resources|cmake|scripts)/[\w./-]+)`")
NAME_TESTS = ("docs/adding.md", "docs/hacking.md")  # documents whose names with a point are tests
NAMED_TEST = re.compile(r"`([A-Z]\w+\.[A-Z]\w+|House\.[a-z]+)`")
RAISES = re.compile(r"\b(?:Raise|Refuse|Fail|Error|runtime_error|invalid_argument|length_error)\w*\(")
TEST = re.compile(r"^TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)
MESSAGE_LIST = "src/messages/ASMessageList.h"
FIELD_BY_TEXT = re.compile(r'Field\(\s*"(\w+)"')
ADDED_TEST = re.compile(r"add_test\(\s*NAME\s+([\w.]+)")


def files(root, folders, endings):
    """Paths relative to the root, in order."""
    for folder in folders:
        for place, folders_here, names in os.walk(os.path.join(root, folder)):
            folders_here.sort()
            for name in sorted(names):
                if name.endswith(endings):
                    yield os.path.relpath(os.path.join(place, name), root).replace(os.sep, "/")


def lines(root, path):
    with open(os.path.join(root, path), encoding="utf-8") as file:
        return list(enumerate(file.read().split("\n"), start=1))


def room_of_folder(folders):
    """The longest known room that is a folder of these, else None."""
    for length in range(len(folders), 0, -1):
        room = "/".join(folders[:length])
        if room in MAY_USE:
            return room
    return None


def room_of_file(path):
    """The room of a file of the tree, None when it is in none."""
    first, _, rest = path.partition("/")
    if first == "include":
        return PUBLIC_HEADERS.get(os.path.splitext(os.path.basename(path))[0])
    if first == "src":
        return room_of_folder(rest.split("/")[:-1])
    return room_of_folder(path.split("/")[:-1]) if first in PROGRAM_FOLDERS else None


def wrong_include(path, room, bracket, name):
    """What is wrong with this include, None when nothing is."""
    public = re.fullmatch(r"kqappsession/(\w+)\.h", name)
    if public:
        owner = PUBLIC_HEADERS.get(public[1])
        if owner is None:
            return f"<{name}> is no public header"
    elif bracket == "<":
        return wrong_foreign_include(path, room, name)
    else:
        path_of_name = name if name.startswith(tuple(f"{folder}/" for folder in PROGRAM_FOLDERS)) else f"src/{name}"
        owner = room_of_file(path_of_name) if "/" in name else room
        if owner is None:
            return f'"{name}" is in no room'
    if owner == room:
        return None
    if owner in PUBLIC_ONLY and room.split("/")[0] in PROGRAM_FOLDERS:
        return None if public else f"{room} may use the public headers of {owner} only, not \"{name}\""
    if owner not in MAY_USE[room]:
        return f"{room} may not use {owner} ({name})"
    return None


def wrong_foreign_include(path, room, name):
    if name in STANDARD:
        return None
    if THIRD_PARTY.match(name):
        if path == ASIO_HEADER and name.startswith("asio"):
            return None
        if path.startswith("include/"):
            return f"a public header uses the standard library only, not <{name}>"
        allowed = room.startswith(MAY_SEE_THIRD_PARTY)
        return None if allowed else f"{room} uses no other people's code, so not <{name}>"
    if path.startswith("include/") or not room.startswith(MAY_SEE_SYSTEM):
        return f"{room} may not ask the operating system, so not <{name}>"
    return None


def check_includes(root):
    for path in files(root, ("include", "src", "zeb", "tools"), (".h", ".cpp")):
        room = room_of_file(path)
        if room is None:
            yield f"{path}:1: the file is in no room"
            continue
        for number, line in lines(root, path):
            match = INCLUDE.match(line)
            wrong = match and wrong_include(path, room, match[1], match[2])
            if wrong:
                yield f"{path}:{number}: {wrong}"


def check_headers(root):
    """Every header is guarded and says at its top what it is for; every public header has its owner."""
    for path in files(root, ("include", "src", "zeb", "tools"), (".h",)):
        text = [line for _, line in lines(root, path)]
        if not text[0].startswith("//"):
            yield f"{path}:1: a header starts with its purpose"
        if "#pragma once" not in text:
            yield f"{path}:1: #pragma once is missing"
        if path.startswith("include/") and room_of_file(path) is None:
            yield f"{path}:1: no room owns this public header"


def check_platforms(root):
    for path in files(root, ("include", "src", "zeb", "tools"), (".h", ".cpp")):
        room = room_of_file(path) or ""
        if room.startswith(("platform", "forms/win32", "automation")):
            continue
        for number, line in lines(root, path):
            if WINDOWS_SWITCH.match(line):
                yield f"{path}:{number}: {room} is the same on every platform: no switch on _WIN32"


def check_sizes(root):
    for path in files(root, ("include", "src", "zeb", "tools", "tests", "bench", "fuzz", "cmake", "scripts"),
                      (".h", ".cpp", ".py")):
        count = len(lines(root, path)) - 1
        if count > LONGEST_FILE:
            yield f"{path}:{LONGEST_FILE + 1}: {count} lines; split it, {LONGEST_FILE} is the most"


def check_catalogue(root):
    """The sibling libraries name no message of the catalogue and no field of one, in code or comments."""
    names = {name for _, line in lines(root, CATALOGUE) for name in CATALOGUE_NAME.findall(line)}
    for path in files(root, ("include", "src/libs"), (".h", ".cpp")):
        room = room_of_file(path) or ""
        if not room.startswith("libs/"):
            continue
        for number, line in lines(root, path):
            quoted = {part for text in QUOTED.findall(line) for part in text.split("/")}
            for name in sorted(names & quoted - OWN_NAMES.get(room, set())):
                yield f"{path}:{number}: {room} names {name}, which is the catalogue's"


def check_links(root):
    """A document's links to files of the tree lead somewhere."""
    for path in documents(root):
        for number, line in lines(root, path):
            for target in LINK.findall(line):
                if "://" in target or target.startswith("#"):
                    continue
                if not os.path.exists(os.path.join(root, os.path.dirname(path), target.split("#")[0])):
                    yield f"{path}:{number}: there is no {target}"


def message_types(root):
    catalogue = os.path.join(root, MESSAGE_LIST)
    text = open(catalogue, encoding="utf-8").read() if os.path.exists(catalogue) else ""
    return set(re.findall(r"^ *MESSAGE\(\w+, (\w+),", text, re.MULTILINE))


def check_messages(root):
    """Client and server name messages and their fields by the structs of the catalogue, not by a text."""
    types = message_types(root)
    for path in files(root, ("src/client", "src/server"), (".h", ".cpp")):
        for number, line in lines(root, path):
            code = re.sub(r"(^|\s)//.*", "", line)
            for name in types & set(re.findall(r'"(\w+)"', code)):
                yield f'{path}:{number}: "{name}" is a message of the catalogue, write {name}::kType'
            for name in FIELD_BY_TEXT.findall(code):
                yield f'{path}:{number}: the field "{name}" is read or written by a text'


def documents(root):
    """The documents of the tree, in order."""
    yield from (name for name in sorted(os.listdir(root)) if name.endswith(".md"))
    yield from files(root, ("docs", "include", "src", "zeb", "tools", "tests"), (".md",))


def check_names(root):
    """The files that documents name and the tests that some do are there."""
    tests = {f"House.{check}" for check in CHECKS}
    for path in files(root, ("tests",), (".cpp", ".txt", ".cmake")):
        text = "\n".join(line for _, line in lines(root, path))
        tests |= {".".join(match) for match in TEST.findall(text)} | set(ADDED_TEST.findall(text))
    for path in documents(root):
        for number, line in lines(root, path):
            for name in NAMED_PATH.findall(line):
                if not os.path.exists(os.path.join(root, name)):
                    yield f"{path}:{number}: there is no {name}"
            for name in NAMED_TEST.findall(line) if path in NAME_TESTS else ():
                if name not in tests:
                    yield f"{path}:{number}: there is no test {name}"


def check_version(root):
    """The newest entry of CHANGELOG.md is the version that is built."""
    build, changes = "\n".join(line for _, line in lines(root, "CMakeLists.txt")), lines(root, "CHANGELOG.md")
    version = re.search(r"^project\(.*VERSION ([\d.]+)", build, re.MULTILINE)[1]
    number, newest = next(((number, line[3:]) for number, line in changes if line.startswith("## ")), (1, "none"))
    if newest != version:
        yield f"CHANGELOG.md:{number}: the newest version is {newest}, CMakeLists.txt builds {version}"


def errors_in(text):
    """The (offset, arguments) of every call in the text that raises or describes an error."""
    for call in RAISES.finditer(text):
        depth, quoted, start, arguments = 1, False, call.end(), []
        for at in range(call.end(), len(text)):
            letter = text[at]
            if quoted:
                quoted = letter != '"' or text[at - 1] == "\\"
            elif letter == '"':
                quoted = True
            elif letter in "({[":
                depth += 1
            elif letter in ")}]":
                depth -= 1
            if not quoted and (depth == 0 or depth == 1 and letter == ","):
                arguments.append(text[start:at].strip())
                start = at + 1
            if depth == 0:
                break
        yield call.start(), arguments


def check_errors(root):
    """Descriptions of errors end other sentences, so they have no full stop."""
    for path in files(root, ("include", "src", "zeb", "tools"), (".h", ".cpp")):
        text = "\n".join(line for _, line in lines(root, path))
        for offset, arguments in errors_in(text):
            if any(argument.endswith('."') for argument in arguments):
                yield f"{path}:{text.count(chr(10), 0, offset) + 1}: the description of an error has no full stop"


CHECKS = {"includes": check_includes, "headers": check_headers, "platforms": check_platforms, "sizes": check_sizes,
          "catalogue": check_catalogue, "messages": check_messages, "links": check_links, "names": check_names,
          "version": check_version, "errors": check_errors}


def main(arguments):
    if len(arguments) != 2 or arguments[0] not in CHECKS:
        print(__doc__, file=sys.stderr)
        return 2
    breaches = list(CHECKS[arguments[0]](arguments[1]))
    for breach in breaches:
        print(breach)
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
