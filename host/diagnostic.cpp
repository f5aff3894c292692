#include "host/diagnostic.h"

#include "nodemodel/text.h"

#include <array>

namespace patina {

using namespace detail;

namespace {

struct Reason {
    std::errc condition;
    const char* text;
};

constexpr std::array<Reason, 10> reasons = {{
    {std::errc::no_such_file_or_directory, "there is no such file or directory"},
    {std::errc::permission_denied, "permission denied"},
    {std::errc::operation_not_permitted, "operation not permitted"},
    {std::errc::is_a_directory, "it is a directory"},
    {std::errc::not_a_directory, "a part of the path is not a directory"},
    {std::errc::file_exists, "it exists already"},
    {std::errc::no_space_on_device, "no space is left on the device"},
    {std::errc::read_only_file_system, "the file system is read-only"},
    {std::errc::filename_too_long, "the name is too long"},
    {std::errc::io_error, "input/output error"},
}};

} // namespace

std::string oneLine(std::string_view text) {
    std::string line(text);
    for (char& letter : line) {
        const auto code = static_cast<unsigned char>(letter);
        if (code < 0x20 || code == 0x7F) {
            letter = ' ';
        }
    }
    return line;
}

std::string diagnosticText(const SourcePosition& position, std::string_view severity, std::string_view text) {
    std::string place = position.file;
    if (!place.empty()) {
        place += position.line > 0 ? joinText({":", std::to_string(position.line), ": "}) : ": ";
    }
    return oneLine(joinText({place, severity, ": ", text}));
}

HostError::HostError(const SourcePosition& position, std::string_view text)
    : report_(std::make_shared<const Report>(
          Report{position, std::string(text), diagnosticText(position, "error", text)})) {}

HostError::HostError(const HostError& failure, std::string_view advice)
    : HostError(failure.position(), joinText({failure.text(), "; ", advice})) {}

std::string currentExceptionText() {
    try {
        throw;
    } catch (const std::exception& error) {
        return error.what();
    } catch (const std::string& text) { // what a function with a duplicate parameter throws
        return text;
    } catch (...) {
        return "it failed with something that is no exception";
    }
}

std::string reasonText(const std::error_code& error) {
    for (const Reason& reason : reasons) {
        if (error == reason.condition) {
            return reason.text;
        }
    }
    return "system error " + std::to_string(error.value());
}

} // namespace patina
