#!/usr/bin/python3 -B
"""Tests of the tool that mutates: what it takes for a mutant of small sources, and what it makes of a small library whose
tests are known to notice some changes and not others."""
import pathlib
import subprocess
import tempfile
import unittest

import library
import mutants
import processes
import product
import programs
import proofs
import run


class WithFolder(unittest.TestCase):
    def setUp(self):
        held = tempfile.TemporaryDirectory()
        self.addCleanup(held.cleanup)
        self.folder = pathlib.Path(held.name).resolve()

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
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

    def test_record_that_is_derived_from_another_is_named_by_its_text(self):
        names = [m.name for m in self.mutants_of("struct base { int x; };\nstruct row : base { int y; };\n"
                                                 "const row kNone = {{1}, 7};")]
        self.assertIn("sample.cc:kNone: const row kNone = {{1}, 7} => const row kNone = {{1}, 8}", names)

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
        self.libraries = [self.library("build", TEST_OF_LIMIT)]

    def library(self, name, test):
        build = self.folder / name
        source = self.write(f"{name}/clamp_test.c", test)
        command = ["g++", "-O1", "-fPIC", "-g", "-o", "clamp.o", "-c", str(self.sources / "clamp.cc")]
        linking = ["gcc", "-shared", "-g", "-o", "libclamp.so", "clamp.o"]
        for step in command, linking, ["gcc", "-o", "clamp_test", source, "-L.", "-lclamp", f"-Wl,-rpath,{build}"]:
            subprocess.run(step, cwd=build, check=True)
        tests = [product.Test(build / "clamp_test")]
        return product.Product(build, self.sources, {"clamp.cc": command}, {"libclamp.so": linking}, tests)

    def outcome_of(self, name, proved=()):
        runner = run.Runner(self.libraries, self.folder / "work", 1, library.prepare, proved)
        runner.prepare()
        every = self.libraries[0].all_mutants_of(self.libraries[0].files, 1)
        return runner.outcome(next(mutant for mutant in every if mutant.name == name)).kind

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
        library.LEAST_PATIENCE = 1
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
        self.libraries[0].tests.append(product.Test(pathlib.Path("/bin/true")))
        with self.assertRaisesRegex(SystemExit, "true does not run the library"):
            self.outcome_of(OF_SUM)

    def test_a_test_that_fails_without_any_change_is_told(self):
        self.libraries[0].tests.append(product.Test(pathlib.Path("/bin/false")))
        with self.assertRaisesRegex(SystemExit, "false fails without any change"):
            self.outcome_of(OF_SUM)


PRICE = """
#include "discount.h"
static_assert(kFree == 0);
int price(int count) {
  if (count >= kMany)
    return count * 2;
  int sum = kFree;
  for (int turns = 0; turns != count; ++turns)
    sum += 3;
  return sum;
}
"""
TILL = """
int price(int count);
int main(int argc, char** argv) { return argc == 2 ? price(argv[1][0] - 'a') : 99; }
"""
TEST_OF_FEW = "int price(int count);\nint main() { return price(2) == 6 ? 0 : 1; }\n"
# In a folder of its own, as a test of the tool runs it.
TEST_OF_MANY = """
#include <stdlib.h>
int main(void) { return system("cd / && " TILL " k") == 20 * 256 ? 0 : 1; }
"""
IF_MANY = "if (count >= kMany) return count"
OF_MANY = f"shop/price.cc:price: {IF_MANY} * 2 => {IF_MANY} / 2"
OF_FEW = "shop/price.cc:price: for (int turns = 0; turns != count; ++turns) sum += 3 => for (int turns = 0; turns != count; "
OF_LIMIT = "shop/discount.h:kMany: constexpr int kMany = 10 => constexpr int kMany = 9"


