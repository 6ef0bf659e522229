#!/usr/bin/python3 -B
"""Tests of the check that holds what is called against the list of packages: what it takes for a call, and that it notices a
package which is not on the list any more."""
import pathlib
import tempfile
import unittest

import calls
import check
import debian


class Calls(unittest.TestCase):
    def calls_of(self, name, text):
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / name).write_text(text)
            return calls.calls_of(folder, name)

    def commands_of(self, name, text):
        return [call.command or call.text for call in self.calls_of(name, text)]

    def in_shell(self, text):
        return self.commands_of("sample.sh", text)

    def test_words_that_begin_a_command(self):
        self.assertEqual(self.in_shell("one a | two b && ! three; four &\nif five; then six; fi"),
                         ["one", "two", "three", "four", "five", "six"])

    def test_expansions(self):
        self.assertEqual(self.in_shell('echo "$(one "`two`")" <(three) a=b\nx=$(four) || exit'),
                         ["one", "two", "three", "four"])

    def test_words_that_are_no_command(self):
        self.assertEqual(self.in_shell("# one\necho two 'three; four'\ncat <<'END'\nfive\nEND\n"), ["cat"])

    def test_functions_and_builtins(self):
        self.assertEqual(self.in_shell("f() { one; }\nf\ncd /\nlocal two=$(printf three)\n"), ["one"])

    def test_what_runs_the_command_in_its_arguments(self):
        self.assertEqual(self.in_shell("exec env A=b one; xargs -r -n 2 two; sudo -u me three; find . -exec four {} +"),
                         ["env", "one", "xargs", "two", "sudo", "three", "find", "four"])

    def test_commands_in_quotes(self):
        self.assertEqual(self.in_shell("trap 'one \"$work\"' EXIT\nbash -c 'two | three'"), ["one", "bash", "two", "three"])

    def test_what_is_asked_for_first(self):
        self.assertEqual(self.in_shell("command -v one || true"), [])

    def test_a_path_of_the_tree_and_one_of_the_system(self):
        self.assertEqual(self.in_shell('scripts/one; "$build/two"; /usr/bin/three'), ["three"])

    def test_an_array_is_what_it_is_set_to(self):
        self.assertEqual(self.in_shell('run=(one -x)\n"${run[@]}" -y\nas_root=()\nas_root=(two)\n"${as_root[@]}" three'),
                         ["one", "three", "two"])

    def test_a_variable_is_handed_back(self):
        self.assertEqual(self.in_shell('"$one" two'), ['"$one"'])

    def test_functions_of_the_library_of_scripts(self):
        with tempfile.TemporaryDirectory() as folder:
            scripts = pathlib.Path(folder) / "scripts"
            scripts.mkdir()
            (scripts / "lib.sh").write_text("say() { one; }\nquietly() { \"$@\"; }\n")
            (scripts / "sample").write_text('#!/bin/bash\n. "$(dirname "$0")/lib.sh"\nsay two\nquietly three\n')
            self.assertEqual([call.command for call in calls.calls_of(folder, "scripts/sample")],
                             ["bash", "dirname", "three"])

    def test_where_a_call_stands(self):
        self.assertEqual([(call.line, call.command) for call in self.calls_of("sample.sh", "\none\n\n  two\n")],
                         [(2, "one"), (4, "two")])

    def test_python(self):
        self.assertEqual(self.commands_of("sample.py", """
import subprocess
def output_of(*command):
    return subprocess.run(command)
def tool(logs):
    return ["one", logs]
output_of("two", "-x")
subprocess.Popen(tool(1) + ["-y"])
three = ["three"]
subprocess.check_call([*three, "-z"])
subprocess.run(["bin/own"])
subprocess.run(four)
"""), ["two", "one", "three", "four"])

    def test_cmake(self):
        self.assertEqual(self.commands_of("CMakeLists.txt", """
find_program(program NAMES one two REQUIRED) # three
find_package(PkgConfig REQUIRED)
add_executable(own own.cc)
add_test(NAME a COMMAND own five)
add_test(NAME b COMMAND ${program} six)
add_test(NAME c COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check $<TARGET_FILE:own>)
execute_process(COMMAND four "COMMAND five")
add_custom_command(OUTPUT x COMMAND ${CMAKE_COMMAND} -E touch x COMMAND ${other})
"""), ["one", "two", "pkg-config", "four", "cmake", "${other}"])

    def test_presets(self):
        self.assertEqual(self.commands_of("CMakePresets.json", '{ "generator": "Ninja",\n "CMAKE_CXX_COMPILER": "one" }'),
                         ["ninja", "one"])

    def test_sources(self):
        self.assertEqual(self.commands_of("sample_test.cc", r"""
tool_result shell(const std::string& command) const;
std::string made(const std::string& words) {
  return "one " + words + "; two";
}
TEST(A, B) {
  shell(made("three"));
  EXPECT_EQ(shell("four a | five \"$(six)\"").out, "seven; eight\n");
  const std::string command = "A=b nine --file=" + folder() + "/x " OWN " >log";
  if (std::system(command.c_str()) != 0) return;
  shell(unknown());
  run({"/bin/bash", "-c", "script"});
}
"""), ["four", "five", "six", "nine", "unknown()", "one", "two", "bash"])

    def test_sessions_of_a_page(self):
        self.assertEqual(self.commands_of("page.md", """
    $ no session
```console
$ one | two
three
$ until four
> do five; done
```
```sh
six
```
"""), ["one", "two", "four", "five"])


