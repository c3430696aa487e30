"""What Doxygen reads in place of a header: the same lines, with comments as it needs them.

In our headers a comment speaks for all declarations up to the next comment or blank line, so a group of overloads has one.
Doxygen wants one for each, so it is repeated. Copies, moves, comparisons and allocation have nothing to say and are left
out; so are namespaces and classes of the library's own.
"""

import re
import sys

# What a declaration says of itself.
PLAIN = re.compile(
    r"operator (new|delete)\b|operator(==|<=>)\(|= (default|delete);"
    r"|^(explicit |constexpr )*(?P<type>\w+)\((?P=type)( const)?&&?( \w+)?\)"
    r"|^[\w:<>]+& operator=\("
    r"|^using (\w+)::(\w+);"
)


# Several members in one line, each of which may have an initialiser.
SEVERAL = re.compile(r"(\s*)((?:[\w:]+ )*[\w:]+(?:<.*>)?) (\w+(?: = [^,;()]*)?(?:, \w+(?: = [^,;()]*)?)+);(.*\n)")


def one_a_line(lines):
    for line in lines:
        several = SEVERAL.fullmatch(line)
        if not several or several[2].startswith(("return", "using")):
            yield line
            continue
        for declarator in several[3].split(", "):
            yield f"{several[1]}{several[2]} {declarator};{several[4]}"


def declarations(lines):
    """Yields (first line, last line) of each declaration at any depth that may have a comment: up to its `;`, or the end of
    its body. What opens a class, an enumeration or a namespace ends with its `{`."""
    start = None
    depth = 0  # of brackets and bodies inside the declaration
    for number, line in enumerate(lines):
        code = re.sub(r'//.*|"(\\.|[^"\\])*"|\'(\\.|[^\'\\])*\'', "", line).strip()
        if start is None:
            if not code or code.startswith(("#", "}")) or re.match(r"(public|protected|private):", code):
                continue
            start = number
        depth += sum(code.count(c) for c in "({[") - sum(code.count(c) for c in ")}]")
        head = " ".join(text.strip() for text in lines[start : number + 1])
        if depth == 1 and code.endswith("{") and re.search(r"\b(class|struct|enum|namespace)\b[^()=;]*\{$", re.sub(r"//.*", "", head)):
            yield start, number
            start, depth = None, 0
        elif depth <= 0 and (code.endswith((";", "}")) or (code.endswith(",") and "(" not in head)):
            yield start, number
            start, depth = None, 0


def filtered(lines):
    ends = {}
    for first, last in declarations(lines):
        ends[first] = last
    comment = []  # what speaks for the declarations that follow
    number = 0
    while number < len(lines):
        line = lines[number]
        text = line.strip()
        if text.startswith("///"):
            comment = []
            while lines[number].strip().startswith("///"):
                comment.append(lines[number])
                yield lines[number]
                number += 1
            fresh = True
            continue
        if not text:
            comment = []
        if number in ends:
            body = lines[number : ends[number] + 1]
            number = ends[number] + 1
            opens = body[-1].rstrip().endswith("{")
            if any(PLAIN.search(part.strip()) for part in body[:2]) and not (comment and fresh):
                body = ["/// @cond\n"] + body + ["/// @endcond\n"]
            elif comment and not fresh and "///<" not in body[-1]:
                yield from comment
            yield from body
            fresh = False
            if opens:
                comment = []
            continue
        yield line
        number += 1


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as header:
        sys.stdout.writelines(filtered(list(one_a_line(header.readlines()))))
