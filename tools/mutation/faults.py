"""The kinds of faults: each a function that finds, in one file, every place where a fault of its kind can stand.

A fault is one stretch of a file's text and what stands in its place. It never changes how many lines the file has, so
that the log's lines keep the numbers of theirs.
"""

import collections
import re

from mutation import cpptokens

# Objects that do something at their beginning or their end, by the kind that takes them out.
SCOPES = {"FunctionScope": "scope", "TraceScope": "scope", "CScopeFileLock": "lock", "scope_guard": "lock",
          "ErrorStateGuard": "lock"}

COMPARED = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
JOINED = {"&&": "||", "||": "&&"}
COMPUTED = {"+": "-", "-": "+", "*": "+", "/": "*", "%": "*", "|": "&", "&": "|", "<<": ">>", "+=": "-=", "-=": "+=",
            "|=": "&=", "&=": "|=", "++": "--", "--": "++"}
OTHER_VALUE = {"true": "false", "false": "true", "TRUE": "FALSE", "FALSE": "TRUE", "PSERR_OK": "PSERR_FAILED",
               "PSERR_FAILED": "PSERR_OK", "PSERR_INVALID_PARAMETER": "PSERR_FAILED", "INFINITE": "0"}
# A constant of the platform's or of ours, by its form.
CONSTANT = re.compile(r"[A-Z][A-Z0-9]*_[A-Z0-9_]+|k[A-Z]\w+")
NUMBER = re.compile(r"(0[xX][\da-fA-F]+|\d+)([uUlL]*|i64|ui64)")


class Mutant(collections.namedtuple("Mutant", "path line function kind start end text before after")):
    """One fault. before and after are the lines it stands in; by them and the function's name it is listed."""

    @property
    def folder(self):
        return self.path.split("/")[0]

    @property
    def key(self):
        return f"{self.path} {self.function}\n{self.before}\n{self.after}"

    def put_into(self, text):
        return text[:self.start] + self.text + text[self.end:]


def squeeze(text):
    """A stretch of lines as one without comments, for showing and for comparing."""
    code = "".join(" " if match.lastgroup in ("comment", "blank") else match[0]
                   for match in cpptokens.PATTERN.finditer(text))
    return re.sub(r"\s+", " ", re.sub(r"\\\n", " ", code)).strip()


def blanked(text):
    """Nothing, on as many lines as the text has."""
    return "".join(re.findall(r"\\?\n", text))


# -- the kinds. Each yields (start, end, text) for a cpptokens.Source.


def negated(source):
    """A condition of if or while the other way round, or one without its "not"."""
    for at, token in enumerate(source.tokens):
        if not (source.active[at] and source.body[at]):
            continue
        if token.text in ("if", "while"):
            opening = at + 1 + (source.word(at + 1) == "constexpr")
            if source.word(opening) != "(" or opening not in source.match:
                continue
            closing = source.match[opening]
            first = opening + 1
            for inner in range(first, closing):  # if (init; condition)
                if source.word(inner) == ";":
                    first = inner + 1
            start, end = source.tokens[first].start, source.tokens[closing].start
            if source.word(first) == "!" and source.match.get(first + 2) == closing - 1:
                yield start, start + 1, ""
            else:
                yield start, end, f"!({source.text[start:end]})"
        elif token.text == "!":
            yield token.start, token.end, ""


def compared(source):
    """A comparison by its neighbour."""
    for at, token in enumerate(source.tokens):
        if source.active[at] and token.text in COMPARED and token.space and source.body[at]:
            if source.word(at - 1) in ("template", "operator"):
                continue
            yield token.start, token.end, COMPARED[token.text]


def joined(source):
    """And by or."""
    for at, token in enumerate(source.tokens):
        if source.active[at] and token.text in JOINED and token.space and source.tokens[at + 1].space:
            yield token.start, token.end, JOINED[token.text]


