"""The lane of a real SQL Server: whatever VICENTER_TEST_CONNECT turns on, one program after the other, since what
servers do to their catalog at the same time they refuse each other. Against the server that VICENTER_LIVE_CONNECT
names, as ./test-live sets it; else against the test server as a program, to show that the lane works with nothing
but a connect string and leaves no database behind.

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


def run_all(connect, programs, reports):
    environment = dict(os.environ, VICENTER_TEST_CONNECT=connect)
    return [run(*program.split("=", 1), environment, reports) for program in programs]


def on_named(connect, programs):
    with tempfile.TemporaryDirectory() as reports:
        outcomes = run_all(connect, programs, reports)
    return 0 if all(outcomes) and outcomes else 1


def main():
    server, *programs = sys.argv[1:]
    named = os.environ.pop("VICENTER_LIVE_CONNECT", "")
    return on_named(named, programs) if named else on_test_server(server, programs)


def on_test_server(server, programs):
    # In memory where that can be had: some hundred databases are made.
    memory = "/dev/shm" if os.path.isdir("/dev/shm") else None
    with tempfile.TemporaryDirectory(dir=memory) as folder, tempfile.TemporaryDirectory() as reports:
        with subprocess.Popen([server, folder], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as serving:
            try:
                connect = serving.stdout.readline().rstrip("\n")
                outcomes = run_all(connect, programs, reports)
            finally:
                serving.stdin.close()
            ended = serving.wait(timeout=60)
        left = sorted(name for name in os.listdir(folder) if not name.startswith("master."))
    if left:
        print("databases left behind:", *left)
    return 0 if all(outcomes) and outcomes and ended == 0 and not left else 1


if __name__ == "__main__":
    sys.exit(main())
