"""Arrows point one way: floors.txt says which folder may use which, this says whether the sources and the targets
keep to it. And every statement of the component stands in store/, what characters are in text/, and every folder in
ARCHITECTURE.md.

usage: arrows_test.py SOURCE_FOLDER LINKS_FILE     LINKS_FILE: "target|folders of its sources|linked targets" a line,
                                                   written when the build is configured
"""

import pathlib
import re
import sys
import unittest

INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')
SOURCES = {".h", ".cpp", ".c"}


def read_floors(text):
    """[(folder, folders that it may use, foreign headers that it may include)], lowest first."""
    floors = []
    for line in text.splitlines():
        line = line.split("#")[0].strip()
        if not line:
            continue
        folder, _, uses = line.partition(":")
        words = uses.split()
        floors.append((folder.strip(), [w for w in words if not w.startswith("<")],
                       [w.strip("<>") for w in words if w.startswith("<")]))
    return floors


def faults_of_floors(floors):
    """A folder uses only folders above it in the file: so no arrow can come back."""
    faults, known = [], set()
    for folder, uses, _ in floors:
        faults += [f"{folder} is named twice"] if folder in known else []
        faults += [f"{folder} uses {used}, which is not below it" for used in uses if used not in known]
        known.add(folder)
    return faults


def floor_of(path, floors):
    """The deepest floor that holds a path."""
    fitting = [folder for folder, _, _ in floors if path == folder or path.startswith(folder + "/")]
    return max(fitting, key=len, default=None)


