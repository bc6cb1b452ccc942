#!/usr/bin/env python3
"""Tests of documents.py: blocks are read as their comments say, mistakes are found where they are, commands run as they
are written and a failure names its block."""
import os
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import documents


def fenced(language, text, *notes):
    return "".join(f"<!-- block: {note} -->\n" for note in notes) + f"```{language}\n{text}```\n"


class Blocks(unittest.TestCase):
    def test_a_block_has_its_line_language_notes_and_text(self):
        block, = documents.blocks("# A\n\n" + fenced("cpp", "int a;\n", "file a.cpp"), "A.md")
        self.assertEqual((4, "cpp", {"file": "a.cpp"}, "int a;\n"), (block.line, block.language, block.notes, block.text))

    def test_windows_may_come_one_after_the_other(self):
        block, = documents.blocks(fenced("sh", "x\n", "window A: Return", "window B: Escape"), "A.md")
        self.assertEqual(["A: Return", "B: Escape"], block.notes["window"])

    def test_a_comment_that_says_nothing_about_a_block_is_refused_with_its_line(self):
        for note in ("files a", "file", "source a", "until"):
            with self.assertRaisesRegex(documents.BadDocument, "^A.md:1: "):
                documents.blocks(fenced("sh", "x\n", note), "A.md")

    def test_a_comment_without_a_block_is_refused(self):
        for rest in ("\n```sh\nx\n```\n", ""):
            with self.assertRaises(documents.BadDocument):
                documents.blocks("<!-- block: source -->\n" + rest, "A.md")

    def test_a_block_without_an_end_is_refused(self):
        with self.assertRaises(documents.BadDocument):
            documents.blocks("```sh\nx\n", "A.md")


class Documents(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = os.path.join(folder.name, "root")
        self.work = os.path.join(folder.name, "work")
        os.makedirs(self.root)

    def document(self, text):
        with open(os.path.join(self.root, "A.md"), "w", encoding="utf-8") as file:
            file.write(text)

    def mistakes(self, expected_left=0, expected_run=()):
        return documents.check(self.root, expected_left, expected_run)[0]

    def run_it(self):
        command = [sys.executable, "-B", documents.__file__, "run", "A.md", self.root, self.work]
        return subprocess.run(command, capture_output=True, text=True, timeout=60, check=False)

    def test_commands_files_and_plain_blocks_pass(self):
        self.document(fenced("sh", "true\n") + fenced("cpp", "int a;\n", "file a.cpp") + fenced("xml", "<a/>\n"))
        self.assertEqual([], self.mistakes(0, ["A.md"]))

    def test_a_block_in_no_known_language_is_found(self):
        self.document(fenced("", "zebd\n"))
        self.assertEqual(['A.md:1: "" is no language of a block'], self.mistakes())

    def test_a_program_that_no_command_can_use_is_found(self):
        self.document(fenced("cpp", "int a;\n"))
        self.assertEqual(1, len(self.mistakes()))

    def test_a_document_with_commands_that_no_test_runs_is_found(self):
        self.document(fenced("sh", "true\n"))
        self.assertEqual(1, len(self.mistakes()))

    def test_what_is_not_run_is_counted(self):
        self.document(fenced("sh", "true\n", "not run, it needs a printer"))
        self.assertEqual([], self.mistakes(1))
        self.assertEqual(1, len(self.mistakes(0)))
        self.assertEqual(["A.md:2: it needs a printer"], documents.check(self.root, 1, [])[1])

    def test_commands_run_one_after_the_other_in_the_readers_home(self):
        self.document(fenced("text", "hello\n", "file notes/a") + fenced("sh", "cd notes && word=$(cat a)\n") +
                      fenced("sh", 'echo "$word in ${PWD##*/} of ${HOME##*/}"\n'))
        self.assertIn("\nhello in home of home\n", self.run_it().stdout)

    def test_a_file_that_the_reader_has_is_there(self):
        self.document(fenced("sh", "cat password\n", "given password: open sesame"))
        self.assertIn("\nopen sesame\n", self.run_it().stdout)

    def test_commands_in_the_source_tree_run_there(self):
        self.document(fenced("sh", "ls\n", "source"))
        self.assertIn("\nA.md\n", self.run_it().stdout)

    def test_the_first_command_that_fails_ends_it_and_its_block_is_named(self):
        self.document(fenced("sh", "true\n") + fenced("sh", "false\necho never\n"))
        run = self.run_it()
        self.assertEqual((1, "A.md:4: the commands ended with 1\n"), (run.returncode, run.stderr))
        self.assertNotIn("never", run.stdout)

    def test_what_is_typed_reaches_the_commands_and_else_nothing_is(self):
        self.document(fenced("sh", 'read -r a; read -r b; echo "$b, $a"\n', "input one|two") + fenced("sh", "wc -c\n"))
        self.assertRegex(self.run_it().stdout, r"two, one\n== A.md:5\n0\n")

    def test_another_terminal_runs_on_until_the_end_and_no_longer(self):
        self.document(fenced("sh", "mkfifo wait\necho $BASHPID >terminal\necho ready\nread -r <wait\n", "until ready") +
                      fenced("sh", "kill -0 $(cat terminal)\n"))
        run = self.run_it()
        self.assertEqual(0, run.returncode, run.stderr)
        with open(os.path.join(self.work, "home/terminal"), encoding="utf-8") as terminal:
            self.assertRaises(ProcessLookupError, os.kill, int(terminal.read()), 0)

    def test_another_terminal_that_ends_before_its_line_is_a_failure(self):
        self.document(fenced("sh", "echo no\n", "until ready"))
        run = self.run_it()
        self.assertEqual((1, 'A.md:2: no line has "ready"\nA.md:2: the commands ended with 1\n'),
                         (run.returncode, run.stderr))

    def test_a_user_who_fails_at_a_window_ends_the_commands(self):
        self.document(fenced("sh", "mkfifo wait\nread -r <wait\n", "window A: Return"))
        os.environ["KQ_PRESS_KEYS"] = "false"
        run = self.run_it()
        self.assertEqual((143, "A.md:2: the commands ended with 143"), (run.returncode, run.stderr.splitlines()[-1]))

    def test_a_user_at_windows_is_waited_for(self):
        self.document(fenced("sh", "echo no window\n", "window A: Return", "window B: Escape"))
        os.environ["KQ_PRESS_KEYS"] = "echo"
        self.assertIn("A: Return B: Escape\n", self.run_it().stdout)


if __name__ == "__main__":
    unittest.main()
