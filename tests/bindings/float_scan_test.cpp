#include "tests/bindings/float_scan.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::expectReadAsScanfReads;

using namespace std::string_literals;

const std::string zeros400(400, '0');
const std::string nines400(400, '9');

/// The words of a text, each to be read on its own.
std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream words(text);
    std::vector<std::string> found;
    for (std::string word; words >> word;) {
        found.push_back(word);
    }
    return found;
}

// clang-format off

TEST(ParseLeadingFloat, ReadsBlanksAsScanfDoes) {
    expectReadAsScanfReads({
        "", " ", "\t\n\v\f\r ", " 1", "\t1", "\n1", "\v1", "\f1", "\r1", " \t\n\v\f\r1", "1 ", "1 2", "1 .5", ". 5",
        "- 1", "+ 1", "1e 5", "1e5 ", "0x ", "0x 1", "0x1 p3", "inf ", "in f", "inf inity", "infi nity", "- inf",
        " inf", " nan", "n an", "- nan", "nan ", "nan(a b)", " -.5", " +0x.8",
        // these are no blanks
        "\xA0"s + "1", "\x85"s + "1", "\xC2\xA0"s + "1", "\b1", "\x1F"s + "1", "\x7F"s + "1",
    });
}

TEST(ParseLeadingFloat, ReadsSignsAndPointsAsScanfDoes) {
    expectReadAsScanfReads(wordsOf(R"(
        + - +1 -1 ++1 --1 +-1 -+1 . -. +. .. 1. -1. +1. .5 -.5 +.5 1..2 1.2.3 .5.5 ..5 -..5 5,5 ,5 1'000 1_000
        00 007 -0 +0 -0.0 -.0 0. -0. 1-2 1+2 $1 #1 : / :1 /1 1: 1/ -: 0x: 0x/ 0x@ 0x` 0xg a1 e5 .e5 -e5 +.e1 1x 1f 1.5f 1.f 1l 1.5px
    )"));
}

TEST(ParseLeadingFloat, ReadsExponentsAsScanfDoes) {
    expectReadAsScanfReads(wordsOf(R"(
        1e 1E 1e+ 1e- 1e+-1 1e--1 1e5 1E5 1e+5 1e-5 1E-5 1e5.3 1e5e5 1.e5 .1e5 1.5e 1.5e+ 1.5ex 1e5x 1ex 1e+x 1e.5
        1ee5 1E-50 1e50 -1E-50 -1e50 1e0005 1e-0005 1e00000000000000000000000005 1p5 1e5p5
        1e99999999999999999999 -1e99999999999999999999 1e-99999999999999999999 -1e-99999999999999999999
        1e2147483647 1e2147483648 1e-2147483648 1e-2147483649 1e4294967295 1e4294967296 1e4294967297
        1e9223372036854775807 1e9223372036854775808 1e-9223372036854775808 1e-9223372036854775809
        1e18446744073709551615 1e18446744073709551616 1e18446744073709551617 1e-18446744073709551617
        0e999999 -0e999999 0e-999999 0e99999999999999999999 0.0e99999999999999999999 .0e-99999999999999999999
    )"));
}

TEST(ParseLeadingFloat, ReadsLongDecimalShapesAsScanfDoes) {
    expectReadAsScanfReads({
        "0." + zeros400 + "1e401", "0." + zeros400 + "1e400", "0." + zeros400 + "1e440", "0." + zeros400 + "1e441",
        "0." + zeros400 + "1", "-0." + zeros400 + "1e300", "0." + zeros400 + "e999", "0." + nines400,
        "0." + zeros400 + zeros400 + zeros400 + "1e1201", "1" + zeros400 + zeros400 + zeros400 + "e-1200",
        "1" + zeros400, "-1" + zeros400, "1" + zeros400 + "e-400", "1" + zeros400 + "e-430", "1" + zeros400 + "e-500",
        zeros400, zeros400 + "1", "-" + zeros400 + "." + zeros400, nines400, nines400 + "e-400",
        nines400 + "." + nines400 + "e-362", nines400 + "x-999", nines400 + "e1\x80\x80", "1e" + zeros400 + "5", "1e-" + zeros400 + "5",
    });
}

TEST(ParseLeadingFloat, ReadsHexadecimalNumbersAsScanfDoes) {
    expectReadAsScanfReads(wordsOf(R"(
        0x 0X -0x +0X 0x. 0X. -0x. 0x.p1 0x.g 0xg 0xp1 0xp 0x.p 0x-1 0x+1 00x1 x1 0x0x1 0xx1 0x1x1 0xinf 0xnan
        0x1 0X1 0xa 0XA 0xF 0xff -0xff 0xfg 0x1. 0x.8 0X.8 0x1.8 0x1..8 0x0 -0x0 0x0p99 -0x.0p99999999999999999999
        0x1p 0x1p+ 0x1p- 0x1px 0x1p+x 0x1pa 0x1p3 0x1P3 0x1p+3 0x1p-3 0x1p3.5 0x1p3p3 0x1.8p3 0X.8P-2x 0x.8p-2
        0x1e5 0x1e+5 0x1e-5 0x1234567890abcdefABCDEF 0xabcdef.ABCDEFp-10
        0x1p127 0x1p128 -0x1p128 0x1.fffffep127 0x1.ffffffp127 0x1.fffffefffp127 0x1.fffffeffp127
        0xffffff8p100 0xffffff7fp96 0xffffff8p104
        0x1p-126 0x1p-149 0x1p-150 -0x1p-150 0x1p-151 -0x1p-200 0x1.000002p-150 0x1.0000000000000000000001p-150
        0x3p-150 0x1.fffffep-127 0x1.fffffcp-127 0x1.ffffffp-127 0x0.000001p-126 0x.8p-148 0x1.8p-149 0x2.8p-149
        0x3.8p-149
        0x1.000001p0 0x1.0000010p0 0x1.000003p0 0x1.00000100000001p0 0x1.000000ffffffffffffp0
        0x1.000001000000000000000000000001p0
        0x1p99999999999999999999 -0x1p99999999999999999999 0x1p-99999999999999999999 0x1p2147483648 0x1p-2147483648
        0x1p4294967296 0x1p18446744073709551616 0x1p-18446744073709551616
    )"));
    expectReadAsScanfReads({
        "0x" + zeros400, "0x" + zeros400 + "1", "0x1" + zeros400, "0x1" + zeros400 + "p-1600",
        "0x1" + zeros400 + "p-1500", "0x" + nines400, "-0x." + zeros400, "0x." + zeros400 + "1p1604",
        "0x." + zeros400 + "1p1600", "0x." + zeros400 + "1p1400", "0x." + zeros400 + "1p1740",
        "0x1." + zeros400 + "1", "0x1.000001" + zeros400 + "1", "0x1.000001" + zeros400,
    });
}

TEST(ParseLeadingFloat, ReadsWordsAsScanfDoes) {
    expectReadAsScanfReads(wordsOf(R"(
        inf INF Inf iNf -inf +inf i in infi infin infini infinit infinity INFINITY InFiNiTy -infinity infinite
        infinitys infinityinfinity INFx inf. inf1 infy infa -infi infI infIx infNity 1inf i1 -i -in infp inF(1) .inf
        0inf infe5 infinity5
        nan NAN NaN nAn -nan +nan n na -n -na nana nanx nan( nan() nan(123) nan(0x7) nan(abc) nan(123 nan(1)2 -nan(5)
        na1 nan1 1nan .nan ni nain nanp
    )"));
}

TEST(ParseLeadingFloat, EndsAtANulAsScanfDoes) {
    expectReadAsScanfReads({
        "\0"s, "\0" "1"s, "1\0" "2"s, "1.\0" "5"s, "1e\0" "5"s, "-\0" "1"s, "0x\0" "1"s, "in\0f"s, "inf\0inity"s,
        "infi\0nity"s, "na\0n"s, " \0 1"s,
    });
}

TEST(ParseLeadingFloat, RoundsAtTheEdgesOfTheFloatRangeAsScanfDoes) {
    // above the largest float
    expectReadAsScanfReads(wordsOf(R"(
        3.4028234663852886e38 3.4028235e38 3.40282346638528859811704183484516925440e38
        3.4028235677973366e38 3.4028235677973365e38 3.4028235677973367e38
        340282356779733661637539395458142568447 -340282356779733661637539395458142568447
        340282356779733661637539395458142568448 -340282356779733661637539395458142568448
        340282356779733661637539395458142568447.99999 340282356779733661637539395458142568448.00001
        340282356779733661637539395458142568449 340282346638528859811704183484516925440
        3.5e38 1e38 9.99999e38 1e39 0.1e40 0.001e41 0.0034028235677973366e41 34028235677973366e22
    )"));
    // below the smallest normal and the smallest of all
    expectReadAsScanfReads(wordsOf(R"(
        1.17549435e-38 1.1754943508222875e-38 1.1754942e-38 1.17549429e-38 1.17549428e-38
        1.1754942807573643e-38 1.1754942807573642e-38 1.1754942807573644e-38
        1e-40 1e-44 1.4e-45 1.401298464324817e-45 1.40129846e-45 1e-45 1e-46 7.1e-46 7e-46 -7e-46 -7.1e-46
        7.006492321624085e-46 7.006492321624086e-46 7.0064923216240853e-46 7.0064923216240854e-46
        2.1019476964872256e-45 2.1019476964872257e-45
        0.00000000000000000000000000000000000000000000140129846432481707
    )"));
    // 2^-150, and a last digit to each side of it
    const std::string middle =
        "7.006492321624085354618647916449580656401309709382578858785341419448955413429303007433190941810607910156";
    expectReadAsScanfReads({middle + "25e-46", middle + "24e-46", middle + "26e-46",
                            middle + "25" + zeros400 + "1e-46", middle + "25" + zeros400 + "e-46"});
}

TEST(ParseLeadingFloat, RoundsBetweenNeighboursAsScanfDoes) {
    expectReadAsScanfReads(wordsOf(R"(
        16777217 16777219 16777217.0 16777217.000000000000000000000000000000000000000000001
        16777216.99999999999999999999999999999999999999999999 33554434 33554438
        1.000000059604644775390625 1.00000005960464477539 1.0000000596046447753906249999999999999999999999999
        1.0000000596046447753906250000000000000000000000001
        1.000000178813934326171875 1.000000178813934326171874 1.000000178813934326171876
        0.50000002980232238769531250 0.50000002980232238769531249 0.50000002980232238769531251
        8388607.5 8388608.5 8388609.5 4194304.25 4194304.75 9007199791611905 9007199791611904.9
        123456789 123456789012345678901234567890 2147483647 4294967295 18446744073709551615 0.1 0.2 0.3 1.1
    )"));
    expectReadAsScanfReads({
        "1.000000059604644775390625" + zeros400,
        "1.000000059604644775390625" + zeros400 + "1",
        "1.000000059604644775390624" + nines400,
    });
}

// clang-format on

} // namespace
} // namespace patina
