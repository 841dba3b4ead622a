#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Plant small bugs in src/, one at a time, and see whether a test notices.

    tools/mutate/mutate.py [--count N] [--seed S] [--only PATTERN]

Works on a copy of the tree in build/mutate; the tree itself is not touched. The library is built as
a shared one, so that for a bug one object is compiled and one library linked. Then the tests run, those
of the chapter first, until one fails or takes far too long. What they all let pass is tried again in
the end under the address and undefined-behaviour sanitizers. The same seed draws the same bugs from the
same source.

A bug that does not compile, or that gives the same machine code, is replaced by the next one of its
file. One that is listed in tools/mutate/harmless.txt, or whose file is, changes nothing that is
promised, for the reason given there; it is not run. The rest is counted: build/mutate/report.txt.
"""

import argparse
import collections
import hashlib
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import bugs as planting  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutate"
TREE = WORK / "tree"
HARMLESS = pathlib.Path(__file__).parent / "harmless.txt"
MEMORY = 8 << 30
LARGEST_FILE = 1 << 30

# Whose tests know a chapter best, after its own.
NEIGHBOURS = {
    "support": ["io", "csr_matrix", "products"],
    "csr_matrix": ["convert", "products"],
    "ordering": ["convert"],
    "convert": ["ordering", "io"],
    "products": ["apps"],
    "io": ["exchange", "support_chapter"],
    "exchange": ["io"],
}


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          errors="replace", check=False, **options)


def copy_tree():
    """Files that did not change keep their time, so that nothing is compiled twice."""
    listed = run(["git", "-C", str(ROOT), "ls-files", "-z", "--cached", "--others",
                  "--exclude-standard"])
    if listed.returncode != 0:
        sys.exit(f"git does not list the files of {ROOT}: {listed.stdout.strip()}")
    wanted = {name for name in listed.stdout.split("\0") if name and (ROOT / name).is_file()}
    if TREE.exists():
        for old in TREE.rglob("*"):
            if old.is_file() and str(old.relative_to(TREE)) not in wanted:
                old.unlink()
    for name in sorted(wanted):
        source, target = ROOT / name, TREE / name
        if not target.exists() or target.read_bytes() != source.read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(source, target)
            shutil.copymode(source, target)


class Build:
    """One way to build the copy, and the programs that test it."""

    def __init__(self, name, flags, limited):
        self.folder = WORK / name
        self.limited = limited
        configured = run([
            "cmake", "-S", str(TREE), "-B", str(self.folder), "-G", "Ninja",
            "-D", "CMAKE_BUILD_TYPE=Debug", "-D", f"CMAKE_CXX_FLAGS={flags}",
            "-D", "CMAKE_CXX_FLAGS_DEBUG=",
            "-D", "BUILD_SHARED_LIBS=ON", "-D", "CMAKE_LINK_DEPENDS_NO_SHARED=ON",
            "-D", "CSR_MATRIX_MOD_BUILD_EXAMPLES=OFF"])
        if configured.returncode != 0:
            sys.exit(configured.stdout)
        built = self.ninja()
        if built.returncode != 0:
            sys.exit(built.stdout)
        self.shared_object = next(self.folder.glob("libcsr_matrix_mod.so.*.*.*"))
        self.tests = self.find_tests()
        self.seconds = {}
        for program in list(self.tests):
            begun = time.monotonic()
            if not self.passes(program, 1800):
                sys.exit(f"{program} fails without any bug")
            self.seconds[program] = time.monotonic() - begun

    def ninja(self, *targets):
        return run(["cmake", "--build", str(self.folder), "--target", *(targets or ("all",))])

    def find_tests(self):
        """Program -> (arguments, folder). How others build the library, and how headers and tests
        agree, is no question here."""
        listed = json.loads(run(["ctest", "--test-dir", str(self.folder), "--show-only=json-v1"]).stdout)
        programs = {}
        for test in listed["tests"]:
            command = test.get("command")
            if not command or "consumer" in test["name"] or test["name"].endswith("contracts"):
                continue
            properties = {p["name"]: p["value"] for p in test.get("properties", [])}
            arguments = command[1:]
            if any("--gtest_filter" in argument for argument in arguments):
                arguments = ["--gtest_fail_fast", "--gtest_brief=1"]
            programs[command[0]] = (arguments, properties.get("WORKING_DIRECTORY", str(self.folder)))
        return programs

    def set_limits(self):
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        resource.setrlimit(resource.RLIMIT_FSIZE, (LARGEST_FILE, LARGEST_FILE))
        if self.limited:
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))

    def passes(self, program, seconds):
        arguments, folder = self.tests[program]
        environment = dict(os.environ, RC_PARAMS="seed=1", ASAN_OPTIONS="hard_rss_limit_mb=4000")
        with subprocess.Popen([program, *arguments], cwd=folder, env=environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, start_new_session=True,
                              preexec_fn=self.set_limits) as process:
            try:
                return process.wait(seconds) == 0
            except subprocess.TimeoutExpired:
                return False
            finally:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass

    def in_order(self, chapter):
        best = [chapter, chapter + "_chapter", *NEIGHBOURS.get(chapter, [])]
        def rank(program):
            name = pathlib.Path(program).name.removeprefix("test_")
            return (best.index(name) if name in best else len(best), self.seconds[program])
        return sorted(self.tests, key=rank)

    def code(self):
        return hashlib.sha256(self.shared_object.resolve().read_bytes()).digest()

    def killer(self, bug):
        """The first program that notices, or None. Each is built anew before it runs where it shares
        a header that has changed, or had the bug before this one."""
        chapter = bug.file.split("/")[1]
        for program in self.in_order(chapter):
            target = str(pathlib.Path(program).relative_to(self.folder)) if pathlib.Path(
                program).is_relative_to(self.folder) else ""
            if target and self.ninja(pathlib.Path(target).name).returncode != 0:
                return "the compiler"
            if not self.passes(program, 10 + 5 * self.seconds[program]):
                return pathlib.Path(program).name
        return None


class planted:
    """A bug in the copy, for the length of a `with`."""

    def __init__(self, bug):
        self.path, self.bug = TREE / bug.file, bug

    def __enter__(self):
        self.before = self.path.read_text()
        lines = self.before.split("\n")
        lines[self.bug.line - 1] = self.bug.after
        self.path.write_text("\n".join(lines))

    def __exit__(self, *_):
        self.path.write_text(self.before)


def harmless():
    """key -> reason; a key is `file | before | after` or a file, a reason the indented line below it."""
    reasons, key = {}, None
    if not HARMLESS.exists():
        return reasons
    for line in HARMLESS.read_text().splitlines():
        if line.startswith("#") or not line.strip():
            continue
        if line.startswith("  "):
            reasons[key] = line.strip()
        else:
            key = line.strip()
            reasons[key] = ""
    return reasons


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--plain", action="store_true", help="do without the sanitizers")
    parser.add_argument("--only", default="", help="files whose name contains this")
    options = parser.parse_args()

    WORK.mkdir(parents=True, exist_ok=True)
    copy_tree()
    by_file = {}
    for path in sorted((TREE / "src").rglob("*.[ch]pp")):
        file = str(path.relative_to(TREE))
        found = planting.bugs_in(file, path.read_text())
        if found:
            by_file[file] = found
    print(f"{sum(map(len, by_file.values()))} bugs can be planted in {len(by_file)} files", flush=True)

    plain = Build("plain", "-O1", limited=True)
    good = plain.code()
    reasons = harmless()
    killed, survived, left_out = [], [], []
    spent = time.monotonic()
    report = open(WORK / "report.txt", "w")

    def say(line):
        print(line, flush=True)
        print(line, file=report, flush=True)

    def describe(bug):
        return f"{bug.file}:{bug.line}: {bug.name}: {bug.before.strip()} -> {bug.after.strip()}"

    def try_one(bug):
        """False where there is nothing to try."""
        with planted(bug):
            if plain.ninja("csr_matrix_mod").returncode != 0 or plain.code() == good:
                return False
            by = plain.killer(bug)
        if by == "the compiler":
            return False
        say(f"{'killed by ' + by if by else 'survived'}: {describe(bug)}")
        (killed if by else survived).append(bug)
        return True

    for file, share, candidates in planting.draw(by_file, options.count, options.seed):
        if options.only not in file or file in reasons:
            continue
        done = 0
        for bug in candidates:
            if done == share:
                break
            if bug.key() in reasons:
                left_out.append(bug)
                say(f"harmless: {describe(bug)}: {reasons[bug.key()]}")
            else:
                done += try_one(bug)

    if survived and not options.plain:
        sanitized = Build("sanitized", "-O1 -fsanitize=address,undefined -fno-sanitize-recover=all", False)
        for bug in list(survived):
            with planted(bug):
                sanitized.ninja("csr_matrix_mod")
                by = sanitized.killer(bug)
            if by:
                say(f"killed by {by}, sanitized: {describe(bug)}")
                survived.remove(bug)
                killed.append(bug)

    total = len(killed) + len(survived)
    chapters = collections.Counter(bug.file.split("/")[1] for bug in killed + survived)
    alive = collections.Counter(bug.file.split("/")[1] for bug in survived)
    say("")
    for chapter, planted_there in sorted(chapters.items()):
        say(f"{chapter:12} {planted_there:4} planted {planted_there - alive[chapter]:4} killed")
    say(f"{'all':12} {total:4} planted {len(killed):4} killed, {100 * len(killed) / max(total, 1):.1f} %; "
        f"{len(left_out)} harmless by list, not run; {(time.monotonic() - spent) / max(total, 1):.1f} s a bug")
    for bug in survived:
        say(f"SURVIVED: {describe(bug)}\n  {bug.key()}")
    return 0 if total and len(killed) >= 0.98 * total else 1


if __name__ == "__main__":
    sys.exit(main())
