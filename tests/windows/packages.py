#!/usr/bin/env python3
"""What users get: the .zip is unpacked and its program, library and script run under Wine from there; the installer
installs without a word for the machine and for the user, over itself too, and the uninstaller leaves folder and registry
as they were.

Usage: packages.py WINE LINUX_PROGRAM CPACK BUILD_FOLDER OBJDUMP
Exit code 0: all as expected; 1: failures, listed.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile

WINE, HERE, CPACK, BUILD, OBJDUMP = sys.argv[1:6]
PREFIX = pathlib.Path(os.environ.get("WINEPREFIX", os.path.expanduser("~/.wine")))
PROGIDS = ["aplication", "clsVIData", "VbsJson", "StringBuilder", "Host"]
# The system's own, on every Windows.
SYSTEM = {"advapi32", "api-ms-win-core-synch-l1-2-0", "api-ms-win-core-winrt-l1-1-0", "api-ms-win-core-winrt-string-l1-1-0",
          "authz", "bcrypt", "comdlg32", "d3d11", "d3d9", "dwmapi", "dxgi", "gdi32", "imm32", "kernel32", "msvcrt",
          "netapi32", "odbc32", "ole32", "oleaut32", "shcore", "shell32", "shlwapi", "user32", "userenv", "uxtheme",
          "version", "winmm", "winspool.drv", "ws2_32", "wtsapi32"}
failures = []


def run(program, *arguments, expected=0, check=True):
    # Into a file: what Wine starts beside the program inherits a pipe and would hold it open.
    with tempfile.TemporaryFile() as out:
        done = subprocess.run([WINE, str(program), *map(str, arguments)], stdout=out, stderr=subprocess.STDOUT,
                              stdin=subprocess.DEVNULL, timeout=300)
        out.seek(0)
        said = out.read().decode(errors="replace")
    if check and done.returncode != expected:
        failures.append(f"{program} {arguments}: exit code {done.returncode}, not {expected}\n{said}")
    return said


def check(what, holds, seen=""):
    print("ok:" if holds else "FAILED:", what)
    if not holds:
        failures.append(f"{what}: {seen!s:.3000}")


def drive(path):
    return "Z:" + str(path)


def uninstall(work, folder, mode, expected=0):
    """Without the copy of itself by which it goes on while nobody waits: that is what its last argument says, which
    must stand as it is, blanks and all."""
    batch = work / "uninstall.bat"
    batch.write_bytes(f'start /wait "" "{windows(folder)}\\uninstall.exe" /S /{mode} _?={windows(folder)}\r\n'
                      "exit %errorlevel%\r\n".encode())
    run("cmd", "/c", drive(batch), expected=expected)


def windows(path):
    """A path on Wine's own drive."""
    return "C:\\" + str(path.relative_to(PREFIX / "drive_c")).replace("/", "\\")


# Where a program that is installed writes: all of the machine's keys would take a minute to read.
BRANCHES = ("HKLM\\Software\\Classes", "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion", "HKCU\\Software")


def registry(work):
    """Every value in those branches by its key; keys that hold nothing are there with none."""
    keys = {}
    for number, branch in enumerate(BRANCHES):
        file = work / f"{number}.reg"
        run("reg", "export", branch, drive(file), "/y")
        key = None
        for line in file.read_text(encoding="utf-16").splitlines():
            if line.startswith("["):
                key = keys.setdefault(line, [])
            elif line and key is not None:
                key.append(line)
    return keys


# Keys of all programs' that the first one makes, and that stay; empty as they are they say nothing.
PARENTS = re.compile(r"\\(Software|Classes|CLSID|TypeLib|Uninstall|CurrentVersion|Windows|Microsoft|Wow6432Node)\]$", re.I)


def same_registry(what, before, after):
    changed = [key for key in sorted(set(before) | set(after))
               if before.get(key, []) != after.get(key, []) or (key in before) != (key in after)]
    changed = [key for key in changed if "\\Software\\Wine\\" not in key]  # of its own desktop
    changed = [key for key in changed if not (PARENTS.search(key) and not before.get(key) and not after.get(key))]
    check(what, not changed, "\n".join(f"{key} {before.get(key)} -> {after.get(key)}" for key in changed))


def tree(folder):
    return sorted(str(path.relative_to(folder)) for path in folder.rglob("*"))


def wanted_libraries(file):
    said = subprocess.run([OBJDUMP, "-p", str(file)], stdout=subprocess.PIPE, check=True).stdout.decode()
    return {name.lower().removesuffix(".dll") for name in re.findall(r"DLL Name: (\S+)", said)}


def make(work):
    subprocess.run([CPACK, "--config", f"{BUILD}/CPackConfig.cmake", "-B", str(work)], check=True,
                   stdout=subprocess.DEVNULL, timeout=600)
    return next(work.glob("*.zip")), next(work.glob("*-setup.exe"))


def creatable(work):
    """Which of the classes a script can make."""
    script = work / "make.vbs"
    script.write_text("On Error Resume Next\n" + "".join(
        f'Err.Clear\nSet made = CreateObject("VelaVICenter.{name}")\nIf Err.Number = 0 Then WScript.Echo "{name}"\n'
        for name in PROGIDS))
    return run("cscript.exe", "//nologo", drive(script)).split()


