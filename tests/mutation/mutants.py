"""Finds the mutants of a source file: every place where one operator, constant, condition, order or statement could be
another, from the syntax tree, so that what is replaced is what the compiler takes it for."""
import collections
import ctypes
import re

from clang import cindex
from clang.cindex import CursorKind, TypeKind

# A mutant replaces the bytes from start to end of a file by text. Its name says where and how, and keeps to it when the
# code moves. One in a table says of which rows (None elsewhere), so that a proof can be about rows of a kind.
Mutant = collections.namedtuple("Mutant", "name file start end text of_rows", defaults=(None,))

# Rows of a table, each as what stands in its columns by name ("expected.ports"), and what is changed in them:
# ".expected.ports: 32 => 31" or " => nothing", and nothing when two rows are exchanged.
OfRows = collections.namedtuple("OfRows", "table rows change")

OTHER_OPERATORS = {
    "<": ("<=", "!="), "<=": ("<", "=="), ">": (">=", "!="), ">=": (">", "=="), "==": ("!=", "<=", ">="),
    "!=": ("==", "<", ">"), "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("*", "/"), "&": ("|",), "|": ("&",),
    "^": ("|",), "<<": (">>",), ">>": ("<<",), "&&": ("||",), "||": ("&&",), "+=": ("-=", "="), "-=": ("+=", "="),
    "*=": ("/=",), "/=": ("*=",), "|=": ("&=", "="), "&=": ("|=", "="), "<<=": (">>=",), ">>=": ("<<=",)}
ORDERING = {"<", "<=", ">", ">="}
NEUTRAL = {"&&": "true", "||": "false"}
LONGEST_NAME = 100

INTEGERS = {TypeKind.CHAR_U, TypeKind.UCHAR, TypeKind.USHORT, TypeKind.UINT, TypeKind.ULONG, TypeKind.ULONGLONG,
            TypeKind.CHAR_S, TypeKind.SCHAR, TypeKind.SHORT, TypeKind.INT, TypeKind.LONG, TypeKind.LONGLONG}
STRING = re.compile(r'"(?:[^"\\\n]|\\.)*"\Z')
LAST_CHARACTER = re.compile(r'(?:\\x[0-9a-fA-F]+|\\[0-7]{1,3}|\\.|[^\\])"\Z')
INTEGER = re.compile(r"(0[xX][0-9a-fA-F']+|[0-9][0-9']*)[uUlL]*\Z")
CONVERSION = re.compile(r"%([-+ #0]*)(\d*)(\.\d+)?([dxsu])")
SEVERAL = (CursorKind.COMPOUND_STMT, CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT)
LOOPS = (CursorKind.FOR_STMT, CursorKind.WHILE_STMT, CursorKind.DO_STMT, CursorKind.CXX_FOR_RANGE_STMT)
FUNCTIONS = (CursorKind.FUNCTION_DECL, CursorKind.FUNCTION_TEMPLATE, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR,
             CursorKind.DESTRUCTOR)
RECORDS = (CursorKind.STRUCT_DECL, CursorKind.CLASS_DECL, CursorKind.CLASS_TEMPLATE)


