"""What stands on the library: programs and libraries of many objects, and test programs of which each part reaches some of them.
Which tests reach a line is counted once, and kept until a source changes."""
import collections
import concurrent.futures
import functools
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import time

from product import LEAST_PATIENCE, PATIENCE, Product, Test, Unlinkable, digest

FOLDERS = ("vswitch", "inspect", "tools/chnsw")
TEST_OF_SUITE = re.compile(r"\bTEST(?:_[FP])?\(\s*(\w+)\s*,")


class Programs(Product):
    """reached: by the name of a test, the lines that it reaches of each file. digest_of_test: of what a test is written in."""

    def __init__(self, *arguments, digest_of_test, **more):
        super().__init__(*arguments, **more)
        self.digest_of_test = functools.cache(digest_of_test)
        self.reached = {}

    def tests_of(self, mutant):
        file = str(pathlib.Path(mutant.file).relative_to(self.root))
        source = pathlib.Path(mutant.file).read_bytes()
        first = source[:mutant.start].count(b"\n") + 1
        lines = set(range(first, first + source[mutant.start:mutant.end].count(b"\n") + 1))
        return sorted(self.tests_that_reach(file, lines), key=lambda test: test.seconds)

    def tests_that_reach(self, file, lines):
        """What nothing runs, or no line stands for, may still mean something: to the compiler, to what is made before main. Then
        all tests of the file count, or of what it is linked to."""
        reach = [test for test in self.tests if not lines.isdisjoint(self.reached[str(test)].get(file, ()))]
        if not reach:
            reach = [test for test in self.tests if self.reached[str(test)].get(file)]
        if not reach:
            units = set(self.units_of(file))
            reach = [test for test in self.tests if any(units & set(self.units_in(target)) for target in test.targets)]
        return reach

    def tests_digest(self, tests):
        return digest(*(f"{test} {self.digest_of_test(test)}".encode() for test in sorted(tests, key=str)))


# ---- From a build folder ----

def programs_of_tree(build, root, kept):
    """All programs and libraries with an object of these folders, and ctest's tests that run one of them."""
    compiled = {re.search(r" -o (\S+)", each["command"]).group(1): each
                for each in json.loads((build / "compile_commands.json").read_text())}
    inside = {output: str(pathlib.Path(each["file"]).relative_to(root)) for output, each in compiled.items()
              if any(pathlib.Path(each["file"]).is_relative_to(root / folder) for folder in FOLDERS)}
    commands = {unit: without_shared_headers(compiled[output]["command"]) for output, unit in inside.items()}
    linked = {target: inputs_of(build, target) for target in linked_targets(build)}
    tests = tests_of_tree(build, {target for target, inputs in linked.items() if set(inputs) & set(inside)}, linked)
    targets = {target: linking_of(build, target) for target in {target for test in tests for target in test.targets}}

    def digest_of_test(test):
        inputs = linked.get(str(test.program.relative_to(build)), []) if test.program.is_relative_to(build) else []
        return digest_of_sources(test, [pathlib.Path(compiled[name]["file"]) for name in inputs
                                 if name in compiled and name not in inside], root)

    return Programs(build, root, commands, targets, tests, digest_of_test=digest_of_test, folders=FOLDERS, flags=["-O0"],
                    kept=kept)


def without_shared_headers(command):
    """They are compiled with other options than a mutant is."""
    return shlex.split(re.sub(r" -include \S*/cmake_pch\.hxx", "", command))


def ninja(build, *words):
    return subprocess.run(["ninja", "-C", build, "-t", *words], check=True, capture_output=True, text=True).stdout


def linked_targets(build):
    found = re.findall(r"^(\S+): \w+_(?:EXECUTABLE|SHARED_LIBRARY)_LINKER__", ninja(build, "targets", "all"), re.M)
    return [target for target in found if "[" not in target and not target.startswith("/")]


def inputs_of(build, target):
    """The objects of a target, and the targets that are built before it."""
    said = ninja(build, "query", target).partition("outputs:")[0]
    return re.findall(r"^    (?:\|+ )?(\S+)$", said, re.M)


def linking_of(build, target):
    line = next(line for line in ninja(build, "commands", target).splitlines() if f" -o {target} " in line)
    parts = re.split(r" && ", line)
    return shlex.split(next(part for part in parts if f" -o {target} " in part))


def tests_of_tree(build, targets, linked):
    """One for each suite of a test program; the docs' sessions as one."""
    libraries = {re.sub(r"\.so\..*", ".so", target): target for target in targets if ".so" in target}
    listed = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=True, capture_output=True, text=True)
    tests = {}
    for each in json.loads(listed.stdout)["tests"]:
        command = each.get("command", [])
        filters = [word.partition("=")[2] for word in command[1:] if word.startswith("--gtest_filter=")]
        if each["name"] == "docs.sessions":
            test = Test(pathlib.Path(command[0]), targets=["chnsw", *libraries.values()])
            test.arguments = ["{folder}"]
        elif filters:
            program = pathlib.Path(command[0])
            name = str(program.relative_to(build))
            runs = [libraries.get(found, found) for found in linked[name]]
            # The client of the services runs libvswitch.so, which is given to it by itself or by its environment.
            runs += libraries.values() if any(found.endswith("_client") for found in runs) else []
            test = Test(program, filters[0].partition(".")[0] + ".*", sorted({name, *runs} & set(targets)))
        else:
            continue
        if test.targets:
            tests[str(test)] = test
    return list(tests.values())


