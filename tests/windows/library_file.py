#!/usr/bin/env python3
"""VelaVICenter.dll as a file, read without running it: the machine that it is for, what it exports, which libraries it
wants, its type library and its manifest, which say the same as front/com/vicenter.idl.

Usage: library_file.py LIBRARY x64|x86 SOURCE_FOLDER
Exit code 0: all as expected; 1: failures, listed.
"""
import pathlib
import re
import struct
import sys
import xml.etree.ElementTree

LIBRARY, WIDTH, SOURCE = sys.argv[1:4]
COM = ["DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer", "DllUnregisterServer"]
# The system's own, on every Windows.
SYSTEM = {"advapi32", "api-ms-win-core-synch-l1-2-0", "api-ms-win-core-winrt-l1-1-0", "api-ms-win-core-winrt-string-l1-1-0",
          "authz", "bcrypt", "comdlg32", "d3d11", "d3d9", "dwmapi", "dxgi", "gdi32", "imm32", "kernel32", "msvcrt",
          "netapi32", "odbc32", "ole32", "oleaut32", "shcore", "shell32", "shlwapi", "user32", "userenv", "uxtheme",
          "version", "winmm", "winspool.drv", "ws2_32", "wtsapi32"}
failures = []


def check(what, holds, seen=""):
    print("ok:" if holds else "FAILED:", what)
    if not holds:
        failures.append(f"{what}: {seen!s:.2000}")


class File:
    """As much of the format as is asked: headers, the sections, names exported and imported, resources."""

    def __init__(self, data):
        self.data = data
        header = self.number(0x3C, "I")
        if data[:2] != b"MZ" or data[header:header + 4] != b"PE\0\0":
            raise ValueError("no library for Windows")
        self.machine, sections = struct.unpack_from("<HH", data, header + 4)
        optional = header + 24
        wide = self.number(optional, "H") == 0x20B
        self.directories = optional + (112 if wide else 96)
        self.pointer = 8 if wide else 4
        table = optional + self.number(header + 20, "H")
        self.sections = [struct.unpack_from("<II", data, table + 40 * i + 12) + (self.number(table + 40 * i + 20, "I"),)
                         for i in range(sections)]

    def number(self, place, kind):
        return struct.unpack_from("<" + kind, self.data, place)[0]

    def place(self, address):
        for start, size, raw in self.sections:
            if start <= address < start + size:
                return raw + address - start
        raise ValueError(f"no section holds {address:x}")

    def directory(self, which):
        return self.place(self.number(self.directories + 8 * which, "I"))

    def text(self, place):
        return self.data[place:self.data.index(b"\0", place)].decode()

    def exports(self):
        table = self.directory(0)
        names = self.place(self.number(table + 32, "I"))
        return [self.text(self.place(self.number(names + 4 * i, "I"))) for i in range(self.number(table + 24, "I"))]

    def imports(self):
        place = self.directory(1)
        while self.number(place + 12, "I") != 0:
            yield self.text(self.place(self.number(place + 12, "I"))).lower().removesuffix(".dll")
            place += 20

    def resources(self):
        """(type, name, bytes): types and names as numbers or texts."""
        root = self.directory(2)

        def entries(table):
            named, numbered = struct.unpack_from("<HH", self.data, table + 12)
            for i in range(named + numbered):
                name, child = struct.unpack_from("<II", self.data, table + 16 + 8 * i)
                if name & 0x80000000:
                    at = root + (name & 0x7FFFFFFF)
                    name = self.data[at + 2:at + 2 + 2 * self.number(at, "H")].decode("utf-16-le")
                yield name, root + (child & 0x7FFFFFFF)

        for kind, names in entries(root):
            for name, languages in entries(names):
                for _, entry in entries(languages):
                    address, size = struct.unpack_from("<II", self.data, entry)
                    at = self.place(address)
                    yield kind, name, self.data[at:at + size]


def declared():
    """The library's number, and of each class its number, as the IDL has them."""
    idl = pathlib.Path(SOURCE, "front/com/vicenter.idl").read_text(encoding="utf-8")
    library = re.search(r"\[uuid\(([-0-9A-F]+)\)[^\]]*\]\s*library", idl).group(1)
    return library, {name: number for number, name in re.findall(r"\[uuid\(([-0-9A-F]+)\)[^\]]*\]\s*coclass (\w+)", idl)}


def manifest(text, library, classes):
    space = "{urn:schemas-microsoft-com:asm.v1}"
    root = xml.etree.ElementTree.fromstring(text)
    identity = root.find(space + "assemblyIdentity").attrib
    check("the assembly is named as the file", identity == {
        "type": "win32", "name": "VelaVICenter", "version": "1.0.0.0",
        "processorArchitecture": "amd64" if WIDTH == "x64" else "x86"}, identity)
    (file,) = root.findall(space + "file")
    check("its file", file.attrib["name"] == pathlib.Path(LIBRARY).name, file.attrib)
    seen = {one.attrib["progid"]: one.attrib["clsid"] for one in file.findall(space + "comClass")}
    check("its classes", seen == {"VelaVICenter." + name: "{" + number + "}" for name, number in classes.items()}, seen)
    check("its type library", [one.attrib["tlbid"] for one in file.findall(space + "typelib")] == ["{" + library + "}"])


def number_of(text):
    first, second, third, fourth, fifth = text.split("-")
    return struct.pack("<IHH", int(first, 16), int(second, 16), int(third, 16)) + bytes.fromhex(fourth + fifth)


def main():
    file = File(pathlib.Path(LIBRARY).read_bytes())
    check("the machine", file.machine == {"x64": 0x8664, "x86": 0x14C}[WIDTH], hex(file.machine))
    symbols = pathlib.Path(SOURCE, "tests/front/exported_symbols.txt").read_text(encoding="utf-8").splitlines()
    wanted = sorted(COM + [line.split("@@")[0] for line in symbols if "@@" in line])
    exports = set(file.exports()) - {"qt_startup_hook"}  # a static Qt's own objects export that, for debuggers
    check("it exports the C interface and what COM looks for, under plain names", sorted(exports) == wanted,
          exports ^ set(wanted))
    strange = set(file.imports()) - SYSTEM
    check("it wants the system's libraries alone", not strange, strange)
    library, classes = declared()
    resources = {(kind, name): data for kind, name, data in file.resources()}
    types = resources.get(("TYPELIB", 1), b"")
    # A header, among it the system that it is for: 1 is that of 32 bits, 3 that of 64.
    check("a type library", types[:4] == b"MSFT", types[:4])
    check("for this machine", len(types) > 24 and types[20] & 15 == {"x64": 3, "x86": 1}[WIDTH], types[:32].hex())
    for name, number in {"the library": library, **classes}.items():
        check(f"the type library knows {name}", number_of(number) in types)
    manifest(resources[(24, 1)].decode("utf-8"), library, classes)
    for failure in failures:
        print("FAILED:", failure)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
