"""Holds the manual and the completions of three shells to what the command itself says of its options.

Usage: manual_test.py VTROUT FOLDER, where the folder has what the build made of the arguments.
"""

import os
import pty
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

VTROUT, MADE = map(os.path.abspath, (sys.argv.pop(1), sys.argv.pop(1)))


def output(*command, **more):
    return subprocess.run(command, capture_output=True, text=True, check=True, timeout=60, **more).stdout


def options_of(*command):
    """The names at the start of the lines of a help."""
    names = set()
    for line in re.findall(r"^ +(-[-\w,]+)", output(VTROUT, *command, "--help"), re.M):
        names.update(line.split(","))
    return names


def without_short(names):
    return {name for name in names if name.startswith("--")}


COMMANDS = re.findall(r"^  (\w+) ", output(VTROUT, "--help").split("Subcommands:")[1], re.M)
OPTIONS = {command: options_of(command) for command in COMMANDS}


class Manual(unittest.TestCase):
    def setUp(self):
        self.assertGreater(len(COMMANDS), 8)
        self.assertIn("--workbook", OPTIONS["report"])
        self.assertIn("-q", OPTIONS["export"])

    def test_man_page_has_each_option_and_no_other(self):
        page = subprocess.run(["man", "--warnings=w", "-E", "ascii", "-l", f"{MADE}/vtrout.1"], capture_output=True,
                              text=True, env={**os.environ, "MANWIDTH": "120", "LC_ALL": "C.UTF-8"}, timeout=60)
        self.assertEqual((page.stderr, page.returncode), ("", 0))
        start, *sections = re.split(r"^   vtrout (\w+)$", page.stdout, flags=re.M)
        self.assertEqual(sections[0::2], COMMANDS)
        self.assertEqual(self.tags(start.split("OPTIONS\n")[1]), options_of())
        for command, section in zip(sections[0::2], sections[1::2]):
            self.assertEqual(self.tags(section), OPTIONS[command], command)

    @staticmethod
    def tags(section):
        return {name for tag in re.findall(r"^       (-.*)", section, re.M)
                for name in re.findall(r"(?:^|, )(-[-\w]+)", tag.split("  ")[0])}

    def bash(self, *words, folder="."):
        script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _vtrout; '
                  '[ ${#COMPREPLY[@]} -eq 0 ] || printf "%s\\n" "${COMPREPLY[@]}"')
        return set(output("bash", "--norc", "-c", script, "-", f"{MADE}/vtrout.bash", "vtrout", *words,
                          cwd=folder).splitlines())

    def test_bash(self):
        self.assertEqual(self.bash(""), {*COMMANDS, "help", *options_of()})
        for command in COMMANDS:
            self.assertEqual(self.bash(command, "-"), OPTIONS[command], command)
        self.assertEqual(self.bash("help", "st"), {"statistics"})
        self.assertEqual(self.bash("compare", "--part", "t"), {"table", "tree"})
        self.assertEqual(self.bash("diff", "--color", "=", "al"), {"always"})
        self.assertEqual(self.bash("diff", "--color", "="), {"auto", "always", "never"})
        with tempfile.TemporaryDirectory() as folder:
            os.mkdir(f"{folder}/a folder")
            open(f"{folder}/a file.vtr", "w").close()
            self.assertEqual(self.bash("info", "a", folder=folder), {"a folder", "a file.vtr"})
            self.assertEqual(self.bash("report", "--output-dir", "a", folder=folder), {"a folder"})

    @unittest.skipUnless(shutil.which("fish"), "needs fish")
    def test_fish(self):
        def fish(line):
            found = output("fish", "--no-config", "-c", 'source $argv[1]; complete -C $argv[2]', f"{MADE}/vtrout.fish", line)
            return {line.split("\t")[0] for line in found.splitlines()}

        self.assertEqual(fish("vtrout "), {*COMMANDS, "help"})
        for command in COMMANDS:
            self.assertEqual(without_short(fish(f"vtrout {command} -")), without_short(OPTIONS[command]), command)
        self.assertEqual(fish("vtrout compare --part t"), {"table", "tree"})
        self.assertEqual(fish("vtrout diff --color "), {"auto", "always", "never"})

    @unittest.skipUnless(shutil.which("zsh"), "needs zsh")
    def test_zsh(self):
        lines = [f"vtrout {command} -" for command in COMMANDS] + ["vtrout ", "vtrout compare --part t"]
        listed = dict(zip(lines, self.zsh_lists(lines)))
        for command in COMMANDS:
            found = set(re.findall(r"(?<!\S)--?[a-z][-\w]*", listed[f"vtrout {command} -"]))
            self.assertEqual(found, OPTIONS[command], command)
        self.assertLessEqual({*COMMANDS, "help"}, set(listed["vtrout "].split()))
        self.assertLessEqual({"table", "tree"}, set(listed["vtrout compare --part t"].split()))

    def zsh_lists(self, lines):
        """What an interactive shell lists for each line."""
        with tempfile.TemporaryDirectory() as home:
            shutil.copy(f"{MADE}/vtrout.zsh", f"{home}/_vtrout")
            shell, terminal = pty.fork()
            if shell == 0:
                os.chdir(home)
                os.execvpe("zsh", ["zsh", "-f", "-i"], {"PATH": os.environ["PATH"], "HOME": home, "TERM": "dumb",
                                                      "COLUMNS": "200", "LINES": "100", "LANG": "C.UTF-8"})
            try:
                setup = ("stty rows 100 cols 200; PROMPT=; LISTMAX=0; unsetopt zle_bracketed_paste; fpath=($HOME $fpath); "
                         "autoload -Uz compinit; compinit -u; zstyle ':completion:*' verbose no; bindkey -e; "
                         # Signs that the terminal takes for nothing else while the shell isn't reading yet.
                         "bindkey @l list-choices; bindkey @k kill-whole-line")
                self.ask(terminal, setup + "\n", 0)
                return [self.ask(terminal, line + "@l@k", number) for number, line in enumerate(lines, 1)]
            finally:
                os.kill(shell, signal.SIGKILL)
                os.close(terminal)
                os.waitpid(shell, 0)

    @staticmethod
    def ask(terminal, keys, number):
        """What the shell writes until it has read all the keys."""
        os.write(terminal, f"{keys}echo done$(({number} * 1000 + 1))\n".encode())
        written = b""
        while f"done{number * 1000 + 1}".encode() not in written:
            if not select.select([terminal], [], [], 60)[0]:
                raise TimeoutError(f"zsh is silent after {keys!r}: {written!r}")
            written += os.read(terminal, 65536)
        text = re.sub(r"\x1b\[[\d;?]*[A-Za-z]|\r", " ", written.decode(errors="replace"))
        return text.split("echo done")[0].replace(keys[:-4], " ", 1)


if __name__ == "__main__":
    unittest.main()
