#pragma once

#include <exception>
#include <stdexcept>
#include <string>

namespace patina {

/// The exception of every failure that the SDK and the Core nodes report.
///
/// Errors: none of its operations throws except construction, which may run out of memory.
/// A host that links the SDK statically catches a plug-in's ShaderError as its own: the two agree on the
/// type's name, and the layout never changes.
class ShaderError : public std::exception {
public:
    /// Takes the complete message for the user.
    explicit ShaderError(const std::string& message) : message_(message) {}

    /// The message; it lives as long as this exception or any copy of it.
    const char* what() const noexcept override { return message_.what(); }

private:
    std::runtime_error message_; // copies share the text, so that copying an exception in flight cannot throw
};

} // namespace patina
