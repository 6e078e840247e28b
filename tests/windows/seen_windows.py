#!/usr/bin/env python3
"""The windows as somebody sees them: hosts for Windows, a script and a program, open them under Wine on a display of
this test's own. What is drawn there is looked at, hosts end with windows open and without, the library comes and goes.

Usage: seen_windows.py WINE WINESERVER LINUX_PROGRAM LIBRARY SCRIPT HOST VICENTER
Exit code 0: all as expected; 1: failures, listed. With VICENTER_PICTURES set to a folder the picture of the window is
written there.
"""
import collections
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import zlib

WINE, WINESERVER, HERE, LIBRARY, SCRIPT, HOST, VICENTER = sys.argv[1:8]
WIDTH, HEIGHT = 1280, 860
LONGEST = 100  # seconds until what is waited for is there
# A home of Wine's own, whose programs all show themselves on one desktop with frames drawn by Wine.
HOME = pathlib.Path(os.environ.get("WINEPREFIX", os.path.expanduser("~/.wine")) + "-seen")
failures = []


def check(what, holds, seen=""):
    print("ok:" if holds else "FAILED:", what, flush=True)
    if not holds:
        failures.append(f"{what}: {seen!s:.3000}")


class Picture:
    """Points as numbers 0xRRGGBB."""

    def __init__(self, width, height, points):
        self.width, self.height, self.points = width, height, points

    @classmethod
    def of_display(cls, file):
        data = pathlib.Path(file).read_bytes()
        fields = struct.unpack_from(">25I", data)
        header, width, height, stride, colors = fields[0], fields[4], fields[5], fields[12], fields[19]
        start = header + 12 * colors
        rows = (struct.unpack_from(f"<{width}I", data, start + row * stride) for row in range(height))
        return cls(width, height, [[point & 0xFFFFFF for point in row] for row in rows])

    def part(self, left, top, right, bottom):
        return Picture(right - left, bottom - top, [row[left:right] for row in self.points[top:bottom]])

    def without(self, ground):
        """Cut down to what is not of that colour."""
        rows = [y for y, row in enumerate(self.points) if any(point != ground for point in row)]
        columns = [x for x in range(self.width) if any(row[x] != ground for row in self.points)]
        return self.part(columns[0], rows[0], columns[-1] + 1, rows[-1] + 1)

    def colors(self):
        return collections.Counter(point for row in self.points for point in row)

    def rows_with_line(self, color, length):
        """How many rows have an unbroken line of that colour."""
        def longest(row):
            best = run = 0
            for point in row:
                run = run + 1 if point == color else 0
                best = max(best, run)
            return best
        return sum(longest(row) >= length for row in self.points)

    def columns_with_line(self, color, length):
        turned = Picture(self.height, self.width, [list(column) for column in zip(*self.points)])
        return turned.rows_with_line(color, length)

    def write(self, file):
        def chunk(kind, body):
            return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
        lines = b"".join(b"\0" + b"".join(point.to_bytes(3, "big") for point in row) for row in self.points)
        pathlib.Path(file).write_bytes(
            b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


class Display:
    def __init__(self, work):
        self.folder = work / "display"
        self.folder.mkdir()
        mine, its = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(its), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-fbdir", str(self.folder),
             "-nolisten", "tcp"], pass_fds=[its], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(its)
        with os.fdopen(mine) as answer:
            self.name = ":" + answer.readline().strip()

    def picture(self):
        return Picture.of_display(self.folder / "Xvfb_screen0")

    def end(self):
        self.server.terminate()
        self.server.wait(timeout=30)


def environment(display):
    wanted = dict(os.environ, WINEPREFIX=str(HOME), DISPLAY=display)
    for name in ("WINEQT_QPA_PLATFORM", "WINEQT_QPA_FONTDIR"):
        wanted.pop(name, None)
    return wanted


def prepare(display):
    if (HOME / "complete").exists():
        return
    HOME.mkdir(parents=True, exist_ok=True)
    fonts = r"HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink"
    for command in (["wineboot", "--init"],
                    # In 32 bit it takes itself for an older Windows than it does in 64.
                    ["winecfg", "-v", "win10"],
                    # Chinese in the frames, which Wine draws by a font that has none.
                    ["reg", "add", fonts, "/v", "Tahoma", "/t", "REG_MULTI_SZ", "/d",
                     "NotoSansCJK-Regular.ttc,Noto Sans CJK SC", "/f"],
                    ["reg", "add", r"HKCU\Software\Wine\Explorer", "/v", "Desktop", "/d", "Default", "/f"],
                    ["reg", "add", r"HKCU\Software\Wine\Explorer\Desktops", "/v", "Default", "/d",
                     f"{WIDTH}x{HEIGHT}", "/f"]):
        subprocess.run([WINE, *command], env=environment(display), stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=300, check=True)
    end_wine(display)
    (HOME / "complete").touch()


