"""Where a small fault can be made in a source, from the compiler's own syntax tree."""

import collections
import json
import pathlib
import shlex

from clang import cindex

# Bytes from begin to end become text. The sites are how the same is chosen while the program runs: each a
# begin, an end, and what stands there instead, texts with MARK for whether it is chosen, and ranges.
Mutant = collections.namedtuple("Mutant", "file line kind begin end text was sites")
MARK = "\0"

KIND = cindex.CursorKind
DECLARATIONS = (KIND.FUNCTION_DECL, KIND.FUNCTION_TEMPLATE, KIND.CXX_METHOD, KIND.CONSTRUCTOR,
                KIND.VAR_DECL)
BOUNDARIES = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
LOGIC = {"&&": "||", "||": "&&", "+": "-", "-": "+"}
SYMMETRIC = ("swap", "qMin", "qMax", "min", "max")
UNSEEN = ("reserve",)  # a call that only saves time
LITERALS = {"true": "false", "false": "true", "0": "1"}


def arguments_of(compile_commands, source):
    """How the compiler is called for a source, without what gcc alone knows."""
    for entry in json.loads(pathlib.Path(compile_commands).read_text()):
        if entry["file"] == str(source) and " -c " in entry["command"]:
            words = shlex.split(entry["command"])
            wanted, words = [], iter(words)
            for word in words:
                if word in ("-isystem", "-I"):
                    wanted += [word, next(words)]
                elif word.startswith(("-I", "-D", "-std=")):
                    wanted.append(word)
            return wanted
    raise KeyError(f"{source} is not compiled in {compile_commands}")


def range_of(cursor):
    return cursor.extent.start.offset, cursor.extent.end.offset


