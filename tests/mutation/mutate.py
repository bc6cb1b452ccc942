#!/usr/bin/env python3
"""A mutation run: do the tests fail when the code is wrong?

Changes one operator, constant, call or branch at a time in a copy of the tree, builds what the change touches, runs the
tests of the changed room, and lists the changes that no test noticed. See scripts/mutate --help.
"""
import argparse
import contextlib
import json
import pathlib
import queue
import random
import shutil
import subprocess
import sys
import threading
import time

from mutations import mutations_of

# The rooms whose tests are put to the test, and the test program that holds those tests.
ROOMS = {
    "src/client": "client/test_client",
    "src/server": "server/test_server",
    "src/dialogs": "dialogs/test_dialogs",
    "src/messages": "messages/test_messages",
    "zeb": "zeb/test_zeb",
}
BUILD = "build"
BUILD_OPTIONS = ["-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DKQ_SANITIZE=OFF",
                 "-DKQ_BENCH=OFF"]
EQUIVALENTS = pathlib.Path(__file__).with_name("equivalents.txt")


def run(command, folder, timeout=None):
    """The exit code and the output; a command that takes too long counts as failed."""
    try:
        done = subprocess.run(command, cwd=folder, timeout=timeout, text=True, errors="replace",
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    except subprocess.TimeoutExpired:
        return -1, "timed out"
    return done.returncode, done.stdout


class Tree:
    """A copy of the sources with a build of its own, in which mutations are tried."""

    def __init__(self, root, folder):
        self.root = root
        self.folder = folder
        self.times = {}

    def prepare(self, tests):
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=self.root,
                                check=True, capture_output=True, text=True).stdout
        for name in filter(None, listed.split("\0")):
            source, copy = self.root / name, self.folder / name
            if not source.is_file():
                continue
            if copy.is_file() and copy.read_bytes() == source.read_bytes():
                continue
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(source, copy)
            shutil.copymode(source, copy)
        self.must(["cmake", "-B", BUILD, *BUILD_OPTIONS])
        for test in tests:
            self.must(["ninja", "-C", BUILD, target(test)])
            started = time.monotonic()
            code, output = self.test(test, 600)
            if code != 0:
                raise SystemExit(f"mutate: {test} fails without any change:\n{output[-4000:]}")
            self.times[test] = time.monotonic() - started

    def must(self, command):
        code, output = run(command, self.folder)
        if code != 0:
            raise SystemExit(f"mutate: {' '.join(command)} failed:\n{output[-4000:]}")

    def test(self, test, timeout):
        return run([self.folder / BUILD / "tests" / test, "--gtest_brief=1", "--gtest_fail_fast"], self.folder / BUILD,
                   timeout)

    def outcome(self, mutation):
        """"killed", "survived", or "stillborn" for a change that does not compile."""
        path = self.folder / mutation.path
        test = test_of(mutation.path)
        text = path.read_text()
        try:
            path.write_text(mutation.applied_to(text))
            code, _ = run(["ninja", "-C", BUILD, target(test)], self.folder)
            if code != 0:
                return "stillborn"
            code, _ = self.test(test, 20 + 10 * self.times[test])
            return "survived" if code == 0 else "killed"
        finally:
            path.write_text(text)


def target(test):
    return test.rpartition("/")[2]


def room_of(path):
    return next(room for room in ROOMS if path.startswith(room + "/"))


def test_of(path):
    return ROOMS[room_of(path)]


def line_of(text, position):
    start = text.rfind("\n", 0, position) + 1
    end = text.find("\n", position)
    return text.count("\n", 0, position) + 1, text[start:end if end >= 0 else None].strip()


def described(text, mutation):
    """How the list of equivalents and the report name a mutation: not by line number, which moves."""
    _, line = line_of(text, mutation.start)
    before = " ".join(text[mutation.start:mutation.end].split())
    after = " ".join(mutation.replacement.split())
    return f"{mutation.path} | {line} | {before} -> {after}"


def read_equivalents(path=EQUIVALENTS):
    """The changes that no test can notice, with the reason for each."""
    reasons = {}
    for number, line in enumerate(path.read_text().splitlines() if path.exists() else [], 1):
        if not line.strip() or line.startswith("#"):
            continue
        name, separator, reason = line.rpartition(" | because ")
        if not separator or not reason.strip():
            raise SystemExit(f"mutate: {path.name}:{number}: no reason is given (… | because …)")
        reasons[name] = reason
    return reasons


