#!/usr/bin/env python3
"""The program of this machine and the one for Windows, under Wine, do the same work: what they say and what they write
is compared byte for byte, and each reads and verifies the account sets of the other.

Usage: same_results.py LINUX_PROGRAM WINE WINDOWS_PROGRAM
Exit code 0: all alike; 1: differences, listed.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

LINES = """{"lines":[
{"FNo":1,"FExp":"付房租 “二月”","FDC":"借","FAccountNumber":"5602","FAmount":"1234567.8901","FRemark":"甲乙 丙😀"},
{"FNo":1,"FExp":"付房租","FDC":"贷","FAccountNumber":"1001","FAmount":"1234567.8901"}]}"""

QUERY = """select FAccountID, FNumber, FName, FFullName from t_Account order by FName, FNumber
go
select cast(1 as decimal(38,4)) / 3 as q, 0.1 + 0.2e0 as f, 1e22 as e, cast('2024-02-29 23:59:59.997' as datetime) as d
go
select N'甲' + char(65) + nchar(20013) as t, upper(N'äß') as u, patindex(N'%二%', N'一二三') as p, datalength(N'😀') as n
go
select 1/0
"""

failures = []


class Program:
    def __init__(self, command, drive):
        self.command = command
        self.drive = drive

    def path(self, path):
        """A path as the program is given it."""
        return self.drive + str(path)

    def run(self, arguments, text=None, expected=0):
        done = subprocess.run(self.command + arguments, input=text, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if expected is not None and done.returncode != expected:
            failures.append(f"{arguments}: exit code {done.returncode}\n{done.stdout.decode()}\n{done.stderr.decode()}")
        return done.returncode, done.stdout, done.stderr


def same(what, one, other):
    if one == other:
        print(f"same: {what}")
        return
    failures.append(f"{what} differs:\n  Linux   {str(one):.2000}\n  Windows {str(other):.2000}")


def compare(here, there, what, arguments_of, text=None):
    """arguments_of(program, set): the same command for each, on its own account set."""
    answers = []
    for program, account_set in ((here, SETS[0]), (there, SETS[1])):
        code, out, err = program.run(["--account-set", program.path(account_set)] + arguments_of(program), text, None)
        answers.append((code, out, err))
    same(what, answers[0], answers[1])


SETS = []


def same_files(what):
    """The two account sets byte for byte, but for the moments at which something was made."""
    moment = re.compile(rb"20\d\d-\d\d-\d\d \d\d:\d\d:\d\d(\.\d+)?")
    one, other = (moment.sub(lambda found: b"#" * len(found.group()), account_set.read_bytes())
                  for account_set in SETS)
    places = [i for i, (a, b) in enumerate(zip(one, other)) if a != b]
    same(what, (len(one), []), (len(other), places[:20]))


def main():
    here = Program([sys.argv[1]], "")
    there = Program([sys.argv[2], sys.argv[3]], "Z:")
    work = pathlib.Path(tempfile.mkdtemp(prefix="vicenter-same-"))
    try:
        folders = [work / "Linux 一", work / "Windows 二"]
        for folder in folders:
            folder.mkdir()
            SETS.append(folder / "账 套.vas")
        for program, account_set in zip((here, there), SETS):
            program.run(["account-set", "new", program.path(account_set), "--demo"])
        same_files("a fresh account set")
        commands(here, there)
        same_files("the account sets after the same commands")
        workbooks(here, there, folders)
        travel(here, there)
        long_names(there, work)
    finally:
        shutil.rmtree(work, ignore_errors=True)
    for failure in failures:
        print("FAILED:", failure)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


def commands(here, there):
    for what, arguments in (("list", ["list"]), ("list as JSON", ["--json", "list"]), ("show", ["show", "标准模板"]),
                            ("show as JSON", ["--json", "show", "标准模板"]), ("check", ["check", "标准模板"]),
                            ("what is not there", ["show", "没有 的"]), ("wrong use", ["no-such-command"])):
        compare(here, there, what, lambda _, arguments=arguments: arguments)
    compare(here, there, "save from standard input", lambda _: ["--yes", "save", "日常费用"], LINES.encode())
    compare(here, there, "what was saved", lambda _: ["--json", "show", "日常费用"])
    compare(here, there, "T-SQL from standard input", lambda _: ["sql"], QUERY.encode())
    compare(here, there, "T-SQL with the line ends of Windows", lambda _: ["sql"], QUERY.replace("\n", "\r\n").encode())


def workbooks(here, there, folders):
    for kind in ("xlsx", "xls"):
        books = []
        for program, account_set, folder in zip((here, there), SETS, folders):
            book = folder / f"引 出.{kind}"
            version = ["--excel", "16.0" if kind == "xlsx" else "11.0"]
            program.run(version + ["--account-set", program.path(account_set), "--yes", "export", "标准模板",
                                   program.path(book)])
            books.append(book.read_bytes() if book.exists() else None)
        same(f"an exported .{kind}", books[0], books[1])
    # Each imports the other's.
    for program, account_set, folder in zip((here, there), SETS, reversed(folders)):
        program.run(["--account-set", program.path(account_set), "--yes", "import",
                     program.path(folder / "引 出.xlsx")])
    compare(here, there, "what was imported", lambda _: ["--json", "show", "引 出"])


def travel(here, there):
    for program, account_set, maker in ((there, SETS[0], "Linux"), (here, SETS[1], "Windows")):
        program.run(["account-set", "verify", program.path(account_set)])
        program.run(["--account-set", program.path(account_set), "--yes", "save", "日常费用"], LINES.encode())
        print(f"verified and written: the set made on {maker}")
    digests = [program.run(["--account-set", program.path(account_set), "--json", "show", "日常费用"])
               for program, account_set in ((here, SETS[0]), (there, SETS[1]))]
    same("the sets that travelled", digests[0], digests[1])


def long_names(there, work):
    """A path of more than 300 characters, with Chinese and blanks."""
    folder = work
    for i in range(3):
        folder = folder / (f"文件夹 {i} " + "长" * 25 + "x" * 60)
        folder.mkdir()
    account_set = folder / "账 套.vas"
    there.run(["account-set", "new", there.path(account_set), "--demo"])
    book = folder / "书 本.xlsx"
    there.run(["--account-set", there.path(account_set), "--yes", "export", "标准模板", there.path(book)])
    there.run(["--account-set", there.path(account_set), "--yes", "import", there.path(book)])
    there.run(["account-set", "backup", there.path(account_set), there.path(folder / "备 份.vas")])
    same("files behind a long path", sorted(os.listdir(folder)), sorted(["账 套.vas", "书 本.xlsx", "备 份.vas"]))


if __name__ == "__main__":
    sys.exit(main())
