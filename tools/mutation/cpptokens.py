"""A small tokenizer for this tree's C++, and what it sees of a file's structure: brackets that match, blocks that hold
statements, and the statements in them.

It goes by tokens and brackets and by how clang-format sets them, knows no types, and never guesses further than the
kinds of faults need: what it takes wrongly for something else does not compile and is not counted.
"""

import bisect
import collections
import re

# space: whether white space stands in front.
Token = collections.namedtuple("Token", "kind text start end space")

PATTERN = re.compile(r"""
    (?P<blank>     \s+ | \\\r?\n )
  | (?P<comment>   //[^\n]* | /\*.*?\*/ )
  | (?P<directive> \#(?:[^\n\\]|\\.|\\\n)* )
  | (?P<text>      (?:u8|[LuU])?R"(?P<mark>[^()\s\\]{0,16})\(.*?\)(?P=mark)" | (?:u8|[LuU])?"(?:[^"\\\n]|\\.)*" )
  | (?P<char>      (?:u8|[LuU])?'(?:[^'\\\n]|\\.)+' )
  | (?P<number>    \.?\d(?:[eEpP][+-]|'\w|[\w.])* )
  | (?P<name>      [^\W\d]\w* )
  | (?P<sign>      <<=|>>=|\.\.\.|->\*|::|->|\+\+|--|<<|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|\#\#|. )
""", re.X | re.S)

MACRO = re.compile(r"#\s*define\s+\w+(?:\([^)]*\))?")
OPENING, CLOSING = "([{", ")]}"

# Names in front of a bracket that make no call of it.
NO_CALL = frozenset("if for while switch return sizeof alignof catch decltype noexcept defined static_assert case throw "
                    "new delete else do operator explicit constexpr const".split())
# What a simple statement that begins so is: no expression.
NO_EXPRESSION = frozenset("return break continue using typedef case default goto throw template static_assert const auto "
                          "constexpr static extern struct class union enum friend public private protected delete if for "
                          "while switch do else try catch typename namespace explicit virtual inline".split())


def tokens_of(text, first=0, last=None):
    """The tokens of a text between two places, without comments and directives; of a macro its text alone."""
    found, space = [], False
    position, last = first, len(text) if last is None else last
    while position < last:
        match = PATTERN.match(text, position, last)
        kind, position = match.lastgroup, match.end()
        if kind == "mark":
            kind = "text"
        if kind == "directive" and text[text.rfind("\n", 0, match.start()) + 1:match.start()].strip() == "":
            macro = MACRO.match(match[0])
            if macro:
                body = tokens_of(text, match.start() + macro.end(), match.end())
                found += [Token("macro", "{", match.start(), match.start(), True), *body,
                          Token("macro", "}", match.end(), match.end(), True)]
            space = True
        elif kind in ("blank", "comment"):
            space = True
        else:
            found.append(Token("sign" if kind == "directive" else kind, match[0], match.start(), position, space))
            space = False
    return found


