#include "tests/fuzz/export_checks.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace patina::fuzz {
namespace {

/// What was read is written as it was, and means the same when it is laid out afresh.
void checkWriting(MaterialDocument document, std::string_view text) {
    require(printMaterial(document) == text, "A document is not written as it was read.");
    document.source.clear();
    require(parseMaterial(printMaterial(document), "fuzz.xml") == document,
            "A document does not survive being laid out afresh.");
}

/// One with errors is read as far as it can be.
void checkReadingOn(std::string_view text) {
    Errors errors;
    try {
        const MaterialDocument document = parseMaterial(text, "fuzz.xml", &errors);
        require(!errors.empty(), "A document is refused, and nothing is wrong with it.");
        Warnings warnings;
        printMaterialGraph(buildMaterial(document, corePlugins(), warnings, &errors));
    } catch (const HostError&) {
        return;
    }
}

void fuzzMaterial(std::string_view text) {
    MaterialDocument document;
    try {
        document = parseMaterial(text, "fuzz.xml");
    } catch (const HostError&) {
        checkReadingOn(text);
        return;
    }
    checkWriting(document, text);
    checkExport(document, text.size() % 2 == 0);
}

} // namespace
} // namespace patina::fuzz

/// Whatever the document: either a message for the user, or complete files, of which a compiler accepts the
/// programs.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    patina::fuzz::fuzzMaterial({reinterpret_cast<const char*>(data), size});
    return 0;
}
