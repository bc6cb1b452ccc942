"""The list of texts and the code: what the code uses is in the list, and what is in the list is used or says why not."""
import os
import re
import sys
import unittest

ROOT = sys.argv.pop(1)
ROOMS = ("client", "dialogs", "messages", "server")
ROW = re.compile(r'\b(?:ROW\((\d+)|NAMED\((\d+), (\w+)), (\w+),\s*(?:\\\s*)?"([^"]*)"\)')
FAILURE = re.compile(r"\bX\((\w+), (\d+),")
# How the code names a text: as a number or by its name in the list.
USES = (re.compile(r"\b(?:text_id|caption_id) = (\d+)"), re.compile(r'"ZEBError-\d+", (\d+)'), FAILURE)
CONSTANT = re.compile(r"constexpr std::int32_t (k\w+) = (\d+);")
NAME = re.compile(r"\bTextId::(k\w+)")
# Constants in the range of the texts that are something else.
OTHER_CONSTANTS = {"kDefaultInfoInterval", "kEnglish", "kMillisecondsPerSecond"}
TEXTS = range(101, 1100)


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


def without_comments(text):
    return re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.DOTALL)


def source_of(room):
    """The source of a room and of the rooms inside it."""
    paths = (os.path.join(folder, name) for folder, _, names in os.walk(os.path.join(ROOT, "src", room))
             for name in names if name.endswith((".h", ".cpp")) and name != "TextIds.h")
    return "\n".join(without_comments(read(path)) for path in sorted(paths))


class Row:
    def __init__(self, match):
        self.number, self.name = int(match[1] or match[2]), match[3]
        self.use, self.who = match[4], match[5]


class TextIds(unittest.TestCase):
    def setUp(self):
        rows = [Row(match) for match in ROW.finditer(read("src/messages/TextIds.h"))]
        self.rows = {row.number: row for row in rows}
        self.assertEqual(len(rows), 135)
        self.source = "\n".join(source_of(room) for room in ROOMS)

    def used(self):
        """The numbers that the code uses."""
        numbers = {int(match[match.lastindex]) for use in USES for match in use.finditer(self.source)} - {0}
        numbers |= {int(number) for name, number in CONSTANT.findall(self.source)
                    if int(number) in TEXTS and name not in OTHER_CONSTANTS}
        by_name = {row.name: number for number, row in self.rows.items()}
        return numbers | {by_name[name] for name in NAME.findall(self.source)}

    def test_what_the_code_uses_is_in_the_list(self):
        self.assertEqual(self.used() - self.rows.keys(), set())

    def test_what_the_list_calls_unused_is_not_used(self):
        self.assertEqual({number for number in self.used() if self.rows[number].use == "Unused"}, set())

    def test_what_is_in_the_list_is_used_or_says_why_not(self):
        used = self.used()
        codes = read("include/kqappsession/KQAppSessErrorEnum.h")
        idle = {number for number, row in self.rows.items()
                if row.use != "Unused" and number not in used
                and not (row.use == "Wait" and number - 1 in used)
                and not (row.use == "Error" and f"X({row.who}," in codes)}
        self.assertEqual(idle, set())

    def test_a_question_about_a_failed_login_names_the_failures(self):
        failures = FAILURE.findall(without_comments(read("src/client/LoginFailures.h")))
        self.assertTrue(failures)
        missing = [failure for failure, number in failures
                   if number != "0" and failure not in re.split(r"\W+", self.rows[int(number)].who)]
        self.assertEqual(missing, [])


if __name__ == "__main__":
    unittest.main()
