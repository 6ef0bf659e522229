"""Which commands a file calls: scripts, Python, CMake, tests in C and C++, and the pages whose sessions are run.

What a file calls by a variable is looked for among what the variable is set to; where that tells nothing, the call is handed
back by its text, and tests/packages/check.py has to say what it stands for."""
import ast
import collections
import json
import pathlib
import re
import subprocess

# A command that a file calls by its name, or a text that stands for one.
Call = collections.namedtuple("Call", "file line command text")

BUILTINS = set(": . [ [[ alias bg bind break builtin cd command compgen complete compopt continue declare dirs disown echo "
               "enable eval exec exit export false fc fg getopts hash history jobs kill let local logout mapfile popd printf pushd pwd read "
               "readarray readonly return set shift shopt source suspend test times trap true type typeset ulimit umask "
               "unalias unset wait".split())
# What runs the command in its arguments, and its options that take a word. Some are functions of scripts/lib.sh.
STARTERS = {"command": "", "env": "u", "exec": "", "nice": "n", "pinned": "", "quietly": "", "setsid": "", "sudo": "u",
            "unshare": "", "xargs": "dILnP"}
SHELLS = ("bash", "sh")
SYSTEM_FOLDERS = ("/bin/", "/sbin/", "/usr/bin/", "/usr/sbin/")


def calls_of(root, file):
    """All that a file of the tree calls."""
    path = pathlib.Path(root) / file
    text = path.read_text(encoding="utf-8", errors="replace")
    first = text.partition("\n")[0]
    calls = []
    if first.startswith("#!"):
        words = first[2:].split()
        calls += [Call(file, 1, pathlib.PurePath(word).name, None) for word in words if not word.startswith("-")]
    if path.suffix in (".sh", ".bash") or any(re.search(rf"\b{shell}\b", first) for shell in SHELLS) and calls:
        calls += of_shell(file, text, 1, functions_beside(root, text))
    elif path.suffix == ".py" or "python" in first and calls:
        calls += of_python(file, text)
    elif path.name == "CMakeLists.txt" or path.suffix == ".cmake":
        calls += of_cmake(file, text)
    elif path.name == "CMakePresets.json":
        calls += of_presets(file, text)
    elif path.suffix in (".c", ".cc", ".h"):
        calls += of_source(file, text)
    elif path.suffix == ".md":
        calls += of_page(file, text)
    return calls


# ---- Shell ----


def nodes(tree):
    """Every object of a syntax tree."""
    if isinstance(tree, dict):
        yield tree
        tree = tree.values()
    elif not isinstance(tree, list):
        return
    for child in tree:
        yield from nodes(child)


def tree_of(text):
    done = subprocess.run(["shfmt", "--language-dialect", "bash", "--to-json"], input=text.encode(), capture_output=True)
    if done.returncode != 0:
        raise ValueError(done.stderr.decode().strip())
    return json.loads(done.stdout)


def functions_in(tree):
    return {node["Name"]["Value"] for node in nodes(tree) if node.get("Type") == "FuncDecl"}


def functions_beside(root, text):
    """Those of scripts/lib.sh, for a script that reads it."""
    library = pathlib.Path(root) / "scripts/lib.sh"
    if not re.search(r"^\. .*/lib\.sh\"?$", text, re.MULTILINE) or not library.is_file():
        return set()
    return functions_in(tree_of(library.read_text(encoding="utf-8")))


def of_shell(file, text, line, functions=frozenset()):
    return Shell(file, text, line, functions).calls()


