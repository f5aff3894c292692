#include "tests/fuzz/export_checks.h"

#include "bindings/bindings.h"
#include "nodemodel/text.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace patina::fuzz {

using namespace detail;

namespace {

/// A binding of every kind by name; empty for any other name.
std::shared_ptr<Binding> makeBinding(const std::string& kind, const std::string& name) {
    for (std::int32_t code = 0; code <= static_cast<std::int32_t>(BindingKind::Float); ++code) {
        auto binding = createBinding(static_cast<BindingKind>(code), name,
                                     static_cast<std::uint32_t>(1 + name.size() % 4));
        if (binding && bindingKindName(*binding) == kind) {
            binding->setDefaultValue(0, 0.5F);
            binding->setMaxValue(0, 1.0F);
            return binding;
        }
    }
    return nullptr;
}

/// The bindings that a material would present for what was saved, as it writes them.
std::vector<ExportedBinding> bindingsFor(const SavedBindings& saved) {
    std::vector<ExportedBinding> bindings;
    for (const SavedBinding& entry : saved.bindings) {
        if (const auto binding = makeBinding(entry.kind, entry.name)) {
            bindings.push_back({binding, artistValues(*binding), {{fragmentStageName, "c0", entry.name}}});
        }
    }
    return bindings;
}

std::string fileOf(const std::vector<ExportedBinding>& bindings) {
    return printBindings({"Fuzz", {{fragmentStageName, "Fuzz.frag.cg", "", "", "", {}}}, bindings});
}

/// What was carried over is written so that it is carried over again.
void checkCarryOver(const SavedBindings& saved) {
    std::vector<ExportedBinding> bindings = bindingsFor(saved);
    Warnings warnings;
    try {
        carryOverArtistValues(saved, bindings, warnings);
    } catch (const HostError&) {
        return;
    }
    const std::string first = fileOf(bindings);
    std::vector<ExportedBinding> fresh = bindingsFor(saved);
    try {
        carryOverArtistValues(parseBindings(first, "fuzz.bindings.xml"), fresh, warnings);
    } catch (const HostError& error) {
        require(false,
                joinText({"A bindings file is not read as it was written: ", error.what(), "\n", first}));
    }
    const std::string second = fileOf(fresh);
    require(first == second, joinText({"Bindings change from file to file:\n", first, "\n", second}));
}

/// What a binding read it writes so that another reads the same.
void checkAnnotations(const SavedBinding& saved) {
    const auto binding = makeBinding(saved.kind, saved.name);
    if (!binding) {
        return;
    }
    try {
        restoreArtistValues(*binding, saved.annotations);
    } catch (const ShaderError&) {
        return;
    }
    const Annotations first = annotationsOf(*binding);
    const auto other = makeBinding(saved.kind, saved.name);
    restoreArtistValues(*other, first);
    require(artistValues(*binding) == artistValues(*other),
            "A binding does not read what one of its kind wrote.");
}

void fuzzBindings(std::string_view text) {
    try {
        const SavedBindings saved = parseBindings(text, "fuzz.bindings.xml");
        for (const SavedBinding& binding : saved.bindings) {
            checkAnnotations(binding);
        }
        checkCarryOver(saved);
    } catch (const HostError&) {
        return;
    }
}

} // namespace
} // namespace patina::fuzz

/// Whatever the bindings file: either a message for the user, or bindings that take over what it says, and
/// write it so that it is taken over again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    patina::fuzz::fuzzBindings({reinterpret_cast<const char*>(data), size});
    return 0;
}
