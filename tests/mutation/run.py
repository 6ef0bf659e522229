#!/usr/bin/python3 -B
"""run.py [OPTION...] [FILE...]: mutates the library's sources, or these files of it, one change at a time, and runs the
library's tests against each. What no test notices is a survivor, unless tests/mutation/equivalent proves that nobody can.

Nothing is changed in the tree: a mutant is compiled from a copy of the library's folder, and linked with the other objects
of the build. A mutant whose object is the original's byte for byte is the same program, and is not run."""
import argparse
import collections
import concurrent.futures
import hashlib
import json
import os
import pathlib
import queue
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import threading
import time

import mutants
import proofs

KILLED, REFUSED, SAME, SURVIVED = "killed", "refused by the compiler", "same code", "survived"
PATIENCE = 10  # times as long as the original takes, and then it counts as killed
LEAST_PATIENCE = 5  # seconds


# ---- What is mutated, and what tests it ----

class Test:
    """A test program, or some of its tests, in an environment."""

    def __init__(self, program, tests="*", **environment):
        self.program, self.tests, self.environment = program, tests, environment
        self.seconds = 0.0

    def __str__(self):
        return self.program.name if self.tests == "*" else f"{self.program.name} {self.tests}"

    def command(self):
        return [str(self.program)] + ([f"--gtest_filter={self.tests}"] if self.tests != "*" else [])

    def only(self, names):
        part = Test(self.program, ":".join(names), **self.environment)
        part.seconds = self.seconds
        return part


class Library:
    """A library in a build folder: how each of its translation units is compiled and how the objects are linked, and the
    tests that run it."""

    def __init__(self, build, sources, target, commands, linking, tests):
        self.build, self.sources, self.target, self.tests = build, sources, target, tests
        self.commands, self.linking = commands, linking
        self.trees = {}

    def tree(self, unit):
        if unit not in self.trees:
            self.trees[unit] = mutants.parse(str(self.sources / unit), self.commands[unit])
        return self.trees[unit]

    def files(self):
        return sorted(path.name for path in self.sources.iterdir() if path.suffix in (".cc", ".h"))

    def units_of(self, file):
        """The translation units that a file is part of."""
        if file in self.commands:
            return [file]
        path = str(self.sources / file)
        return [unit for unit in sorted(self.commands)
                if any(include.include.name == path for include in self.tree(unit).get_includes())]

    def mutants_of(self, file):
        units = self.units_of(file)
        return mutants.mutants_of(self.tree(units[0]), str(self.sources / file), file) if units else []

    def object_of(self, unit):
        """As the link command names it."""
        command = self.commands[unit]
        return command[command.index("-o") + 1]


def library_of_tree(build, root):
    sources = root / "feature/ficon/libchnsw/KESTRL"
    version = re.search(r"project\(libchnsw VERSION (\S+)", (root / "CMakeLists.txt").read_text()).group(1)
    target = f"libchnsw.so.{version}"
    commands = {pathlib.Path(each["file"]).name: shlex.split(each["command"])
                for each in json.loads((build / "compile_commands.json").read_text())
                if pathlib.Path(each["file"]).parent == sources}
    said = subprocess.run(["ninja", "-C", build, "-t", "commands", target], check=True, capture_output=True, text=True)
    linking = next(line for line in said.stdout.splitlines() if f"-o {target} " in line)
    linking = [word for word in shlex.split(linking) if word not in (":", "&&")]
    programs = build / "tests"
    tests = [Test(programs / name) for name in ("port_map_tests", "messages_tests", "time_of_day_tests", "frame_tests",
                                                "library_lifecycle_tests", "header_c_test")]
    tests += [Test(programs / "code_page_tests", f"{suite}.*", LD_LIBRARY_PATH=str(programs / "frame" / folder))
              for suite, folder in (("CodePageName", "nowhere"), ("ConverterMissing", "nowhere"),
                                    ("ConverterWithoutEntry", "converter_without_entry"), ("Converter", "converter"))]
    return Library(build, sources, target, commands, linking, tests)


# ---- Running ----

