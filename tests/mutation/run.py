#!/usr/bin/python3 -B
"""run.py [OPTION...] [FILE|FOLDER...]: mutates the library's sources, or these files of it or of what stands on it, one change at
a time, and runs the tests against each. What no test notices is a survivor, unless tests/mutation/equivalent proves that nobody
can.

Nothing is changed in the tree: a mutant is compiled from a copy of the sources, and linked with the other objects of the build. A
mutant whose object is the original's byte for byte is the same program, and is not run."""
import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import queue
import random
import resource
import signal
import sys
import threading

import library
import processes
import programs
import proofs
from product import Job, Unlinkable, digest, digest_of

KILLED, REFUSED, SAME, SURVIVED = "killed", "refused by the compiler", "same code", "survived"

# What became of a mutant, and the test that noticed it, with "did not end" before it when it did not.
Outcome = collections.namedtuple("Outcome", "kind test", defaults=("",))


# ---- Running ----

class Runner:
    """Runs mutants in jobs. A mutant that the tests of the first product do not notice is tried in the others, unless it is
    proved that nobody can notice it: that takes long."""

    def __init__(self, products, work, jobs, prepare, proved=()):
        self.product, self.proved, self.prepare_place = products[0], proved, prepare
        self.jobs = queue.Queue()
        self.all_jobs = [Job(products, work / f"job{n}", work / "originals") for n in range(jobs)]
        for job in self.all_jobs:
            self.jobs.put(job)
        self.known = {}  # outcomes by what was compiled
        self.noticed = collections.defaultdict(dict)  # by build and file: tests that noticed a change of it, by program
        self.lock = threading.Lock()

    def prepare(self):
        for place in self.all_jobs[0].places:
            self.prepare_place(place)
        for job in self.all_jobs[1:]:
            for place in job.places:
                for target in place.product.targets:
                    place.restore(target)

    def outcome(self, mutant):
        job = self.jobs.get()
        file = str(pathlib.Path(mutant.file).relative_to(self.product.root))
        original = pathlib.Path(mutant.file).read_bytes()
        copy = job.sources / file
        try:
            copy.write_bytes(original[:mutant.start] + mutant.text.encode() + original[mutant.end:])
            return self.outcome_in(job, file, mutant)
        except Unlinkable:
            return Outcome(REFUSED)
        finally:
            copy.write_bytes(original)
            self.jobs.put(job)

    def outcome_in(self, job, file, mutant):
        units = self.product.units_of(file)
        changed = job.places[0].compile_changed(units)
        if changed is None:
            return Outcome(REFUSED)
        if not changed:
            return Outcome(SAME)
        proved = mutant.name in self.proved
        tests = self.product.tests_of(mutant)
        key = (proved, *map(str, tests), *((unit, digest_of(changed[unit])) for unit in sorted(changed)))
        with self.lock:
            if key in self.known:
                return self.known[key]
        found = self.tested(job, file, changed, tests, job.places[1:] if not proved else [])
        with self.lock:
            self.known[key] = found
        return found

    def tested(self, job, file, changed, tests, others):
        noticing = self.noticing(job.places[0], file, changed, tests)
        if noticing is not None:
            return Outcome(KILLED, noticing)
        for place in others:
            changed = place.compile_changed(self.product.units_of(file))
            noticing = self.noticing(place, file, changed, place.product.tests) if changed else None
            if changed is None or noticing is not None:
                return Outcome(KILLED, noticing or "")
        return Outcome(SURVIVED)

    def noticing(self, place, file, changed, tests):
        """The test that notices what is changed; None when none does."""
        place.begin(changed)
        noticed = self.noticed[place.product.build, file]
        with self.lock:
            before = [(test, list(names)) for test, names in noticed.items() if names and test in tests]
            order = sorted(tests, key=lambda test: -len(noticed.get(test, ())))
        # What noticed a change of this file before may well notice this one, and takes no time.
        for test, names in before:
            if not place.passes(test.only(names)):
                return place.noticed_by(test)
        for test in order:
            failure = place.failure_of(test)
            if failure is not None:
                with self.lock:
                    noticed.setdefault(test, []).extend([failure] if failure else [])
                return place.noticed_by(test)
        return None


class Outcomes:
    """Those of earlier runs, one a line. One holds as long as the file does, and what the tests are written in that decided it:
    of a mutant that was noticed the test that did so, of one that was not all that reach it."""

    def __init__(self, path, product):
        self.path, self.product = path, product
        self.found = {}
        for line in path.read_text().splitlines() if path.exists() else ():
            name, *outcome = json.loads(line)
            self.found[name] = outcome

    def key(self, mutant, outcome):
        tests = self.product.tests_of(mutant) if outcome.kind in (KILLED, SURVIVED) else []
        if outcome.kind == KILLED:
            tests = [test for test in tests if outcome.test.endswith(str(test))]
        return digest(pathlib.Path(mutant.file).read_bytes(), self.product.tests_digest(tests).encode())

    def get(self, mutant):
        if mutant.name not in self.found:
            return None
        kind, test, key = self.found[mutant.name]
        outcome = Outcome(kind, test)
        return outcome if self.key(mutant, outcome) == key else None

    def add(self, mutant, outcome):
        with open(self.path, "a") as kept:
            kept.write(json.dumps([mutant.name, *outcome, self.key(mutant, outcome)]) + "\n")


# ---- The command ----