class Shell:
    """The calls in a piece of shell that begins at a line of a file."""

    def __init__(self, file, text, line, functions):
        self.file, self.text, self.line = file, text.encode(), line
        try:
            self.tree = tree_of(text)
        except ValueError as error:
            raise SystemExit(f"{file}:{line}: {error}") from None
        self.known = BUILTINS | set(functions) | functions_in(self.tree)
        self.arrays = collections.defaultdict(list)
        for node in nodes(self.tree):
            if "Array" in node and not node.get("Append"):
                words = [element["Value"] for element in node["Array"].get("Elems") or []]
                self.arrays[node["Name"]["Value"]].append(words)

    def calls(self):
        found = []
        for node in nodes(self.tree):
            if node.get("Type") == "CallExpr" and node.get("Args"):
                found += self.started(node["Args"])
        return found

    def call(self, word, command, text=None):
        return Call(self.file, self.line + word["Pos"]["Line"] - 1, command, text)

    def source(self, word):
        return self.text[word["Pos"]["Offset"]:word["End"]["Offset"]].decode()

    def literal(self, word):
        """A word that nothing is expanded in, or None."""
        text = ""
        for part in word["Parts"]:
            parts = part.get("Parts") or [] if part["Type"] == "DblQuoted" else [part]
            if any(each["Type"] not in ("Lit", "SglQuoted") for each in parts):
                return None
            text += "".join(each.get("Value", "") for each in parts)
        return text

    def started(self, words):
        """The commands that a call starts: the first word, and what that one starts in turn."""
        if not words:
            return
        name = self.literal(words[0])
        if name is None:
            yield from self.expanded(words)
            return
        if "/" in name:
            if name.startswith(SYSTEM_FOLDERS):
                yield self.call(words[0], pathlib.PurePath(name).name)
        elif name not in self.known:
            yield self.call(words[0], name)
        yield from self.started_by(name, words)

    def expanded(self, words):
        """A word with something expanded in it: an array of this file, a path of the tree or of what was built."""
        text = self.source(words[0])
        array = re.fullmatch(r'"?\$\{(\w+)\[@\]\}"?', text)
        if array and array[1] in self.arrays:
            for set_to in self.arrays[array[1]]:
                yield from self.started(set_to or words[1:])
        elif "/" not in text:
            yield self.call(words[0], None, text)

    def started_by(self, name, words):
        rest = words[1:]
        literals = [self.literal(word) for word in rest]
        if name == "command" and literals[:1] in (["-v"], ["-V"]):
            return  # asks, and does without
        if name in STARTERS:
            yield from self.started(rest[self.options_before(name, literals):][:1 if name == "pinned" else None])
        elif name in SHELLS and "-c" in literals[:-1]:
            yield from self.nested(rest[literals.index("-c") + 1])
        elif name == "trap" and rest and literals[0] != "-":
            yield from self.nested(rest[0])
        elif name == "find":
            for at, literal in enumerate(literals):
                if literal in ("-exec", "-execdir"):
                    yield from self.started(rest[at + 1:])

    def options_before(self, name, literals):
        """How many words stand between what starts a command and the command."""
        at = 0
        while at < len(literals) and literals[at] is not None:
            if literals[at].startswith("-"):
                at += 2 if literals[at][1:] in tuple(STARTERS[name]) else 1
            elif "=" in literals[at]:
                at += 1
            else:
                break
        return at

    def nested(self, word):
        """A command in quotes."""
        inner = self.literal(word)
        if inner is None:
            inner = self.source(word).strip("\"'")
        return of_shell(self.file, inner, self.line + word["Pos"]["Line"] - 1, self.known)


# ---- Python ----

# What starts the command in its first argument.
STARTING = ("run", "Popen", "call", "check_call", "check_output", "system", "popen", "execv", "execve", "execvp", "execvpe",
            "which")
STARTING_MODULES = ("subprocess", "os", "shutil")


def of_python(file, text):
    return Python(file, text).calls()