class WhatStandsOnTheLibrary(WithFolder):
    """Three each, and two each of ten or more: tested by a program that has the function, for two, and by one that runs another
    program, for ten."""

    def setUp(self):
        super().setUp()
        self.patience = programs.LEAST_PATIENCE
        programs.LEAST_PATIENCE = 2
        self.addCleanup(setattr, programs, "LEAST_PATIENCE", self.patience)
        self.write("shop/discount.h", "constexpr int kMany = 10;\nconstexpr int kFree = 0;\n")
        self.build = self.folder / "build"
        units = {name: self.write(f"shop/{name}.cc", text) for name, text in (("price", PRICE), ("till", TILL))}
        tests = {"few_test": self.write("tests/few_test.cc", TEST_OF_FEW),
                 "many_test": self.write("tests/many_test.c", TEST_OF_MANY)}
        self.build.mkdir()
        self.commands = {f"shop/{name}.cc": ["g++", "-O1", "-g", "-o", f"{name}.o", "-c", str(path)]
                         for name, path in units.items()}
        self.targets = {"few_test": ["g++", "-o", "few_test", "price.o", str(tests["few_test"])],
                        "till": ["g++", "-o", "till", "till.o", "price.o"]}
        many = ["gcc", "-o", "many_test", f'-DTILL="{self.build}/till"', str(tests["many_test"])]
        for step in *self.commands.values(), *self.targets.values(), many:
            subprocess.run(step, cwd=self.build, check=True)
        self.digests = {"few_test": "1", "many_test": "1"}
        self.tests = [product.Test(self.build / "few_test", targets=["few_test"]),
                      product.Test(self.build / "many_test", targets=["till"])]

    def shop(self):
        return programs.Programs(self.build, self.folder, self.commands, self.targets, self.tests, folders=("shop",),
                                 flags=["-O0"], kept=self.folder / "work",
                                 digest_of_test=lambda test: self.digests[str(test)])

    def runner(self, jobs=1):
        runner = run.Runner([self.shop()], self.folder / "work", jobs, programs.prepare)
        runner.prepare()
        return runner

    def mutants(self, *names):
        shop = self.shop()
        every = {mutant.name: mutant for mutant in shop.all_mutants_of(shop.files, 1)}
        return [every[name] for name in names]

    def outcome_of(self, name):
        return self.runner().outcome(*self.mutants(name))

    def test_only_what_reaches_a_line_tests_it(self):
        shop = self.runner().product
        reach = [[str(test) for test in shop.tests_of(mutant)] for mutant in self.mutants(OF_MANY, OF_FEW + "++turns) sum -= 3")]
        self.assertEqual(reach, [["many_test"], ["few_test"]])

    def test_what_a_program_notices_that_has_the_function(self):
        self.assertEqual(self.outcome_of(OF_FEW + "++turns) sum -= 3"), ("killed", "few_test"))

    def test_what_is_noticed_in_a_program_that_a_test_runs(self):
        self.assertEqual(self.outcome_of(OF_MANY), ("killed", "many_test"))

    def test_the_second_job_runs_its_own_programs(self):
        runner = self.runner(2)
        mutant, = self.mutants(OF_MANY)
        for _ in runner.all_jobs:
            runner.known.clear()
            self.assertEqual(runner.outcome(mutant), ("killed", "many_test"))

    def test_the_original_is_back_after_a_mutant(self):
        runner = self.runner()
        runner.outcome(*self.mutants(OF_MANY))
        self.assertEqual(runner.outcome(*self.mutants(OF_LIMIT)), ("survived", ""))

    def test_what_no_line_stands_for_is_tested_by_all_that_have_it(self):
        reach = self.runner().product.tests_of(*self.mutants(OF_LIMIT))
        self.assertEqual({str(test) for test in reach}, {"few_test", "many_test"})

    def test_what_does_not_end_is_told(self):
        self.assertEqual(self.outcome_of(OF_FEW + "--turns) sum += 3"), ("killed", "did not end: few_test"))

    def test_what_the_compiler_refuses(self):
        self.assertEqual(self.outcome_of("shop/discount.h:kFree: constexpr int kFree = 0 => constexpr int kFree = 1"),
                         ("refused by the compiler", ""))

    def test_a_test_that_does_not_run_what_is_mutated_is_told(self):
        (self.build / "many_test").write_text("#!/bin/sh\n")
        with self.assertRaisesRegex(SystemExit, "many_test does not run the programs"):
            self.runner()

    def test_what_tests_reach_is_not_counted_again_while_all_is_the_same(self):
        self.runner()
        for target in self.targets:
            (self.folder / "work/originals/0/targets" / target).rename(self.build / target)
        (self.build / "few_test").write_text("#!/bin/false\n")
        self.assertEqual(len(self.runner().product.reached["many_test"]["shop/price.cc"]), 3)

    def kept_after(self, change):
        """What a second run tries again, when this has happened after the first."""
        wanted = self.mutants(OF_MANY, OF_FEW + "++turns) sum -= 3", OF_LIMIT)
        first = self.runner()
        path = self.folder / "work/kept"
        run.run_all(first, wanted, self.folder / "log", run.Outcomes(path, first.product))
        change()
        first.product.digest_of_test.cache_clear()
        kept = run.Outcomes(path, first.product)
        return [mutant.name for mutant in wanted if kept.get(mutant) is None]

    def test_a_second_run_goes_on_where_the_first_ended(self):
        self.assertEqual(self.kept_after(lambda: None), [])

    def test_a_change_of_a_test_puts_in_doubt_what_it_decided(self):
        self.assertEqual(self.kept_after(lambda: self.digests.update(many_test="2")), [OF_MANY, OF_LIMIT])

    def test_a_change_of_a_file_puts_in_doubt_what_was_found_of_it(self):
        self.assertEqual(self.kept_after(lambda: self.write("shop/discount.h", "constexpr int kMany = 11;\n")), [OF_LIMIT])

    def test_an_outcome_that_is_kept_is_not_tried_again(self):
        wanted = self.mutants(OF_MANY, OF_LIMIT)
        runner = self.runner()
        kept = run.Outcomes(self.folder / "work/kept", runner.product)
        kept.found = {OF_MANY: ["killed", "few_test", kept.key(wanted[0], run.Outcome("killed", "few_test"))]}
        self.assertEqual(run.run_all(runner, wanted, self.folder / "log", kept), {OF_MANY: "killed", OF_LIMIT: "survived"})
        self.assertIn("few_test", (self.folder / "log").read_text())