def run(command, folder, seconds, output=subprocess.DEVNULL, **environment):
    """Whether the command succeeds in time. What it leaves running ends with it."""
    began = subprocess.Popen(command, cwd=folder, env={**os.environ, **environment}, start_new_session=True,
                             stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.DEVNULL)
    try:
        return began.wait(seconds) == 0
    except subprocess.TimeoutExpired:
        return False
    finally:
        try:
            os.killpg(began.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        began.wait()


class Place:
    """Where one library is mutated for a job. The build's library is a link to the one in the folder that a test runs in,
    so that jobs do not get in each other's way."""

    def __init__(self, library, folder, sources, originals):
        self.library, self.folder, self.sources, self.originals = library, folder, sources, originals
        (folder / "tmp").mkdir(parents=True)

    def compile(self, unit, output):
        """Warnings are for people; debug information would tell lines apart. What is left to the linker would hide whether
        two objects are the same program."""
        command = [word for word in self.library.commands[unit] if not re.match(r"-(g.*|W(?!l,).*|flto.*)$", word)]
        command[command.index("-o") + 1] = str(output)
        command[command.index("-c") + 1] = str(self.sources / unit)
        return run(command + ["-w"], self.library.build, 120)

    def compile_changed(self, units):
        """The objects that differ from the originals, by unit; None when one is refused."""
        changed = {}
        for unit in units:
            output = self.folder / f"{unit}.o"
            if not self.compile(unit, output):
                return None
            if digest(output) != digest(self.originals / f"{unit}.o"):
                changed[unit] = output
        return changed

    def link(self, changed):
        """With the originals of all objects but the changed ones, which are given by unit."""
        objects = {self.library.object_of(unit): str(changed.get(unit, self.originals / f"{unit}.o"))
                   for unit in self.library.commands}
        command = [objects.get(word, word) for word in self.library.linking if not re.match(r"-(g|flto.*)$", word)]
        command[command.index("-o") + 1] = str(self.folder / self.library.target)
        return run(command, self.library.build, 120)

    def passes(self, test):
        return self.failure_of(test) is None

    def failure_of(self, test):
        """The name of the test of a program that fails first, empty when it does not say; None when all pass."""
        temporary = str(self.folder / "tmp")
        with open(self.folder / "output", "wb+") as output:
            if run(test.command(), self.folder, test.seconds, output, GTEST_FAIL_FAST="1", GTEST_COLOR="no",
                   TMPDIR=temporary, TEST_TMPDIR=temporary, **test.environment):
                return None
            output.seek(0, os.SEEK_END)
            output.seek(max(output.tell() - 10000, 0))
            started = re.findall(r"^\[ RUN      \] (\S+)", output.read().decode(errors="replace"), re.M)
            return started[-1] if started else ""

    def prepare(self):
        """The original must pass, in a time that is taken, and a library without anything in it must fail every test: then
        it is the library of this place that they run."""
        self.originals.mkdir()
        for unit in self.library.commands:
            if not self.compile(unit, self.originals / f"{unit}.o"):
                sys.exit(f"{unit} does not compile")
        built = self.library.build / self.library.target
        built.unlink()
        built.symlink_to(f"/proc/self/cwd/{self.library.target}")
        if not self.link({}):
            sys.exit("the library cannot be linked")
        for test in self.library.tests:
            test.seconds = 600
            began = time.monotonic()
            if not self.passes(test):
                sys.exit(f"{test} fails without any change")
            test.seconds = max(PATIENCE * (time.monotonic() - began), LEAST_PATIENCE)
        nothing = self.folder / "nothing.o"
        subprocess.run(["gcc", "-x", "c", "-c", "-o", nothing, "-"], input=b"", check=True)
        self.link({unit: nothing for unit in self.library.commands})
        for test in self.library.tests:
            if self.passes(test):
                sys.exit(f"{test} does not run the library that it is given")


class Job:
    """A copy of the sources, and a place for each library that is made of them."""

    def __init__(self, libraries, folder, originals):
        shutil.rmtree(folder, ignore_errors=True)
        self.sources = folder / "sources"
        shutil.copytree(libraries[0].sources, self.sources)
        self.places = [Place(library, folder / str(n), self.sources, originals / str(n))
                       for n, library in enumerate(libraries)]


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


class Runner:
    """Runs mutants in jobs. A mutant that the tests of the first library do not notice is tried in the others, unless it is
    proved that nobody can notice it: that takes long."""

    def __init__(self, libraries, work, jobs, proved=()):
        self.library, self.proved = libraries[0], proved
        self.originals = work / "originals"
        self.jobs = queue.Queue()
        self.all_jobs = [Job(libraries, work / f"job{n}", self.originals) for n in range(jobs)]
        for job in self.all_jobs:
            self.jobs.put(job)
        self.known = {}  # outcomes by what was compiled
        self.noticed = collections.defaultdict(dict)  # by library and file: tests that noticed a change of it, by program
        self.lock = threading.Lock()

    def prepare(self):
        shutil.rmtree(self.originals, ignore_errors=True)
        self.originals.mkdir()
        for place in self.all_jobs[0].places:
            place.prepare()

    def outcome(self, mutant):
        job = self.jobs.get()
        original = pathlib.Path(mutant.file).read_bytes()
        copy = job.sources / pathlib.Path(mutant.file).name
        try:
            copy.write_bytes(original[:mutant.start] + mutant.text.encode() + original[mutant.end:])
            return self.outcome_in(job, copy.name, mutant.name in self.proved)
        finally:
            copy.write_bytes(original)
            self.jobs.put(job)

    def outcome_in(self, job, file, proved):
        units = self.library.units_of(file)
        changed = job.places[0].compile_changed(units)
        if changed is None:
            return REFUSED
        if not changed:
            return SAME
        key = (proved, *((unit, digest(changed[unit])) for unit in sorted(changed)))
        with self.lock:
            if key in self.known:
                return self.known[key]
        found = self.tested(job, file, units, changed, job.places[1:] if not proved else [])
        with self.lock:
            self.known[key] = found
        return found

    def tested(self, job, file, units, changed, others):
        if not job.places[0].link(changed):
            return REFUSED
        if self.is_noticed(job.places[0], file):
            return KILLED
        for place in others:
            changed = place.compile_changed(units)
            if changed is None or (changed and place.link(changed) and self.is_noticed(place, file)):
                return KILLED
        return SURVIVED

    def is_noticed(self, place, file):
        key = (place.library.build, file)
        with self.lock:
            before = [(test, list(names)) for test, names in self.noticed[key].items() if names]
            order = sorted(place.library.tests, key=lambda test: -len(self.noticed[key].get(test, ())))
        # What noticed a change of this file before may well notice this one, and takes no time.
        for test, names in before:
            if not place.passes(test.only(names)):
                return True
        for test in order:
            failure = place.failure_of(test)
            if failure is not None:
                with self.lock:
                    self.noticed[key].setdefault(test, []).extend([failure] if failure else [])
                return True
        return False


# ---- The command ----

def arguments():
    parser = argparse.ArgumentParser(prog="mutate", description=__doc__.split("\n\n")[0].split(": ", 1)[1])
    parser.add_argument("files", nargs="*", metavar="FILE", help="only these files of the library, without their folder")
    parser.add_argument("--list", action="store_true", help="only name the mutants")
    parser.add_argument("--only", action="append", default=[], metavar="TEXT", help="only those with TEXT in their name")
    parser.add_argument("--sample", type=int, metavar="N", help="only N of them, the same ones each time")
    parser.add_argument("--again", action="store_true", help="only those that survived last time")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="at a time; as many as there are processors")
    parser.add_argument("--build", required=True, type=pathlib.Path, action="append", help=argparse.SUPPRESS)
    parser.add_argument("--work", required=True, type=pathlib.Path, help=argparse.SUPPRESS)
    return parser.parse_args()


