#!/usr/bin/env python3
"""Seeds small faults into the library, one at a time, and tells which of them no test notices.

usage: mutants.py [FILTER]     FILTER is a regular expression over file names and the texts of the faults

The faults stand in the *.faults files beside this one; README.md tells their form. Each source that has faults is
compiled once, in build/mutants, with all of them behind a switch, and the test programs of build/release are linked
anew with these objects. A run of a program with one switch set is the program with one fault. Nothing is changed in
the tree.
"""

import json
import os
import re
import shlex
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
RELEASE = ROOT / "build/release"
WORK = ROOT / "build/mutants"
SWITCH = ROOT / "tests/mutants/switch.hpp"
TIMEOUT = 120  # seconds; a fault may make a loop endless, which counts as found
WANTED = 95  # of 100


class Fault:
    """A text of a source that stands there once, and what is put in its place."""

    def __init__(self, number, file, tests, find):
        self.number, self.file, self.tests = number, file, tests
        mark = re.search(r"\[\[(?!\[)(.*)\]\](?!\])", find)
        self.before, self.found, self.after = "", find, ""
        if mark:
            self.before, self.found, self.after = find[: mark.start()], mark.group(1), find[mark.end() :]
        self.put = None
        self.equivalent = None

    def title(self):
        return f"{self.file}: {self.before}[{self.found} -> {self.put}]{self.after}"

    def locate(self, source):
        """Where the marked part stands. A blank of the list is any white space of the source."""
        parts = (r"\s+".join(map(re.escape, re.split(r" +", part))) for part in (self.before, self.found, self.after))
        matches = list(re.finditer("({})({})({})".format(*parts), source))
        if len(matches) != 1:
            raise ValueError(f"{self.file} holds this text {len(matches)} times, not once: "
                             f"{self.before}{self.found}{self.after}")
        return matches[0].span(2)


def read_faults():
    faults, place = [], None
    for path in sorted(Path(__file__).parent.glob("*.faults")):
        for number, line in enumerate(path.read_text().splitlines(), 1):
            where = f"{path.name}:{number}"
            sign, rest = line[:1], line[2:].strip()
            if sign == "@":
                words = rest.split()
                place = (words[0], words[1:])
                if not place[1]:
                    raise SystemExit(f"{where}: a file needs the test programs that must notice its faults")
            elif sign == "-":
                faults.append(Fault(len(faults) + 1, *place, rest))
            elif sign == "+":
                faults[-1].put = rest
            elif sign == "=":
                faults[-1].equivalent = rest
            elif line.strip() and sign != "#":
                raise SystemExit(f"{where}: a line begins with @, -, +, = or #")
    for fault in faults:
        if fault.put is None:
            raise SystemExit(f"a fault without a line that begins with +: {fault.found}")
    return faults


def seeded(source, faults):
    """The source with each fault behind its switch. Faults of one place share it; two that overlap do not fit."""
    places, wrong = {}, []
    for fault in faults:
        try:
            places.setdefault(fault.locate(source), []).append(fault)
        except ValueError as error:
            wrong.append(str(error))
    if wrong:
        raise SystemExit("\n".join(wrong))
    end = len(source)
    for (start, stop), here in sorted(places.items(), reverse=True):
        if stop > end:
            raise SystemExit(f"two faults overlap: {here[0].title()}")
        end = start
        found = source[start:stop]
        for fault in here:
            on = f"brindlewort_mutants::on({fault.number})"
            if found.endswith((";", "}")):
                found = f"if ({on}) {{ {fault.put} }} else {{ {found} }}"
            else:
                found = f"({on} ? ({fault.put}) : ({found}))"
        source = source[:start] + found + source[stop:]
    return source


def run(command, log, **options):
    with open(log, "w") as out:
        return subprocess.run(command, stdout=out, stderr=subprocess.STDOUT, **options).returncode


def sources_with(headers):
    """The sources of the library that include one of the headers."""
    text = subprocess.run(["ninja", "-C", str(RELEASE), "-t", "deps"], capture_output=True, text=True).stdout
    for block in text.split("\n\n"):
        files = [line.strip() for line in block.splitlines()[1:]]
        source = next((str(Path(f).relative_to(ROOT / "src")) for f in files if f.startswith(f"{ROOT}/src/") and
                       f.endswith(".cpp")), None)
        # Headers are found through the include roots of the layers.
        if source and any(f.endswith("/" + header) for f in files for header in headers):
            yield source