def computed(source):
    """Plus by minus, and the like."""
    for at, token in enumerate(source.tokens):
        if not (source.active[at] and token.text in COMPUTED and token.kind == "sign"):
            continue
        if token.text in ("++", "--") or token.text.endswith("="):
            if source.body[at]:
                yield token.start, token.end, COMPUTED[token.text]
        elif token.space and source.tokens[at + 1].space:  # with two operands, and no "const char* const p"
            if not (token.text in "*&" and source.word(at + 1) == "const"):
                yield token.start, token.end, COMPUTED[token.text]


def value_of(number):
    """What a match of NUMBER says."""
    return int(number[1], 8 if re.fullmatch(r"0\d+", number[1]) else 0)


def is_size(source, at):
    """Whether a token alone is the size in an array's declaration."""
    return (source.word(at - 1) == "[" and source.word(at + 1) == "]" and source.tokens[at - 2].kind == "name" and
            (source.tokens[at - 3].kind == "name" or source.word(at - 3) in ("*", "&", ">")))


def off_by_one(source):
    """A number, or a named one, that is one too large; the size of a buffer is one too small, since room that nobody uses
    is no fault."""
    for at, token in enumerate(source.tokens):
        if not source.active[at]:
            continue
        number = NUMBER.fullmatch(token.text) if token.kind == "number" else None
        if number:
            value = value_of(number) + (-1 if is_size(source, at) else 1)
            yield token.start, token.end, (hex(value) if "x" in number[1].lower() else str(value)) + number[2]
        elif token.kind == "name" and source.body[at] and CONSTANT.fullmatch(token.text):
            if source.word(at + 1) not in ("(", "::", "[", ".", "{") and source.tokens[at + 1].kind != "name":
                yield token.start, token.end, f"({token.text} {'-' if is_size(source, at) else '+'} 1)"


def constant(source):
    """A number that is zero, a truth that is none, a status that is another."""
    for at, token in enumerate(source.tokens):
        if not source.active[at]:
            continue
        number = NUMBER.fullmatch(token.text) if token.kind == "number" else None
        if number:
            yield token.start, token.end, "0" if value_of(number) else "-1"
        elif token.text in OTHER_VALUE and (source.body[at] or source.word(at - 1) in ("=", ",", "{")):
            yield token.start, token.end, OTHER_VALUE[token.text]


def neighbours(source):
    """Statements in a row of one block, each with the one behind it."""
    for one, other in zip(source.statements, source.statements[1:]):
        if one and other and source.active[one[0]] and source.active[other[0]]:
            yield one, other


def simple_statements(source):
    for statement in source.statements:
        if statement and source.active[statement[0]]:
            yield statement


def dropped_call(source):
    """A call that isn't made."""
    for first, last in simple_statements(source):
        if source.is_call(first, last):
            start, end = source.tokens[first].start, source.tokens[last].end
            yield start, end, ";" + blanked(source.text[start:end])


def dropped_assignment(source):
    """A value that isn't given."""
    for first, last in simple_statements(source):
        if source.is_assignment(first, last):
            start, end = source.tokens[first].start, source.tokens[last].end
            yield start, end, ";" + blanked(source.text[start:end])


def swapped_arguments(source):
    """Two neighbouring arguments in each other's place."""
    for opening, closing in source.calls():
        parts = source.arguments(opening, closing)
        if source.word(opening - 1).startswith(("LOG_", "DUMP_")):
            parts = [part for part in parts if source.tokens[part[0]].kind != "text"]  # a format stays in front
        for one, other in zip(parts, parts[1:]):
            left, right = source.text_of(*one), source.text_of(*other)
            if left != right:
                start, end = source.tokens[one[0]].start, source.tokens[other[1]].end
                between = source.text[source.tokens[one[1]].end:source.tokens[other[0]].start]
                yield start, end, right + between + left


def acts(source, statement):
    """Whether a statement does something beyond its own names: only such ones are worth swapping."""
    first, last = statement
    if source.word(first) in ("return", "break", "continue", "using", "throw", "typedef"):
        return False
    return any(source.word(at) == "(" for at in range(first, last)) or bool(scope_kind(source, statement))


