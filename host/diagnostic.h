#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace patina {

// Errors and warnings. The functions are thread-safe; copies of a HostError may be used in different threads.

/// A place in a file; line 0 stands for the file as a whole.
struct SourcePosition {
    std::string file;
    int line = 0;
};

/// A text without line breaks and other control characters, each of which becomes a blank.
std::string oneLine(std::string_view text);

/// One line, `file:line: severity: text`, without the line when it is 0 and without the place when there is
/// no file.
std::string diagnosticText(const SourcePosition& position, std::string_view severity, std::string_view text);

/// The failure that ends an operation of the host: where, what is wrong, and what to do.
/// what() is the complete line for the user, as diagnosticText writes it.
class HostError : public std::exception {
public:
    HostError(const SourcePosition& position, std::string_view text);
    /// The same failure with advice behind it.
    HostError(const HostError& failure, std::string_view advice);

    const char* what() const noexcept override { return report_->message.c_str(); }
    const SourcePosition& position() const noexcept { return report_->position; }
    const std::string& text() const noexcept { return report_->text; }

private:
    struct Report {
        SourcePosition position;
        std::string text;
        std::string message;
    };
    std::shared_ptr<const Report> report_; // shared, so that copying an exception in flight cannot throw
};

/// The errors that a step met and went on after.
using Errors = std::vector<HostError>;

/// Runs a part of a step that the rest of it does not need. What it throws as HostError goes to `errors`,
/// when there is such a list, and else to the caller. Gives whether all went well.
template <typename Action>
bool attempt(Errors* errors, Action&& action) {
    if (errors == nullptr) {
        action();
        return true;
    }
    try {
        action();
        return true;
    } catch (const HostError& error) { // GCOVR_EXCL_BR_LINE: what is of another type does not come here
        errors->push_back(error);
        return false;
    }
}

/// Something that a user should know and that ends nothing.
struct Warning {
    SourcePosition position;
    std::string text;
};

using Warnings = std::vector<Warning>;

/// What the exception that is being handled says; to be called in a catch clause only.
std::string currentExceptionText();

/// The reason of a failed file operation in English, whatever the locale of the process.
std::string reasonText(const std::error_code& error);

} // namespace patina
