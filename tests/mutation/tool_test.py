#!/usr/bin/python3 -B
"""Tests of the tool that mutates: what it takes for a mutant of small sources, and what it makes of a small library whose
tests are known to notice some changes and not others."""
import pathlib
import subprocess
import tempfile
import unittest

import mutants
import proofs
import run


class WithFolder(unittest.TestCase):
    def setUp(self):
        held = tempfile.TemporaryDirectory()
        self.addCleanup(held.cleanup)
        self.folder = pathlib.Path(held.name).resolve()

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)
        return path


TABLE = """
struct numbers { int groups; int ports; };
struct row { int slots; int type; numbers counts; };
const row kRows[] = {{1, 5, {1, 2}}, {9, 32, {7, 3}}, {9, 38, { 7,  3}}};
"""


class Mutants(WithFolder):
    def mutants_of(self, code, file="sample.cc"):
        path = str(self.write(file, code))
        return mutants.mutants_of(mutants.parse(path, ["-std=c++20"]), path, file)

    def changes_in(self, code):
        """What the mutants of a function's body make of it, without their place."""
        found = self.mutants_of("int f(int a, int b, bool c) {\n" + code + "\n}\nstruct pair { int x; int y; };\n")
        return [mutant.name.removeprefix("sample.cc:f: ") for mutant in found]

    def test_a_mutant_is_named_by_file_function_and_change(self):
        names = [mutant.name for mutant in self.mutants_of("int f(int a) { return a + a; }")]
        self.assertIn("sample.cc:f: return a + a => return a - a", names)

    def test_replaces_what_the_name_says(self):
        code = "bool f(int a) { return a < 3; }"
        mutant = next(m for m in self.mutants_of(code) if m.name == "sample.cc:f: return a < 3 => return a <= 3")
        self.assertEqual(code[:mutant.start] + mutant.text + code[mutant.end:], "bool f(int a) { return a <= 3; }")

    def test_names_stay_when_the_code_moves(self):
        code = "int f(int a) { return a > 2 ? 7 : a; }"
        moved = "\n// Moved.\n\n" + code
        self.assertEqual([m.name for m in self.mutants_of(code)], [m.name for m in self.mutants_of(moved)])

    def test_equal_changes_are_numbered(self):
        changes = self.changes_in("a += b; a += b; return a;")
        self.assertIn("a += b => a -= b", changes)
        self.assertIn("a += b => a -= b (2)", changes)

    def test_comparison(self):
        changes = self.changes_in("return a == b;")
        for other in ("!=", "<=", ">="):
            self.assertIn(f"return a == b => return a {other} b", changes)

    def test_pointers_have_no_order(self):
        names = [m.name for m in self.mutants_of("bool f(int* a) { return a == nullptr; }")]
        self.assertEqual(names, ["sample.cc:f: return a == nullptr => return false",
                                 "sample.cc:f: return a == nullptr => return true",
                                 "sample.cc:f: return a == nullptr => return a != nullptr"])

    def test_logical_operator_and_each_operand_forced(self):
        changes = self.changes_in("if (c && a) return 1; return 2;")
        self.assertIn("if (c && a) return 1 => if (c || a) return 1", changes)
        self.assertIn("if (c && a) return 1 => if (true && a) return 1", changes)
        self.assertIn("if (c && a) return 1 => if (c && true) return 1", changes)

    def test_condition_forced(self):
        changes = self.changes_in("if (c) a = 1; return a;")
        self.assertIn("if (c) a = 1 => if (true) a = 1", changes)
        self.assertIn("if (c) a = 1 => if (false) a = 1", changes)

    def test_loop_never_entered(self):
        changes = self.changes_in("for (int n = 0; n < a; ++n) b += n; return b;")
        self.assertIn("for (int n = 0; n < a; ++n) b += n => for (int n = 0; false; ++n) b += n", changes)

    def test_integer(self):
        changes = self.changes_in("a = 7; return a;")
        for other in ("8", "6", "0"):
            self.assertIn(f"a = 7 => a = {other}", changes)

    def test_octal_hexadecimal_and_suffix(self):
        changes = self.changes_in("a = 010; b = 0x1Fu; return a + b;")
        self.assertIn("a = 010 => a = 9", changes)
        self.assertIn("b = 0x1Fu => b = 32", changes)

    def test_boolean_and_negation(self):
        changes = self.changes_in("c = true; c = !c; return c;")
        self.assertIn("c = true => c = false", changes)
        self.assertIn("c = !c => c = c", changes)

    def test_assignment_left_out_and_compound_changed(self):
        changes = self.changes_in("a |= b; return a;")
        self.assertIn("a |= b => nothing", changes)
        self.assertIn("a |= b => a &= b", changes)
        self.assertIn("a |= b => a = b", changes)

    def test_continue_left_out(self):
        self.assertIn("continue => nothing", self.changes_in("while (a < b) { ++a; if (c) { continue; } --b; } return a;"))

    def test_statements_swapped_where_one_calls(self):
        changes = self.changes_in("a = f(1, 2, c); b = a; a = b; return a;")
        self.assertIn("a = f(1, 2, c); b = a => b = a; a = f(1, 2, c)", changes)
        self.assertNotIn("b = a; a = b => a = b; b = a", changes)

    def test_arguments_of_one_type_swapped(self):
        changes = self.changes_in("return f(b, a, c);")
        self.assertIn("return f(b, a, c) => return f(a, b, c)", changes)
        self.assertNotIn("return f(b, a, c) => return f(b, c, a)", changes)

    def test_field_of_one_type_exchanged(self):
        names = [m.name for m in self.mutants_of("struct pair { int x; int y; };\nint f(pair& p) { return p.x; }")]
        self.assertIn("sample.cc:f: return p.x => return p.y", names)

    def test_row_left_out(self):
        names = [m.name for m in self.mutants_of("struct row { int x; };\nconst row kRows[] = {{1}, {2}};")]
        self.assertIn("sample.cc:kRows[x=1] => nothing", names)
        self.assertIn("sample.cc:kRows: exchanged rows [x=1] and [x=2]", names)

    def test_cell_of_a_row_is_named_by_the_columns_that_tell_the_row(self):
        names = [m.name for m in self.mutants_of(TABLE)]
        self.assertIn("sample.cc:kRows[slots=9 and type=32].counts.ports: 3 => 4", names)
        self.assertIn("sample.cc:kRows[slots=9 and type=32].counts: exchanged columns groups and ports", names)
        self.assertIn("sample.cc:kRows[slots=1].type: 5 => 6", names)

    def test_record_is_named_by_its_fields(self):
        names = [m.name for m in self.mutants_of("struct row { int x; int y; };\nconst row kNone = {1, 7};")]
        self.assertIn("sample.cc:kNone.y: 7 => 8", names)
        self.assertIn("sample.cc:kNone: exchanged columns x and y", names)

    def test_record_in_a_function_is_named_by_its_text(self):
        names = [m.name for m in self.mutants_of("struct row { int x; };\nint f() { row r = {7}; return r.x; }")]
        self.assertIn("sample.cc:f: row r = {7} => row r = {8}", names)

    def test_format_text(self):
        changes = self.changes_in('__builtin_printf("%.2d!\\n", a); return a;')
        for other in ('"#%.2d!\\n"', '"%.2d!"', '"%d!\\n"', '"%.2x!\\n"'):
            self.assertIn(f'__builtin_printf("%.2d!\\n", a) => __builtin_printf({other}, a)', changes)

    def test_clearing_left_out(self):
        names = [m.name for m in self.mutants_of("struct pair { int x; };\nint f() { pair p = {}; return p.x; }")]
        self.assertIn("sample.cc:f: pair p = {} => pair p; __builtin_memset(&p, 0xA5, sizeof p)", names)

    def test_arguments_of_a_macro_count_once_and_the_macro_itself(self):
        names = [m.name for m in self.mutants_of("#define TWICE(v) do { f(v); f(v); } while (0)\n"
                                                 "void f(int);\nvoid g(int a) { TWICE(a + 3); }")]
        self.assertEqual(names.count("sample.cc:g: TWICE(a + 3) => TWICE(a - 3)"), 1)
        self.assertIn("sample.cc:g: TWICE(a + 3) => nothing", names)
        self.assertIn("sample.cc:TWICE: f(v); => ;", names)

    def test_assertions_and_comments_are_left_alone(self):
        self.assertEqual(self.mutants_of("static_assert(1 + 1 == 2);  // 3 < 4\n"), [])

    def test_bodies_of_templates(self):
        names = [m.name for m in self.mutants_of("template <typename t>\nbool f(t a) { return a != 3; }")]
        self.assertIn("sample.cc:f: return a != 3 => return a == 3", names)


