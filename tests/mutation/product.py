"""What is mutated: the units of a build folder, how each is compiled, what they are linked to, and what tests that."""
import concurrent.futures
import functools
import hashlib
import itertools
import os
import pathlib
import pickle
import re
import shutil
import stat
import sys

import mutants
import processes

PATIENCE = 10  # times as long as the original takes, and then it counts as noticed
LEAST_PATIENCE = 5  # seconds
INCLUDE = re.compile(rb'^ *# *include *"([^"]+)"', re.M)


def digest(*contents):
    found = hashlib.sha256()
    for content in contents:
        found.update(hashlib.sha256(content).digest())
    return found.hexdigest()


def digest_of(path):
    return digest(path.read_bytes())


class Test:
    """A test program, or some of its tests, in an environment. It runs these targets; None: whatever is linked."""

    def __init__(self, program, tests="*", targets=None, **environment):
        self.program, self.tests, self.targets, self.environment = program, tests, targets, environment
        self.arguments = []
        self.seconds = 0.0  # how long it may take

    def __str__(self):
        return self.program.name if self.tests == "*" else f"{self.program.name} {self.tests}"

    def command(self, folder):
        """With what a job has made in its folder, where it has."""
        made = folder / self.program.name
        program = made if self.targets is not None and made.exists() else self.program
        return [str(program), *(word.format(folder=folder) for word in self.arguments),
                *([f"--gtest_filter={self.tests}"] if self.tests != "*" else [])]

    def only(self, names):
        part = Test(self.program, ":".join(names), self.targets, **self.environment)
        part.arguments, part.seconds = self.arguments, self.seconds
        return part


class Product:
    """Units by their name below a root, each with the command that compiles it; targets by the name of what is linked, each with
    its command; tests. Below the root are folders that are mutated; none: all of it."""

    def __init__(self, build, root, commands, targets, tests, folders=(), flags=(), kept=None):
        self.build, self.root, self.commands, self.targets, self.tests = build, root, commands, targets, tests
        self.folders, self.flags, self.kept = folders, list(flags), kept
        self.objects = {unit: command[command.index("-o") + 1] for unit, command in commands.items()}

    def units_in(self, target):
        return [unit for unit, name in self.objects.items() if name in self.targets[target]]

    # ---- Files, and what is in them ----

    @functools.cached_property
    def files(self):
        found = [path for folder in self.folders or ("",) for path in (self.root / folder).rglob("*")]
        return sorted(str(path.relative_to(self.root)) for path in found if path.suffix in (".cc", ".h"))

    @functools.cache
    def includes(self, file):
        """The files that a file includes, and what those do. No two files are included by one name."""
        found, ahead = set(), [file]
        while ahead:
            for name in INCLUDE.findall((self.root / ahead.pop()).read_bytes()):
                new = {other for other in self.files if f"/{other}".endswith(f"/{name.decode()}")} - found
                found |= new
                ahead += new
        return found

    def units_of(self, file):
        """The translation units that a file is part of."""
        return [file] if file in self.commands else [unit for unit in sorted(self.commands) if file in self.includes(unit)]

    def all_mutants_of(self, files, jobs):
        """Those of several files. A tree takes seconds, so that what was found is kept while the sources are the same."""
        units = {file: self.units_of(file)[:1] for file in files}
        kept = {file: self.kept / "found" / self.sources_digest(file) for file in files} if self.kept else {}
        found = {file: pickle.loads(path.read_bytes()) for file, path in kept.items() if path.exists()}
        missing = [file for file in files if file not in found and units[file]]
        with concurrent.futures.ProcessPoolExecutor(jobs) as pool:
            searched = pool.map(find_mutants, itertools.repeat(self.root), missing, (units[file][0] for file in missing),
                                (self.commands[units[file][0]] for file in missing))
            for file, new in zip(missing, searched):
                found[file] = new
                if kept:
                    kept[file].parent.mkdir(parents=True, exist_ok=True)
                    kept[file].write_bytes(pickle.dumps(new))
        return [mutant for file in files for mutant in found.get(file, ())]

    def sources_digest(self, file):
        parts = {file, *(part for unit in self.units_of(file)[:1] for part in (unit, *self.includes(unit)))}
        contents = [f"{part}\n".encode() + (self.root / part).read_bytes() for part in sorted(parts)]
        return digest(str(self.root / file).encode(), pathlib.Path(mutants.__file__).read_bytes(), *contents)

    # ---- Tests ----

    def tests_of(self, mutant):
        """Those that can notice a mutant, in the order that finds out soonest; all, where nothing is known."""
        return self.tests


def find_mutants(root, file, unit, arguments):
    return mutants.mutants_of(mutants.parse(str(root / unit), arguments), str(root / file), file)


class Unlinkable(Exception):
    """The changed objects do not fit the others."""