class Lists(unittest.TestCase):
    def test_sections_packages_and_releases(self):
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
            file.write("# About it.\n\n[one] what for\na-package  does this\nb++ (12)   does that\n\n[two]\nc.1 does it\n")
            file.flush()
            self.assertEqual(debian.read_list(file.name), {"one": {"a-package": None, "b++": "12"}, "two": {"c.1": None}})

    def test_dependencies(self):
        self.assertEqual(list(debian.names_in("a (>= 1), b:any | c [amd64], d")), [["a"], ["b", "c"], ["d"]])


class Closure(unittest.TestCase):
    def setUp(self):
        self.machine = debian.Machine.__new__(debian.Machine)
        self.machine.depends = {"a": [["b"], ["gone", "c"]], "b": [["virtual"]], "c": [], "d": [], "e": [], "f": []}
        self.machine.provided_by = {"virtual": {"d", "e"}, "gone": set()}
        self.machine.minimal = {"e"}

    def test_all_that_is_depended_on(self):
        self.assertEqual(self.machine.closure(["a"]), {"a", "b", "c", "e"})

    def test_what_is_not_installed_supplies_nothing(self):
        self.assertEqual(self.machine.closure(["gone"]), set())


class Removed(unittest.TestCase):
    """A package less on the list, and the tree as it is."""

    @classmethod
    def setUpClass(cls):
        cls.wanted, cls.problems = check.gather()
        cls.machine = debian.Machine()

    def problems_without(self, package):
        packages = debian.read_list(check.ROOT / "scripts/packages.txt")
        for section in packages.values():
            section.pop(package, None)
        return "\n".join(check.compare(self.wanted, packages, self.machine)[0])

    def test_nothing(self):
        self.assertEqual(self.problems, [])
        self.assertEqual(self.problems_without("nothing"), "")

    def test_mandoc(self):
        self.assertRegex(self.problems_without("mandoc"), r"\Atests/tools/chnsw/\S+:\d+: mandoc: no package of .* it is of mandoc\Z")

    def test_bsdextrautils(self):
        self.assertIn(": col: no package of the sections build test bench supplies it; here it is of bsdextrautils",
                      self.problems_without("bsdextrautils"))

    def test_ninja_build(self):
        self.assertIn(": ninja: no package of the sections build test bench supplies it", self.problems_without("ninja-build"))

    def test_packages_that_are_not_here(self):
        packages = debian.read_list(check.ROOT / "scripts/packages.txt")
        packages["test"]["no-such-package"] = None
        problems, left_out = check.compare(self.wanted, packages, self.machine)
        self.assertEqual(problems, [])
        self.assertIn(["no-such-package"], left_out.values())

    def test_a_name_that_stands_for_one_of_several_programs(self):
        self.assertTrue(self.machine.commands(["mawk"]).has("awk"))
        self.assertFalse(self.machine.commands([]).has("c++"))


if __name__ == "__main__":
    unittest.main()