SAMPLE = """
#include "limit.h"
static_assert(kWidth == 3);
constexpr int kUnread = 5;
extern "C" int clamp(int value) {
  if (value < 0) return -1;
  if (value >= kLimit) return kLimit;
  int sum = 0;
  for (int turns = 0; turns != kWidth; ++turns) sum += value;
  return sum;
}
"""
TEST_OF_LIMIT = """
int clamp(int value);
int main(void) { return clamp(2) == 6 && clamp(10) == 10 && clamp(11) == 10 ? 0 : 1; }
"""
TEST_OF_NEGATIVES = """
int clamp(int value);
int main(void) { return clamp(-1) == -1 ? 0 : 1; }
"""
LOOP = "clamp.cc:clamp: for (int turns = 0; turns != kWidth; ++turns) sum += value => for (int turns = 0; turns != kWidth; "
OF_SUM = LOOP + "++turns) sum -= value"
OF_TURNS = LOOP + "--turns) sum += value"
OF_NEGATIVES = "clamp.cc:clamp: if (value < 0) return -1 => if (value < 0) return -2"


class Runs(WithFolder):
    """The library multiplies by 3 up to a limit of 10, and its test has no negative value."""

    def setUp(self):
        super().setUp()
        self.sources = self.folder / "sources"
        self.write("sources/limit.h", "constexpr int kLimit = 10;\nconstexpr int kWidth = 3;\n")
        self.write("sources/clamp.cc", SAMPLE)
        (self.folder / "work").mkdir()
        self.libraries = [self.library("build", TEST_OF_LIMIT)]

    def library(self, name, test):
        build = self.folder / name
        source = self.write(f"{name}/clamp_test.c", test)
        command = ["g++", "-O1", "-fPIC", "-g", "-o", "clamp.o", "-c", str(self.sources / "clamp.cc")]
        linking = ["gcc", "-shared", "-g", "-o", "libclamp.so", "clamp.o"]
        for step in command, linking, ["gcc", "-o", "clamp_test", source, "-L.", "-lclamp", f"-Wl,-rpath,{build}"]:
            subprocess.run(step, cwd=build, check=True)
        tests = [run.Test(build / "clamp_test")]
        return run.Library(build, self.sources, "libclamp.so", {"clamp.cc": command}, linking, tests)

    def outcome_of(self, name, proved=()):
        runner = run.Runner(self.libraries, self.folder / "work", 1, proved)
        runner.prepare()
        every = [mutant for file in self.libraries[0].files() for mutant in self.libraries[0].mutants_of(file)]
        return runner.outcome(next(mutant for mutant in every if mutant.name == name))

    def test_what_a_test_notices_is_killed(self):
        self.assertEqual(self.outcome_of(OF_SUM), "killed")

    def test_what_no_test_notices_survives(self):
        self.assertEqual(self.outcome_of(OF_NEGATIVES), "survived")

    def test_what_the_first_library_does_not_notice_is_tried_in_the_second(self):
        self.libraries.append(self.library("second", TEST_OF_NEGATIVES))
        self.assertEqual(self.outcome_of(OF_NEGATIVES), "killed")

    def test_what_is_proved_equivalent_is_not_tried_in_the_second(self):
        self.libraries.append(self.library("second", TEST_OF_NEGATIVES))
        self.assertEqual(self.outcome_of(OF_NEGATIVES, proved={OF_NEGATIVES}), "survived")

    def test_what_does_not_end_is_killed(self):
        run.LEAST_PATIENCE = 1
        self.assertEqual(self.outcome_of(OF_TURNS), "killed")

    def test_a_change_that_leaves_the_object_as_it_was_is_the_same_code(self):
        self.assertEqual(self.outcome_of("clamp.cc:kUnread: constexpr int kUnread = 5 => constexpr int kUnread = 6"),
                         "same code")

    def test_a_failing_assertion_is_the_compilers(self):
        self.assertEqual(self.outcome_of("limit.h:kWidth: constexpr int kWidth = 3 => constexpr int kWidth = 4"),
                         "refused by the compiler")

    def test_a_header_is_mutated_where_it_is_included(self):
        name = "limit.h:kLimit: constexpr int kLimit = 10 => constexpr int kLimit = 11"
        self.assertEqual(self.outcome_of(name), "killed")

    def test_sources_stay_as_they_are(self):
        self.outcome_of(OF_SUM)
        self.assertEqual((self.sources / "clamp.cc").read_text(), SAMPLE)

    def test_a_test_that_does_not_run_the_library_is_told(self):
        self.libraries[0].tests.append(run.Test(pathlib.Path("/bin/true")))
        with self.assertRaisesRegex(SystemExit, "true does not run the library"):
            self.outcome_of(OF_SUM)

    def test_a_test_that_fails_without_any_change_is_told(self):
        self.libraries[0].tests.append(run.Test(pathlib.Path("/bin/false")))
        with self.assertRaisesRegex(SystemExit, "false fails without any change"):
            self.outcome_of(OF_SUM)


