"""The lane of a real SQL Server, run against the test server as a program: whatever VICENTER_TEST_CONNECT turns
on works with nothing but a connect string, and leaves no database behind.

Usage: live_lane.py SERVER PROGRAM=FILTER...
"""

import json
import os
import subprocess
import sys
import tempfile

NAMED = "IsAskedWhereOneIsNamed"


def tests_of(report):
    with open(report, encoding="utf-8") as file:
        for suite in json.load(file)["testsuites"]:
            yield from suite["testsuite"]


def run(program, tests, environment, folder):
    report = os.path.join(folder, "report.json")
    done = subprocess.run(
        [program, "--gtest_brief=1", f"--gtest_filter={tests}:RealServer.*", f"--gtest_output=json:{report}"],
        env=environment, check=False)
    results = list(tests_of(report))
    ran = [test for test in results if test["result"] == "COMPLETED"]
    named = [test for test in ran if test["name"] == NAMED]
    print(f"{os.path.basename(program)}: {len(ran)} of {len(results)} tests asked the named server", flush=True)
    return done.returncode == 0 and len(named) == 1 and len(ran) > 1


def main():
    server, *programs = sys.argv[1:]
    # In memory where that can be had: some hundred databases are made.
    memory = "/dev/shm" if os.path.isdir("/dev/shm") else None
    with tempfile.TemporaryDirectory(dir=memory) as folder, tempfile.TemporaryDirectory() as reports:
        with subprocess.Popen([server, folder], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as serving:
            try:
                connect = serving.stdout.readline().rstrip("\n")
                environment = dict(os.environ, VICENTER_TEST_CONNECT=connect)
                outcomes = [run(*program.split("=", 1), environment, reports) for program in programs]
            finally:
                serving.stdin.close()
            ended = serving.wait(timeout=60)
        left = sorted(name for name in os.listdir(folder) if not name.startswith("master."))
    if left:
        print("databases left behind:", *left)
    return 0 if all(outcomes) and outcomes and ended == 0 and not left else 1


if __name__ == "__main__":
    sys.exit(main())