def swapped_statements(source):
    """Two neighbouring statements in the other order."""
    for one, other in neighbours(source):
        if acts(source, one) and acts(source, other) and source.text_of(*one) != source.text_of(*other):
            start, end = source.tokens[one[0]].start, source.tokens[other[1]].end
            between = source.text[source.tokens[one[1]].end:source.tokens[other[0]].start]
            yield start, end, source.text_of(*other) + between + source.text_of(*one)


def changed_text(source):
    """A text with another letter, or with one where it had none."""
    for at, token in enumerate(source.tokens):
        if token.kind != "text" or not source.active[at] or "R\"" in token.text[:4]:
            continue
        inside = token.text.index('"') + 1
        text = token.text[inside:-1]
        # Neither an escape nor a conversion of a format, which would be another fault.
        letters = [match.start() for match in re.finditer(r"\\.|%[-+ #0-9.*]*(?:l|ll|h|I64|z)?[a-zA-Z%]|([^\W\d_])", text)
                   if match[1]]
        if letters:
            place = inside + letters[len(letters) // 2]
            other = "q" if token.text[place] not in "qQ" else "z"
            yield token.start, token.end, token.text[:place] + other + token.text[place + 1:]
        elif not text:
            yield token.start, token.end, token.text[:-1] + 'q"'


def scope_kind(source, statement):
    """Which kind takes out the object that a statement declares; None where it declares none of SCOPES."""
    declared = source.declared_object(*statement)
    if declared is None:
        return None
    kind, name, _ = declared
    return SCOPES.get(source.word(name - 1)) or SCOPES.get(source.word(kind))


def unused_objects(source):
    """Statements that declare an object of SCOPES which nothing behind them names."""
    for first, last in simple_statements(source):
        if scope_kind(source, (first, last)):
            name, at = source.word(source.declared_object(first, last)[1]), last
            while source.word(at) not in ("}", name, ""):
                at = source.match[at] if source.word(at) == "{" and name not in source.words(at) else at + 1
            if source.word(at) != name:
                yield first, last


def dropped_object(source, wanted):
    for first, last in unused_objects(source):
        if scope_kind(source, (first, last)) == wanted:
            start, end = source.tokens[first].start, source.tokens[last].end
            yield start, end, ";" + blanked(source.text[start:end])


def dropped_scope(source):
    """A trace scope that isn't opened."""
    yield from dropped_object(source, "scope")


def dropped_lock(source):
    """A lock that isn't taken, a guard that isn't set."""
    yield from dropped_object(source, "lock")


def short_object(source):
    """A scope, lock or guard that ends at once."""
    for first, last in unused_objects(source):
        kind, name, opening = source.declared_object(first, last)
        start, end = source.tokens[first].start, source.tokens[last].end
        arguments = source.text_of(opening, last - 1) if opening else "()"
        yield start, end, f"(void){source.text_of(kind, name - 1)}{arguments};"


KINDS = {
    "negated condition": negated,
    "comparison": compared,
    "and/or": joined,
    "operator": computed,
    "off by one": off_by_one,
    "constant": constant,
    "dropped call": dropped_call,
    "dropped assignment": dropped_assignment,
    "swapped arguments": swapped_arguments,
    "swapped statements": swapped_statements,
    "changed text": changed_text,
    "dropped scope": dropped_scope,
    "dropped lock": dropped_lock,
    "scope or lock that ends at once": short_object,
}


def mutants_of(path, text, kinds=None):
    """All faults that a file can have, kind by kind."""
    source = cpptokens.Source(path, text)
    for kind in kinds or KINDS:
        seen = set()
        for start, end, replacement in KINDS[kind](source):
            if (start, end, replacement) in seen:
                continue
            seen.add((start, end, replacement))
            first, last = source.line_of(start), source.line_of(max(start, end - 1))
            begin, finish = source.starts[first - 1], source.starts[last] - 1
            before = squeeze(text[begin:finish])
            after = squeeze(text[begin:start] + replacement + text[end:finish])
            yield Mutant(path, first, source.function_at(start), kind, start, end, replacement, before, after)