def arguments():
    parser = argparse.ArgumentParser(prog="mutate", description=__doc__.split("\n\n")[0].split(": ", 1)[1])
    parser.add_argument("files", nargs="*", metavar="FILE|FOLDER", help="only these files of the library, without their folder; "
                        f"or files and folders below {', '.join(programs.FOLDERS)}")
    parser.add_argument("--list", action="store_true", help="only name the mutants")
    parser.add_argument("--only", action="append", default=[], metavar="TEXT", help="only those with TEXT in their name")
    parser.add_argument("--sample", type=int, metavar="N", help="only N of them, the same ones each time")
    parser.add_argument("--seed", type=int, default=1, metavar="N", help="other ones for another number; 1 when left out")
    parser.add_argument("--again", action="store_true", help="only those that survived last time")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="at a time; as many as there are processors")
    parser.add_argument("--build", required=True, type=pathlib.Path, action="append", help=argparse.SUPPRESS)
    parser.add_argument("--work", required=True, type=pathlib.Path, help=argparse.SUPPRESS)
    return parser.parse_args()


def are_programs(names):
    """Whether what is named stands on the library; it and the library are mutated in runs of their own."""
    above = [any(pathlib.PurePath(name).is_relative_to(pathlib.PurePath(folder).parts[0]) for folder in programs.FOLDERS)
             for name in names]
    if any(above) and not all(above):
        sys.exit("the library and what stands on it are mutated each by itself")
    return any(above)


def chosen_files(product, names):
    files = [file for file in product.files
             if not names or any(pathlib.PurePath(file).is_relative_to(name) for name in names)]
    unknown = [name for name in names if not any(pathlib.PurePath(file).is_relative_to(name) for file in files)]
    if unknown:
        sys.exit(f"nothing to mutate is named {unknown[0]}")
    return files


def drawn(wanted, count, seed):
    """So many of them, in an order of chance: the first of them are as good a sample as all."""
    if count is None or count >= len(wanted):
        return wanted
    return random.Random(seed).sample(wanted, count)


def chosen_mutants(product, chosen, last_survivors):
    """All mutants of the chosen files, and those to be run."""
    files = chosen_files(product, chosen.files)
    everything = product.all_mutants_of(files, chosen.jobs)
    wanted = [mutant for mutant in everything if all(text in mutant.name for text in chosen.only)]
    if chosen.again:
        survived = set(last_survivors.read_text().splitlines()) if last_survivors.exists() else set()
        wanted = [mutant for mutant in wanted if mutant.name in survived]
    return files, everything, drawn(wanted, chosen.sample, chosen.seed)


def run_all(runner, wanted, log, kept=None):
    """The outcomes by name. Those that are kept from an earlier run are not tried again."""
    outcomes = {}
    with concurrent.futures.ThreadPoolExecutor(len(runner.all_jobs)) as pool, open(log, "w") as told:

        def tell(mutant, outcome):
            outcomes[mutant.name] = outcome.kind
            print(f"{outcome.kind}\t{mutant.name}\t{outcome.test}", file=told, flush=True)
            if sys.stderr.isatty():
                survivors = sum(kind == SURVIVED for kind in outcomes.values())
                print(f"\r{len(outcomes)} of {len(wanted)}, {survivors} survived\x1b[K", end="", file=sys.stderr, flush=True)

        known = {mutant.name: kept.get(mutant) for mutant in wanted} if kept else {}
        running = {}
        for mutant in wanted:
            if known.get(mutant.name):
                tell(mutant, known[mutant.name])
            else:
                running[pool.submit(runner.outcome, mutant)] = mutant
        try:
            for future in concurrent.futures.as_completed(running):
                if kept:
                    kept.add(running[future], future.result())
                tell(running[future], future.result())
        except BaseException:
            processes.stop()
            pool.shutdown(wait=False, cancel_futures=True)
            for job in runner.all_jobs:
                for place in job.places:
                    processes.end_marked(place.folder)
            raise
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


def interrupt(*_):
    raise KeyboardInterrupt


def products_of_tree(chosen, root, work):
    """What is mutated, how a place for it is prepared, and the outcomes of earlier runs that hold; of the library none are kept."""
    if not are_programs(chosen.files):
        chosen.files = [pathlib.Path(file).name for file in chosen.files]
        return [library.library_of_tree(build.resolve(), root) for build in chosen.build], library.prepare, None
    product = programs.programs_of_tree(chosen.build[0].resolve(), root, work)
    return [product], programs.prepare, Outcomes(work / "kept", product)


def main():
    chosen = arguments()
    root = pathlib.Path(__file__).resolve().parents[2]
    work = chosen.work.resolve()
    products, prepare, kept = products_of_tree(chosen, root, work)
    files, everything, wanted = chosen_mutants(products[0], chosen, work / "survivors")
    if chosen.list:
        print("\n".join(mutant.name for mutant in wanted))
        return 0
    covered = proofs.covered_by(proofs.read_proofs(root / "tests/mutation/equivalent"), everything)
    proved = set().union(*covered.values())
    # A mutant may write without end; it must not fill the disk, nor leave its memory there.
    resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 28, 1 << 28))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    signal.signal(signal.SIGTERM, interrupt)
    runner = Runner(products, work, chosen.jobs, prepare, proved)
    runner.prepare()
    try:
        outcomes = run_all(runner, wanted, work / "outcomes", kept)
    except KeyboardInterrupt:
        sys.exit("ended early" + ("; the same command goes on from here" if kept else ""))
    survivors = [name for name, outcome in outcomes.items() if outcome == SURVIVED]
    (work / "survivors").write_text("".join(f"{name}\n" for name in survivors))
    failed = judge(files, outcomes, covered)
    print("\n" + summary(outcomes, proved) if failed else summary(outcomes, proved))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
