"""The generator of the string tables: what it makes, and every line that it refuses."""
import os
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop(1))
sys.dont_write_bytecode = True
import generate_strings  # noqa: E402


class GenerateStrings(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def read(self, content, name="1033.txt"):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as file:
            file.write(content)
        return generate_strings.read_language(path)

    def refusal(self, content):
        with self.assertRaises(generate_strings.BadLine) as refused:
            self.read(content)
        return str(refused.exception).replace(self.folder.name + os.sep, "")

    def test_keeps_a_text_as_it_stands(self):
        self.assertEqual(self.read(b'1, A  b, "c".\n'), [(1, 'A  b, "c".')])

    def test_skips_notes_and_empty_lines(self):
        self.assertEqual(self.read(b"# 7, note\n\n1, A\n"), [(1, "A")])

    def test_reads_a_last_line_without_an_end(self):
        self.assertEqual(self.read(b"1, A"), [(1, "A")])

    def test_refuses_a_number_that_stands_twice(self):
        self.assertEqual(self.refusal(b"1, A\n1, B\n"), "1033.txt:2: the number 1 stands twice")

    def test_refuses_falling_numbers(self):
        self.assertEqual(self.refusal(b"# x\n2, A\n1, B\n"),
                         "1033.txt:3: the number 1 comes after 2; numbers must rise")

    def test_refuses_lines_that_are_no_entry(self):
        for line in (b"A", b"1,A", b"1 A", b"1, ", b" 1, A", b"01, A", b"-1, A", b"1; A"):
            self.assertEqual(self.refusal(line), '1033.txt:1: an entry is "number, text"', line)

    def test_refuses_blanks_at_the_ends_and_control_characters(self):
        for line in (b"1,  A", b"1, A ", b"1, A\r\n", b"1, A\tB"):
            self.assertIn("1033.txt:1: blanks", self.refusal(line), line)

    def test_refuses_numbers_beyond_32_bits(self):
        self.assertIn("1033.txt:1: the number 2147483648", self.refusal(b"2147483648, A"))

    def test_refuses_what_is_not_utf_8(self):
        self.assertIn("1033.txt: not UTF-8", self.refusal(b"1, \xff"))

    def test_refuses_a_file_without_a_language(self):
        with self.assertRaises(generate_strings.BadLine):
            generate_strings.language_of("english.txt")

    def test_escapes_quotation_marks_and_backslashes(self):
        self.assertEqual(generate_strings.literal('a"\\'), '"a\\"\\\\"')

    def test_writes_a_string_table_a_language_for_a_resource_compiler(self):
        lines = generate_strings.resources([(1033, [(1, 'A "b"\\')]), (11274, [(1, "\u00e1")])]).split("\n")
        self.assertEqual(lines[3:12], ["LANGUAGE 9, 1", "STRINGTABLE", "BEGIN", '    1, "A ""b""\\\\"', "END", "",
                                       "LANGUAGE 10, 11", "STRINGTABLE", "BEGIN"])
        self.assertEqual(lines[1], "#pragma code_page(65001)")

    def test_writes_nothing_when_a_line_is_refused(self):
        bad = os.path.join(self.folder.name, "1033.txt")
        with open(bad, "wb") as file:
            file.write(b"bad")
        output = os.path.join(self.folder.name, "out.cpp")
        stderr, sys.stderr = sys.stderr, open(os.devnull, "w")
        try:
            self.assertEqual(generate_strings.main([output, bad]), 1)
        finally:
            sys.stderr.close()
            sys.stderr = stderr
        self.assertFalse(os.path.exists(output))


if __name__ == "__main__":
    unittest.main()
