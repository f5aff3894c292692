"""Runs the test programs: once to see which tests come by which mutants, then against each mutant."""

import os
import queue
import subprocess
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field

MEMORY = 4 << 30   # bytes that a test may address; a mutant may ask for any
GRACE = 3.0         # seconds beyond ten times what tests take without a mutant
QUICK = 0.1         # seconds; tests that take longer are run after the others


@dataclass
class Test:
    name: str
    seconds: float
    reached: frozenset


@dataclass
class Program:
    name: str
    path: str
    directory: str
    tests: list = field(default_factory=list)
    seconds: float = 0.0  # of a run of all its tests


class Runner:
    def __init__(self, tree, jobs):
        self.tree = tree
        self.jobs = jobs
        self.late = []  # a name for each run that did not come to an end in time
        self.scratch = queue.SimpleQueue()
        self.directories = [tempfile.TemporaryDirectory(prefix="mutation-") for _ in range(jobs)]
        for directory in self.directories:
            self.scratch.put(directory.name)

    def execute(self, program, arguments, seconds, settings):
        """Whether the tests pass in that time."""
        directory = self.scratch.get()
        environment = dict(os.environ, LOCPATH=str(self.tree.build_directory / "locales"), TMPDIR=directory,
                           **settings)
        command = ["prlimit", f"--as={MEMORY}", "--core=0", program.path, "--gtest_brief=1", *arguments]
        try:
            with subprocess.Popen(command, cwd=program.directory, env=environment, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
                try:
                    return process.wait(seconds) == 0
                except subprocess.TimeoutExpired:
                    self.late.append(program.name)
                    process.kill()
                    return False
        finally:
            self.scratch.put(directory)

    # What the tests come by

    def explore(self, name, directory):
        """The program with its tests, and the names of those that fail without any mutant."""
        program = Program(name, str(self.tree.build_directory / "bin" / name),
                          str(self.tree.build_directory / directory))
        listed = subprocess.run([program.path, "--gtest_list_tests"], check=True, capture_output=True,
                                text=True).stdout
        names, suite = [], ""
        for line in listed.splitlines():
            if not line.startswith(" ") and line.split("#")[0].strip().endswith("."):
                suite = line.split("#")[0].strip()
            elif suite and line.startswith("  "):
                names.append(suite + line.split("#")[0].strip())
        with ThreadPoolExecutor(self.jobs) as pool:
            tests = list(pool.map(lambda test: self.explore_test(program, test), names))
        program.tests = [test for test in tests if test is not None]
        began = time.monotonic()
        self.execute(program, [], 600, {})
        program.seconds = time.monotonic() - began
        return program, [name for name, test in zip(names, tests) if test is None]

    def explore_test(self, program, name):
        with tempfile.NamedTemporaryFile(prefix="mutation-") as reached:
            reached.truncate(self.tree.size())
            began = time.monotonic()
            passed = self.execute(program, [f"--gtest_filter={name}"], 300,
                                  {"PATINA_MUTANTS_REACHED": reached.name})
            seconds = time.monotonic() - began
            marks = reached.read()
        if not passed:
            return None
        return Test(name, seconds, frozenset(number for number, mark in enumerate(marks) if mark))

    # Whether they notice a mutant

    def killer(self, mutant, programs):
        """The program that fails with the mutant, or None; and whether any test comes by it."""
        is_reached = False
        for program in programs:
            tests = [test for test in program.tests if mutant.number in test.reached]
            if not tests:
                continue
            is_reached = True
            quick = [test for test in tests if test.seconds <= QUICK]
            slow = [test for test in tests if test.seconds > QUICK]
            if not all(self.pass_with(mutant, program, group) for group in (quick, slow)):
                return program.name, True
        return None, is_reached

    def pass_with(self, mutant, program, tests):
        arguments = ["--gtest_fail_fast", "--gtest_filter=" + ":".join(test.name for test in tests)]
        seconds = GRACE + 10 * min(program.seconds, sum(test.seconds for test in tests))
        return not tests or self.execute(program, arguments, seconds, {"PATINA_MUTANT": str(mutant.number)})