class Source:
    """One file of the product."""

    def __init__(self, path, text):
        self.path = path
        self.text = text
        self.lines = text.split("\n")
        self.starts = [0]
        for line in self.lines:
            self.starts.append(self.starts[-1] + len(line) + 1)
        self.tokens = tokens_of(text)
        self.match = self._matches()
        self.active = self._active()               # by token: whether a fault may be put there at all
        self.body = [False] * len(self.tokens)     # by token: whether it stands in a function's block or a macro's text
        self.functions = []   # (name, first, last) token of each function's body
        self.statements = []  # (first, last) token of each simple statement, and None between two that are no neighbours
        self._find_blocks()

    def line_of(self, position):
        """A place's line, from 1 on."""
        return bisect.bisect_right(self.starts, position)

    def text_of(self, first, last):
        """The text from one token to another, both included."""
        return self.text[self.tokens[first].start:self.tokens[last].end]

    def words(self, opening):
        """The words between a bracket and the one that matches it."""
        return {self.word(at) for at in range(opening, self.match[opening])}

    def word(self, at):
        """A token's text, empty where there is none."""
        return self.tokens[at].text if 0 <= at < len(self.tokens) else ""

    def _matches(self):
        match, stack = {}, []
        for at, token in enumerate(self.tokens):
            if token.kind not in ("sign", "macro"):
                continue
            if token.text in OPENING:
                stack.append(at)
            elif token.text in CLOSING and stack:
                match[stack[-1]] = at
                match[at] = stack.pop()
        return match

    def _active(self):
        """Which tokens a fault may change: not what the compiler alone reads, and not the names by which the log's lines
        tell their files."""
        active = [token.kind != "macro" for token in self.tokens]

        def skip(first, last):
            for at in range(first, last + 1):
                active[at] = False

        for at, token in enumerate(self.tokens):
            following = self.word(at + 1)
            if token.text in ("static_assert", "VELUI_SOURCE_MODULE", "__attribute__", "alignas") and following == "(":
                skip(at, self.match.get(at + 1, at + 1))
            elif token.text == "[" and following == "[":
                skip(at, self.match.get(at, at))
            elif token.text == "extern" and following.startswith('"'):
                skip(at, at + 1)
            elif token.text == "template" and following == "<":
                depth, end = 0, at + 1
                while end < len(self.tokens):
                    depth += {"<": 1, ">": -1}.get(self.word(end), 0)
                    if depth == 0:
                        break
                    end += 1
                skip(at, min(end, len(self.tokens) - 1))
        return active

    def _find_blocks(self):
        """Marks what stands in functions and macros, and collects their simple statements."""
        for at, token in enumerate(self.tokens):
            if token.text != "{" or at not in self.match:
                continue
            if token.kind == "macro" or self._is_block(at):
                if token.kind != "macro" and not self.body[at]:
                    self.functions.append((self._name_in_front(at), at, self.match[at]))
                for inner in range(at + 1, self.match[at]):
                    self.body[inner] = True
                self._read_statements(at + 1, self.match[at])

    def _is_block(self, at):
        """Whether a brace opens a function's body, a lambda's, or a block within one."""
        before = self.word(at - 1)
        if before in (")", "else", "do", "try", "noexcept", "override", "final", "const", "mutable", ";", "{", "}"):
            head = at - 1
            while head >= 0 and self.word(head) not in (";", "{", "}"):
                head = self.match.get(head, head) - 1 if self.word(head) in CLOSING else head - 1
            words = {self.word(inner) for inner in range(head + 1, at)}
            if words & {"namespace", "class", "struct", "union", "enum"}:
                return False
            if before in ("{", "}", ";"):
                return self.body[at]
            # A member's value in front of a constructor's body, as in ": m_x{1}", is no block; "m_x(1) {" is one.
            return "=" not in words or "operator" in words or self.body[at] or before == ")"
        return before == "]"  # a lambda without parameters

    def _name_in_front(self, at):
        """The name of the function whose body a brace opens, as its head spells it."""
        head = at - 1
        while head >= 0 and self.word(head) not in (";", "{", "}"):
            head = self.match.get(head, head) - 1 if self.word(head) in CLOSING else head - 1
        while head < at and self.word(head) != "(":
            head += 1
        first = head - 1
        while first > 0 and (self.word(first - 1) in ("::", "~", "operator") or self.word(first) in ("::", "~") and
                             self.tokens[first - 1].kind == "name" and not self.tokens[first].space):
            first -= 1
        return self.text_of(first, head - 1) if 0 <= first < head < at else ""

    def function_at(self, position):
        """The name of the function that a place stands in, or an empty text."""
        for name, first, last in self.functions:
            if self.tokens[first].start <= position <= self.tokens[last].end:
                return name
        return ""

    def _read_statements(self, first, last):
        at = start = first
        statements = [None]
        while at < last:
            word = self.word(at)
            if word in ("if", "for", "while", "switch", "catch") and at == start:
                opening = at + 1 + (self.word(at + 1) == "constexpr")
                at = start = self.match.get(opening, opening) + 1
                statements.append(None)
            elif word in ("else", "do", "try") and at == start:
                at = start = at + 1
                statements.append(None)
            elif word in ("case", "default") and at == start:
                while at < last and self.word(at) != ":":
                    at += 1
                at = start = at + 1
                statements.append(None)
            elif word == "{" and at == start:
                at = start = self.match[at] + 1
                statements.append(None)
            elif word in OPENING and at in self.match:
                at = self.match[at] + 1
            elif word == ";":
                if at > start:
                    statements.append((start, at))
                at = start = at + 1
            else:
                at += 1
        self.statements += statements

    def calls(self):
        """The calls and braced lists in bodies: (opening, closing) of those whose arguments may be swapped."""
        for at, token in enumerate(self.tokens):
            if not self.active[at] or not self.body[at] or at not in self.match or token.kind == "macro":
                continue
            before = self.tokens[at - 1]
            if token.text == "(" and (before.kind == "name" and before.text not in NO_CALL or before.text == ">"):
                yield at, self.match[at]
            elif token.text == "{" and (before.text in ("return", "=", ",", "(") or before.kind == "name" and
                                        before.text not in NO_CALL | {"try", "override", "final", "mutable"}):
                yield at, self.match[at]

    def arguments(self, opening, closing):
        """The (first, last) tokens of what stands between two brackets, apart at its commas."""
        parts, start, at = [], opening + 1, opening + 1
        while at <= closing:
            word = self.word(at)
            if at == closing or word == ",":
                if at > start:
                    parts.append((start, at - 1))
                start = at + 1
            elif word in OPENING and at in self.match:
                at = self.match[at]
            at += 1
        return parts

    def chain_end(self, at, last):
        """Behind a name with what selects from it, "a.b[i]->c", or the same place where there is none."""
        start = at
        while at <= last:
            if self.word(at) in ("*", "::") and at == start:
                at, start = at + 1, start + 1
            elif self.tokens[at].kind == "name" and self.word(at) not in NO_EXPRESSION:
                at += 1
                while self.word(at) == "[" and at in self.match:
                    at = self.match[at] + 1
                if self.word(at) in (".", "->", "::"):
                    at += 1
                    continue
                return at
            else:
                return start
        return start

    def is_call(self, first, last):
        """Whether a statement is one call whose result is dropped."""
        if self.word(first) == "(" and self.word(first + 1) == "void":
            first = self.match[first] + 1
        while True:
            end = self.chain_end(first, last)
            if end == first or self.word(end) != "(" or end not in self.match:
                return False
            closing = self.match[end]
            if closing + 1 == last:
                return True
            if self.word(closing + 1) not in (".", "->"):
                return False
            first = closing + 2

    def is_assignment(self, first, last):
        """Whether a statement gives something that exists a value."""
        if self.word(first) in ("++", "--"):
            return True
        if self.word(first) == "static_cast":
            return any(self.word(at) == "=" for at in range(first, last))
        end = self.chain_end(first, last)
        return end > first and (self.word(end) in ("=", "++", "--") or
                                len(self.word(end)) > 1 and self.word(end).endswith("=") and
                                self.word(end) not in ("==", "!=", "<=", ">="))

    def declared_object(self, first, last):
        """The (type, name, opening) tokens of "const Type name(arguments);" or "const Type name;", or None."""
        at = first + (self.word(first) == "const")
        begin = at
        while self.tokens[at].kind == "name" and self.word(at + 1) == "::":
            at += 2
        if self.tokens[at].kind != "name" or self.tokens[at + 1].kind != "name":
            return None
        if self.word(at + 2) == ";" and at + 2 == last:
            return begin, at + 1, None
        if self.word(at + 2) == "(" and self.match.get(at + 2, -1) + 1 == last:
            return begin, at + 1, at + 2
        return None
