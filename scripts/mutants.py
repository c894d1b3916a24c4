"""Mutants of C++ sources, for mutate.py: what differs from a source in one place, as a slip of the hand would.

Comparisons and their borders, logical, arithmetic and bit operators, constants one too high, negated conditions,
statements that are gone, other answers, dropped `!`. Left alone are comments, texts, directives, static assertions,
code that another processor would have, and declarations but for the values in them. The sources are read as
clang-format writes them: a `<` with blanks around it compares, one without opens the arguments of a template.
"""
import collections
import os
import re

TOKEN = re.compile(r"""
    (?P<skip>//[^\n]*|/\*.*?\*/|^\#else.*?^\#endif|^[ ]*\#(?:[^\n]*\\\n)*[^\n]*|\bstatic_assert\b[^;]*;)
  | (?P<string>(?:u8|[LuU])?"(?:\\.|[^"\\\n])*"\w*)
  | (?P<char>(?:u8|[LuU])?'(?:\\.|[^'\\\n])+')
  | (?P<number>\d[\w'.]*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|<=|>=|==|!=|&&|\|\||\+\+|--|[-+*/%&|^]=|->|::|<<|>>|\S)
""", re.VERBOSE | re.MULTILINE | re.DOTALL)
# With blanks around them; < of a template and & of a reference have none.
BINARY = {"<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
          "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"], "&": ["|"],
          "|": ["&"], "<<": [">>"], ">>": ["<<"], "+=": ["-="], "-=": ["+="], "|=": ["&="], "&=": ["|="]}
KEYWORDS = {"return", "using", "namespace", "const", "constexpr", "static", "auto", "if", "for", "while", "switch",
            "case", "default", "else", "do", "struct", "class", "enum", "template", "typedef", "public", "private",
            "explicit", "inline", "delete", "extern", "operator", "throw", "try"}

Token = collections.namedtuple("Token", "kind text start end")
Mutant = collections.namedtuple("Mutant", "file line source mutant start end replacement")


def closing(tokens, at):
    """The index of the token that ends the bracket at `at`."""
    depth = 0
    for i in range(at, len(tokens)):
        depth += (tokens[i].text in "([{") - (tokens[i].text in ")]}")
        if depth == 0:
            return i
    return len(tokens) - 1


def statement_end(tokens, at):
    """The index of the semicolon of a statement that begins at `at` and only calls or assigns; None for others."""
    i = at
    while tokens[i].text in ("++", "--", "*"):
        i += 1
    if tokens[i].kind != "word" or tokens[i].text in KEYWORDS:
        return None
    while tokens[i].kind == "word" and tokens[i + 1].text in ("::", ".", "->"):
        i += 2
    if i == at and tokens[i].text in ("break", "continue") and tokens[i + 1].text == ";":
        return i + 1
    follows = tokens[i + 1].text
    if not (follows in ("(", "[", "=", "++", "--") or follows in BINARY and follows.endswith("=")
            or follows == ";" and tokens[at].text in ("++", "--")):
        return None
    while i < len(tokens) and tokens[i].text != ";":
        if tokens[i].text in "([{":
            i = closing(tokens, i)
        elif tokens[i].text in ")]}":
            return None
        i += 1
    return i if i < len(tokens) else None


def token_changes(text, token):
    """What may stand in place of one token."""
    spaced = text[token.start - 1].isspace() and text[token.end:token.end + 1].isspace()
    if token.kind == "sign" and token.text in BINARY and spaced:
        return BINARY[token.text]
    if token.text in ("++", "--"):
        return ["--" if token.text == "++" else "++"]
    if token.text == "!":
        return [""]
    if token.text in ("true", "false"):
        return ["false" if token.text == "true" else "true"]
    if token.kind in ("number", "char"):
        return [f"({token.text} + 1)"]
    return []


def changes(text):
    """All places of a source and what may stand there: (start, end, replacement)."""
    tokens = [Token(m.lastgroup, m.group(), m.start(), m.end()) for m in TOKEN.finditer(text) if m.lastgroup != "skip"]
    scopes = ["declarations"]
    words = []  # since the last statement began
    for i, token in enumerate(tokens[:-1]):
        for replacement in token_changes(text, token):
            yield token.start, token.end, replacement
        previous, following = tokens[i - 1].text, tokens[i + 1].text
        if token.text == "if" and following == "(":
            end = closing(tokens, i + 1)
            inner = [t.text for t in tokens[i + 2:end]]
            begin = i + 2 + (inner.index(";") + 1 if ";" in inner else 0)
            if "=" not in [t.text for t in tokens[begin:end]]:
                condition = text[tokens[begin].start:tokens[end].start]
                yield tokens[begin].start, tokens[end].start, f"!({condition})"
        if token.text == "return" and following not in (";", "{", "true", "false", "nullptr"):
            end = next(k for k in range(i, len(tokens)) if tokens[k].text == ";")
            yield tokens[i + 1].start, tokens[end].start, "{}"
        if scopes[-1] == "{" and previous in (";", "{", "}", ")", "else"):
            end = statement_end(tokens, i)
            if end is not None:
                yield token.start, tokens[end].end, ";"
        if token.text in (";", "}", "{"):
            declares = token.text == "{" and {"class", "struct", "namespace", "enum"} & set(words)
            words = []
        elif token.kind == "word":
            words.append(token.text)
        if token.text in "([{":
            scopes.append("declarations" if token.text == "{" and declares else token.text)
        elif token.text in ")]}" and len(scopes) > 1:
            scopes.pop()


def mutants_of(root, file):
    """All mutants of a source of the project."""
    with open(os.path.join(root, file), encoding="utf-8", newline="") as source:
        text = source.read()
    for start, end, replacement in changes(text):
        first = text.rfind("\n", 0, start) + 1
        last = text.find("\n", end)
        plain = " ".join(text[first:last].split())
        changed = " ".join((text[first:start] + replacement + text[end:last]).split())
        yield Mutant(file, text.count("\n", 0, start) + 1, plain, changed, start, end, replacement)