def compile_sources(faults):
    """Compiles the sources with faults; gives the object of the release build and the one in its place."""
    commands = {entry["file"]: entry for entry in json.loads((RELEASE / "compile_commands.json").read_text())}
    replaced, failed = {}, []
    headers = {fault.file for fault in faults if fault.file.endswith(".hpp")}
    for file in sorted(headers):
        mine = WORK / "headers" / file
        mine.parent.mkdir(parents=True, exist_ok=True)
        mine.write_text(seeded((ROOT / "src" / file).read_text(), [f for f in faults if f.file == file]))
    sources = {fault.file for fault in faults} - headers
    for source in sources_with(headers):
        sources.add(source)
    for file in sorted(sources):
        path = ROOT / "src" / file
        entry = commands[str(path)]
        mine = WORK / "src" / file
        mine.parent.mkdir(parents=True, exist_ok=True)
        text = seeded(path.read_text(), [fault for fault in faults if fault.file == file])
        text = f'#line 1 "{path}"\n' + text
        words = shlex.split(entry["command"])
        target = words[words.index("-o") + 1]
        obj = WORK / "obj" / (file + ".o")
        obj.parent.mkdir(parents=True, exist_ok=True)
        print(f"compile {file} ... ", end="", flush=True)
        mine.write_text(text)
        words = [word for word in words if word != "-O3"]
        words[words.index("-o") + 1] = str(obj)
        words[words.index("-c") + 1] = str(mine)
        if "-MF" in words:
            at = words.index("-MF")
            del words[at : at + 2]
            at = words.index("-MT")
            del words[at : at + 2]
            words = [word for word in words if word != "-MD"]
        compiler = 2 if words[0].endswith("ccache") else 1
        words = words[:compiler] + [f"-I{WORK / 'headers'}"] + words[compiler:]
        words += ["-O1", "-w", "-include", str(SWITCH)]
        log = WORK / "compile.log"
        if run(words, log, cwd=entry["directory"]) != 0:
            print("failed")
            sys.stderr.write(log.read_text()[:2000])
            failed.append(file)
            continue
        print("done", flush=True)
        replaced[str((Path(entry["directory"]) / target).resolve())] = obj
    if failed:
        raise SystemExit("these do not compile with their faults: " + ", ".join(failed))
    return replaced


def link_program(name, replaced):
    """The program with the replaced objects, and where its shared library is, if it has one."""
    lines = subprocess.run(
        ["ninja", "-C", str(RELEASE), "-t", "commands", name], capture_output=True, text=True, check=True
    ).stdout.splitlines()

    def relink(line, out):
        words = []
        for word in shlex.split(line):
            path = str((RELEASE / word).resolve())
            words.append(str(replaced.get(path, word)))
        words[words.index("-o") + 1] = str(out)
        if run(words, WORK / "link.log", cwd=RELEASE) != 0:
            sys.stderr.write((WORK / "link.log").read_text()[-2000:])
            raise SystemExit(f"{name} does not link")

    def inner(line):
        return re.sub(r"^: && (.*?) && .*$", r"\1", line)

    (WORK / "bin").mkdir(exist_ok=True)
    (WORK / "lib").mkdir(exist_ok=True)
    for line in lines:
        if " -shared " in line:
            soname = re.search(r"-soname,(\S+)", line).group(1)
            relink(inner(line), WORK / "lib" / soname)
    program = WORK / "bin" / name
    relink(inner([line for line in lines if f"-o bin/{name}" in line][-1]), program)
    return program


def notices(program, fault):
    """Whether a run of the program with this fault ends otherwise than well."""
    environment = dict(os.environ, BRINDLEWORT_MUTANT=str(fault.number if fault else 0))
    environment["LD_LIBRARY_PATH"] = str(WORK / "lib")
    command = [str(program), "--gtest_fail_fast", "--gtest_brief=1"]
    try:
        return run(command, WORK / "test.log", env=environment, cwd=ROOT, timeout=TIMEOUT) != 0
    except subprocess.TimeoutExpired:
        return True


def main():
    if len(sys.argv) > 2 or (len(sys.argv) == 2 and sys.argv[1] in ("-h", "--help")):
        raise SystemExit(__doc__)
    everything = read_faults()
    wanted = re.compile(sys.argv[1] if len(sys.argv) == 2 else "")
    faults = [fault for fault in everything if wanted.search(fault.title())]
    if not faults:
        raise SystemExit(f"none of the {len(everything)} faults matches")
    WORK.mkdir(parents=True, exist_ok=True)
    replaced = compile_sources([f for f in everything if f.file in {fault.file for fault in faults}])
    programs = {}
    for name in sorted({test for fault in faults for test in fault.tests}):
        print(f"link {name} ... ", end="", flush=True)
        programs[name] = link_program(name, replaced)
        print("and run without a fault ... ", end="", flush=True)
        if notices(programs[name], None):
            print("failed")
            sys.stderr.write((WORK / "test.log").read_text()[-3000:])
            raise SystemExit(f"{name} must pass without a fault first")
        print("done")
    found, survivors, equivalent = 0, [], 0
    for count, fault in enumerate(faults, 1):
        by = next((name for name in fault.tests if notices(programs[name], fault)), None)
        if by:
            found += 1
            word = f"found by {by}"
            if fault.equivalent:
                word += ", although the list calls it equivalent"
        elif fault.equivalent:
            equivalent += 1
            word = "equivalent"
        else:
            survivors.append(fault)
            word = "SURVIVED"
        print(f"{count}/{len(faults)} {word}: {fault.title()}", flush=True)
    tried = found + len(survivors)
    print(f"\n{len(faults)} faults: {found} found, {len(survivors)} survived, {equivalent} change nothing")
    for fault in survivors:
        print(f"survived: {fault.title()}")
    if tried and found * 100 < WANTED * tried:
        raise SystemExit(f"fewer than {WANTED} of 100 are found")


main()
