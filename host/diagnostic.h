#pragma once

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

/// A place in a document: line 0 stands for the document as a whole.
struct SourcePosition {
    std::string file;
    int line = 0;
};

/// The failure that ends an operation of the host: what is wrong, and where.
/// what() is the complete message in the manner of compilers, `file:line: error: text`.
class HostError : public std::exception {
public:
    HostError(const SourcePosition& position, std::string_view text);

    const char* what() const noexcept override { return message_.what(); }

private:
    std::runtime_error message_; // copies share the text
};

/// Something that a user should know and that ends nothing.
struct Warning {
    SourcePosition position;
    std::string text;
};

using Warnings = std::vector<Warning>;

/// `file:line: severity: text`, without the line when it is 0, and without the place when there is no file.
std::string diagnosticText(const SourcePosition& position, std::string_view severity, std::string_view text);

} // namespace patina