def chosen_mutants(library, chosen, last_survivors):
    """All mutants of the chosen files, and those to be run."""
    files = chosen.files or library.files()
    unknown = set(files) - set(library.files())
    if unknown:
        sys.exit(f"the library has no file {unknown.pop()}")
    everything = [mutant for file in files for mutant in library.mutants_of(file)]
    wanted = [mutant for mutant in everything if all(text in mutant.name for text in chosen.only)]
    if chosen.again:
        survived = set(last_survivors.read_text().splitlines()) if last_survivors.exists() else set()
        wanted = [mutant for mutant in wanted if mutant.name in survived]
    if chosen.sample is not None and chosen.sample < len(wanted):
        picked = set(random.Random(chosen.sample).sample(range(len(wanted)), chosen.sample))
        wanted = [mutant for index, mutant in enumerate(wanted) if index in picked]
    return files, everything, wanted


def run_all(runner, wanted, log):
    outcomes = {}
    with concurrent.futures.ThreadPoolExecutor(len(runner.all_jobs)) as pool, open(log, "w") as log_file:
        running = {pool.submit(runner.outcome, mutant): mutant for mutant in wanted}
        for done, future in enumerate(concurrent.futures.as_completed(running), 1):
            name = running[future].name
            outcomes[name] = future.result()
            print(f"{outcomes[name]}\t{name}", file=log_file, flush=True)
            if sys.stderr.isatty():
                survivors = sum(outcome == SURVIVED for outcome in outcomes.values())
                print(f"\r{done} of {len(wanted)}, {survivors} survived\x1b[K", end="", file=sys.stderr, flush=True)
    if sys.stderr.isatty():
        print(file=sys.stderr)
    return outcomes