class Proofs(WithFolder):
    def covered(self, entry, code=TABLE):
        path = str(self.write("sample.cc", code))
        found = mutants.mutants_of(mutants.parse(path, ["-std=c++20"]), path, "sample.cc")
        return proofs.covered_by({entry: "So."}, found)[entry]

    def test_a_name_covers_its_mutant(self):
        name = "sample.cc:kRows[slots=9 and type=32].counts.ports: 3 => 4"
        self.assertEqual(self.covered(name), {name})

    def test_columns_cover_every_row_that_has_them(self):
        self.assertEqual(self.covered("sample.cc:kRows[slots=9].counts.ports: 3 => 4"),
                         {"sample.cc:kRows[slots=9 and type=32].counts.ports: 3 => 4",
                          "sample.cc:kRows[slots=9 and type=38].counts.ports: 3 => 4"})

    def test_a_record_in_a_row_is_compared_whatever_its_blanks(self):
        self.assertEqual(len(self.covered("sample.cc:kRows[counts={7, 3}].counts.groups: 7 => 6")), 2)

    def test_a_row_that_comes_later_is_covered(self):
        later = TABLE.replace("{9, 38,", "{9, 34, {7, 3}}, {9, 38,")
        self.assertEqual(len(self.covered("sample.cc:kRows[counts={7, 3}].counts.groups: 7 => 6", later)), 3)

    def test_all_columns_have_to_hold(self):
        self.assertEqual(self.covered("sample.cc:kRows[slots=9 and type=33].counts.ports: 3 => 4"), set())

    def test_a_column_that_no_row_has_covers_nothing(self):
        self.assertEqual(self.covered("sample.cc:kRows[depth=9].counts.ports: 3 => 4"), set())

    def test_only_the_change_that_is_named(self):
        self.assertEqual(self.covered("sample.cc:kRows[slots=9].counts.ports: 3 => 5"), set())
        self.assertEqual(len(self.covered("sample.cc:kRows[slots=9] => nothing")), 2)

    def test_only_the_table_that_is_named(self):
        self.assertEqual(self.covered("sample.cc:kOther[slots=9].counts.ports: 3 => 4"), set())
        self.assertEqual(self.covered("other.cc:kRows[slots=9].counts.ports: 3 => 4"), set())

    def test_exchanged_rows_that_differ_in_a_column(self):
        self.assertEqual(self.covered("sample.cc:kRows: exchanged rows of different slots"),
                         {"sample.cc:kRows: exchanged rows [slots=1] and [slots=9 and type=32]"})

    def test_exchanged_rows_of_which_none_holds_a_value(self):
        self.assertEqual(self.covered("sample.cc:kRows: exchanged rows of different type, neither 5"),
                         {"sample.cc:kRows: exchanged rows [slots=9 and type=32] and [slots=9 and type=38]"})
        self.assertEqual(self.covered("sample.cc:kRows: exchanged rows of different type, neither 38"),
                         {"sample.cc:kRows: exchanged rows [slots=1] and [slots=9 and type=32]"})

