"""The small changes that can be made to a source: changes(text) gives (begin, end, replacement) of each.

It reads text, not C++: the layout that clang-format gives (spaces around operators, none around template brackets,
pointers at their types) tells what is what. A change that does not compile is not counted anyway.
"""
import re

OPERATORS = {"<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",),
             "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "&&": ("||",), "||": ("&&",),
             "+=": ("-=",), "-=": ("+=",), "*=": ("/=",), "/=": ("*=",)}
WORDS = {"true": "false", "false": "true"}
OPERATOR = re.compile(r"(?<=[ ])(%s)(?=\s)" % "|".join(map(re.escape, sorted(OPERATORS, key=len, reverse=True))))
WORD = re.compile(r"\b(true|false)\b")
NUMBER = re.compile(
    r"(?<![\w.])(?<!\) = )(0x[\da-f]+|\d+\.\d*(?:e[+-]?\d+)?|\d[\d']*(?:e[+-]?\d+)?)([ulf]*)(?![\w.])", re.I)
CONDITION = re.compile(r"\b(?:if|while) (?=\()")
NEGATION = re.compile(r"!(?=[\w(])")
RETURN = re.compile(r"\breturn ([^;]+);")
PLAIN = re.compile(r"\w*\{\}|nullptr|true|false|0")  # returned already, or changed as a word or number
STATEMENT = re.compile(r"(?<=[;{})])\s+(?=((?:::|\*|\+\+|--)?[A-Za-z_][^\s(;]*)(\(| [-+*/|&]?= |;)|delete\b)")
NO_CALL = re.compile(r"(return|throw|if|for|while|switch|decltype|break|continue|override|const|noexcept)\b|"
                     r"[^;{]*\)( const| override)*( const| override| = delete| = default| = 0);")
SINGLE = re.compile(r"\(!|.* ([<>=!]=|[<>]) ", re.DOTALL)
CHECK = re.compile(r"(?m)^ +(?=if \(|(?:\w+::)*Check\w*\(|CV_Assert\()")
LEFT_ALONE = re.compile(
    r'//[^\n]*|/\*.*?\*/|(?m:^#(?:[^\n]*\\\n)*[^\n]*)|"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)\'|\b(?:static_)?assert\(',
    re.DOTALL)


def closing(text, at):
    """Behind the bracket that closes the one at `at`."""
    depth = 0
    for i in range(at, len(text)):
        depth += (text[i] in "([{") - (text[i] in ")]}")
        if depth == 0:
            return i + 1
    return len(text)


def statement_end(text, at):
    """Behind the semicolon that ends the statement at `at`; None where it is a definition or part of a list."""
    while at < len(text) and text[at] not in ";{})]":
        at = closing(text, at) if text[at] in "([" else at + 1
        # A list in braces is an operand; a body is not.
        if text[at:at + 1] == "{" and text[at - 1] not in ") ":
            at = closing(text, at)
    return at + 1 if text[at:at + 1] == ";" else None


def masked(text):
    """The text, its length unchanged, with what is left alone made blank: comments, directives, asserts, strings."""
    out, at = [], 0
    while match := LEFT_ALONE.search(text, at):
        out.append(text[at:match.start()])
        found, end = match[0], match.end()
        if found.endswith("assert("):
            end = closing(text, end - 1)
            found = " " * (end - match.start()) if found[0] == "s" else "assert(" + "_" * (end - match.end() - 1) + ")"
        elif found[0] in "\"'":
            found = found[0] + "_" * (len(found) - 2) + found[0]
        else:
            found = re.sub(r"[^\n]", " ", found)
        out.append(found)
        at = end
    return "".join(out) + text[at:]


def other_numbers(number):
    if re.search(r"[.e]", number) and not number.startswith("0x"):
        return [repr(float(number) + 1), repr(float(number) - 1)] + ["0.0"] * (float(number) != 0)
    value = int(number.replace("'", ""), 0)
    return [str(other) for other in sorted({value + 1, value - 1, 0} - {value})]


def checks(code):
    """Where each check stands: a call of one, or a condition whose body returns or throws."""
    for match in CHECK.finditer(code):
        at = end = match.end()
        if code.startswith("if", at):
            body = re.compile(r"\s*(\{?)\s*(return|throw)\b").match(code, closing(code, at + 3))
            if body:
                end = closing(code, body.start(1)) if body[1] else statement_end(code, body.start(2))
        else:
            end = statement_end(code, at)
        if end and end > at:
            yield at, end


def changes(text):
    code = masked(text)
    for match in OPERATOR.finditer(code):
        yield from ((*match.span(), other) for other in OPERATORS[match[1]])
    for match in WORD.finditer(code):
        yield (*match.span(), WORDS[match[1]])
    for match in NUMBER.finditer(code):
        yield from ((*match.span(1), other) for other in other_numbers(match[1]))
    for match in CONDITION.finditer(code):
        end = closing(code, match.end())
        # Of a single comparison the operator is changed already, and a single `!` is left out.
        if not SINGLE.match(code, match.end(), end) or re.search(r"&&|\|\|", code[match.end():end]):
            yield match.end(), end, f"(!{text[match.end():end]})"
    for match in NEGATION.finditer(code):
        yield (*match.span(), "")
    for match in RETURN.finditer(code):
        if not PLAIN.fullmatch(match[1]):
            yield (*match.span(1), "{}")
    for match in STATEMENT.finditer(code):
        end = statement_end(code, match.end())
        if end and not NO_CALL.match(code, match.end()):
            yield match.end(), end, ";"
    spans = list(checks(code))
    for (begin, end), (next_begin, next_end) in zip(spans, spans[1:]):
        between = text[end:next_begin]
        if not between.strip():
            yield begin, next_end, text[next_begin:next_end] + between + text[begin:end]
