#!/usr/bin/env python3
"""Export and import against a foreign Excel.Application: the stand-in, a COM server in a process of its own, called
late-bound by the program for Windows, under Wine. Its workbooks are those of the built-in server byte for byte, and
its failures are told as they should be.

Usage: excel_by_com.py WINE VICENTER STAND_IN
Exit code 0: all as expected; 1: failures, listed.
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile

WINE, VICENTER, STAND_IN = sys.argv[1:4]
failures = []


def run(program, *arguments, expected=0):
    done = subprocess.run([WINE, program, *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          stdin=subprocess.DEVNULL, timeout=300)
    said = done.stdout.decode()
    if done.returncode != expected:
        failures.append(f"{arguments}: exit code {done.returncode}\n{said}")
    return said


def check(what, holds, seen=""):
    print("ok:" if holds else "FAILED:", what)
    if not holds:
        failures.append(f"{what}: {seen!s:.1500}")


class Bench:
    def __init__(self, work):
        self.work = work
        self.account_set = work / "账 套.vas"
        run(VICENTER, "account-set", "new", self.drive(self.account_set), "--demo")

    @staticmethod
    def drive(path):
        return "Z:" + str(path)

    def vicenter(self, *arguments, excel="installed", expected=0):
        return run(VICENTER, "--excel", excel, "--account-set", self.drive(self.account_set), "--yes", *arguments,
                   expected=expected)

    def export(self, name, excel="installed", expected=0):
        book = self.work / name
        said = self.vicenter("export", "标准模板", self.drive(book), excel=excel, expected=expected)
        return said, book.read_bytes() if book.exists() else None

    def server(self, *options):
        run(STAND_IN, "/end")
        run(STAND_IN, "/regserver", *options)


def main():
    work = pathlib.Path(tempfile.mkdtemp(prefix="vicenter-excel-"))
    try:
        bench = Bench(work)
        run(STAND_IN, "/unregserver")  # what a run that was killed has left
        none_installed(bench)
        same_workbooks(bench)
        old_version(bench)
        save_refused(bench)
        busy(bench)
        died(bench)
    finally:
        run(STAND_IN, "/unregserver")
        run(STAND_IN, "/end")
        shutil.rmtree(work, ignore_errors=True)
    for failure in failures:
        print("FAILED:", failure)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


def none_installed(bench):
    said, book = bench.export("无.xlsx", expected=1)
    check("no Excel: export", "检测当前系统未安装Excel，引出失败！" in said and book is None, said)
    said = bench.vicenter("import", bench.drive(bench.work / "无.xlsx"), expected=1)
    check("no Excel: import", "检测当前系统未安装Excel，引入失败！" in said, said)


def same_workbooks(bench):
    bench.server()
    for name, version in (("书 本.xlsx", "16.0"), ("书 本.xls", "16.0")):
        said, built_in = bench.export(name, excel=version)
        (bench.work / name).unlink()
        said, foreign = bench.export(name)
        check(f"the same {name}", foreign is not None and foreign == built_in, said)
    said = bench.vicenter("import", bench.drive(bench.work / "书 本.xlsx"))
    check("imported", "引入模板 书 本 成功！" in said, said)
    check("what was imported", bench.vicenter("--json", "show", "书 本").count("FAccountNumber")
          == bench.vicenter("--json", "show", "标准模板").count("FAccountNumber"))


def old_version(bench):
    bench.server("--version", "11.0")
    said, book = bench.export("旧.xlsx", expected=1)
    check("an old version refuses .xlsx", "安装的Excel版本不支持xlsx格式！" in said and book is None, said)
    said, book = bench.export("旧.xls")
    check("an old version writes .xls", book is not None, said)


def save_refused(bench):
    bench.server("--refuse-save")
    before = (bench.work / "书 本.xlsx").read_bytes()
    said, book = bench.export("书 本.xlsx", expected=1)
    check("SaveAs refused", "保存文件失败，原因：磁盘已写保护" in said, said)
    check("the file that was there stays", book == before)


def busy(bench):
    bench.server("--busy", "5")
    said, book = bench.export("忙.xlsx")
    check("a busy server is asked again", book is not None, said)


def died(bench):
    bench.server("--die-after", "40")
    said, book = bench.export("亡.xlsx", expected=1)
    check("a server that ends meanwhile", "模板引出失败！" in said and book is None, said)


if __name__ == "__main__":
    sys.exit(main())