def packed(work, package):
    folder = work / "解 开"
    with zipfile.ZipFile(package) as opened:
        opened.extractall(folder)
    (root,) = folder.iterdir()
    names = tree(root)
    for name in ("bin/vicenter.exe", "bin/VelaVICenter.dll", "include/vicenter/vicenter.h",
                 "include/vicenter/vicenter_com.h", "doc/LICENSE", "doc/windows.md", "doc/examples/script_host.vbs"):
        check(f"the .zip holds {name}", name in names, names)
    for name in ("vicenter.exe", "VelaVICenter.dll"):
        strange = wanted_libraries(root / "bin" / name) - SYSTEM
        check(f"{name} wants the system's libraries alone", not strange, strange)
    program = root / "bin" / "vicenter.exe"
    account_set = work / "账 套.vas"
    run(program, "account-set", "new", drive(account_set), "--demo")
    said = run(program, "--account-set", drive(account_set), "--json", "list")
    here = subprocess.run([HERE, "--account-set", str(account_set), "--json", "list"], stdout=subprocess.PIPE)
    check("its program lists what that of Linux lists", said == here.stdout.decode() and "标准模板" in said, said)
    library = root / "bin" / "VelaVICenter.dll"
    script = pathlib.Path(__file__).with_name("script_host.py")
    done = subprocess.run([sys.executable, str(script), WINE, HERE, str(library),
                           str(root / "doc/examples/script_host.vbs")], stdout=sys.stderr, timeout=300)
    check("a script is host to its library", done.returncode == 0)


def start_menus():
    """The shortcuts of the machine and of its users."""
    return sorted((PREFIX / "drive_c").glob("**/Start Menu/**/*.lnk"))


def key_of(name):
    """What stands directly in one key of the registry; nothing where there is none."""
    said = run("reg", "query", name, check=False)
    return said if "REG_" in said else ""


def installed(work, setup, mode, default):
    """Install, twice, and uninstall, for `mode`; `default` is where it goes by itself."""
    folder = PREFIX / "drive_c" / default
    shutil.rmtree(folder, ignore_errors=True)  # what a run that was killed has left
    for time in ("first", "second"):
        run(setup, "/S", f"/{mode}")
        check(f"{mode}: installed for the {time} time", (folder / "bin/VelaVICenter.dll").exists())
    if mode == "AllUsers":  # Wine does not look into the user's own classes
        seen = creatable(work)
        check(f"{mode}: registered", seen == PROGIDS, seen)
    hive, other = ("HKLM", "HKCU") if mode == "AllUsers" else ("HKCU", "HKLM")
    for name in PROGIDS:
        key = f"Software\\Classes\\VelaVICenter.{name}"
        check(f"{mode}: {name} is written for nobody else", key_of(f"{hive}\\{key}") and not key_of(f"{other}\\{key}"))
    entry = key_of(f"{hive}\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\{folder.name}")
    check(f"{mode}: named among the programs", "1.0.0" in entry, entry)
    version = run(folder / "bin/vicenter.exe", "--version")
    check(f"{mode}: its program runs", "1.0.0" in version, version)
    in_use(work, folder, mode, setup)
    window = folder / "bin/vicenter-window.exe"
    shortcuts = [link for link in start_menus() if window.name.encode("utf-16-le") in link.read_bytes()]
    check(f"{mode}: its shortcut names its width", all(("(x86)" in link.name) == ("-x86" in folder.name)
                                                       for link in shortcuts), shortcuts)
    check(f"{mode}: the window stands in the start menu where there is one", len(shortcuts) == window.exists(), shortcuts)
    foreign = folder / "我的 账套.vas"
    foreign.write_bytes(b"mine")
    uninstall(work, folder, mode)
    check(f"{mode}: the shortcut is gone", not any(link.exists() for link in shortcuts), shortcuts)
    check(f"{mode}: what is not ours stays", tree(folder) == sorted([foreign.name, "uninstall.exe"]), tree(folder))
    shutil.rmtree(folder, ignore_errors=True)


def in_use(work, folder, mode, setup):
    """While its program runs nothing is overwritten and nothing half removed."""
    files = tree(folder)
    held = subprocess.Popen([WINE, str(folder / "bin/vicenter.exe"), "--account-set", drive(work / "账 套.vas"), "sql"],
                            stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    held.stdin.write(b"select 'running'\ngo\n")
    held.stdin.flush()
    while b"running" not in held.stdout.readline():
        if held.poll() is not None:
            break
    uninstall(work, folder, mode, expected=2)
    run(setup, "/S", f"/{mode}", expected=2)
    held.stdin.close()
    held.wait(timeout=60)
    held.stdout.close()
    check(f"{mode}: nothing is taken from under a program that runs", tree(folder) == files, tree(folder))


def main():
    work = pathlib.Path(tempfile.mkdtemp(prefix="vicenter-packages-"))
    try:
        package, setup = make(work)
        packed(work, package)
        before = registry(work)
        # A user has one folder and one branch of the registry for both widths.
        product = "VoucherTemplateCenter-x86" if "-x86-" in setup.name else "VoucherTemplateCenter"
        installed(work, setup, "AllUsers", f"Program Files/{product}")
        (user,) = [home for home in (PREFIX / "drive_c/users").iterdir() if home.name != "Public"]
        installed(work, setup, "CurrentUser", f"users/{user.name}/AppData/Local/Programs/{product}")
        same_registry("the registry is as it was", before, registry(work))
    finally:
        shutil.rmtree(work, ignore_errors=True)
    for failure in failures:
        print("FAILED:", failure)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