def digest_of_sources(test, files, root):
    """Of what a suite is written in: those of a program's files that have tests of it, and those that have tests of none."""
    suite = test.tests.partition(".")[0].rpartition("/")[2]
    files = set(files) | {header for file in files for header in file.parent.glob("*.h")}
    if not files:  # it is the docs' sessions
        files = {test.program, root / "README.md", *(root / "docs").glob("*.md"), *(root / "examples").rglob("*.toml")}
    own = []
    for file in sorted(files):
        suites = TEST_OF_SUITE.findall(file.read_text(errors="replace"))
        if not suites or suite in suites:
            own.append(file)
    return digest(*(file.read_bytes() for file in own))


# ---- Which tests reach a line ----

def prepare(place):
    """The original must pass, in a time that is taken, and leave counts: then it is the programs of this place that a test runs."""
    product = place.product
    for left in place.originals.rglob("*.o"):
        if left.parent != place.originals / "counted":
            left.unlink()
    for target in product.targets:
        place.lead_here(target)
        place.restore(target)
    known = product.kept / "reached.json"
    now = sources_digest(product)
    before = json.loads(known.read_text()) if known.exists() else {}
    if before.get("sources") != now:
        before = {"sources": now, "tests": {}}
        shutil.rmtree(place.originals / "counted", ignore_errors=True)
    tests = before["tests"]
    missing = [test for test in product.tests if tests.get(str(test), {}).get("digest") != product.digest_of_test(test)]
    if missing:
        link_counting(place)
    for number, test in enumerate(missing, 1):
        if sys.stderr.isatty():
            print(f"\rcounting {number} of {len(missing)}\x1b[K", end="", file=sys.stderr, flush=True)
        tests[str(test)] = {"digest": product.digest_of_test(test), **counted(place, test)}
        known.write_text(json.dumps(before))
    place.begin({})
    for test in product.tests:
        product.reached[str(test)] = {file: set(lines) for file, lines in tests[str(test)]["lines"].items()}
        test.seconds = max(PATIENCE * tests[str(test)]["seconds"], LEAST_PATIENCE)


def sources_digest(product):
    """Of all that the programs are made of."""
    below = [path for folder in ("platform", "feature") for path in (product.root / folder).rglob("*.h")]
    files = [product.root / file for file in product.files] + sorted(below)
    return digest(*(f"{file}\n".encode() + file.read_bytes() for file in files))


def link_counting(place):
    """All programs of units that count, in this place."""
    folder = place.originals / "counted"
    folder.mkdir(parents=True, exist_ok=True)
    only = "|".join(str(place.product.root / folder) for folder in place.product.folders)
    flags = ["--coverage", "-fprofile-abs-path", f"-fprofile-filter-files={only}"]
    objects = {unit: folder / f"{unit.replace('/', '!')}.o" for unit in place.product.commands}
    missing = [unit for unit in objects if not objects[unit].exists()]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        compiled = pool.map(lambda unit: place.compile(unit, objects[unit], place.product.root, *flags), missing)
        for unit, succeeded in zip(missing, compiled):
            if not succeeded:
                sys.exit(f"{unit} does not compile")
    place.begin(objects)
    try:
        for target in place.product.targets:
            place.link(target, "--coverage")
    except Unlinkable as target:
        shutil.rmtree(folder)  # an object may be there by half
        sys.exit(f"{target} cannot be linked so that it counts")


def counted(place, test):
    """The lines that a test reaches, by file, and how long it takes."""
    folder = place.originals / "counted"
    for left in folder.glob("*.gcda"):
        left.unlink()
    test.seconds = 600
    began = time.monotonic()
    if place.failure_as_linked(test) is not None:
        sys.exit(f"{test} fails without any change")
    seconds = time.monotonic() - began
    counts = [path.name for path in folder.glob("*.gcda")]
    if not counts:
        sys.exit(f"{test} does not run the programs that it is given")
    said = subprocess.run(["gcov", "--json-format", "--stdout", *counts], cwd=folder, check=True, capture_output=True)
    lines = collections.defaultdict(set)
    for document in said.stdout.splitlines():
        for file in json.loads(document)["files"]:
            path = pathlib.Path(file["file"])
            if path.is_relative_to(place.product.root):
                found = lines[str(path.relative_to(place.product.root))]
                found |= {line["line_number"] for line in file["lines"] if line["count"]}
    return {"seconds": seconds, "lines": {file: sorted(found) for file, found in sorted(lines.items()) if found}}
