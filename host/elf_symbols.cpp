#include "host/elf_symbols.h"

#include "host/diagnostic.h"

#include <cstddef>
#include <cstdint>

namespace patina {

namespace {

constexpr std::string_view magic = "\x7F"
                                   "ELF";

// positions in the identification at the start of the file
constexpr std::size_t classPosition = 4;
constexpr std::size_t encodingPosition = 5;

// the values of fields, as the ELF standard names them
constexpr std::uint64_t shtDynsym = 11;
constexpr std::uint64_t shnUndef = 0;
constexpr std::uint64_t shnAbs = 0xFFF1;
constexpr std::uint64_t stbLocal = 0;
constexpr std::uint64_t stvDefault = 0;
constexpr std::uint64_t stvProtected = 3;

/// A field of a structure: where it begins, and how long it is.
struct Field {
    std::size_t offset;
    std::size_t size;
};

/// The structures of one class of ELF files, as far as they are needed.
struct Layout {
    Field sectionTable, sectionSize, sectionCount;                              // of the file
    Field sectionType, sectionOffset, sectionLength, sectionLink, sectionEntry; // of a section
    Field symbolName, symbolInfo, symbolOther, symbolSection;                   // of a symbol
};

constexpr Layout layout32 = {{0x20, 4}, {0x2E, 2}, {0x30, 2}, {4, 4},  {16, 4}, {20, 4},
                             {24, 4},   {36, 4},   {0, 4},    {12, 1}, {13, 1}, {14, 2}};
constexpr Layout layout64 = {{0x28, 8}, {0x3A, 2}, {0x3C, 2}, {4, 4}, {24, 8}, {32, 8},
                             {40, 4},   {56, 8},   {0, 4},    {4, 1}, {5, 1},  {6, 2}};

class ElfFile {
public:
    explicit ElfFile(std::string_view content)
        : content_(content), layout_(byteAt(classPosition) == 1 ? layout32 : layout64),
          bigEndian_(byteAt(encodingPosition) == 2) {}

    std::vector<std::string> exportedSymbols() const {
        const std::uint64_t count = read(0, layout_.sectionCount);
        for (std::uint64_t index = 0; index < count; ++index) {
            const std::uint64_t section = sectionAt(index);
            if (read(section, layout_.sectionType) == shtDynsym) {
                return exportedSymbolsOf(section);
            }
        }
        throw HostError({}, "this module has no section that lists its dynamic symbols");
    }

private:
    std::uint64_t byteAt(std::uint64_t position) const {
        if (position >= content_.size()) {
            throw HostError({}, "this module is damaged: a structure lies beyond the end of the file");
        }
        return static_cast<unsigned char>(content_[position]);
    }

    std::uint64_t read(std::uint64_t structure, const Field& field) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < field.size; ++i) {
            const std::size_t byte = bigEndian_ ? i : field.size - 1 - i;
            value = value << 8U | byteAt(structure + field.offset + byte);
        }
        return value;
    }

    std::uint64_t sectionAt(std::uint64_t index) const {
        return read(0, layout_.sectionTable) + index * read(0, layout_.sectionSize);
    }

    std::string textAt(std::uint64_t position) const {
        std::string text;
        while (const std::uint64_t letter = byteAt(position + text.size())) {
            text += static_cast<char>(letter);
        }
        return text;
    }

    bool isExported(std::uint64_t symbol) const {
        const std::uint64_t binding = read(symbol, layout_.symbolInfo) >> 4U;
        const std::uint64_t visibility = read(symbol, layout_.symbolOther) & 3U;
        const std::uint64_t section = read(symbol, layout_.symbolSection);
        return binding != stbLocal && (visibility == stvDefault || visibility == stvProtected) &&
               section != shnUndef && section != shnAbs;
    }

    std::vector<std::string> exportedSymbolsOf(std::uint64_t section) const {
        const std::uint64_t first = read(section, layout_.sectionOffset);
        const std::uint64_t length = read(section, layout_.sectionLength);
        const std::uint64_t size = read(section, layout_.sectionEntry);
        const std::uint64_t names =
            read(sectionAt(read(section, layout_.sectionLink)), layout_.sectionOffset);
        if (size == 0) {
            throw HostError({}, "this module is damaged: its dynamic symbols have no size");
        }
        std::vector<std::string> symbols;
        for (std::uint64_t index = 0; index < length / size; ++index) {
            const std::uint64_t symbol = first + index * size;
            if (isExported(symbol)) {
                symbols.push_back(textAt(names + read(symbol, layout_.symbolName)));
            }
        }
        return symbols;
    }

    std::string_view content_;
    const Layout& layout_;
    bool bigEndian_;
};

} // namespace

std::optional<std::vector<std::string>> exportedElfSymbols(std::string_view content) {
    if (content.substr(0, magic.size()) != magic) {
        return std::nullopt;
    }
    return ElfFile(content).exportedSymbols();
}

} // namespace patina
