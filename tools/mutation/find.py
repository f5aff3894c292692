"""Finds in a C++ source what can be changed: operators, conditions, constants, texts and statements."""

import re
from dataclasses import dataclass, field
from pathlib import Path

from clang.cindex import CursorKind, Index, TypeKind

OPERATORS = {
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "<<": [">>"], "&": ["|"], "|": ["&"], "^": ["&"],
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["*="],
}
COMPARISONS = {"<", "<=", ">", ">=", "==", "!="}
LITERALS = {CursorKind.INTEGER_LITERAL, CursorKind.FLOATING_LITERAL, CursorKind.CHARACTER_LITERAL,
            CursorKind.STRING_LITERAL, CursorKind.CXX_BOOL_LITERAL_EXPR}
FUNCTIONS = {CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
             CursorKind.FUNCTION_TEMPLATE, CursorKind.CONVERSION_FUNCTION}
NEVER_AT_RUN_TIME = {CursorKind.ENUM_CONSTANT_DECL, CursorKind.STATIC_ASSERT, CursorKind.TYPE_REF,
                     CursorKind.TEMPLATE_REF, CursorKind.TEMPLATE_TYPE_PARAMETER,
                     CursorKind.TEMPLATE_NON_TYPE_PARAMETER, CursorKind.TYPE_ALIAS_DECL}
WRAPPERS = {CursorKind.UNEXPOSED_EXPR, CursorKind.PAREN_EXPR}
STRING = re.compile(r'"(?:\\.|[^"\\])*"')
BETWEEN = re.compile(r'"(?:\\.|[^"\\])*"|//[^\n]*|\s+')


def on_one_line(text):
    """The text without comments and line ends; what stands in quotes stays."""
    return BETWEEN.sub(lambda match: match[0] if match[0].startswith('"') else " ", text).strip()


@dataclass
class Mutant:
    path: str        # from the root of the tree
    line: int
    start: int       # the range that is changed
    end: int
    form: str        # "expression", "condition" or "statement"
    changed: str     # what is evaluated in place of it
    change: str      # for reports
    source: str      # the line as it stands
    constant: bool   # stands where a constant may be asked for
    variable: str    # the constexpr variable whose value it changes, if any
    number: int = 0


@dataclass
class Constexpr:
    """A constexpr or consteval that keeps what it introduces from being evaluated at run time."""
    start: int
    name: str
    replacement: str
    is_variable: bool


@dataclass
class Source:
    path: str
    text: str
    mutants: list = field(default_factory=list)
    constexprs: list = field(default_factory=list)