class Python:
    """The calls in a file of Python: those of subprocess and the like, and of functions that hand their argument on to them."""

    def __init__(self, file, text):
        self.file = file
        self.tree = ast.parse(text)
        self.functions = {node.name: node for node in ast.walk(self.tree) if isinstance(node, ast.FunctionDef)}
        self.handing_on = {}  # name: which argument
        self.within = {}  # call: function
        for function in self.functions.values():
            for node in ast.walk(function):
                self.within.setdefault(node, function)
        self.assigned = collections.defaultdict(list)
        for node in ast.walk(self.tree):
            if isinstance(node, ast.Assign):
                for target in node.targets:
                    self.assigned[ast.unparse(target)].append(node.value)

    def calls(self):
        everything = [node for node in ast.walk(self.tree) if isinstance(node, ast.Call)]
        known = None
        while known != self.handing_on:
            known = dict(self.handing_on)
            found = []
            for node in everything:
                at = self.command_argument(node)
                if at is not None and at < len(node.args):
                    found += self.commands(node.args[at], node)
        return found

    def command_argument(self, node):
        called = node.func
        if isinstance(called, ast.Attribute):
            if isinstance(called.value, ast.Name) and called.value.id in STARTING_MODULES:
                return 0 if called.attr in STARTING else None
            return self.handing_on.get(called.attr)
        return self.handing_on.get(called.id) if isinstance(called, ast.Name) else None

    def commands(self, value, node, seen=()):
        """What a command may be."""
        if isinstance(value, ast.Starred):
            return self.commands(value.value, node, seen)
        if isinstance(value, (ast.List, ast.Tuple)) and value.elts:
            return self.commands(value.elts[0], node, seen)
        if isinstance(value, ast.BinOp) and isinstance(value.op, ast.Add):
            return self.commands(value.left, node, seen)
        if isinstance(value, ast.Constant) and isinstance(value.value, str):
            return list(self.named(value, value.value))
        if isinstance(value, ast.Call) and isinstance(value.func, ast.Name) and value.func.id in self.functions:
            returned = [each.value for each in ast.walk(self.functions[value.func.id]) if isinstance(each, ast.Return)]
            return [call for each in returned for call in self.commands(each, node, seen)]
        text = ast.unparse(value)
        function = self.within.get(node)
        if function is not None and text in self.arguments(function):
            arguments = self.arguments(function)
            self.handing_on[function.name] = arguments.index(text) - (arguments[0] == "self")
            return []
        if text in self.assigned and text not in seen:
            return [call for each in self.assigned[text] for call in self.commands(each, node, (*seen, text))]
        return [Call(self.file, value.lineno, None, text)]

    def arguments(self, function):
        named = [argument.arg for argument in function.args.args]
        return named + ([function.args.vararg.arg] if function.args.vararg else [])

    def named(self, value, name):
        if "/" not in name:
            yield Call(self.file, value.lineno, name, None)
        elif name.startswith(SYSTEM_FOLDERS):
            yield Call(self.file, value.lineno, pathlib.PurePath(name).name, None)


# ---- CMake ----

# What CMake calls by a name of its own.
CMAKE_NAMES = {"${CMAKE_COMMAND}": "cmake", "${Python3_EXECUTABLE}": "python3", "Python3::Interpreter": "python3",
               "protobuf::protoc": "protoc"}
CMAKE_PACKAGES = {"PkgConfig": "pkg-config", "Python3": "python3"}
CMAKE_VARIABLES = re.compile(r"(CMAKE_\w+_COMPILER|\w*emulator)\Z")


def of_cmake(file, text):
    found = []
    plain = re.sub(r"#[^\n]*", lambda comment: " " * len(comment[0]), text)
    built = set(re.findall(r"\badd_(?:executable|\w+_test)\(\s*(\w+)", plain))
    programs = set()
    for command in re.finditer(r"\b(\w+)\s*\(", plain):
        words = arguments_from(plain, command.end())
        line = plain.count("\n", 0, command.start()) + 1
        name = command[1].lower()
        if name == "find_program":
            programs.add("${" + words[0] + "}")
            for word in words[1:]:
                if word in ("REQUIRED", "HINTS", "PATHS", "DOC", "NO_CACHE"):
                    break
                if word != "NAMES":
                    found.append(Call(file, line, word, None))
        elif name == "find_package" and words[0] in CMAKE_PACKAGES:
            found.append(Call(file, line, CMAKE_PACKAGES[words[0]], None))
        elif name == "set" and CMAKE_VARIABLES.match(words[0]):
            found += of_cmake_word(file, line, words[1])
        elif name in ("add_test", "add_custom_command", "add_custom_target", "execute_process"):
            called = [words[at + 1] for at, word in enumerate(words[:-1]) if word == "COMMAND"]
            for word in called:
                if word not in programs and word not in built:
                    found += of_cmake_word(file, line, word)
    return found


def of_cmake_word(file, line, word):
    """The command that a word names; a path, or an expression of the generator, is of the tree or of what was built."""
    if word in CMAKE_NAMES:
        return [Call(file, line, CMAKE_NAMES[word], None)]
    if "/" in word or word.startswith("$<"):
        return []
    return [Call(file, line, None, word) if "$" in word else Call(file, line, word, None)]


