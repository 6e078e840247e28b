"""The program itself on an account set of a server: `window` does its whole session there, and a password is
nowhere to be seen, in the list of processes neither.

Usage: on_a_server.py PROGRAM SERVER [window]
"""

import os
import subprocess
import sys
import tempfile

PASSWORD_KEY = "Password="


def split_password(connect):
    """The connect string without its password, and the password: it stands in quotes."""
    at = connect.index(PASSWORD_KEY)
    start = at + len(PASSWORD_KEY) + 1
    end = connect.index('"', start)
    return connect[:at] + connect[end + 2:], connect[start:end]


class Program:
    def __init__(self, path, home, password):
        self.path = path
        self.password = password
        self.environment = dict(os.environ, HOME=home, XDG_DATA_HOME=home, VICENTER_TEST_PASSWORD=password)

    def run(self, *arguments):
        done = subprocess.run([self.path, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, check=False)
        assert self.password not in done.stdout + done.stderr, arguments
        assert done.returncode == 0, (arguments, done.returncode, done.stdout, done.stderr)
        return done.stdout

    def process_title(self, *arguments):
        """What the list of processes shows once the program waits for its input."""
        with subprocess.Popen([self.path, *arguments], env=self.environment, stdin=subprocess.PIPE,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True) as running:
            # Its question stands there when it has begun to read.
            question = ""
            while "password:" not in question:
                character = running.stderr.read(1)
                assert character, question
                question += character
            with open(f"/proc/{running.pid}/cmdline", "rb") as file:
                title = file.read().decode()
            running.stdin.write(self.password + "\n")
            running.stdin.close()
            running.stderr.read()
            return title


def files_that_hold(folder, text):
    for path, _, names in os.walk(folder):
        for name in names:
            with open(os.path.join(path, name), "rb") as file:
                if text.encode() in file.read() or text in name:
                    yield os.path.join(path, name)


def check(program, connect, password, folder, with_window):
    given = ["--connect", connect, "--password-env", "VICENTER_TEST_PASSWORD"]
    program.run(*given, "account-set", "new", "--demo")
    before = program.run(*given, "list")
    assert "日常费用" in before, before

    if with_window:
        pictures = os.path.join(folder, "pictures")
        told = program.run(*given, "window", "--offscreen-session", pictures)
        assert "!!" not in told, told
        assert len(os.listdir(pictures)) > 3, os.listdir(pictures)
        after = program.run(*given, "list")
        made = set(after.splitlines()) - set(before.splitlines())
        assert len(made) == 1, (before, after)

    # A password that is given in two places stands in the arguments of a program that waits.
    title = program.process_title("--ask-password", "account-set", "copy", f"{connect};Database=none",
                                  f"Driver=FreeTDS;PWD={{{password}}};Server=x")
    assert password not in title, title
    assert "PWD=***" in title, title
    assert not list(files_that_hold(folder, password))


def main():
    path, server, *window = sys.argv[1:]
    with tempfile.TemporaryDirectory() as databases, tempfile.TemporaryDirectory() as folder:
        with subprocess.Popen([server, databases], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as serving:
            try:
                connect, password = split_password(serving.stdout.readline().rstrip("\n"))
                check(Program(path, folder, password), connect, password, folder, bool(window))
            finally:
                serving.stdin.close()
    return 0


if __name__ == "__main__":
    sys.exit(main())
