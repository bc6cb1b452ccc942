"""The language that nobody speaks: what becomes of a text, and that the whole table can be made and compiled."""
import os
import re
import sys
import tempfile
import unittest

ROOT = sys.argv.pop(1)
sys.path.insert(0, os.path.join(ROOT, "cmake"))
sys.dont_write_bytecode = True
import generate_strings  # noqa: E402
import pseudo_language  # noqa: E402

ENGLISH = os.path.join(ROOT, "resources", "strings", "1033.txt")
PLACEHOLDER = re.compile(r"%[0-9]%")


class ALanguageNobodySpeaks(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.made = os.path.join(self.folder, "1281.txt")
        self.assertEqual(pseudo_language.main([self.made, ENGLISH]), 0)

    def pairs(self):
        made = generate_strings.read_language(self.made)
        english = generate_strings.read_language(ENGLISH)
        self.assertEqual([number for number, _ in made], [number for number, _ in english])
        self.assertEqual(len(made), 135)
        return [(text, source) for (_, text), (_, source) in zip(made, english)]

    def test_accents_every_letter(self):
        for text, source in self.pairs():
            self.assertNotRegex(text, "[A-Za-z]", source)

    def test_gives_every_letter_an_accent_of_its_own_case(self):
        for plain, accented in zip(pseudo_language.PLAIN, pseudo_language.ACCENTED):
            self.assertEqual(accented.isupper(), plain.isupper(), plain)

    def test_makes_every_text_two_fifths_longer(self):
        for text, source in self.pairs():
            self.assertGreaterEqual(len(text), 1.4 * len(source), source)

    def test_makes_no_text_much_longer(self):
        for text, source in self.pairs():
            self.assertLessEqual(len(text), 1.4 * len(source) + 3, source)

    def test_puts_every_text_in_brackets(self):
        for text, source in self.pairs():
            self.assertEqual((text[0], text[-1]), ("[", "]"), source)

    def test_keeps_the_text_itself(self):
        for text, source in self.pairs():
            self.assertTrue(text[1:].startswith(source.translate(pseudo_language.ACCENTS)), source)

    def test_keeps_placeholders(self):
        for text, source in self.pairs():
            self.assertEqual(PLACEHOLDER.findall(text), PLACEHOLDER.findall(source))

    def test_keeps_double_blanks(self):
        for text, source in self.pairs():
            self.assertEqual(text.count("  "), source.count("  "), source)

    def test_holds_for_texts_of_every_length(self):
        for length in range(1, 300):
            text = pseudo_language.pseudo("x" * length)
            self.assertGreaterEqual(len(text), 1.4 * length)
            self.assertLessEqual(len(text), 1.4 * length + 3)
            self.assertNotIn("  ", text)
            self.assertNotIn(" ]", text)

    def test_can_be_compiled_beside_the_others(self):
        output = os.path.join(self.folder, "out.cpp")
        self.assertEqual(generate_strings.main([output, self.made, ENGLISH]), 0)
        with open(output, encoding="utf-8") as file:
            self.assertIn("{1281, kTexts1281}", file.read())

    def test_is_not_made_from_a_bad_table(self):
        bad, output = os.path.join(self.folder, "7.txt"), os.path.join(self.folder, "8.txt")
        with open(bad, "w", encoding="utf-8") as file:
            file.write("bad")
        stderr, sys.stderr = sys.stderr, open(os.devnull, "w")
        try:
            self.assertEqual(pseudo_language.main([output, bad]), 1)
        finally:
            sys.stderr.close()
            sys.stderr = stderr
        self.assertFalse(os.path.exists(output))


if __name__ == "__main__":
    unittest.main()
