#!/usr/bin/env python3
"""A script of VBScript as the component's host, run by Wine's own script host: the library is registered for the user,
the script run on a fresh account set, the library taken away again. The account set comes from the program of the
machine that builds.

Usage: script_host.py WINE LINUX_PROGRAM LIBRARY SCRIPT
Exit code 0: the script found everything as it should be.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

WINE, HERE, LIBRARY, SCRIPT = sys.argv[1:5]


def run(*command):
    # What the script engine takes offence at it tells nowhere else.
    environment = dict(os.environ, WINEDEBUG="-all,fixme+vbscript,fixme+wscript")
    done = subprocess.run([WINE, *command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          stdin=subprocess.DEVNULL, env=environment, timeout=300)
    return done.returncode, done.stdout.decode(errors="replace")


def main():
    work = pathlib.Path(tempfile.mkdtemp(prefix="vicenter-script-"))
    try:
        account_set = work / "set.vas"
        subprocess.run([HERE, "account-set", "new", str(account_set), "--demo"], check=True, timeout=300)
        code, said = run("regsvr32", "/s", "Z:" + LIBRARY)  # Wine knows no classes of the user's own
        if code != 0:
            print("The library cannot be registered:", code, said)
            return 1
        scripted, said = run("cscript.exe", "//nologo", "Z:" + SCRIPT,
                      f"Provider=VelaAccountSet;Data Source=Z:{account_set}")
        print(said)
        if scripted != 0:
            print("The script's host ended with", scripted)
        code, _ = run("regsvr32", "/s", "/u", "Z:" + LIBRARY)
        verdict = re.search(r"verdict: (\d+) checks, 0 failures", said)
        return 0 if scripted == 0 and code == 0 and verdict and int(verdict.group(1)) >= 30 else 1
    finally:
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
