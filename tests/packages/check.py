#!/usr/bin/python3 -B
"""check.py [--list FILE]: every command that a script, a test, a CMake file or a page's session calls is supplied by a
package of the sections of scripts/packages.txt that the step installs which calls it, by one that such a package depends on,
or by Debian's minimal installation. A machine that has been worked on for long has many others, so that only a new one would
tell. FILE: another list than scripts/packages.txt."""
import argparse
import collections
import fnmatch
import pathlib
import re
import shutil
import subprocess
import sys

import calls
import debian

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

# Which script installs which sections before these files are used. The first pattern that fits a file, or a command of a file,
# counts.
Step = collections.namedtuple("Step", "script sections files")
STEPS = (
    Step("scripts/demo", "build target", ("scripts/demo: qemu-ppc",)),
    Step("scripts/demo", "build", (
        "scripts/demo", "scripts/install-packages", "scripts/lib.sh", "CMakeLists.txt", "cmake/compiler.cmake",
        "cmake/package.cmake", "platform/*", "feature/*", "vswitch/*", "tools/*", "inspect/*")),
    Step("scripts/test", "build test all", ("scripts/check-coverage", "scripts/check-tidy")),
    Step("scripts/fuzz", "build test all", ("scripts/fuzz",)),
    Step("scripts/test", "build test target", (
        "cmake/emulated.cmake", "cmake/s390x.cmake", "cmake/target.cmake", "tests/emulation.cmake", "scripts/target-sysroot")),
    Step("scripts/renew-abi", "build test bench target", ("scripts/renew-abi",)),
    Step("scripts/mutate", "build test bench all", ("scripts/mutate",)),
    Step("scripts/check-fresh", "fresh", ("scripts/check-fresh",)),
    Step("scripts/test", "build test bench", ("*",)),
)

# What is called by a variable, in the files of these names, and the commands that it stands for; none where it is of the
# tree, of what was built, or of another list.
STANDS_FOR = {
    "CMakeLists.txt": {"${program}": (), "${name}_fuzz": ()},
    "check-exports": {'"${CC:-cc}"': ("cc",)},
    "check-header": {"$compiler": ("gcc", "g++", "clang", "clang++")},
    "check-package": {'"$1"': (), '"$compiler"': ("gcc", "clang")},
    "check_runs.py": {"sys.argv[1]": ()},
    "chnsw.bash": {'"${COMP_WORDS[0]}"': ()},
    "emulated.cmake": {"${triplet}-gcc": ("powerpc-linux-gnu-gcc", "s390x-linux-gnu-gcc"),
                       "${triplet}-g++": ("powerpc-linux-gnu-g++", "s390x-linux-gnu-g++")},
    "fuzz": {'"$program"': ()},
    "lib.sh": {'"$@"': ()},
    "target-sysroot": {'"$triplet-gcc"': ("powerpc-linux-gnu-gcc", "s390x-linux-gnu-gcc")},
    "tool_test.py": {"step": ("gcc", "g++")},
}

# Built here, or a function of the completion; or asked for only where the machine has it.
OWN = {"chnsw", "_chnsw"}
ASKED_FOR_FIRST = {"sudo"}


def files_of_the_tree():
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=ROOT, check=True,
                            stdout=subprocess.PIPE, text=True).stdout.splitlines()
    return [file for file in listed if (ROOT / file).is_file()]


def step_of(file, command):
    names = (file, f"{file}: {command}")
    return next(step for step in STEPS if any(fnmatch.filter(names, pattern) for pattern in step.files))


def meant(call, used):
    """The commands of a call; None for a variable that nothing is known of."""
    if call.command:
        return (call.command,)
    name = pathlib.PurePath(call.file).name
    used.add((name, call.text))
    return STANDS_FOR.get(name, {}).get(call.text)


def installed_by(script):
    """The sections that a script installs, each time."""
    if not (ROOT / script).is_file():
        return []
    text = (ROOT / script).read_text(encoding="utf-8")
    return [set(sections.split()) for sections in re.findall(r"^ *scripts/install-packages ([a-z ]+)$", text, re.MULTILINE)]


def problems_of_steps():
    for step in STEPS:
        if set(step.sections.split()) not in installed_by(step.script):
            yield f"{step.script} does not install the sections {step.sections}, as tests/packages/check.py has it"


def missing_commands(step, wanted, packages, machine, here):
    """What a step calls that its sections do not supply."""
    own = {name: where for section in step.sections.split() for name, where in packages[section].items()}
    supply = machine.commands(name for name, where in own.items() if where in (None, here))
    # What one release alone has gives its command its own name.
    elsewhere = {name for name, where in own.items() if where not in (None, here)}
    for command in sorted(set(wanted) - OWN - ASKED_FOR_FIRST - elsewhere):
        if not supply.has(command):
            call, owner = wanted[command], machine.owner(command)
            yield (f"{call.file}:{call.line}: {command}: no package of the sections {step.sections} supplies it"
                   + (f"; here it is of {owner}" if owner else ""))


def not_installed(step, packages, machine, here):
    return [name for section in step.sections.split() for name, where in packages[section].items()
            if where in (None, here) and name not in machine.depends]


def gather():
    """What each step calls, as {command: its first call}, and what is wrong with the tables above."""
    problems, used = list(problems_of_steps()), set()
    wanted = {step: {} for step in STEPS}
    for file in files_of_the_tree():
        for call in calls.calls_of(ROOT, file):
            commands = meant(call, used)
            if commands is None:
                problems.append(f"{file}:{call.line}: {call.text}: tests/packages/check.py does not say what it stands for")
            for command in commands or ():
                wanted[step_of(file, command)].setdefault(command, call)
    problems += [f"tests/packages/check.py: {name}: nothing calls {text} any more"
                 for name, texts in STANDS_FOR.items() for text in texts if (name, text) not in used]
    return wanted, problems


def compare(wanted, packages, machine):
    """What no package of the list supplies to who calls it; and the steps that cannot be looked at, since their packages are not
    here, each with those packages."""
    here = debian.release()
    problems, left_out = [], {}
    for step in STEPS:
        absent = not_installed(step, packages, machine, here)
        if absent:
            left_out[step] = absent
        else:
            problems += missing_commands(step, wanted[step], packages, machine, here)
    return problems, left_out


def main(arguments):
    options = argparse.ArgumentParser(description=__doc__)
    options.add_argument("--list", default=ROOT / "scripts/packages.txt")
    packages = debian.read_list(options.parse_args(arguments).list)
    if not shutil.which("dpkg-query"):
        print("NOT CHECKED: which packages supply the commands, for want of dpkg", file=sys.stderr)
        return 0
    wanted, problems = gather()
    missing, left_out = compare(wanted, packages, debian.Machine())
    problems += missing
    for problem in problems:
        print(problem, file=sys.stderr)
    if left_out:
        print(f"NOT CHECKED: the commands of {', '.join(sorted({file for step in left_out for file in step.files}))}, for want of "
              f"{', '.join(sorted(set().union(*left_out.values())))}", file=sys.stderr)
    print(f"{len(set().union(*wanted.values()))} commands, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