class Finder:
    def __init__(self, path, name):
        self.path, self.name = str(path), name
        self.bytes = pathlib.Path(path).read_bytes()
        self.found = []
        self.is_constant = False

    def text(self, cursor):
        return self.bytes[cursor.extent.start.offset:cursor.extent.end.offset].decode()

    def is_here(self, cursor):
        """Written in this file as it stands, not by a macro."""
        begin, end = cursor.extent.start, cursor.extent.end
        if not begin.file or begin.file.name != self.path or end.offset <= begin.offset:
            return False
        tokens = next(iter(cursor.get_tokens()), None)
        return tokens is not None and tokens.extent.start.offset == begin.offset

    def add(self, kind, begin, end, text, *sites):
        was = self.bytes[begin:end].decode()
        line = self.bytes[:begin].count(b"\n") + 1
        # What a program chooses when it runs is no constant expression.
        self.found.append(Mutant(self.name, line, kind, begin, end, text, was,
                                 () if self.is_constant else sites))

    def replace(self, kind, cursor, text, *pieces):
        if self.is_here(cursor):
            begin, end = range_of(cursor)
            self.add(kind, begin, end, text, (begin, end, pieces))

    def visit(self, cursor, inside_function=False):
        for child in cursor.get_children():
            if child.location.file and child.location.file.name != self.path:
                continue
            if child.kind in DECLARATIONS and not inside_function:
                self.is_constant = "constexpr" in [each.spelling for each in child.get_tokens()]
            if inside_function:
                self.look(child, cursor)
            is_body = child.kind == KIND.COMPOUND_STMT
            self.visit(child, inside_function or is_body)

    def look(self, cursor, parent):
        if cursor.kind in (KIND.IF_STMT, KIND.WHILE_STMT, KIND.CONDITIONAL_OPERATOR):
            condition = next(cursor.get_children())
            if condition.kind != KIND.DECL_STMT:
                self.replace("condition", condition, f"!({self.text(condition)})",
                             f"({MARK} != bool(", range_of(condition), "))")
        if cursor.kind == KIND.BINARY_OPERATOR:
            self.operator(cursor)
        if cursor.kind == KIND.CALL_EXPR and cursor.spelling.startswith("operator"):
            self.operator(cursor)
        elif cursor.kind == KIND.CALL_EXPR and cursor.spelling not in SYMMETRIC:
            self.swap(cursor)
        if cursor.kind in (KIND.INTEGER_LITERAL, KIND.CXX_BOOL_LITERAL_EXPR):
            self.literal(cursor)
        if parent.kind in (KIND.COMPOUND_STMT, KIND.IF_STMT):
            self.statement(cursor, parent)

    def operator(self, cursor):
        # A call of an operator has its function between the two, or somewhere else.
        parts = [each for each in (cursor.get_arguments() if cursor.kind == KIND.CALL_EXPR
                                   else cursor.get_children()) if each is not None]
        if len(parts) != 2:
            return
        left, right = parts
        between = self.bytes[left.extent.end.offset:right.extent.start.offset].decode()
        sign = between.strip()
        wanted = BOUNDARIES.get(sign) or LOGIC.get(sign)
        if wanted and self.is_here(cursor):
            begin = left.extent.end.offset + between.index(sign)
            kind = "boundary" if sign in BOUNDARIES else "operator"
            whole = range_of(cursor)
            self.add(kind, begin, begin + len(sign), wanted,
                     (*whole, (f"({MARK} ? (", range_of(left), f" {wanted} ", range_of(right), ") : (",
                               whole, "))")))

    def swap(self, cursor):
        arguments = [each for each in cursor.get_arguments() if each is not None]
        for first, second in zip(arguments, arguments[1:]):
            same = first.type.get_canonical().spelling == second.type.get_canonical().spelling
            if same and self.is_here(first) and self.is_here(second) and \
                    self.text(first) != self.text(second):
                one, other = range_of(first), range_of(second)
                between = self.bytes[one[1]:other[0]].decode()
                self.add("arguments", one[0], other[1],
                         self.text(second) + between + self.text(first),
                         (*one, (f"({MARK} ? ", other, " : ", one, ")")),
                         (*other, (f"({MARK} ? ", one, " : ", other, ")")))

    def literal(self, cursor):
        text = self.text(cursor)
        if text in LITERALS or text.isdigit():
            other = LITERALS.get(text) or str(int(text) + 1)
            self.replace("constant", cursor, other, f"({MARK} ? {other} : ", range_of(cursor), ")")

    def statement(self, cursor, parent):
        if cursor.kind == KIND.DECL_STMT and "QMutexLocker" in self.text(cursor):
            begin = cursor.extent.start.offset + self.text(cursor).index("(") + 1
            self.add("lock", *range_of(cursor), ";",
                     (begin, begin, (f"{MARK} ? nullptr : ",)))
        is_condition = parent.kind == KIND.IF_STMT and \
            cursor.extent == next(parent.get_children()).extent
        if is_condition or not self.is_here(cursor) or cursor.spelling in UNSEEN:
            return
        assigns = cursor.kind in (KIND.BINARY_OPERATOR, KIND.COMPOUND_ASSIGNMENT_OPERATOR,
                                  KIND.UNARY_OPERATOR, KIND.CXX_DELETE_EXPR)
        if assigns or cursor.kind == KIND.CALL_EXPR or \
                (cursor.kind == KIND.UNEXPOSED_EXPR and self.text(cursor).endswith(")")):
            self.replace("statement", cursor, "", f"if ({MARK}) {{}} else ", range_of(cursor))


def mutants_of(root, name, compile_commands):
    source = pathlib.Path(root) / name
    unit = cindex.Index.create().parse(str(source), args=arguments_of(compile_commands, source))
    wrong = [each.spelling for each in unit.diagnostics if each.severity >= 3]
    if wrong:
        raise ValueError(f"{name}: {wrong[0]}")
    finder = Finder(source, name)
    finder.visit(unit.cursor)
    return sorted(set(finder.found), key=lambda each: (each.begin, each.end, each.text))
