#include "tests/host/host_checks.h"

#include "host/elf_symbols.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina {
namespace {

using testing::hostErrorOf;
using testing::noError;

using Symbols = std::vector<std::string>;

/// A module with a section of dynamic symbols, written field by field.
class ElfWriter {
public:
    ElfWriter(bool wide, bool bigEndian) : wide_(wide), bigEndian_(bigEndian), bytes_("\177ELF") {
        bytes_ += wide ? '\2' : '\1';
        bytes_ += bigEndian ? '\2' : '\1';
        bytes_.resize(wide ? 0x28 : 0x20);
        address(headerSize());
        bytes_.resize(wide ? 0x3A : 0x2E);
        number(sectionSize(), 2);
        number(2, 2); // sections
        bytes_.resize(headerSize());
        const std::size_t names = headerSize() + 2 * sectionSize();
        section(11, names + nameBytes.size(), 6 * symbolSize(), 1, symbolSize());
        section(3, names, nameBytes.size(), 0, 0);
        bytes_ += nameBytes;
        symbol(1, 0x12, 0, 5);      // one: a global function
        symbol(5, 0x21, 3, 5);      // two: a weak object, protected
        symbol(9, 0x12, 2, 5);      // hidden
        symbol(1, 0x02, 0, 5);      // local
        symbol(1, 0x12, 0, 0);      // undefined
        symbol(1, 0x11, 0, 0xFFF1); // the name of a version
    }

    const std::string& bytes() const { return bytes_; }

private:
    static inline const std::string nameBytes = std::string("\0one\0two\0six\0", 13);

    std::size_t headerSize() const { return wide_ ? 64 : 52; }
    std::size_t sectionSize() const { return wide_ ? 64 : 40; }
    std::size_t symbolSize() const { return wide_ ? 24 : 16; }

    void number(std::size_t value, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            const std::size_t byte = bigEndian_ ? size - 1 - i : i;
            bytes_ += static_cast<char>(value >> (8 * byte) & 0xFFU);
        }
    }
    void address(std::size_t value) { number(value, wide_ ? 8 : 4); }

    void section(std::size_t type, std::size_t offset, std::size_t size, std::size_t link,
                 std::size_t entry) {
        number(0, 4);
        number(type, 4);
        address(0);
        address(0);
        address(offset);
        address(size);
        number(link, 4);
        number(0, 4);
        address(0);
        address(entry);
    }

    void symbol(std::size_t name, std::size_t info, std::size_t other, std::size_t section) {
        number(name, 4);
        if (!wide_) {
            number(0, 8);
        }
        number(info, 1);
        number(other, 1);
        number(section, 2);
        if (wide_) {
            number(0, 16 - 8);
            number(0, 8);
        }
    }

    bool wide_;
    bool bigEndian_;
    std::string bytes_;
};

TEST(ElfSymbols, AreReadInEveryLayout) {
    for (const bool wide : {false, true}) {
        for (const bool bigEndian : {false, true}) {
            EXPECT_EQ(exportedElfSymbols(ElfWriter(wide, bigEndian).bytes()), Symbols({"one", "two"}));
        }
    }
}

TEST(ElfSymbols, AreNotReadFromOtherFiles) {
    EXPECT_EQ(exportedElfSymbols(""), std::nullopt);
    EXPECT_EQ(exportedElfSymbols("MZ and so on"), std::nullopt);
}

TEST(ElfSymbols, OfDamagedModulesAreRefused) {
    const std::string whole = ElfWriter(true, false).bytes();
    constexpr std::size_t unread = 16; // of the last symbol
    for (std::size_t size = 4; size < whole.size() - unread; ++size) {
        EXPECT_NE(hostErrorOf([&] { exportedElfSymbols(whole.substr(0, size)); }), noError) << size;
    }
    for (std::size_t i = 4; i < whole.size(); ++i) {
        std::string damaged = whole;
        damaged[i] = '\xFF';
        hostErrorOf([&] { exportedElfSymbols(damaged); }); // whatever comes of it, it ends
    }
    std::string sizeless = whole;
    sizeless[64 + 56] = '\0';
    EXPECT_EQ(hostErrorOf([&] { exportedElfSymbols(sizeless); }),
              "error: this module is damaged: its dynamic symbols have no size");
    std::string stripped = whole;
    stripped[64 + 4] = '\0';
    EXPECT_EQ(hostErrorOf([&] { exportedElfSymbols(stripped); }),
              "error: this module has no section that lists its dynamic symbols");
}

} // namespace
} // namespace patina