def parse(path, arguments):
    """The syntax tree of a file that is compiled with these arguments. Only those of the preprocessor and the language
    matter to the tree."""
    kept, words = [], iter(arguments)
    for word in words:
        if word in ("-I", "-isystem", "-D", "-include"):
            kept += [word, next(words)]
        elif word.startswith(("-I", "-D", "-std=")):
            kept.append(word)
    tree = cindex.Index.create().parse(path, kept, options=cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
    errors = [str(each) for each in tree.diagnostics if each.severity >= cindex.Diagnostic.Error]
    if errors:
        raise RuntimeError(f"{path} cannot be parsed: " + "; ".join(errors))
    return tree


def place(location):
    """File and offset of a location. What stands in a macro's arguments has its own; what the macro itself brings along has
    that of its use."""
    file, line, column, offset = cindex.c_object_p(), ctypes.c_uint(), ctypes.c_uint(), ctypes.c_uint()
    cindex.conf.lib.clang_getFileLocation(location, ctypes.byref(file), ctypes.byref(line), ctypes.byref(column),
                                          ctypes.byref(offset))
    return (cindex.File(file).name if file else None), offset.value


def plain_type(cursor):
    return cursor.type.get_canonical()


def type_name(cursor):
    return re.sub(r"\bconst\b ?", "", plain_type(cursor).spelling)


# ---- Tables ----

def columns_of(cursor):
    """The names of what a record's initialiser lists; none when it is not one of a record."""
    if cursor.kind != CursorKind.INIT_LIST_EXPR:
        return []
    return [field.spelling for field in plain_type(cursor).get_fields()]


def are_rows(elements):
    """Whether these elements of an initialiser are rows of one table."""
    return (all(element.kind == CursorKind.INIT_LIST_EXPR for element in elements) and
            len({type_name(element) for element in elements}) == 1)


def in_one_line(text):
    return " ".join(text.split()).replace("{ ", "{").replace(" }", "}")


def names_of_row(columns, rows):
    """The first columns, as many as tell a row from all others."""
    names = [name for name in columns if "." not in name]
    for count in range(1, len(names)):
        if sum(all(row[name] == columns[name] for name in names[:count]) for row in rows) == 1:
            return names[:count]
    return names


class Row:
    """A row of a table, written as the columns that tell it from all others."""

    def __init__(self, columns, names):
        self.columns, self.names = columns, names

    def __str__(self):
        return "[" + " and ".join(f"{name}={self.columns[name]}" for name in self.names) + "]"


# A column of a record, which may be a row, with the path of its name (".expected.ports"); a whole row has no path.
Cell = collections.namedtuple("Cell", "row path extent")


class Finder:
    """Collects the mutants of one file of a tree."""

    def __init__(self, tree, path, label):
        self.path, self.label = path, label
        with open(path, "rb") as source:
            self.source = source.read()
        self.found = {}  # (start, end, text): (name, of_rows)
        self.contexts = []
        self.cell = None  # of the table that is looked at
        self.function = ""
        self.table = False  # whether that is a variable outside of functions
        self.last = []  # statement of the function
        for child in tree.cursor.get_children():
            file = child.location.file
            if file is None or file.name != path:
                continue
            if child.kind == CursorKind.MACRO_DEFINITION:
                self.macro(child)
            elif child.kind not in (CursorKind.MACRO_INSTANTIATION, CursorKind.INCLUSION_DIRECTIVE):
                self.visit(child, None)

    # ---- Source text ----

    def extent(self, cursor):
        file, start = place(cursor.extent.start)
        other, end = place(cursor.extent.end)
        return (start, end) if file == other == self.path and start < end else None

    def text(self, extent):
        return self.source[extent[0]:extent[1]].decode()

    def normal(self, raw):
        return " ".join(raw.replace(b"\\\n", b" ").decode().split())

    def name_of(self, start, end, text):
        """The change within the largest surrounding piece of code that is short enough."""
        around = [extent for extent in self.contexts if extent[0] <= start and end <= extent[1]] or [(start, end)]
        fitting = [extent for extent in around if self.is_short(extent)]
        first, last = max(fitting, key=lambda e: e[1] - e[0]) if fitting else min(around, key=lambda e: e[1] - e[0])
        before = self.normal(self.source[first:last])
        after = self.normal(self.source[first:start] + text.encode() + self.source[end:last])
        return f"{before} => {after or 'nothing'}"

    def is_short(self, extent):
        text = self.normal(self.source[extent[0]:extent[1]])
        return len(text) <= LONGEST_NAME and not ("{" in text and ";" in text)  # which would be a block

    def add(self, extent, text):
        start, end = extent
        if self.text(extent) == text or (start, end, text) in self.found:
            return
        if self.cell:
            whole = self.cell.extent
            after = self.source[whole[0]:start].decode() + text + self.source[end:whole[1]].decode()
            self.add_to_cell(extent, text, f": {in_one_line(self.text(whole))} => {in_one_line(after)}")
        else:
            self.found[start, end, text] = (f"{self.label}:{self.function}: {self.name_of(start, end, text)}", None)

    def add_to_cell(self, extent, text, change):
        """A change of a table's cell, row or rows, which are the cell's."""
        table, change = f"{self.label}:{self.function}", self.cell.path + change
        of_rows = OfRows(table, (self.cell.row.columns,), change) if self.cell.row else None
        self.found.setdefault((*extent, text), (f"{table}{self.cell.row or ''}{change}", of_rows))

    def mutants(self):
        counts = collections.Counter()
        for (start, end, text), (name, of_rows) in sorted(self.found.items(), key=lambda found: found[0]):
            counts[name] += 1
            if counts[name] > 1:
                number = f" ({counts[name]})"
                of_rows = of_rows and of_rows._replace(change=of_rows.change + number)
                name += number
            yield Mutant(name, self.path, start, end, text, of_rows)

    # ---- The tree ----

    def visit(self, cursor, parent):
        kind = cursor.kind
        if kind in (CursorKind.STATIC_ASSERT, CursorKind.CXX_BASE_SPECIFIER):
            return  # asserts something of the library, is not part of it
        extent = self.extent(cursor)
        outer = self.function
        if kind in FUNCTIONS or (kind in RECORDS + (CursorKind.VAR_DECL,) and not self.in_function()):
            self.function = cursor.spelling
            self.table = kind == CursorKind.VAR_DECL
        if extent:
            self.contexts.append(extent)
            self.mutate(cursor, parent, extent)
        if kind == CursorKind.COMPOUND_STMT and parent is not None and parent.kind in FUNCTIONS + (CursorKind.LAMBDA_EXPR,):
            self.last = list(cursor.get_children())[-1:]
        self.visit_children(cursor)
        if extent:
            self.contexts.pop()
        self.function = outer

    def visit_children(self, cursor):
        outer = self.cell
        cells = self.cells_of(cursor) if self.table else []
        for index, child in enumerate(cursor.get_children()):
            self.cell = cells[index] if cells else outer
            self.visit(child, cursor)
        self.cell = outer

    def in_function(self):
        return bool(self.function)

    def mutate(self, cursor, parent, extent):
        kind = cursor.kind
        if kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            self.binary(cursor)
        elif kind == CursorKind.UNARY_OPERATOR:
            self.unary(extent)
        elif kind == CursorKind.INTEGER_LITERAL:
            self.integer(extent)
        elif kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            self.add(extent, "false" if self.text(extent) == "true" else "true")
        elif kind == CursorKind.CHARACTER_LITERAL:
            self.add(extent, "'#'")
        elif kind == CursorKind.STRING_LITERAL:
            self.string(extent)
        elif kind in (CursorKind.DECL_REF_EXPR, CursorKind.MEMBER_REF_EXPR, CursorKind.MEMBER_REF):
            self.reference(cursor, extent)
        elif kind == CursorKind.CXX_UNARY_EXPR and self.text(extent).startswith("sizeof"):
            self.add(extent, f"({self.text(extent)} - 1)")
        elif kind == CursorKind.CONDITIONAL_OPERATOR:
            self.force(next(cursor.get_children()), "true", "false")
        elif kind == CursorKind.IF_STMT:
            self.condition_of_if(cursor)
        elif kind in (CursorKind.FOR_STMT, CursorKind.WHILE_STMT):
            self.condition_of_loop(cursor)
        elif kind == CursorKind.CALL_EXPR:
            self.swap_neighbours(list(cursor.get_arguments()))
        elif kind == CursorKind.INIT_LIST_EXPR:
            self.initialiser_list(cursor)
        elif kind == CursorKind.RETURN_STMT:
            self.returned(cursor)
        elif kind == CursorKind.VAR_DECL:
            self.initialiser(cursor, parent, extent)
        if self.text(extent).startswith("offsetof"):
            self.add(extent, f"({self.text(extent)} + 1)")
        if kind == CursorKind.COMPOUND_STMT:
            self.swap_statements(list(cursor.get_children()))
        if parent is not None:
            self.statement(cursor, parent, extent)

    # ---- Expressions ----

    def binary(self, cursor):
        operands = list(cursor.get_children())
        if len(operands) != 2:
            return
        left, right = (self.extent(operand) for operand in operands)
        if not left or not right or left[1] > right[0]:
            return
        between = self.source[left[1]:right[0]].decode()
        operator = between.strip()
        if operator not in OTHER_OPERATORS:
            return
        # Only numbers have an order.
        ordered = all(plain_type(operand).kind in INTEGERS for operand in operands)
        start = left[1] + between.index(operator)
        for other in OTHER_OPERATORS[operator]:
            if ordered or other not in ORDERING:
                self.add((start, start + len(operator)), other)
        if operator in NEUTRAL:
            for operand in operands:
                self.force(operand, NEUTRAL[operator])

    def unary(self, extent):
        text = self.text(extent)
        for before, after in (("++", "--"), ("--", "++")):
            if text.startswith(before):
                self.add((extent[0], extent[0] + 2), after)
                return
            if text.endswith(before):
                self.add((extent[1] - 2, extent[1]), after)
                return
        if text[0] in "!~-":
            self.add((extent[0], extent[0] + 1), "")

    def integer(self, extent):
        match = INTEGER.match(self.text(extent))
        if not match:
            return
        digits = match.group(1).replace("'", "")
        value = int(digits, 8 if re.fullmatch(r"0\d+", digits) else 0)
        for other in (value + 1, value - 1, 0):
            if other != value:
                self.add(extent, str(other))

    def string(self, extent):
        text = self.text(extent)
        if not STRING.match(text):
            return
        self.add(extent, '"#' + text[1:])
        if len(text) > 2:
            self.add(extent, LAST_CHARACTER.sub('"', text))
        for match in CONVERSION.finditer(text):
            flags, width, precision, letter = match.groups()
            start = extent[0] + match.start()
            whole = (start, extent[0] + match.end())
            if flags or precision:
                self.add(whole, f"%{width}{letter}")
            if width:
                self.add(whole, f"%{flags}{precision or ''}{letter}")
            other = {"d": "x", "x": "d", "u": "x"}.get(letter)
            if other:
                self.add(whole, f"%{width}{precision or ''}{other}")

    def reference(self, cursor, extent):
        target = cursor.referenced
        if target is None:
            return
        text = self.text(extent)
        if not re.fullmatch(r"[\w:.>\[\]-]+", text):
            return  # a macro brought it along
        if target.kind == CursorKind.ENUM_CONSTANT_DECL:
            if target.semantic_parent.is_scoped_enum():
                self.replace_by_sibling(target, extent, CursorKind.ENUM_CONSTANT_DECL)
            else:
                self.add(extent, f"({text} + 1)")
        elif target.kind == CursorKind.FIELD_DECL:
            self.replace_by_sibling(target, extent, CursorKind.FIELD_DECL)
        elif target.kind == CursorKind.VAR_DECL and target.type.is_const_qualified():
            named = re.fullmatch(r"(\w+::)*k[A-Z]\w*", text)
            if named and plain_type(target).kind in INTEGERS:
                self.add(extent, f"({text} + 1)")

    def replace_by_sibling(self, target, extent, kind):
        """The next enumerator, or the next field of the same type."""
        siblings = [child for child in target.semantic_parent.get_children()
                    if child.kind == kind and type_name(child) == type_name(target)]
        names = [child.spelling for child in siblings]
        if target.spelling not in names or len(names) < 2:
            return
        other = names[(names.index(target.spelling) + 1) % len(names)]
        if self.text(extent).endswith(target.spelling):
            self.add((extent[1] - len(target.spelling), extent[1]), other)

    def force(self, cursor, *values):
        extent = self.extent(cursor)
        if extent and self.text(extent) not in ("true", "false"):
            self.contexts.append(extent)
            for value in values:
                self.add(extent, value)
            self.contexts.pop()

    def swap(self, one, other, cells=()):
        first, second = self.extent(one), self.extent(other)
        if not first or not second or first[1] > second[0] or self.text(first) == self.text(second):
            return
        whole = (first[0], second[1])
        exchanged = self.text(second) + self.source[first[1]:second[0]].decode() + self.text(first)
        if cells:
            self.add_exchange(whole, exchanged, cells)
            return
        self.contexts.append(whole)
        self.add(whole, exchanged)
        self.contexts.pop()

    def swap_neighbours(self, cursors):
        for one, other in zip(cursors, cursors[1:]):
            if type_name(one) == type_name(other):
                self.swap(one, other)

    # ---- Tables and records ----

    def cells_of(self, cursor):
        """The cell of each element of an initialiser: a column of a record or a row of a table; none of anything else."""
        if cursor.kind != CursorKind.INIT_LIST_EXPR:
            return []
        elements, names = list(cursor.get_children()), columns_of(cursor)
        if names and len(names) < len(elements):
            return []  # what it has of the records that it is derived from has no names here
        if names:
            row, path = (self.cell.row, self.cell.path) if self.cell else (None, "")
            return [Cell(row, f"{path}.{name}", self.extent(element)) for name, element in zip(names, elements)]
        if not are_rows(elements):
            return []
        contents = [self.contents_of(element) for element in elements]
        return [Cell(Row(columns, names_of_row(columns, contents)), "", self.extent(element))
                for columns, element in zip(contents, elements)]

    def contents_of(self, record, prefix=""):
        """What stands in each column of a record, and in those of the records in it."""
        contents = {}
        for name, element in zip(columns_of(record), record.get_children()):
            extent = self.extent(element)
            contents[prefix + name] = in_one_line(self.text(extent)) if extent else ""
            contents.update(self.contents_of(element, f"{prefix}{name}."))
        return contents

    def initialiser_list(self, cursor):
        """A table's rows left out and exchanged; the fields of a record exchanged."""
        elements = list(cursor.get_children())
        cells = self.cells_of(cursor) if self.table else []
        for index, (one, other) in enumerate(zip(elements, elements[1:])):
            if type_name(one) == type_name(other):
                self.swap(one, other, cells[index:index + 2])
        if are_rows(elements) and len(elements) > 1:
            for index, element in enumerate(elements):
                self.leave_out(self.extent(element), cells[index] if cells else None)

    def leave_out(self, extent, cell):
        if not extent:
            return
        end = extent[1]
        while self.source[end:end + 1] in (b" ", b","):
            end += 1
        outer, self.cell = self.cell, cell
        self.contexts.append((extent[0], end))
        if cell:
            self.add_to_cell((extent[0], end), "", " => nothing")
        else:
            self.add((extent[0], end), "")
        self.contexts.pop()
        self.cell = outer

    def add_exchange(self, extent, text, cells):
        table, rows = f"{self.label}:{self.function}", [cell.row for cell in cells]
        if rows[0] and rows[0] is not rows[1]:
            name = f"{table}: exchanged rows {rows[0]} and {rows[1]}"
            of_rows = OfRows(table, tuple(row.columns for row in rows), "")
            self.found.setdefault((*extent, text), (name, of_rows))
        else:
            names = [cell.path.rpartition(".")[2] for cell in cells]
            outer, self.cell = self.cell, Cell(rows[0], cells[0].path.rpartition(".")[0], extent)
            self.add_to_cell(extent, text, f": exchanged columns {names[0]} and {names[1]}")
            self.cell = outer

    # ---- Statements ----

    def condition_of_if(self, cursor):
        parts = list(cursor.get_children())
        conditions = [part for part in parts if part.kind.is_expression()]
        # The condition is the first expression; what is declared before it is none.
        if conditions:
            self.force(conditions[0], "true", "false")

    def condition_of_loop(self, cursor):
        """A loop that is never entered. One that never ends says nothing but that."""
        extent = self.extent(cursor)
        head_end = self.extent(list(cursor.get_children())[-1])[0]
        for part in list(cursor.get_children())[:-1]:
            inner = self.extent(part)
            if cursor.kind == CursorKind.WHILE_STMT:
                self.force(part, "false")
            elif inner and self.source[inner[1]:head_end].lstrip().startswith(b";") and self.is_second(extent, inner):
                self.force(part, "false")

    def is_second(self, extent, inner):
        """Whether a part stands behind the first semicolon of a for's head."""
        return b";" in self.source[extent[0]:inner[0]]

    def returned(self, cursor):
        values = list(cursor.get_children())
        if not values:
            return
        extent, kind = self.extent(values[0]), plain_type(values[0]).kind
        if not extent:
            return
        text = self.text(extent)
        if kind == TypeKind.BOOL:
            self.force(values[0], "true", "false")
        elif kind in INTEGERS and not INTEGER.match(text) and not re.fullmatch(r"(FICON_|k[A-Z]|-\s*\d)\w*", text):
            self.add(extent, "0")
            self.add(extent, f"({text}) + 1")
        elif kind == TypeKind.POINTER and text != "nullptr":
            self.add(extent, "nullptr")

    def initialiser(self, cursor, parent, extent):
        if parent is None or parent.kind != CursorKind.DECL_STMT:
            return
        text = self.text(extent)
        if text.endswith("= {}"):
            start = extent[0] + len(text) - len("= {}")
            self.add((start - 1, extent[1]), f"; __builtin_memset(&{cursor.spelling}, 0xA5, sizeof {cursor.spelling})")
            return
        values = [child for child in cursor.get_children() if child.kind.is_expression()]
        value = self.extent(values[-1]) if values else None
        if value and value[1] == extent[1] and "(" in self.text(value) and "=" in self.text((extent[0], value[0])):
            self.add(value, "{}")

    def statement(self, cursor, parent, extent):
        """Left out. What an if returns by itself is left out by the if's condition, and without a function's last return
        nothing would mean anything."""
        kind = cursor.kind
        if parent.kind == CursorKind.IF_STMT:
            in_place = self.is_branch(parent, cursor)
        elif parent.kind in LOOPS:
            in_place = list(parent.get_children())[-1] == cursor
        else:
            in_place = parent.kind in SEVERAL
        if not in_place:
            return
        if kind == CursorKind.RETURN_STMT:
            if parent.kind in SEVERAL and cursor not in self.last:
                self.add(extent, "")
        elif kind.is_expression() and not (parent.kind == CursorKind.CASE_STMT and self.is_label(parent, cursor)):
            self.add(extent, "")
        elif kind in (CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT, CursorKind.DO_STMT):
            self.add(extent, "")

    def is_branch(self, branching, cursor):
        parts = list(branching.get_children())
        conditions = [index for index, part in enumerate(parts) if part.kind.is_expression()]
        return bool(conditions) and cursor in parts[conditions[0] + 1:]

    def is_label(self, case, cursor):
        return next(case.get_children()) == cursor

    def swap_statements(self, statements):
        """Neighbours that could stand the other way round. Two plain assignments could always, so they are left alone: one
        of the two has to call something."""
        for one, other in zip(statements, statements[1:]):
            extents = self.extent(one), self.extent(other)
            if not all(extents):
                continue
            texts = [self.text(extent) for extent in extents]
            if "(" not in texts[0] + texts[1]:
                continue
            if one.kind.is_expression() and other.kind.is_expression():
                self.swap(one, other)
            elif one.kind == other.kind == CursorKind.DECL_STMT and all("(" in text for text in texts):
                declared = [child.spelling for child in one.get_children()]
                if not any(re.search(rf"\b{name}\b", texts[1]) for name in declared):
                    self.swap(one, other)

    # ---- Macros, which have no tree ----

    def macro(self, cursor):
        tokens = list(cursor.get_tokens())
        if len(tokens) < 2:
            return
        self.function = cursor.spelling
        first = 0  # of the statement
        for index, token in enumerate(tokens):
            extent = self.extent(token)
            text = token.spelling
            self.contexts = [self.macro_statement(tokens, index)]
            if text in OTHER_OPERATORS and text not in "+-*/%&":
                for other in OTHER_OPERATORS[text]:
                    self.add(extent, other)
            elif INTEGER.match(text) and tokens[index - 2].spelling != "while":
                self.integer(extent)
            elif text.startswith('"'):
                self.string(extent)
            if text in ("{", "}"):
                first = index + 1
            elif text == ";":
                start, end = self.extent(tokens[first])[0], self.extent(tokens[index - 1])[1]
                self.add((start, end), "")
                first = index + 1
            elif text == "if":
                self.macro_condition(tokens, index + 1)
        self.function, self.contexts = "", []

    def macro_statement(self, tokens, index):
        ends = ("{", "}", ";")
        first, last = index, index
        while first > 0 and tokens[first - 1].spelling not in ends:
            first -= 1
        while last + 1 < len(tokens) and tokens[last].spelling not in ends:
            last += 1
        return self.extent(tokens[first])[0], self.extent(tokens[last])[1]

    def macro_condition(self, tokens, opening):
        depth = 0
        for index in range(opening, len(tokens)):
            depth += {"(": 1, ")": -1}.get(tokens[index].spelling, 0)
            if depth == 0:
                inside = self.extent(tokens[opening])[1], self.extent(tokens[index])[0]
                self.add(inside, "true")
                self.add(inside, "false")
                return


def mutants_of(tree, path, label):
    return list(Finder(tree, path, label).mutants())