class Finder:
    def __init__(self, root, path, arguments):
        text = (root / path).read_bytes().decode("latin-1")  # offsets are in bytes
        self.source = Source(path, text)
        self.file = str(root / path)
        unit = Index.create().parse(self.file, args=["-x", "c++", *arguments])
        errors = [str(message) for message in unit.diagnostics if message.severity >= 3]
        if errors:
            raise RuntimeError(f"Clang cannot read {path}:\n" + "\n".join(errors))
        self.root = unit.cursor

    def find(self):
        for cursor in self.root.get_children():
            if self.is_here(cursor):
                self.visit(cursor, False, "")
        return self.source

    # Where things stand

    def is_here(self, cursor):
        where = cursor.extent.start.file
        return where is not None and where.name == self.file

    def range_of(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def text_of(self, cursor):
        start, end = self.range_of(cursor)
        return self.source.text[start:end]

    def add(self, cursor, form, changed, change, constant, variable):
        start, end = self.range_of(cursor)
        line = self.source.text.count("\n", 0, start) + 1
        mutant = Mutant(self.source.path, line, start, end, form, changed, change,
                        self.source.text.split("\n")[line - 1].strip(), constant, variable)
        same = [known for known in self.source.mutants
                if (known.start, known.end, known.form, known.changed) == (start, end, form, changed)]
        if not same:
            self.source.mutants.append(mutant)

    # Declarations

    def visit(self, cursor, constant, variable):
        kind = cursor.kind
        if kind in NEVER_AT_RUN_TIME or not self.is_here(cursor):
            return
        if kind in FUNCTIONS:
            is_constexpr = self.note_constexpr(cursor, "inline", False)
            for child in cursor.get_children():
                if child.extent.start.offset > cursor.location.offset:
                    self.visit(child, is_constexpr, variable)
            return
        if kind in (CursorKind.VAR_DECL, CursorKind.FIELD_DECL, CursorKind.PARM_DECL):
            in_class = cursor.semantic_parent is not None and cursor.semantic_parent.kind in (
                CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL, CursorKind.CLASS_TEMPLATE)
            if self.note_constexpr(cursor, "inline" if in_class else "", True):
                variable = cursor.spelling
            for child in cursor.get_children():
                if child.extent.start.offset > cursor.location.offset:
                    self.visit(child, constant or kind != CursorKind.VAR_DECL, variable)
            return
        self.visit_statement(cursor, constant, variable)

    def note_constexpr(self, cursor, replacement, is_variable):
        start = cursor.extent.start.offset
        found = re.search(r"\bconst(?:expr|eval)\b", self.source.text[start:cursor.location.offset])
        if found:
            self.source.constexprs.append(
                Constexpr(start + found.start(), cursor.spelling, replacement, is_variable))
        return found is not None

    # Statements

    def visit_statement(self, cursor, constant, variable):
        kind = cursor.kind
        children = list(cursor.get_children())
        context = (constant, variable)
        if kind == CursorKind.COMPOUND_STMT:
            for child in children:
                self.change_statement(child, *context)
        elif kind == CursorKind.CASE_STMT:
            children = children[1:]
        elif kind in (CursorKind.IF_STMT, CursorKind.WHILE_STMT):
            if re.match(r"if\s+constexpr", self.text_of(cursor)):
                children = children[1:]
            elif children[0].kind.is_expression():
                self.change_condition(children[0], *context)
        elif kind == CursorKind.CONDITIONAL_OPERATOR:
            self.change_condition(children[0], *context)
        elif kind == CursorKind.RETURN_STMT:
            if children and children[0].type.get_canonical().kind == TypeKind.BOOL:
                self.change_condition(children[0], *context)
        else:
            self.change_expression(cursor, children, *context)
        for child in children:
            self.visit(child, *context)

    def change_statement(self, cursor, constant, variable):
        inner = self.unwrap(cursor)
        is_statement = inner.kind in (CursorKind.CALL_EXPR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR,
                                      CursorKind.BINARY_OPERATOR, CursorKind.UNARY_OPERATOR,
                                      CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT)
        if is_statement and self.is_here(cursor):
            text = on_one_line(self.text_of(cursor))
            self.add(cursor, "statement", "", f"{text}; left out", constant, variable)

    def change_condition(self, cursor, constant, variable):
        inner = self.unwrap(cursor)
        operator, _ = self.operator_of(inner)
        if inner.kind not in LITERALS and operator not in OPERATORS and operator != "!":
            text = on_one_line(self.text_of(cursor))
            self.add(cursor, "condition", f"!({text})", f"{text} -> !({text})", constant, variable)

    def unwrap(self, cursor):
        while cursor.kind in WRAPPERS:
            children = list(cursor.get_children())
            if len(children) != 1:
                break
            cursor = children[0]
        return cursor

    # Expressions

    def operator_of(self, cursor):
        """The operator as it is written, and its operands; None where there is none."""
        kind = cursor.kind
        if kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR,
                    CursorKind.UNARY_OPERATOR):
            operands = list(cursor.get_children())
        elif kind == CursorKind.CALL_EXPR and cursor.spelling.startswith("operator"):
            operands = [operand for operand in cursor.get_arguments() if operand is not None]
        else:
            return None, []
        ranges = [self.range_of(operand) for operand in operands]
        start, end = self.range_of(cursor)
        text = self.source.text
        if len(operands) == 2 and ranges[0][1] <= ranges[1][0]:
            return on_one_line(text[ranges[0][1]:ranges[1][0]]), operands
        if len(operands) == 1:
            before, behind = text[start:ranges[0][0]].strip(), text[ranges[0][1]:end].strip()
            return before or behind, operands
        return None, []

    def change_expression(self, cursor, children, constant, variable):
        if cursor.kind in LITERALS:
            for text, changed in self.changed_literal(cursor.kind, self.text_of(cursor)):
                self.add(cursor, "expression", changed[0], f"{text} -> {changed[1]}", constant, variable)
            return
        if cursor.kind == CursorKind.DECL_REF_EXPR:
            self.change_enumerator(cursor, constant, variable)
            return
        operator, operands = self.operator_of(cursor)
        texts = [on_one_line(self.text_of(operand)) for operand in operands]
        whole = on_one_line(self.text_of(cursor))
        if len(texts) == 2:
            # of a class, whatever its operators do, comparisons alone come in pairs
            is_class = cursor.kind == CursorKind.CALL_EXPR and operator not in COMPARISONS
            for other in [] if is_class else OPERATORS.get(operator, []):
                self.add(cursor, "expression", f"({texts[0]}) {other} ({texts[1]})",
                         f"{whole} -> {texts[0]} {other} {texts[1]}", constant, variable)
        elif len(texts) == 1:
            changed = {"!": f"!!({texts[0]})", "-": f"({texts[0]})", "~": f"({texts[0]})"}.get(operator)
            shown = texts[0]
            if operator in ("++", "--"):
                other = "--" if operator == "++" else "++"
                shown = other + texts[0] if whole.startswith(operator) else texts[0] + other
                changed = shown
            if changed:
                self.add(cursor, "expression", changed, f"{whole} -> {shown}", constant, variable)

    def changed_literal(self, kind, text):
        if kind == CursorKind.CXX_BOOL_LITERAL_EXPR and text in ("true", "false"):
            other = "false" if text == "true" else "true"
            yield text, (other, other)
        elif kind == CursorKind.INTEGER_LITERAL and text[:1].isdigit():
            shown = str(int(text) + 1) if text.isdigit() else f"{text} + 1"
            yield text, (f"{text} + 1", shown)
        elif kind == CursorKind.FLOATING_LITERAL and text[:1].isdigit():
            yield text, (f"{text} + 1", f"{text} + 1")
        elif kind == CursorKind.CHARACTER_LITERAL and text.startswith("'"):
            yield text, (f"static_cast<char>({text} + 1)", f"{text} + 1")
        elif kind == CursorKind.STRING_LITERAL and text.startswith('"'):
            yield from self.changed_text(text)

    def changed_text(self, text):
        """Every piece of a text with another letter at its end; none of its length, which the types know."""
        for piece in STRING.finditer(text):
            body = piece[0][1:-1]
            letters = list(re.finditer(r"\\.|.", body))
            plain = [letter for letter in letters if not letter[0].startswith("\\")]
            if not letters:
                continue
            last = plain[-1] if plain else letters[-1]
            letter = "x" if last[0].startswith("\\") else {"z": "y", "9": "8", "~": "-"}.get(last[0], "")
            if not letter:
                letter = chr(ord(last[0]) + 1)
                letter = "~" if letter in '"\\?' else letter
            changed = f'"{body[:last.start()]}{letter}{body[last.end():]}"'
            whole = on_one_line(text[:piece.start()] + changed + text[piece.end():])
            yield piece[0], (whole, changed)

    def change_enumerator(self, cursor, constant, variable):
        referenced = cursor.referenced
        if referenced is None or referenced.kind != CursorKind.ENUM_CONSTANT_DECL:
            return
        names = [child.spelling for child in referenced.semantic_parent.get_children()
                 if child.kind == CursorKind.ENUM_CONSTANT_DECL]
        text = self.text_of(cursor)
        if len(names) < 2 or not text.endswith(referenced.spelling):
            return
        other = names[(names.index(referenced.spelling) + 1) % len(names)]
        changed = text[:len(text) - len(referenced.spelling)] + other
        self.add(cursor, "expression", changed, f"{text} -> {changed}", constant, variable)


def find(root: Path, path: str, arguments) -> Source:
    return Finder(root, path, arguments).find()