def judge(files, outcomes, covered):
    """What is wrong: survivors that are not proved equivalent, and proofs of what is gone or is noticed. Each entry of a proof
    comes with the names of the mutants that it covers."""
    proved = set().union(*covered.values())
    own = {entry: names for entry, names in covered.items() if entry.split(":", 1)[0] in files}
    survivors = [name for name, outcome in outcomes.items() if outcome == SURVIVED and name not in proved]
    gone = [entry for entry, names in own.items() if not names]
    noticed = {name for names in own.values() for name in names if outcomes.get(name) in (KILLED, REFUSED)}
    for title, found in (("Survived", sorted(survivors)), ("Named as equivalent, but no mutant any more", gone),
                         ("Named as equivalent, but noticed", sorted(noticed))):
        if found:
            print(f"\n{title}:")
            print("\n".join(found))
    return bool(survivors or gone or noticed)


def summary(outcomes, proved):
    equivalent = sum(outcome == SURVIVED and name in proved for name, outcome in outcomes.items())
    counts = collections.Counter(outcomes.values())
    return (f"{len(outcomes)} mutants: {counts[KILLED]} killed, {counts[REFUSED]} refused by the compiler, {counts[SAME]} "
            f"the same code, {equivalent} proved equivalent, {counts[SURVIVED] - equivalent} survived")


def main():
    chosen = arguments()
    chosen.files = [pathlib.Path(file).name for file in chosen.files]
    root = pathlib.Path(__file__).resolve().parents[2]
    work = chosen.work.resolve()
    libraries = [library_of_tree(build.resolve(), root) for build in chosen.build]
    files, everything, wanted = chosen_mutants(libraries[0], chosen, work / "survivors")
    if chosen.list:
        print("\n".join(mutant.name for mutant in wanted))
        return 0
    covered = proofs.covered_by(proofs.read_proofs(root / "tests/mutation/equivalent"), everything)
    proved = set().union(*covered.values())
    # A mutant may write without end; it must not fill the disk, nor leave its memory there.
    resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 28, 1 << 28))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    runner = Runner(libraries, work, chosen.jobs, proved)
    runner.prepare()
    outcomes = run_all(runner, wanted, work / "outcomes")
    survivors = [name for name, outcome in outcomes.items() if outcome == SURVIVED]
    (work / "survivors").write_text("".join(f"{name}\n" for name in survivors))
    failed = judge(files, outcomes, covered)
    print("\n" + summary(outcomes, proved) if failed else summary(outcomes, proved))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
