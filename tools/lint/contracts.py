#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Hold the public headers, docs/contracts.md and the tests against each other.

For every routine that a public header declares:
  - its contract block has a purpose, then Requires, Ensures, Cost and Stops, in this order;
  - docs/contracts.md has one row for it (routines over records), and the row's "in place" agrees
    with the declaration;
  - every message quoted under Stops is asserted somewhere in the tests;
  - tests/same_bits runs it.
Prints one line a finding; silent and 0 when there is none.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
HEADERS = ROOT / "include" / "csr_matrix_mod"
CHAPTERS = ["support", "csr_matrix", "ordering", "convert", "products", "io", "exchange"]
SECTIONS = ["Requires:", "Ensures:", "Cost:", "Stops:"]
DECLARATION = re.compile(r"^(?:\[\[nodiscard\]\] )?(?!using|template|struct|class|enum|namespace|inline)"
                         r"\w[\w:<>, ]*?[&*]? (\w+)\(")

findings = []


def find(where, what):
    findings.append(f"{where}: {what}")


class Routine:
    def __init__(self, name, header, line, block, declaration):
        self.name, self.header, self.line = name, header, line
        self.block, self.declaration = block, declaration

    def where(self):
        return f"include/csr_matrix_mod/{self.header}.hpp:{self.line}"

    def in_place(self):
        """One record, passed to be changed, and no other record to read from."""
        return len(re.findall(r"(?<!const )csr_matrix& ", self.declaration)) == 1 and not re.search(
            r"const csr_matrix& ", self.declaration)


def routines_of(header):
    """Declarations at namespace level with the comment block above them; overloads share theirs."""
    block, fresh = [], False
    lines = (HEADERS / f"{header}.hpp").read_text().splitlines()
    for number, line in enumerate(lines, 1):
        if line.startswith("///"):
            if not fresh:
                block, fresh = [], True
            block.append(line[3:].strip())
            continue
        match = DECLARATION.match(line)
        if match:
            declaration = line
            for further in lines[number:]:
                if ";" in declaration:
                    break
                declaration += " " + further.strip()
            if "noexcept" not in declaration or block:
                yield Routine(match.group(1), header, number, block, declaration)
        if line.strip() == "":
            block = []
        fresh = False


def check_block(routine):
    places = [next((k for k, text in enumerate(routine.block) if text.startswith(section)), None)
              for section in SECTIONS]
    for section, place in zip(SECTIONS, places):
        if place is None:
            find(routine.where(), f"{routine.name} has no '{section}' in its contract block")
            return
    if places != sorted(places) or places[0] == 0:
        find(routine.where(), f"{routine.name}: purpose, {', '.join(SECTIONS)} is the order")


def messages(routine):
    """The texts quoted under Stops, as the pieces between what varies (words in capitals)."""
    start = next((k for k, text in enumerate(routine.block) if text.startswith("Stops:")), None)
    if start is None:
        return
    text = " ".join(routine.block[start:])
    for message in re.findall(r'"([^"]+)"', text):
        pieces = [piece.strip() for piece in re.split(r"\b[A-Z]{1,8}\b(?!-)|\.\.\.", message)]
        longest = max(pieces, key=len)
        if len(longest) > 3:
            yield longest


def tests_text():
    """All test sources, adjacent string literals joined, and the expected lines of the data files."""
    text = "\n".join(path.read_text(errors="replace")
                     for path in sorted((ROOT / "tests").rglob("*"))
                     if path.suffix in {".cpp", ".hpp", ".expected"})
    return re.sub(r'"\s*\n\s*"', "", text)


def check_table(routines):
    page = ROOT / "docs" / "contracts.md"
    rows = {}
    for line in page.read_text().splitlines():
        match = re.match(r"\| `(\w+)` \|(.*)\|$", line)
        if match:
            rows[match.group(1)] = [cell.strip() for cell in match.group(2).split("|")]
    declared = {}  # of overloads the first, which may change the record
    for routine in routines:
        if routine.header != "support":
            declared.setdefault(routine.name, routine)
    for name, routine in declared.items():
        if name not in rows:
            find("docs/contracts.md", f"no row for {name}")
        elif (rows[name][-1] == "yes") != routine.in_place():
            find("docs/contracts.md", f"{name}: 'in place' is '{rows[name][-1]}', not what the "
                 "declaration says")
    for name in rows.keys() - declared.keys():
        find("docs/contracts.md", f"{name} is declared in no header")


def check_same_bits(routines):
    text = "\n".join(path.read_text() for path in (ROOT / "tests" / "same_bits").glob("*.cpp"))
    for routine in routines:
        if not re.search(rf"\b{routine.name}\(", text):
            find(routine.where(), f"{routine.name} is not run by tests/same_bits")


def main():
    routines = [routine for chapter in CHAPTERS for routine in routines_of(chapter)]
    if len(routines) < 50:
        find("include/csr_matrix_mod", f"only {len(routines)} declarations understood")
    asserted = tests_text()
    for routine in routines:
        check_block(routine)
        for message in messages(routine):
            if message not in asserted:
                find(routine.where(), f"{routine.name}: no test asserts '{message}'")
    check_table(routines)
    check_same_bits(routines)
    print("\n".join(findings), end="\n" if findings else "")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