class Place:
    """Where one product is mutated for a job. What the tests find in the build folder leads to the folder that they run in, so
    that jobs do not get in each other's way."""

    def __init__(self, product, folder, sources, originals):
        self.product, self.folder, self.sources, self.originals = product, folder, sources, originals
        self.changed, self.linked = {}, set()
        self.unending = False  # whether the last test that failed did not end
        (folder / "tmp").mkdir(parents=True)

    # ---- Compiling and linking ----

    def compile(self, unit, output, sources, *flags):
        """Warnings are for people; debug information would tell lines apart. What is left to the linker would hide whether two
        objects are the same program."""
        root = re.compile(re.escape(str(self.product.root)) + r"(?=/|\Z)")
        command = [word if "prefix-map" in word else root.sub(str(sources), word)
                   for word in self.product.commands[unit] if not re.match(r"-(g.*|W(?!l,).*|flto.*)$", word)]
        command[command.index("-o") + 1] = str(output)
        command[command.index("-c") + 1] = str(sources / unit)
        return processes.run([*command, *self.product.flags, *flags, "-w"], self.product.build, 300) == processes.PASSED

    def original_of(self, unit):
        """The object of the unchanged unit, compiled as the changed one is."""
        output = self.originals / f"{unit}.o"
        if not output.exists():
            output.parent.mkdir(parents=True, exist_ok=True)
            temporary = output.with_name(f"{output.name}.{self.folder.parent.name}")
            if not self.compile(unit, temporary, self.product.root):
                sys.exit(f"{unit} does not compile")
            temporary.rename(output)
        return output

    def compile_changed(self, units):
        """The objects that differ from the originals, by unit; None when one is refused."""
        changed = {}
        for unit in units:
            output = self.folder / "objects" / f"{unit}.o"
            output.parent.mkdir(parents=True, exist_ok=True)
            if not self.compile(unit, output, self.sources):
                return None
            if digest_of(output) != digest_of(self.original_of(unit)):
                changed[unit] = output
        return changed

    def begin(self, changed):
        """From now on the tests run these objects, given by unit, and the originals of all others."""
        for target in self.linked:
            self.restore(target)
        self.changed, self.linked = changed, set()

    def restore(self, target):
        made = self.folder / pathlib.Path(target).name
        made.unlink(missing_ok=True)
        original = self.originals / "targets" / made.name
        if original.exists():
            os.link(original, made)

    def link(self, target, *flags):
        """What is changed comes first: of an inline function that several objects have, the first is taken."""
        objects = self.product.objects
        new = {objects[unit]: str(path) for unit, path in self.changed.items()}
        known = {name: str(self.originals / f"{unit}.o") for unit, name in objects.items()} if not self.product.folders else {}
        words = [word for word in self.product.targets[target] if not re.match(r"-(g|flto.*)$", word)]
        first = [new[word] for word in words if word in new]
        known.update((name, str(self.folder / pathlib.Path(name).name)) for name in self.product.targets if name != target)
        words = [known.get(word, word) for word in words if word not in new]
        made = self.folder / pathlib.Path(target).name
        made.unlink(missing_ok=True)
        output = words.index("-o")
        words[output + 1:output + 2] = [str(made), *first]
        self.linked.add(target)
        if processes.run([*words, "-Wl,-S", *flags], self.product.build, 300) != processes.PASSED:
            raise Unlinkable(target)

    def link_for(self, test):
        for target in self.product.targets if test.targets is None else test.targets:
            if target not in self.linked and not self.changed.keys().isdisjoint(self.product.units_in(target)):
                self.link(target)

    # ---- Running ----

    def passes(self, test):
        return self.failure_of(test) is None

    def noticed_by(self, test):
        return f"{processes.UNENDING}: {test}" if self.unending else str(test)

    def failure_of(self, test):
        """The name of the test of a program that fails first, empty when it does not say; None when all pass."""
        self.link_for(test)
        return self.failure_as_linked(test)

    def failure_as_linked(self, test):
        temporary = str(self.folder / "tmp")
        environment = {"GTEST_FAIL_FAST": "1", "GTEST_COLOR": "no", "TMPDIR": temporary, "TEST_TMPDIR": temporary,
                       processes.MARK: str(self.folder)}
        if self.product.folders:
            environment["LD_LIBRARY_PATH"] = str(self.folder)
        with open(self.folder / "output", "wb+") as output:
            outcome = processes.run(test.command(self.folder), self.folder, test.seconds, output,
                                    **{**environment, **test.environment})
            for left in (self.folder / "tmp").iterdir():
                shutil.rmtree(left) if left.is_dir() and not left.is_symlink() else left.unlink()
            if outcome == processes.PASSED:
                return None
            self.unending = outcome == processes.UNENDING
            output.seek(0, os.SEEK_END)
            output.seek(max(output.tell() - 10000, 0))
            started = re.findall(r"^\[ RUN      \] (\S+)", output.read().decode(errors="replace"), re.M)
            return started[-1] if started else ""

    # ---- Before the first mutant ----

    def lead_here(self, target):
        """Whoever runs or loads a target in the build folder gets that of the job's folder. A test may run a program in another
        folder than its own; nobody does so with a library."""
        built = self.product.build / target
        original = self.originals / "targets" / built.name
        if original.exists() or not self.product.folders:
            built.unlink()
        else:
            original.parent.mkdir(parents=True, exist_ok=True)
            built.rename(original)
        if ".so" in built.name:
            built.symlink_to(f"/proc/self/cwd/{built.name}")
        else:
            built.write_text(f'#!/bin/sh\nexec "${{{processes.MARK}}}/{built.name}" "$@"\n')
            built.chmod(built.stat().st_mode | stat.S_IXUSR)


class Job:
    """A copy of the sources, and a place for each product that is made of them."""

    def __init__(self, products, folder, originals):
        processes.end_marked(folder)
        shutil.rmtree(folder, ignore_errors=True)
        self.sources = folder / "sources"
        copy_of_sources(products[0], self.sources)
        self.places = [Place(product, folder / str(n), self.sources, originals / str(n))
                       for n, product in enumerate(products)]


def copy_of_sources(product, copy):
    """The folders that are mutated; the rest of the tree as it is."""
    if not product.folders:
        shutil.copytree(product.root, copy)
        return
    copy.mkdir(parents=True)
    for path in product.root.iterdir():
        if path.name in {pathlib.Path(folder).parts[0] for folder in product.folders}:
            shutil.copytree(path, copy / path.name)
        elif not path.name.startswith("."):
            (copy / path.name).symlink_to(path)