def drawn(root, rooms, count, seed):
    """`count` of all mutations of the rooms, the same ones for the same sources and seed, spread by size of room."""
    everything = []
    for room in rooms:
        for path in sorted((root / room).rglob("*.cpp")) + sorted((root / room).rglob("*.h")):
            if path.name.startswith("main_"):
                continue  # no test of the room reaches a main function
            everything += mutations_of(path.relative_to(root).as_posix(), path.read_text())
    random.Random(seed).shuffle(everything)
    return everything[:count] if count else everything


def try_all(trees, mutations, known, report):
    """Tries mutations on all trees at once; an interrupt lets those that are under way end and tries no more."""
    waiting = queue.SimpleQueue()
    for mutation in mutations:
        waiting.put(mutation)
    lock = threading.Lock()

    def work(tree):
        while True:
            try:
                mutation = waiting.get_nowait()
            except queue.Empty:
                return
            text = (tree.folder / mutation.path).read_text()
            name = described(text, mutation)
            outcome = "equivalent" if name in known else tree.outcome(mutation)
            with lock:
                report(mutation, name, line_of(text, mutation.start)[0], outcome)

    threads = [threading.Thread(target=work, args=(tree,)) for tree in trees]
    for thread in threads:
        thread.start()
    try:
        for thread in threads:
            thread.join()
    except KeyboardInterrupt:
        with contextlib.suppress(queue.Empty):
            while True:
                waiting.get_nowait()
        for thread in threads:
            thread.join()


def main():
    parser = argparse.ArgumentParser(prog="scripts/mutate", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("rooms", nargs="*", metavar="ROOM", help=f"default: {' '.join(ROOMS)}")
    parser.add_argument("--count", type=int, default=300, help="how many are drawn; 0: all; default 300")
    parser.add_argument("--seed", type=int, default=1, help="of the draw; default 1")
    parser.add_argument("--jobs", type=int, default=1, help="copies of the tree that work side by side; default 1")
    parser.add_argument("--file", help="only mutations of files whose path contains this text")
    parser.add_argument("--json", type=pathlib.Path, help="also write the outcomes to this file")
    parser.add_argument("--work", type=pathlib.Path, help="folder of the copies; default build/mutation")
    arguments = parser.parse_args()
    rooms = [room.rstrip("/") for room in arguments.rooms] or list(ROOMS)
    for room in rooms:
        if room not in ROOMS:
            parser.error(f"{room} is not one of {', '.join(ROOMS)}")

    root = pathlib.Path(__file__).resolve().parents[2]
    mutations = drawn(root, rooms, 0 if arguments.file else arguments.count, arguments.seed)
    if arguments.file:
        mutations = [mutation for mutation in mutations if arguments.file in mutation.path]
        mutations = mutations[:arguments.count] if arguments.count else mutations
    work = arguments.work or root / "build" / "mutation"
    trees = [Tree(root, work / str(number)) for number in range(arguments.jobs)]
    for tree in trees:
        tree.prepare(sorted({test_of(mutation.path) for mutation in mutations}))

    outcomes = []

    def report(mutation, name, line, outcome):
        outcomes.append({"path": mutation.path, "line": line, "kind": mutation.kind, "name": name, "outcome": outcome})
        if outcome == "survived":
            print(f"survived: {mutation.path}:{line}: {name}", flush=True)
        elif len(outcomes) % 25 == 0:
            print(f"{len(outcomes)} of {len(mutations)}", file=sys.stderr, flush=True)

    try_all(trees, mutations, read_equivalents(), report)
    if arguments.json:
        arguments.json.write_text(json.dumps(outcomes, indent=1))
    print_table(rooms, outcomes)
    return 1 if any(entry["outcome"] == "survived" for entry in outcomes) else 0


def print_table(rooms, outcomes):
    print(f"{'room':14} {'tried':>6} {'killed':>7} {'survived':>9} {'equivalent':>11} {'stillborn':>10}  killed of tried")
    for room in [*rooms, "all"]:
        mine = [entry["outcome"] for entry in outcomes if room == "all" or room_of(entry["path"]) == room]
        killed, survived = mine.count("killed"), mine.count("survived")
        tried = killed + survived
        share = f"{100 * killed / tried:.1f} %" if tried else "-"
        print(f"{room:14} {tried:6} {killed:7} {survived:9} {mine.count('equivalent'):11} {mine.count('stillborn'):10}"
              f"  {share}")


if __name__ == "__main__":
    sys.exit(main())
