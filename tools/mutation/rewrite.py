"""Writes a source so that one build of it holds all its mutants: each is chosen when the program runs."""

HOOK = r"""#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

// Which mutant is on, from the environment, and where to note which ones are come by.
namespace patina_mutation {

struct State {
    unsigned chosen = 0;
    volatile unsigned char* reached = nullptr;
};

inline State readState() {
    State state;
    if (const char* chosen = std::getenv("PATINA_MUTANT")) {
        state.chosen = static_cast<unsigned>(std::atoi(chosen));
    }
    if (const char* path = std::getenv("PATINA_MUTANTS_REACHED")) {
        const int file = ::open(path, O_RDWR);
        const auto size = static_cast<std::size_t>(::lseek(file, 0, SEEK_END));
        state.reached = static_cast<volatile unsigned char*>(
            ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        ::close(file);
    }
    return state;
}

inline bool isOn(unsigned number) {
    static const State state = readState();
    if (state.reached != nullptr) {
        state.reached[number] = 1;
    }
    return state.chosen == number;
}

// where a constant may be asked for, a mutant is there only at run time
constexpr bool isOnAtRunTime(unsigned number) { return !__builtin_is_constant_evaluated() && isOn(number); }

} // namespace patina_mutation
"""


def test_of(mutant):
    hook = "isOnAtRunTime" if mutant.constant else "isOn"
    return f"patina_mutation::{hook}({mutant.number})"


def wrap(text, mutants):
    """The text with the mutants of exactly its range: expressions inside, then conditions, then statements."""
    by_form = {form: [mutant for mutant in mutants if mutant.form == form]
               for form in ("expression", "condition", "statement")}
    choices = "".join(f"{test_of(mutant)} ? ({mutant.changed}) : "
                      for mutant in by_form["expression"])
    if choices:
        text = f"({choices}({text}))"
    for mutant in by_form["condition"]:
        text = f"({test_of(mutant)} ? {mutant.changed} : !!({text}))"
    for mutant in by_form["statement"]:
        text = f"if (!{test_of(mutant)}) {text}"
    return text


def rewrite(source, mutants, kept):
    """The text of the source with these mutants; lines stay where they are. `kept` names the constexpr
    functions and variables that must remain so; mutants of such a variable's value cannot be among them."""
    edits = [(entry.start, entry.start + len("constexpr"), entry.replacement)
             for entry in source.constexprs if entry.name not in kept]
    ranges = sorted({(mutant.start, mutant.end) for mutant in mutants}, key=lambda r: (r[0], -r[1]))
    at = {}
    for mutant in mutants:
        at.setdefault((mutant.start, mutant.end), []).append(mutant)

    def render(start, end, inner):
        pieces, position = [], start
        while inner:
            first, last = inner[0]
            nested = [r for r in inner[1:] if r[1] <= last]
            pieces.append(plain(position, first))
            pieces.append(wrap(render(first, last, nested), at[(first, last)]))
            position = last
            inner = [r for r in inner[1:] if r[0] >= last]
        pieces.append(plain(position, end))
        return "".join(pieces)

    def plain(start, end):
        pieces, position = [], start
        for first, last, replacement in edits:
            if start <= first and last <= end:
                pieces += [source.text[position:first], replacement]
                position = last
        pieces.append(source.text[position:end])
        return "".join(pieces)

    return render(0, len(source.text), ranges)
