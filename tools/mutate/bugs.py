# SPDX-License-Identifier: MIT
"""The bugs that can be planted in a line of C++, and the lines that they can be planted in."""

import dataclasses
import hashlib
import re

# What a slip of the pen does: a pattern, what stands there instead, and its name. Angle brackets of
# templates have no blanks about them in this tree, comparisons have.
SLIPS = [
    (r" <= ", " < ", "< for <="),
    (r"(?<!<) < ", " <= ", "<= for <"),
    (r" >= ", " > ", "> for >="),
    (r" > ", " >= ", ">= for >"),
    (r" == ", " != ", "!= for =="),
    (r" != ", " == ", "== for !="),
    (r" && ", " || ", "|| for &&"),
    (r" \|\| ", " && ", "&& for ||"),
    (r" \+ 1\b(?![.0-9])", "", "no + 1"),
    (r" - 1\b(?![.0-9])", "", "no - 1"),
    (r" \+ 1\b(?![.0-9])", " + 2", "+ 2 for + 1"),
    (r" \+ (?!1\b)", " - ", "- for +"),
    (r" - (?!1\b)", " + ", "+ for -"),
    (r" \* (?=[\w(])", " + ", "+ for *"),
    (r" / ", " * ", "* for /"),
    (r" % ", " / ", "/ for %"),
    (r" \+= ", " -= ", "-= for +="),
    (r" -= ", " += ", "+= for -="),
    (r" \|= ", " = ", "= for |="),
    (r" \| ", " & ", "& for |"),
    (r" & (?=[\w(])", " | ", "| for &"),
    (r"\+\+", "--", "-- for ++"),
    (r"\bbreak;", "continue;", "continue for break"),
    (r"\bcontinue;", "break;", "break for continue"),
    (r"\btrue\b", "false", "false for true"),
    (r"\bfalse\b", "true", "true for false"),
    (r"(?<== )0;", "1;", "1 for 0"),
    (r"(?<== )1;", "2;", "2 for 1"),
    (r"(?<== )1;", "0;", "0 for 1"),
    (r"(?<=return )0;", "1;", "1 for 0"),
    (r"(?<=return )1;", "0;", "0 for 1"),
    (r"\bstd::min\b", "std::max", "max for min"),
    (r"\bstd::max\b", "std::min", "min for max"),
    (r"\.n\b(?! ?=)", ".m", "m for n"),
    (r"\.m\b(?! ?=)", ".n", "n for m"),
    (r"\.ia\b", ".ja", "columns for row starts"),
    (r"\bleft_", "right_", "right for left"),
    (r"\bright_", "left_", "left for right"),
    (r"\bfirst\.", "second.", "second for first"),
    (r"\bmatrix_real\b", "matrix_structure_only", "structure only for real"),
    (r"\bmatrix_structure_only\b", "matrix_real", "real for structure only"),
    (r"\bcontents::zero\b", "contents::undefined", "a marker that is not cleared"),
    (r"\bdiagonal::kept\b", "diagonal::skipped", "no diagonal"),
    (r"\bdiagonal::skipped\b", "diagonal::kept", "a diagonal"),
    (r"\bif \((?!!)(.*)\)(?= \S|$)", r"if (!(\1))", "not"),
]

# An assignment, a call, a step, or a loop or condition of one line; not a declaration.
STATEMENT = re.compile(
    r"^\s*(?=\S)(?!return\b|throw\b|using\b|static\b|const\b|constexpr\b|else\b|case\b|friend\b)"
    r"(?:[\w:.>*\[\]()+\-]+ (?:[+\-|&]|<<|>>)?= .*|(?:\+\+|--|\*)?[\w:.>\[\]\-]+(?:\(.*\))?(?:\+\+)?|"
    r"(?:if|for|while) \(.*\) .*);$")
TEXT = re.compile(r'"((?:[^"\\]|\\.)*)"')


@dataclasses.dataclass(frozen=True)
class Bug:
    file: str
    line: int  # from 1
    before: str
    after: str
    name: str

    def key(self):
        """The same for the same change of the same text, wherever in the file it stands."""
        return " | ".join([self.file, self.before.strip(), self.after.strip()])


def code_of(line):
    """The part that is neither comment nor text, blanks in place of both."""
    without_text = re.sub(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)\'', lambda m: "\0" * len(m.group()), line)
    comment = without_text.find("//")
    return without_text if comment < 0 else without_text[:comment]


def slips(line):
    code = code_of(line)
    for pattern, instead, name in SLIPS:
        for match in re.finditer(pattern, code):
            if name == "not" and code[match.start():match.end()].count("(") != code[
                    match.start():match.end()].count(")"):
                continue
            if name == "- for +" and ("\0" in code or "string" in code):
                continue  # texts do not subtract
            original = line[match.start():match.end()]
            changed = re.sub(pattern, instead, original, count=1) if r"\1" in instead else instead
            yield line[:match.start()] + changed + line[match.end():], name


def is_statement(line, before):
    """One whole statement that can be left out without more ado?"""
    return (STATEMENT.match(line) and line.count("(") == line.count(")")
            and (re.search(r"[;{}:]\s*(//.*)?$", before) or before.strip().startswith("//")))


def other_text(texts, line):
    """A text of this line changes places with the next one of its file."""
    for match in TEXT.finditer(line):
        if match.group() in texts and len(texts) > 1:
            instead = texts[(texts.index(match.group()) + 1) % len(texts)]
            yield line[:match.start()] + instead + line[match.end():], "another text"


def skipped(line):
    """Not code, or a request for memory ahead of its use, on which time alone depends."""
    return "prefetch_" in line or re.match(r"\s*(//|#|static_assert|template|using|namespace|assert\()", line) or not line.strip()


def bugs_in(file, text):
    lines = text.split("\n")
    texts = list(dict.fromkeys(match.group() for line in lines if not skipped(line)
                               for match in TEXT.finditer(line) if len(match.group(1)) > 5))
    found = []
    for number, line in enumerate(lines, 1):
        if skipped(line):
            continue
        changes = list(slips(line)) + list(other_text(texts, line))
        if number > 1 and is_statement(line, lines[number - 2]):
            changes.append((re.match(r"\s*", line).group() + ";", "no statement"))
        for after, name in changes:
            if after != line:
                found.append(Bug(file, number, line, after, name))
    return found


def chance(bug, seed):
    """A number that depends on the bug alone, not on what else is in the tree."""
    return hashlib.sha256(f"{seed} {bug.key()}".encode()).digest()


def draw(by_file, count, seed):
    """Every file has its share, by the number of lines in which it can go wrong; no line is drawn twice
    before every line of the file has been."""
    lines = {file: len({bug.line for bug in bugs}) for file, bugs in by_file.items()}
    total = sum(lines.values())
    drawn, reserve = [], []
    for file, bugs in sorted(by_file.items()):
        shuffled = sorted(bugs, key=lambda bug: chance(bug, seed))
        times_seen = {}
        rounds = []
        for bug in shuffled:
            times_seen[bug.line] = times_seen.get(bug.line, 0) + 1
            rounds.append((times_seen[bug.line], bug))
        in_rounds = [bug for _, bug in sorted(rounds, key=lambda pair: pair[0])]
        share = max(2, round(count * lines[file] / total))
        drawn.append((file, share, in_rounds))
    return drawn
