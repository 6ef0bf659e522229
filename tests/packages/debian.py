"""Which packages of this machine supply which commands."""
import collections
import pathlib
import re
import subprocess

FOLDERS = ("/bin/", "/sbin/", "/usr/bin/", "/usr/sbin/")


def read_list(path):
    """The sections of scripts/packages.txt: packages, and the release that alone has one, or None."""
    sections = collections.defaultdict(dict)
    section = None
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        head = re.match(r"\[(\w+)\]", line)
        row = re.match(r"([a-z0-9][a-z0-9.+-]+) +(?:\((\d+)\) )?", line)
        if head:
            section = sections[head[1]]
        elif row:
            section[row[1]] = row[2]
    return sections


def release():
    """Debian's number on this machine."""
    text = pathlib.Path("/etc/os-release").read_text(encoding="utf-8")
    fields = dict(line.split("=", 1) for line in text.splitlines() if "=" in line)
    return fields.get("VERSION_ID", "").strip('"') if fields.get("ID") == "debian" else ""


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def names_in(field):
    """The packages of a dependency field: for each dependency those that satisfy it, without versions."""
    for dependency in field.split(","):
        names = [re.match(r"\s*([^\s:(\[]*)", name)[1] for name in dependency.split("|")]
        if names[0]:
            yield names


class Machine:
    """What is installed."""

    def __init__(self):
        self.depends, self.provided_by, self.minimal = {}, collections.defaultdict(set), {"apt"}
        self.files = {}  # of the packages that were asked about
        form = "${db:Status-Status}\t${Package}\t${Essential}\t${Priority}\t${Provides}\t${Pre-Depends}, ${Depends}\n"
        for row in output_of("dpkg-query", "-W", "-f", form).splitlines():
            status, name, essential, priority, provides, depends = row.split("\t")
            if status != "installed":
                continue
            self.depends.setdefault(name, []).extend(names_in(depends))
            for each in names_in(provides):
                self.provided_by[each[0]].add(name)
            if essential == "yes" or priority == "required":
                self.minimal.add(name)

    def closure(self, packages):
        """These packages and all that they depend on, of a choice the first that is here."""
        reached, open_ones = set(), list(packages)
        while open_ones:
            name = open_ones.pop()
            if name in reached or name not in self.depends:
                continue
            reached.add(name)
            for choice in self.depends[name]:
                open_ones += next(filter(None, map(self.satisfying, choice)), ())
        return reached

    def satisfying(self, name):
        """A package of this name; or who provides it, of several the one that every machine has."""
        if name in self.depends:
            return {name}
        return self.provided_by[name] & self.minimal or self.provided_by[name]

    def commands(self, packages):
        """What these packages, all that they depend on and Debian's minimal installation supply."""
        reached = self.closure(set(packages) | self.minimal)
        self.read_files(sorted(reached - set(self.files)))
        return Supply(set().union(*(self.files[name] for name in reached)))

    def read_files(self, packages):
        """The files of packages that lie where commands do."""
        if packages:
            for name, files in zip(packages, output_of("dpkg-query", "-L", *packages).split("\n\n")):
                self.files[name] = {file for file in files.splitlines() if file.startswith(FOLDERS)}

    def owner(self, command):
        """The package that a command is of here, if any."""
        for folder in FOLDERS:
            found = subprocess.run(["dpkg-query", "-S", folder + command], capture_output=True, text=True).stdout
            if found:
                return found.partition(":")[0]
        return None


class Supply:
    """Commands that some packages supply."""

    def __init__(self, files):
        self.files, self.names = files, {pathlib.PurePath(file).name for file in files}

    def has(self, command):
        return command in self.names or self.has_alternative(command)

    def has_alternative(self, command):
        """Whether one of the programs that Debian lets a name stand for is among them."""
        told = subprocess.run(["update-alternatives", "--query", command], capture_output=True, text=True).stdout
        return any(path in self.files for path in re.findall(r"^Alternative: (.*)$", told, re.MULTILINE))
