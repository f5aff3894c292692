"""Reads the mutants that no test can notice, each with its reason."""

from dataclasses import dataclass


@dataclass
class Entry:
    path: str
    source: str
    change: str
    reason: str
    line: int         # in the list
    survives: bool = False
    killer: str = ""  # of one such mutant; a line may have several


class Equivalents:
    def __init__(self, name, entries):
        self.name = name
        self.entries = {(entry.path, entry.source, entry.change): entry for entry in entries}

    def find(self, mutant):
        return self.entries.get((mutant.path, mutant.source, mutant.change))

    def complaints(self, is_chosen):
        """Of the entries that stand for no survivor."""
        for entry in self.entries.values():
            if not entry.survives and is_chosen(entry):
                fault = f"{entry.killer} kills it" if entry.killer else f"{entry.path} has no such line or change"
                yield f"{self.name}:{entry.line}: {entry.change}: {fault}"


def read_block(name, began, block):
    """The entries of a block: a file, a line of it, changes to that line, and the reason that they share."""
    path, source, changes, reason = block[0], "", [], []
    for offset, line in enumerate(block[1:], 1):
        if line.startswith("| "):
            source = line[2:]
        elif line.startswith("> "):
            changes.append((began + offset, line[2:]))
        else:
            reason.append(line)
    if not source or not changes or not reason:
        raise RuntimeError(f"{name}:{began}: an entry needs a file, a line of it, changes and a reason")
    return [Entry(path, source, change, " ".join(reason), line) for line, change in changes]


def read(path):
    entries, block, began = [], [], 0
    for number, line in enumerate([*path.read_text(encoding="utf-8").splitlines(), ""], 1):
        if line.startswith("#"):
            continue
        if line.strip():
            began = began if block else number
            block.append(line.strip())
        elif block:
            entries += read_block(path.name, began, block)
            block = []
    return Equivalents(path.name, entries)