def faults_of_includes(files, floors, fenced):
    """files: {path: text}. fenced: what a foreign header's path may begin with, by the floors that may include it."""
    uses = {folder: set(allowed) | {folder} for folder, allowed, _ in floors}
    foreign = {folder: headers for folder, _, headers in floors}
    tops = {folder.split("/")[0] for folder, _, _ in floors}
    faults = []
    for path, text in sorted(files.items()):
        floor = floor_of(path, floors)
        if floor is None:
            faults.append(f"{path} stands on no floor")
            continue
        for number, line in enumerate(text.splitlines(), 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            quote, header = match.groups()
            if quote == '"' and header.split("/")[0] in tops:
                target = floor_of(header, floors)
                if target not in uses[floor]:
                    faults.append(f"{path}:{number} includes {header}: {floor} may not use {target}")
            fence = next((f for f in fenced if header.startswith(f)), None)
            if fence is not None and fence not in foreign[floor]:
                faults.append(f"{path}:{number} includes {header}: not in {floor}")
    return faults


def read_links(text):
    """{target: (folders of its sources, linked targets)}"""
    targets = {}
    for line in text.splitlines():
        name, folders, linked = line.split("|")
        targets[name] = (folders.split(), linked.split())
    return targets


def faults_of_links(targets, floors):
    uses = {folder: set(allowed) | {folder} for folder, allowed, _ in floors}
    faults = []
    for name, (folders, linked) in sorted(targets.items()):
        own = {floor_of(folder, floors) for folder in folders}
        if None in own:
            continue  # tests, examples, settings: on top of all
        allowed = set().union(*(uses[floor] for floor in own))
        for other in linked:
            theirs = {floor_of(folder, floors) for folder in targets.get(other, ([], []))[0]} - {None}
            # What a target keeps in folders of its own floor (back ends, say) is nobody else's business.
            outer = {floor for floor in theirs if not any(floor.startswith(f"{more}/") for more in theirs)}
            for floor in sorted(outer - allowed):
                faults.append(f"{name} ({', '.join(sorted(own))}) links {other}: may not use {floor}")
    return faults


STATEMENT = re.compile(r'"[^"]*\b(select\s[^"]*\bfrom\s|insert\s+into\s|update\s+\S+\s+set\s|delete\s+(from\s+)?t_|exec\s+\w+_|'
                       r'declare\s+@|if\s+(not\s+)?exists|(create|drop)\s+table\s)', re.IGNORECASE)
# Of the component; its host and the back ends have statements of their own.
WITHOUT_STATEMENTS = ["text", "automation", "entry", "support", "dialogs", "center", "exchange", "autovch", "ui", "front"]


def faults_of_statements(files):
    """Texts that are statements, in folders that are to ask store/ for theirs."""
    return [f"{path}:{number} holds a statement: {line.strip()}"
            for path, text in sorted(files.items()) for number, line in enumerate(text.splitlines(), 1)
            if STATEMENT.search(line.split("//")[0])]


# Letters of ASCII turned into the other case, and digits of hexadecimal numbers.
PRIMITIVE = re.compile(r"""[-] *'(A' *\+ *'a|a' *\+ *'A)'|"0123456789(abcdef|ABCDEF)\"""")


def faults_of_primitives(files):
    """Steps of characters that are done by hand, where text/ has them."""
    return [f"{path}:{number} does by hand what text/ does: {line.strip()}"
            for path, text in sorted(files.items()) for number, line in enumerate(text.splitlines(), 1)
            if not path.startswith("text/") and PRIMITIVE.search(line.split("//")[0])]


# What makes another path of one in Windows' long form.
ABSOLUTE = re.compile(r"\b(fs|filesystem)::(weakly_canonical|canonical|absolute)\(|\bis_(absolute|relative)\(")
# What platform/system does with the system's own paths.
OWN_PATHS = ["platform/system/whole_path.h", "platform/system/os_posix.cpp", "platform/system/file_replacement.cpp"]


def faults_of_paths(files):
    """Paths that are made whole by the language's own means, where platform/system/whole_path.h has one that knows all."""
    return [f"{path}:{number} wants WholePath(): {line.strip()}"
            for path, text in sorted(files.items()) for number, line in enumerate(text.splitlines(), 1)
            if path not in OWN_PATHS and ABSOLUTE.search(line.split("//")[0])]


JOINED = re.compile(r"/ (system::)?PathFromUtf8\(")


def faults_of_joins(files):
    """Names that are made paths of their own before they are joined with their folder's."""
    return [f"{path}:{number} wants PathIn(): {line.strip()}"
            for path, text in sorted(files.items()) for number, line in enumerate(text.splitlines(), 1)
            if JOINED.search(line.split("//")[0])]


ROW = re.compile(r"\| `([\w/]+)/` \| (.*) \| (.*) \|$")
NAMED = re.compile(r"`([\w./-]+)`")


def faults_of_map(text, folders, exists):
    """The map of the folders. folders: those that hold sources; exists: whether there is such a path."""
    rows = {match[1]: match[0] for match in map(ROW.match, text.splitlines()) if match}
    faults = []
    for folder, row in rows.items():
        entries = NAMED.findall(ROW.match(row)[3])
        faults += [] if exists(folder) else [f"{folder} is in the map, and nowhere else"]
        faults += [] if entries else [f"{folder} has no file to start reading at"]
        faults += [f"{folder}/{entry} is where to start reading, and not there"
                   for entry in entries if not exists(f"{folder}/{entry}")]
    for folder in sorted(set(folders) - set(rows)):
        # A drawer may be named in the row of the folder that it belongs to.
        if not any(f"`{folder[len(above) + 1:]}/" in row
                   for above, row in rows.items() if folder.startswith(above + "/")):
            faults.append(f"{folder} is not in the map")
    return faults


def fences(floors):
    return sorted({header for _, _, headers in floors for header in headers}, key=len, reverse=True)


class Checker(unittest.TestCase):
    """What the checks below would say of a project that breaks the rule."""

    FLOORS = read_floors("base:\nmiddle: base <driver.h>\ntop: middle  # and no more\n")

    def test_an_upward_include_is_told(self):
        told = faults_of_includes({"base/a.h": '#pragma once\n#include "top/b.h"\n'}, self.FLOORS, [])
        self.assertEqual(told, ["base/a.h:2 includes top/b.h: base may not use top"])

    def test_an_include_past_the_floor_between_is_told(self):
        self.assertEqual(len(faults_of_includes({"top/a.h": '# include "base/b.h"'}, self.FLOORS, [])), 1)
        self.assertEqual(faults_of_includes({"top/a.h": '#include "middle/b.h"'}, self.FLOORS, []), [])

    def test_a_driver_header_outside_its_folder_is_told(self):
        told = faults_of_includes({"top/a.cpp": "#include <driver.h>"}, self.FLOORS, ["driver.h"])
        self.assertEqual(told, ["top/a.cpp:1 includes driver.h: not in top"])
        self.assertEqual(faults_of_includes({"middle/a.cpp": "#include <driver.h>"}, self.FLOORS, ["driver.h"]), [])

    def test_a_source_on_no_floor_is_told(self):
        self.assertEqual(faults_of_includes({"new/a.cpp": ""}, self.FLOORS, []), ["new/a.cpp stands on no floor"])

    def test_an_upward_link_is_told(self):
        targets = read_links("low|base|high\nhigh|top|\nmiddle|middle|low")
        self.assertEqual(faults_of_links(targets, self.FLOORS), ["low (base) links high: may not use top"])

    def test_a_statement_is_told(self):
        told = faults_of_statements({"a.cpp": 'f();\nQuery("select FID from t where a = " + id);\n// "select x from y"'})
        self.assertEqual(told, ['a.cpp:2 holds a statement: Query("select FID from t where a = " + id);'])
        self.assertEqual(len(faults_of_statements({"a.cpp": 'Run("UPDATE t set a = 1");'})), 1)
        self.assertEqual(faults_of_statements({"a.cpp": '"selected" "update" "Select All" "from"'}), [])

    def test_a_letter_turned_by_hand_is_told(self):
        told = faults_of_primitives({"a.cpp": "f();\nc = static_cast<char>(c - 'A' + 'a');", "text/ascii.h": "c - 'A' + 'a'"})
        self.assertEqual(told, ["a.cpp:2 does by hand what text/ does: c = static_cast<char>(c - 'A' + 'a');"])
        self.assertEqual(len(faults_of_primitives({"a.h": 'char d[] = "0123456789abcdef";'})), 1)
        self.assertEqual(faults_of_primitives({"a.cpp": "column = c - 'A' + 1;\nUpperAscii(c);\n\"0123456789\""}), [])

    def test_a_folder_that_the_map_does_not_show_is_told(self):
        told = faults_of_map("| `a/` | one; `in/` is a drawer | `a.h`, `b.h` |\n| `gone/` | two | their headers |",
                             ["a", "a/in", "a/out", "new"], {"a", "a/a.h"}.__contains__)
        self.assertEqual(told, ["a/b.h is where to start reading, and not there", "gone is in the map, and nowhere else",
                                "gone has no file to start reading at", "a/out is not in the map", "new is not in the map"])

    def test_a_floor_that_uses_a_later_one_is_told(self):
        self.assertEqual(faults_of_floors(read_floors("a: b\nb:")), ["a uses b, which is not below it"])


class Project(unittest.TestCase):
    root = None
    links = None

    @classmethod
    def setUpClass(cls):
        cls.floors = read_floors((cls.root / "tests/architecture/floors.txt").read_text())

    def sources(self, tops):
        return {str(path.relative_to(self.root)): path.read_text()
                for top in tops for path in (self.root / top).rglob("*") if path.suffix in SOURCES}

    def test_floors_stand_on_each_other(self):
        self.assertEqual(faults_of_floors(self.floors), [])

    def test_includes_go_down(self):
        files = self.sources({folder.split("/")[0] for folder, _, _ in self.floors})
        self.assertGreater(len(files), 300)
        self.assertEqual(faults_of_includes(files, self.floors, fences(self.floors)), [])

    def test_every_statement_of_the_component_stands_in_store(self):
        files = self.sources(WITHOUT_STATEMENTS)
        self.assertGreater(len(files), 100)
        self.assertEqual(faults_of_statements(files), [])

    def test_characters_are_looked_at_by_what_stands_in_text(self):
        files = self.sources({folder.split("/")[0] for folder, _, _ in self.floors})
        self.assertEqual(faults_of_primitives(files), [])

    def test_paths_are_made_whole_by_what_knows_all_of_them(self):
        self.assertEqual(len(faults_of_paths({"a.cpp": "x = fs::absolute(y);\nif (p.is_absolute()) f();\nWholePath(y, z);"})), 2)
        files = self.sources({folder.split("/")[0] for folder, _, _ in self.floors})
        self.assertEqual(faults_of_paths(files), [])

    def test_names_are_joined_with_their_folders_by_what_knows_long_ones(self):
        self.assertEqual(len(faults_of_joins({"a.cpp": "x = a / PathFromUtf8(b);\nPathIn(a, b);\ny / system::PathFromUtf8(c);"})), 2)
        files = self.sources({folder.split("/")[0] for folder, _, _ in self.floors})
        self.assertEqual(faults_of_joins(files), [])

    def test_every_folder_of_sources_is_in_the_map(self):
        folders = {path.rpartition("/")[0] for path in self.sources({folder.split("/")[0] for folder, _, _ in self.floors})}
        text = (self.root / "ARCHITECTURE.md").read_text()
        self.assertEqual(faults_of_map(text, folders, lambda path: (self.root / path).exists()), [])

    def test_every_folder_of_sources_has_a_floor(self):
        tops = {path.parent.name for path in self.root.glob("*/CMakeLists.txt")}
        known = {folder.split("/")[0] for folder, _, _ in self.floors}
        self.assertEqual(tops - known - {"tests", "bench", "platform", "packaging", "examples"}, set())

    def test_links_go_down(self):
        targets = read_links(self.links.read_text())
        self.assertGreater(len(targets), 20)
        self.assertEqual(faults_of_links(targets, self.floors), [])


if __name__ == "__main__":
    Project.root, Project.links = map(pathlib.Path, sys.argv[1:3])
    unittest.main(argv=sys.argv[:1])
