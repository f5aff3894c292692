#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <string>

namespace patina::testing {

/// Puts the whole process, C and C++, into a locale with a decimal comma and digit grouping while it lives.
class CommaLocale {
public:
    CommaLocale() : before_(std::locale()), beforeC_(std::setlocale(LC_ALL, nullptr)) {
        const std::locale comma("de_DE.UTF-8");
        EXPECT_EQ(std::use_facet<std::numpunct<char>>(comma).decimal_point(), ',');
        EXPECT_EQ(std::use_facet<std::numpunct<char>>(comma).thousands_sep(), '.');
        std::locale::global(comma);
        EXPECT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
        EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    }
    ~CommaLocale() {
        std::locale::global(before_);
        std::setlocale(LC_ALL, beforeC_.c_str());
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

private:
    std::locale before_;
    std::string beforeC_;
};

} // namespace patina::testing