def arguments_from(text, start):
    """The words up to the parenthesis that closes a command."""
    depth, end = 1, start
    while depth and end < len(text):
        depth += {"(": 1, ")": -1}.get(text[end], 0)
        end += 1
    return [word.strip('"') for word in re.findall(r'"[^"]*"|[^\s()]+', text[start:end - 1])]


def of_presets(file, text):
    """The compilers of the presets, and what CMake generates for."""
    found = []
    for line, words in enumerate(text.splitlines(), 1):
        for name, value in re.findall(r'"(generator|CMAKE_\w+_COMPILER)": "([^"]+)"', words):
            found.append(Call(file, line, {"Ninja": "ninja"}.get(value, value), None))
    return found


# ---- C and C++ ----

STRING = r'"(?:[^"\\\n]|\\.)*"'
ESCAPES = {"n": "\n", "t": "\t", "0": "\0"}


def of_source(file, text):
    """What a source hands to a shell or names by its path in the system."""
    found = []
    making = set()  # functions that make scripts
    for start in re.finditer(r"(?<!::)\b(?:std::)?(shell|system|popen)\(", text):
        if re.search(r"\w[\w:<>*&]*\s+(\w+::)*$", text[text.rfind("\n", 0, start.start()) + 1:start.start()]):
            continue  # declares it
        argument = argument_from(text, start.end())
        making.update(re.findall(r"\b([a-z]\w*)\(", re.sub(STRING, "", argument)))
        found += of_script(file, text, argument, start.start())
    for name in sorted(making):
        for body in re.finditer(rf"^std::string {name}\([^)]*\) {{\s*return ", text, re.MULTILINE):
            found += of_script(file, text, text[body.end():text.index(";\n}", body.end())], body.end())
    for path in re.finditer(r'"((?:/usr)?/s?bin/[\w.+-]+)"', text):
        found.append(Call(file, text.count("\n", 0, path.start()) + 1, pathlib.PurePath(path[1]).name, None))
    for start in re.finditer(r"\b(execlp|execvp|execvpe|posix_spawnp)\(", text):
        found.append(Call(file, text.count("\n", 0, start.start()) + 1, None, start[1]))
    return found


def of_script(file, text, argument, place):
    line = text.count("\n", 0, place) + 1
    script = script_of(text, argument)
    if script is None:
        return [Call(file, line, None, " ".join(argument.split()))]
    return of_shell(file, script, line)


def argument_from(text, start):
    """The text up to the parenthesis or comma that ends an argument; neither counts in a string."""
    depth, at = 0, start
    for token in re.finditer(STRING + r"|.", text[start:], re.DOTALL):
        at = start + token.start()
        depth += {"(": 1, "{": 1, ")": -1, "}": -1}.get(token[0], 0)
        if depth < 0 or (token[0] == "," and depth == 0):
            break
    return text[start:at]


def script_of(text, argument, seen=()):
    """The script that an expression makes: strings as they are, a word for all else; None when no string is in it."""
    argument = re.sub(r"\.c_str\(\)$", "", argument.strip())
    if re.fullmatch(r"\w+", argument) and argument not in seen:
        made = re.findall(rf"\bstd::string {argument} =\s*((?:{STRING}|[^;\"])*);", text)
        scripts = [script_of(text, each, (*seen, argument)) for each in made]
        return None if not scripts or None in scripts else "\n".join(scripts)
    if not re.search(STRING, argument):
        return None
    script = ""
    for token in re.finditer(STRING + r'|[^"]+', argument):
        if token[0].startswith('"'):
            script += re.sub(r"\\(.)", lambda escaped: ESCAPES.get(escaped[1], escaped[1]), token[0][1:-1])
        elif re.sub(r"std::string\(|[+()\s]", "", token[0]):
            script += "/of/this/tree"
    return script


# ---- Pages ----


def of_page(file, text):
    """The commands of the sessions that scripts/check-docs runs."""
    script, first, inside = [], 0, False
    for line, words in enumerate(text.splitlines(), 1):
        inside = words.strip() == "```console" if not inside else words.strip() != "```"
        # A line each, so that those of the script are those of the page.
        script.append(words[2:] if inside and words.startswith(("$ ", "> ")) else "")
    return of_shell(file, "\n".join(script), first + 1)
