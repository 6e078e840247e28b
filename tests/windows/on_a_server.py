#!/usr/bin/env python3
"""The program for Windows on an account set of a server, by odbc32, which Wine hands on to the drivers of the machine
that builds. What it makes and saves there that machine's program reads alike, and the other way round.

Usage: on_a_server.py WINE VICENTER LINUX_PROGRAM SERVER [window]
Exit code 0: all as expected; 1: failures, listed.
"""
import json
import os
import subprocess
import sys
import tempfile

WINE, VICENTER, HERE, SERVER, *WINDOW = sys.argv[1:]
TEMPLATE = "日常费用"
failures = []


def check(what, holds, seen=""):
    print("ok:" if holds else "FAILED:", what, flush=True)
    if not holds:
        failures.append(f"{what}: {seen!s:.3000}")


class Program:
    def __init__(self, command, connect):
        self.command = [*command, "--connect", connect]

    def run(self, *arguments, typed="", code=0):
        # Into files: what Wine starts beside a program holds pipes open.
        with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err, tempfile.TemporaryFile() as given:
            given.write(typed.encode())
            given.seek(0)
            done = subprocess.run([*self.command, *arguments], stdin=given, stdout=out, stderr=err, timeout=300,
                                  check=False)
            out.seek(0)
            err.seek(0)
            said, told = out.read().decode(), err.read().decode()
        check(f"{' '.join(arguments)}: exit code", done.returncode == code, f"{done.returncode}\n{said}{told}")
        return said


def lines(explanation):
    return json.dumps({"lines": [
        {"FNo": 1, "FExp": explanation, "FDC": side, "FAccountNumber": account, "FAcctountName": name,
         "FAmount": "12345678.91"}
        for side, account, name in (("借", "1001", "库存现金"), ("贷", "1002.01", "工商银行基本户"))]})


def same(what, by_windows, here, *arguments, **more):
    seen, wanted = by_windows.run(*arguments, **more), here.run(*arguments, **more)
    check(f"{what}: both programs say the same", seen == wanted, f"{seen}\n---\n{wanted}")
    return seen


def session(by_windows, here, folder):
    by_windows.run("account-set", "new", "--demo")
    check("the demo ledger's templates", TEMPLATE in same("templates", by_windows, here, "list"))
    for writer, explanation in ((by_windows, "午餐𠮷 by one"), (here, "晚餐𠮷 by the other")):
        writer.run("save", TEMPLATE, typed=lines(explanation))
        shown = same(explanation, by_windows, here, "--json", "show", TEMPLATE)
        check("it is there to the last digit", explanation in shown and "12345678.91" in shown, shown)
    same("a batch of several results", by_windows, here, "sql",
         typed="select FName from t_User order by FUserID\nselect N'账套𠮷' as 名称, cast(1.50 as decimal(9,2)) as b\ngo\n")
    same("a table that is not there", by_windows, here, "sql", typed="select * from 没有的表\ngo\n", code=1)
    if WINDOW:
        before = here.run("list")
        told = by_windows.run("window", "--offscreen-session", "Z:" + folder)
        check("the window does its whole session there", "!!" not in told and len(os.listdir(folder)) > 3, told)
        made = set(here.run("list").splitlines()) - set(before.splitlines())
        check("what was made there is there", len(made) == 1, made)


def main():
    with tempfile.TemporaryDirectory() as databases, tempfile.TemporaryDirectory() as folder:
        with subprocess.Popen([SERVER, databases], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as serving:
            try:
                connect = serving.stdout.readline().decode().rstrip("\n")
                session(Program([WINE, VICENTER], connect), Program([HERE], connect), folder)
            finally:
                serving.stdin.close()
    for failure in failures:
        print("FAILED:", failure)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
