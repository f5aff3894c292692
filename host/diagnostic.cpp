#include "host/diagnostic.h"

#include "nodemodel/text.h"

#include <array>
#include <cerrno>

namespace patina {

using namespace detail;

namespace {

struct Reason {
    std::errc condition;
    const char* text;
};

constexpr std::array reasons = std::to_array<Reason>({
    {std::errc::no_such_file_or_directory, "there is no such file or directory"},
    {std::errc::permission_denied, "permission denied"},
    {std::errc::operation_not_permitted, "operation not permitted"},
    {std::errc::is_a_directory, "it is a directory"},
    {std::errc::not_a_directory, "a part of the path is not a directory"},
    {std::errc::file_exists, "it exists already"},
    {std::errc::directory_not_empty, "the directory is not empty"},
    {std::errc::too_many_symbolic_link_levels, "its symbolic links lead in a circle"},
    {std::errc::filename_too_long, "the name is too long"},
    {std::errc::invalid_argument, "the system does not allow this here"},
    {std::errc::no_space_on_device, "no space is left on the device"},
    {std::errc::file_too_large, "the file would become too large"},
    {std::errc::read_only_file_system, "the file system is read-only"},
    {std::errc::cross_device_link, "it is on another file system"},
    {std::errc::device_or_resource_busy, "it is in use"},
    {std::errc::text_file_busy, "it is a program that is running"},
    {std::errc::executable_format_error, "it is no program for this system"},
    {std::errc::too_many_files_open, "this process has too many files open"},
    {std::errc::too_many_files_open_in_system, "the system has too many files open"},
    {std::errc::not_enough_memory, "out of memory"},
    {std::errc::resource_unavailable_try_again, "the system is short of resources"},
    {std::errc::no_such_device, "there is no such device"},
    {std::errc::no_such_device_or_address, "nothing answers there"},
    {std::errc::bad_file_descriptor, "it is not open"},
    {std::errc::broken_pipe, "nobody reads what is written"},
    {std::errc::argument_list_too_long, "there are too many arguments"},
    {std::errc::io_error, "input/output error"},
});

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
#if defined(EDQUOT) // which the standard's list of conditions leaves out
    if (error.value() == EDQUOT) {
        return "the disk quota is used up";
    }
#endif
    return "system error " + std::to_string(error.value());
}

} // namespace patina
