#include "host/diagnostic.h"

#include "nodemodel/text.h"

namespace patina {

HostError::HostError(const SourcePosition& position, std::string_view text)
    : message_(diagnosticText(position, "error", text)) {}

std::string diagnosticText(const SourcePosition& position, std::string_view severity, std::string_view text) {
    std::string place = position.file;
    if (!place.empty()) {
        place += position.line > 0 ? joinText({":", std::to_string(position.line), ": "}) : ": ";
    }
    return joinText({place, severity, ": ", text});
}

} // namespace patina