class WrittenIn(WithFolder):
    """A test program of two suites, and what they share."""

    def changed_by(self, name, text):
        """The suites that are others, once this is written."""
        files = [self.write("open_test.cc", "TEST(Open, Once) {}\n"), self.write("close_test.cc", "TEST_F(Close, Once) {}\n"),
                 self.write("door.cc", "int doors() { return 2; }\n")]
        self.write("door.h", "int doors();\n")
        suites = [product.Test(pathlib.Path("door_tests"), f"{suite}.*") for suite in ("Open", "All/Close")]
        before = [programs.digest_of_sources(test, files, self.folder) for test in suites]
        self.write(name, text)
        after = [programs.digest_of_sources(test, files, self.folder) for test in suites]
        return [test.tests for test, was, now in zip(suites, before, after) if was != now]

    def test_a_suite_is_what_stands_in_its_file(self):
        self.assertEqual(self.changed_by("open_test.cc", "TEST(Open, Twice) {}\n"), ["Open.*"])
        self.assertEqual(self.changed_by("close_test.cc", "TEST_F(Close, Twice) {}\n"), ["All/Close.*"])

    def test_and_in_what_has_no_tests(self):
        self.assertEqual(self.changed_by("door.cc", "int doors() { return 3; }\n"), ["Open.*", "All/Close.*"])
        self.assertEqual(self.changed_by("door.h", "long doors();\n"), ["Open.*", "All/Close.*"])


class Drawing(unittest.TestCase):
    def test_the_same_ones_for_the_same_number(self):
        self.assertEqual(run.drawn(range(1000), 5, 1), [137, 582, 867, 821, 782])

    def test_other_ones_for_another(self):
        self.assertNotEqual(run.drawn(range(1000), 5, 1), run.drawn(range(1000), 5, 2))

    def test_all_when_there_are_no_more(self):
        self.assertEqual(run.drawn([3, 1, 2], 3, 1), [3, 1, 2])

    def test_a_larger_sample_begins_with_the_smaller(self):
        self.assertEqual(run.drawn(range(1000), 8, 1)[:5], run.drawn(range(1000), 5, 1))


class Processes(WithFolder):
    def test_what_has_a_session_of_its_own_ends_too(self):
        start = 'setsid sh -c "echo > started; exec sleep 1000" & while [ ! -s started ]; do :; done'
        outcome = processes.run(["sh", "-c", start], self.folder, 10, **{processes.MARK: str(self.folder)})
        self.assertEqual((outcome, processes.marked(self.folder)), ("passed", []))

    def test_what_does_not_end_is_ended(self):
        outcome = processes.run(["sleep", "1000"], self.folder, 0.1, **{processes.MARK: str(self.folder)})
        self.assertEqual((outcome, processes.marked(self.folder)), ("did not end", []))


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
