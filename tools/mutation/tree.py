"""A copy of the tree in which the library's sources hold their mutants, and its build."""

import re
import shutil
import subprocess

from . import rewrite

LIBRARY = ["materialgraph", "patina_core_factory"]
PER_FILE = 1000  # numbers of a file's mutants; they stay when another file changes
ERROR = re.compile(r"^(?P<file>[^\s:]+):(?P<line>\d+):(?P<column>\d+): (?:fatal )?error: ")
QUOTED = re.compile(r"[‘'`]([^’']+)[’']")


class Tree:
    def __init__(self, root, place, sources, jobs):
        self.root = root
        self.copy = place / "tree"
        self.build_directory = place / "build"
        self.log = place / "build.log"
        self.sources = {source.path: source for source in sources}
        self.jobs = jobs
        self.kept = set()       # names that stay constexpr
        self.left_out = set()   # numbers of mutants that do not compile
        for index, path in enumerate(sorted(self.sources)):
            mutants = self.sources[path].mutants
            if len(mutants) >= PER_FILE:
                raise RuntimeError(f"{path}: more than {PER_FILE} mutants")
            for place_in_file, mutant in enumerate(sorted(mutants, key=lambda m: (m.start, m.end))):
                mutant.number = index * PER_FILE + place_in_file + 1

    def size(self):
        return (len(self.sources) + 1) * PER_FILE

    def mutants(self):
        return [mutant for source in self.sources.values() for mutant in source.mutants]

    def in_place(self, source):
        return [mutant for mutant in source.mutants
                if mutant.number not in self.left_out and mutant.variable not in self.kept]

    # The copy

    def write(self, path, text):
        target = self.copy / path
        data = text.encode("latin-1")
        if not target.exists() or target.read_bytes() != data:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(data)

    def write_sources(self):
        for source in self.sources.values():
            self.write(source.path, rewrite.rewrite(source, self.in_place(source), self.kept))

    def write_rest(self):
        listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=self.root, check=True,
                                capture_output=True, text=True).stdout.splitlines()
        for path in listed:
            original = self.root / path
            if path in self.sources or not original.is_file():
                continue
            target = self.copy / path
            if not target.exists() or target.read_bytes() != original.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(original, target)
        wanted = set(listed)
        for target in self.copy.rglob("*"):
            if target.is_file() and str(target.relative_to(self.copy)) not in wanted | {"mutation_hook.h"}:
                target.unlink()
        self.write("mutation_hook.h", rewrite.HOOK)

    # The build

    def build(self, targets):
        """Builds the copy, the library first. Mutants that do not compile are left out until it does."""
        self.write_rest()
        self.write_sources()
        self.configure()
        for stage in (LIBRARY, targets):
            while not self.compile(stage):
                if not self.mend():
                    raise RuntimeError(f"the mutants do not compile; what the compiler says is in {self.log}")
                self.write_sources()

    def configure(self):
        hook = self.copy / "mutation_hook.h"
        options = ["-DCMAKE_BUILD_TYPE=", f"-DCMAKE_CXX_FLAGS=-O0 -w -Wno-narrowing -include {hook}",
                   "-DPATINA_BUILD_TESTS=ON", "-DPATINA_TRANSLATION=OFF", "-DPATINA_PREVIEW=OFF"]
        self.run(["cmake", "-G", "Ninja", "-S", self.copy, "-B", self.build_directory, *options], True)

    def compile(self, targets):
        return self.run(["cmake", "--build", self.build_directory, "-j", str(self.jobs), "--target", *targets,
                         "--", "-k", "0"], False)

    def run(self, command, must_succeed):
        with open(self.log, "w", encoding="utf-8") as log:
            result = subprocess.run(command, stdout=log, stderr=subprocess.STDOUT, check=False)
        if must_succeed and result.returncode != 0:
            raise RuntimeError(f"{command[0]} failed; what it says is in {self.log}")
        return result.returncode == 0

    def mend(self):
        """Takes out what the compiler complains of; whether anything was."""
        blocks = []
        for line in self.log.read_text(encoding="utf-8", errors="replace").splitlines():
            if ERROR.match(line):
                blocks.append([line])
            elif blocks and not line.startswith("FAILED"):
                blocks[-1].append(line)
        # a constant that is none any more may be the cause of the other errors
        kept = set().union(*(self.constants_missed(block) for block in blocks)) - self.kept
        self.kept |= kept
        faulty = set() if kept else set().union(*(self.faulty(ERROR.match(block[0])) for block in blocks))
        self.left_out |= faulty
        return bool(kept or faulty)

    def constants_missed(self, block):
        names = {entry.name for source in self.sources.values() for entry in source.constexprs}
        return names & {word for line in block if "constexpr" in line or "constant" in line
                        for quoted in QUOTED.findall(line) for word in re.findall(r"\w+", quoted)}

    def faulty(self, error):
        """The numbers of the mutants that an error is about: of the last one before its place in the line."""
        path = error["file"].rsplit("/tree/", 1)[-1]
        source = self.sources.get(path)
        if source is None:
            return set()
        number, column = int(error["line"]), int(error["column"]) - 1
        line = (self.copy / path).read_text(encoding="latin-1").split("\n")[number - 1]
        places = {test.start(): mutant.number for mutant in self.in_place(source)
                  for test in re.finditer(re.escape(f"({mutant.number})") + r" \? ", line)
                  if test.start() <= column}
        if places:
            return {places[max(places)]}
        return {mutant.number for mutant in self.in_place(source) if mutant.line == number}