def end_wine(display):
    subprocess.run([WINESERVER, "-k"], env=environment(display), stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, timeout=60)


class Program:
    """A program for Windows on the display, what it says in a file: what Wine starts beside it holds pipes open."""

    def __init__(self, display, work, *command):
        self.said_in = work / f"said-{time.monotonic_ns()}.txt"
        with open(self.said_in, "wb") as out:
            self.process = subprocess.Popen([WINE, *map(str, command)], env=environment(display.name),
                                            stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT)

    def said(self):
        return self.said_in.read_bytes().decode(errors="replace")

    def has_ended_within(self, seconds):
        try:
            self.process.wait(timeout=seconds)
            return True
        except subprocess.TimeoutExpired:
            return False

    def end(self, what, expected=0):
        try:
            code = self.process.wait(timeout=LONGEST)
        except subprocess.TimeoutExpired:
            self.process.kill()
            code = "none in time"
        check(f"{what}: exit code", code == expected, f"{code}\n{self.said()}")
        return self.said()


def drive(path):
    return "Z:" + str(path)


# The colours of the window by what they belong to: ui/look/theme.h and the icons.
PAPER, HEADER, GRID_LINE, BAND = 0xFFFFFF, 0xE9EEF1, 0xDFE5E9, 0xFBFCFD
INK, ICON_LINE, ICON_ACCENT, FOLDER = 0x1F2C3A, 0x3B4C60, 0x13806F, 0xFBF1DC


def faults(picture):
    """What is not where it should be. The tree stands on the left, the band of commands above, the grid on the right."""
    found = []
    colors = picture.colors()
    for name, color, least in (("paper", PAPER, 20000), ("header", HEADER, 2000), ("band", BAND, 5000),
                               ("letters", INK, 300), ("icons", ICON_LINE, 100), ("coloured icons", ICON_ACCENT, 100)):
        if colors[color] < least:
            found.append(f"{name}: {colors[color]} points")
    rows = picture.part(WIDTH // 3, HEIGHT // 6, WIDTH, HEIGHT).rows_with_line(GRID_LINE, 60)
    if rows < 10:
        found.append(f"{rows} rows in the grid")
    columns = picture.part(WIDTH // 3, HEIGHT // 6, WIDTH, HEIGHT).columns_with_line(GRID_LINE, 15)
    if columns < 4:
        found.append(f"{columns} columns in the grid")
    tree = picture.part(0, HEIGHT // 10, WIDTH // 4, HEIGHT * 7 // 8).colors()
    if tree[FOLDER] < 5 or tree[INK] < 80:
        found.append(f"tree: {tree[FOLDER]} points of a folder, {tree[INK]} of letters")
    return found


def wait_for_window(display, program):
    end = time.monotonic() + LONGEST
    while True:
        picture = display.picture()
        missing = faults(picture)
        if not missing or time.monotonic() > end or program.has_ended_within(0.2):
            return picture, missing


def script(display, work, connect, sign, last):
    folder = work / sign
    folder.mkdir()
    program = Program(display, work, "cscript.exe", "//nologo", drive(SCRIPT), connect, drive(folder))
    picture, missing = wait_for_window(display, program)
    check(f"{sign}: the window is seen, with its tree and its grid", not missing, f"{missing}\n{program.said()}")
    (folder / sign).touch()
    said = program.end(f"a script that has the windows {sign}")
    check(f"{sign}: it had one window", re.search(r"open: 1\b", said) is not None, said)
    check(f"{sign}: at its end", re.search(rf"at the end: {last}\b", said) is not None, said)
    return picture


def main():
    work = pathlib.Path(tempfile.mkdtemp(prefix="vicenter-seen-"))
    display = Display(work)
    try:
        prepare(display.name)
        account_set = work / "账 套.vas"
        subprocess.run([HERE, "account-set", "new", str(account_set), "--demo"], check=True, timeout=300)
        connect = f"Provider=VelaAccountSet;Data Source={drive(account_set)}"
        check("an empty desktop has no window", len(faults(display.picture())) > 5)
        Program(display, work, "regsvr32", "/s", drive(LIBRARY)).end("regsvr32")
        picture = script(display, work, connect, "close", 0)
        pictures = os.environ.get("VICENTER_PICTURES")
        if pictures:
            window = picture.without(picture.points[-1][-1])
            window.write(pathlib.Path(pictures, "windows-main-window.png"))
        script(display, work, connect, "leave", 1)
        Program(display, work, "regsvr32", "/s", "/u", drive(LIBRARY)).end("regsvr32 /u")
        for mode in ("loop", "exit", "uninitialize"):
            said = Program(display, work, HOST, drive(LIBRARY), connect, mode).end(f"a host: {mode}")
            check(f"{mode}: its verdict", re.search(r"verdict: \d+ checks, 0 failures", said) is not None, said)
    finally:
        end_wine(display.name)
        display.end()
        shutil.rmtree(work, ignore_errors=True)
    for failure in failures:
        print("FAILED:", failure)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
