#!/usr/bin/env python3
"""What the mutation run changes, and what it leaves alone."""
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))

import mutate  # noqa: E402
from mutations import mutations_of  # noqa: E402


def changes(code):
    """What each mutation of the code leads to."""
    return [mutation.applied_to(code) for mutation in mutations_of("sample.cpp", code)]


class Mutations(unittest.TestCase):
    def test_change_a_comparison(self):
        self.assertIn("return a <= b;", changes("return a < b;"))

    def test_leave_the_brackets_of_templates_alone(self):
        self.assertEqual([], changes("std::vector<Block> blocks;"))

    def test_leave_references_alone(self):
        self.assertEqual([], changes("void Take(Block&& block);"))

    def test_raise_a_number_by_one(self):
        self.assertIn("constexpr int kMost = 6;", changes("constexpr int kMost = 5;"))

    def test_turn_a_boolean_round(self):
        self.assertIn("bool open = true;", changes("bool open = false;"))

    def test_change_a_text(self):
        self.assertEqual(['name = "?Port";'], changes('name = "Port";'))

    def test_leave_comments_alone(self):
        self.assertEqual([], changes('// a < b, "text", 5, Call();\n/* true && 7 */\n'))

    def test_leave_includes_alone(self):
        self.assertEqual([], changes('#include "base/Error.h"\n#define TWO 2\n'))

    def test_do_not_look_for_operators_inside_texts(self):
        self.assertEqual(['Name("?a < b && 3");'], changes('Name("a < b && 3");'))

    def test_take_both_ways_of_a_branch(self):
        self.assertEqual({"if ((ready) && false) Go();", "if ((ready) || true) Go();"},
                         {change for change in changes("if (ready) Go();") if "ready)" in change})

    def test_never_make_a_loop_without_an_end(self):
        self.assertNotIn("while ((ready) || true) Go();", changes("while (ready) Go();"))

    def test_leave_a_condition_with_a_name_of_its_own_alone(self):
        self.assertEqual([], [change for change in changes("if (const auto x = Find()) Use(x);") if "false" in change])

    def test_take_out_a_call(self):
        self.assertIn("{\n    ;\n}", changes("{\n    client->Disconnect();\n}"))

    def test_take_out_a_call_over_several_lines(self):
        self.assertIn("{\n    ;\n}", changes("{\n    Send(first,\n         second);\n}"))

    def test_keep_declarations_and_returns(self):
        self.assertEqual([], changes("{\n    Owner owner(loop);\n    return Name(loop);\n}"))


class Runs(unittest.TestCase):
    def test_draw_the_same_mutations_for_the_same_seed(self):
        root = pathlib.Path(__file__).resolve().parents[2]
        first = mutate.drawn(root, list(mutate.ROOMS), 20, 7)
        self.assertEqual(20, len(first))
        self.assertEqual(first, mutate.drawn(root, list(mutate.ROOMS), 20, 7))
        self.assertNotEqual(first, mutate.drawn(root, list(mutate.ROOMS), 20, 8))

    def test_know_the_tests_of_every_room(self):
        root = pathlib.Path(__file__).resolve().parents[2]
        for mutated, test in mutate.ROOMS.items():
            self.assertTrue((root / mutated).exists(), mutated)
            room, _, program = test.partition("/")
            self.assertIn(f"kq_test({program}\n", (root / "tests" / room / "CMakeLists.txt").read_text())

    def test_name_a_mutation_by_its_line_and_not_by_its_number(self):
        code = "first();\nif (a == b) return;\n"
        mutation = next(m for m in mutations_of("x.cpp", code) if m.replacement == "!=")
        self.assertEqual("x.cpp | if (a == b) return; | == -> !=", mutate.described(code, mutation))

    def test_take_no_equivalent_without_a_reason(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "equivalents.txt"
            path.write_text("x.cpp | a < b | < -> <= | because \n")
            with self.assertRaises(SystemExit):
                mutate.read_equivalents(path)

    def test_read_the_reasons_of_equivalents(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "equivalents.txt"
            path.write_text("# comment\nx.cpp | a < b | < -> <= | because a is never b\n")
            self.assertEqual({"x.cpp | a < b | < -> <=": "a is never b"}, mutate.read_equivalents(path))


if __name__ == "__main__":
    unittest.main()
