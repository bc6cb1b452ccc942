"""The changes that a mutation run makes to C++ sources, one at a time.

The sources are formatted (House.EveryFileIsFormatted), so a binary operator has a space on each side and a template's
brackets have none; that, and blanking comments, texts and preprocessor lines, is all the parsing that is needed. A
change that does not compile counts as not tried.
"""
import re
from dataclasses import dataclass


@dataclass(frozen=True)
class Mutation:
    path: str
    start: int  # in the text of the file
    end: int
    replacement: str
    kind: str

    def applied_to(self, text):
        return text[:self.start] + self.replacement + text[self.end:]


# One alternative for each operator, so that no operator is drawn more often than another.
OPERATORS = {
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&",
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "+=": "-=", "-=": "+=",
}
OPERATOR = re.compile(r"(?<=\s)(" + "|".join(re.escape(o) for o in sorted(OPERATORS, key=len, reverse=True)) + r")(?=\s)")
NUMBER = re.compile(r"(?<![\w.'])(\d+)(?![\w.'])")
BOOLEAN = re.compile(r"\b(true|false)\b")
NOT = re.compile(r"(?<=[\s(,])!(?=[\w(])")
BRANCH = re.compile(r"\b(?:if|while) \(")
# A call that is a statement of its own, on one line or more.
CALL = re.compile(r"(?<=[;{}\n])[ \t]*(?:\w[\w:.<>*]*(?:\(\))?(?:->|\.))*[A-Za-z_]\w*\([^;{}]*\);", re.S)
# Statements that begin like a call and are not one.
NO_CALL = re.compile(r"\s*(?:return|throw|delete|using|static_assert|else|case|explicit|virtual|typedef)\b")
RETURNED = re.compile(r"\breturn (?!true;|false;)[^;{}]+;")
TEXT = re.compile(r'"(?:[^"\\\n]|\\.)*"')


def blanked(text):
    """The text with comments, texts, characters and preprocessor lines as spaces, at the same length."""
    pattern = re.compile(
        r"""//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)+'|^[ \t]*\#(?:[^\n]*\\\n)*[^\n]*""",
        re.S | re.M)
    return pattern.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), text)


def closing(text, start):
    """The position after the bracket that closes the one at `start`, or None."""
    depth = 0
    for position in range(start, len(text)):
        depth += {"(": 1, ")": -1}.get(text[position], 0)
        if depth == 0:
            return position + 1
    return None


def mutations_of(path, text):
    """Every mutation of one file, in the order of their places."""
    code = blanked(text)
    found = []

    def add(start, end, replacement, kind):
        found.append(Mutation(path, start, end, replacement, kind))

    for match in OPERATOR.finditer(code):
        add(match.start(), match.end(), OPERATORS[match.group()], "operator")
    for match in NOT.finditer(code):
        add(match.start(), match.end(), "", "operator")
    for match in NUMBER.finditer(code):
        add(match.start(), match.end(), str(int(match.group()) + 1), "constant")
    for match in BOOLEAN.finditer(code):
        add(match.start(), match.end(), "false" if match.group() == "true" else "true", "constant")
    for match in TEXT.finditer(text):
        inside = match.group()[1:-1]
        # A text inside a comment or an include is blank in `code` all around it, too: look at its line.
        line = text[text.rfind("\n", 0, match.start()) + 1:match.start()]
        if inside and "//" not in line and not line.lstrip().startswith(("#", "*")):
            add(match.start(), match.end(), '"?' + inside + '"', "constant")
    for match in BRANCH.finditer(code):
        end = closing(code, match.end() - 1)
        condition = text[match.end():end - 1] if end else ""
        if not condition or ";" in code[match.end():end - 1] or re.search(r"\bauto\b|\w [*&]?\w+ = ", condition):
            continue  # a condition that declares a name cannot be put aside
        add(match.end(), end - 1, f"({condition}) && false", "branch")
        if match.group().startswith("if"):
            add(match.end(), end - 1, f"({condition}) || true", "branch")
    for match in CALL.finditer(code):
        statement = match.group()
        start = match.start() + len(statement) - len(statement.lstrip())
        if not NO_CALL.match(statement) and not is_declaration(statement.strip()):
            add(start, match.end(), ";", "call")
    return sorted(found, key=lambda mutation: (mutation.start, mutation.replacement))


def is_declaration(statement):
    """Whether a statement such as "Type name(arguments);" slipped through: two words before the bracket."""
    head = statement.split("(")[0]
    return bool(re.search(r"[\w>&*] +[*&]?\w+$", head))
