"""The library: a few objects linked in one way, and test programs each of which runs all of it."""
import json
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import time

from product import LEAST_PATIENCE, PATIENCE, Product, Test


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
    return Product(build, sources, commands, {target: linking}, tests)


def prepare(place):
    """The original must pass, in a time that is taken, and a library without anything in it must fail every test: then it is the
    library of this place that they run."""
    shutil.rmtree(place.originals, ignore_errors=True)
    for unit in place.product.commands:
        place.original_of(unit)
    target, = place.product.targets
    place.lead_here(target)
    place.begin({})
    place.link(target)
    for test in place.product.tests:
        test.seconds = 600
        began = time.monotonic()
        if not place.passes(test):
            sys.exit(f"{test} fails without any change")
        test.seconds = max(PATIENCE * (time.monotonic() - began), LEAST_PATIENCE)
    nothing = place.folder / "nothing.o"
    subprocess.run(["gcc", "-x", "c", "-c", "-o", nothing, "-"], input=b"", check=True)
    place.begin({unit: nothing for unit in place.product.commands})
    for test in place.product.tests:
        if place.passes(test):
            sys.exit(f"{test} does not run the library that it is given")