class Judgement(WithFolder):
    def wrong(self, outcomes, reasons):
        every = [mutants.Mutant(name, "a.cc", 0, 0, "") for name in outcomes]
        return run.judge(["a.cc"], outcomes, proofs.covered_by(reasons, every))

    def test_all_killed(self):
        self.assertFalse(self.wrong({"a.cc:f: 1 => 2": "killed"}, {}))

    def test_a_survivor(self):
        self.assertTrue(self.wrong({"a.cc:f: 1 => 2": "survived"}, {}))

    def test_a_survivor_that_is_proved_equivalent(self):
        self.assertFalse(self.wrong({"a.cc:f: 1 => 2": "survived"}, {"a.cc:f: 1 => 2": "Both are odd."}))

    def test_a_proof_of_what_is_killed(self):
        self.assertTrue(self.wrong({"a.cc:f: 1 => 2": "killed"}, {"a.cc:f: 1 => 2": "Both are odd."}))

    def test_a_proof_of_what_is_gone(self):
        self.assertTrue(self.wrong({}, {"a.cc:f: 1 => 2": "Both are odd."}))

    def test_a_proof_of_another_file(self):
        self.assertFalse(self.wrong({}, {"b.cc:f: 1 => 2": "Both are odd."}))

    def test_a_proof_about_rows_of_which_one_is_killed(self):
        outcomes = {"a.cc:kRows[x=1].y: 3 => 4": "survived", "a.cc:kRows[x=2].y: 3 => 4": "killed"}
        covered = {"a.cc:kRows[y=3].y: 3 => 4": set(outcomes)}
        self.assertTrue(run.judge(["a.cc"], outcomes, covered))

    def test_a_proof_about_rows_that_are_gone(self):
        self.assertTrue(run.judge(["a.cc"], {}, {"a.cc:kRows[y=3].y: 3 => 4": set()}))

    def test_a_proof_about_rows_that_no_test_tells_apart(self):
        outcomes = {"a.cc:kRows[x=1].y: 3 => 4": "survived", "a.cc:kRows[x=2].y: 3 => 4": "same code"}
        self.assertFalse(run.judge(["a.cc"], outcomes, {"a.cc:kRows[y=3].y: 3 => 4": set(outcomes)}))

    def test_a_reason_is_that_of_all_names_before_it(self):
        path = self.write("equivalent",
                          "# About it.\n\na.cc:f: 1 => 2\na.cc:f: 1 => 3\n    Both are\n    odd.\n\nb => c\n  So.\n")
        self.assertEqual(proofs.read_proofs(path),
                         {"a.cc:f: 1 => 2": "Both are odd.", "a.cc:f: 1 => 3": "Both are odd.", "b => c": "So."})

    def test_a_name_without_a_reason_is_refused(self):
        with self.assertRaisesRegex(SystemExit, "no reason for a.cc:f: 1 => 2"):
            proofs.read_proofs(self.write("equivalent", "a.cc:f: 1 => 2\n"))


if __name__ == "__main__":
    unittest.main()
