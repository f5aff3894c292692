#include "tests/execution/bounded.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace patina::testing {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

const Arithmetic inFloat(floatFormat);
const Arithmetic inHalf(halfFormat);

Bounded exactly(double value) { return {value, 0}; }

TEST(Bounded, WhatFitsTheFormatIsExact) {
    EXPECT_EQ(inFloat.number(0.1F).error, 0);
    EXPECT_EQ(inHalf.number(0.5).error, 0);
    EXPECT_EQ(inHalf.number(10000).error, 0);
    EXPECT_EQ(inFloat.add(exactly(0.25), exactly(0.5)).error, 0);
    EXPECT_EQ(inFloat.multiply(exactly(1e10F), exactly(0)).error, 0);
    EXPECT_EQ(inHalf.subtract(exactly(1), exactly(1)).error, 0);
}

TEST(Bounded, WhatDoesNotIsRoundedByHalfAnUlp) {
    EXPECT_DOUBLE_EQ(inFloat.number(0.1).error, 0.1 / 16777216);
    EXPECT_DOUBLE_EQ(inHalf.number(0.1).error, 0.1 / 2048);
    EXPECT_DOUBLE_EQ(inFloat.add(exactly(1), exactly(1e-10)).error, (1 + 1e-10) / 16777216);
    EXPECT_GT(inHalf.number(10001).error, 0);
}

TEST(Bounded, NumbersAreReadAsTheyArePrinted) {
    EXPECT_EQ(inFloat.literal(1.0 / 3).value, 0.333333);
    EXPECT_EQ(inFloat.literal(1234567).value, 1234570);
    EXPECT_EQ(inFloat.literal(0.5).error, 0);
}

TEST(Bounded, ErrorsPassThroughEveryOperation) {
    const Bounded value = {2, 0.125};
    const double rounding = 1e-5;
    EXPECT_NEAR(inFloat.add(value, exactly(1)).error, 0.125, rounding);
    EXPECT_NEAR(inFloat.subtract(value, {1, 0.25}).error, 0.375, rounding);
    EXPECT_NEAR(inFloat.multiply(value, {3, 0.25}).error, 2 * 0.25 + 3 * 0.125 + 0.125 * 0.25, rounding);
    EXPECT_NEAR(inFloat.divide(exactly(3), value).error, 1.5 * 0.125 / 1.875, rounding);
    EXPECT_NEAR(inFloat.squareRoot({4, 1}).error, 2 - std::sqrt(3.0), rounding);
    EXPECT_NEAR(inFloat.power({4, 0.01}, exactly(2)).error, 2 * 4 * 0.01, 1e-3);
    EXPECT_NEAR(inFloat.power(exactly(4), {2, 0.01}).error, 16 * std::log(4) * 0.01, 2e-3);
    EXPECT_EQ(absolute({-2, 0.125}).error, 0.125);
}

TEST(Bounded, AnyOrderOfASumOfProductsIsWithin) {
    const BoundedVector large = {exactly(1e8), exactly(1), exactly(-1e8)};
    const BoundedVector ones = {exactly(1), exactly(1), exactly(1)};
    const Bounded product = inFloat.dot(large, ones);
    EXPECT_TRUE(product.accepts(1));
    EXPECT_TRUE(product.accepts(0));
    EXPECT_FALSE(product.accepts(100));
}

TEST(Bounded, DivisionByZero) {
    EXPECT_EQ(inFloat.divide(exactly(2), exactly(0)).value, infinity);
    EXPECT_EQ(inFloat.divide(exactly(-2), exactly(0)).value, -infinity);
    EXPECT_FALSE(inFloat.divide(exactly(2), exactly(0)).accepts(1e38));
    EXPECT_TRUE(inFloat.divide(exactly(0), exactly(0)).isAnything());
    EXPECT_TRUE(inFloat.divide(exactly(1), {0.5, 0.5}).isAnything());
}

TEST(Bounded, Overflow) {
    EXPECT_EQ(inFloat.multiply(exactly(1e30), exactly(-1e30)).value, -infinity);
    EXPECT_TRUE(inFloat.add(exactly(3.4028235e38), exactly(1e31)).isAnything());
    EXPECT_TRUE(inHalf.multiply(exactly(1000), exactly(1000)).isAnything());
    EXPECT_TRUE(inFloat.subtract(exactly(infinity), exactly(infinity)).isAnything());
}

TEST(Bounded, NumbersTooSmallMayBeFlushed) {
    EXPECT_TRUE(inFloat.multiply(exactly(1e-20), exactly(1e-20)).accepts(0));
    EXPECT_TRUE(inHalf.multiply(exactly(0.001), exactly(0.001)).accepts(0));
    EXPECT_FALSE(inHalf.multiply(exactly(0.1), exactly(0.1)).accepts(0));
}

TEST(Bounded, Powers) {
    EXPECT_EQ(inFloat.power(exactly(0), exactly(2)).value, 0);
    EXPECT_EQ(inFloat.power(exactly(0), exactly(2)).error, 0);
    EXPECT_TRUE(inFloat.power(exactly(0), exactly(0)).isAnything());
    EXPECT_TRUE(inFloat.power(exactly(0), exactly(-1)).isAnything());
    EXPECT_TRUE(inFloat.power(exactly(-1), exactly(2)).isAnything());
    EXPECT_TRUE(inFloat.power({0.25, 0.5}, exactly(2)).isAnything());
    EXPECT_TRUE(inFloat.power(saturate({0.25, 0.5}), exactly(2)).accepts(0.5));
    EXPECT_FALSE(inFloat.power(saturate({0.25, 0.5}), exactly(2)).accepts(0.6));
    EXPECT_TRUE(inFloat.power(exactly(0.7), exactly(2.4)).accepts(std::pow(0.7, 2.4) * (1 + 1e-6)));
    EXPECT_FALSE(inFloat.power(exactly(0.7), exactly(2.4)).accepts(std::pow(0.7, 2.4) * (1 + 1e-5)));
}

TEST(Bounded, SquareRootsOfNegativeNumbersAreUndefined) {
    EXPECT_TRUE(inFloat.squareRoot(exactly(-1)).isAnything());
    EXPECT_EQ(inFloat.squareRoot(exactly(0)).error, 0);
}

TEST(Bounded, FloorsAreExactUnlessAWholeNumberIsNear) {
    EXPECT_EQ(floorOf({1.5, 0.25}).value, 1);
    EXPECT_EQ(floorOf({1.5, 0.25}).error, 0);
    EXPECT_TRUE(floorOf({2, 0.25}).accepts(1));
    EXPECT_TRUE(floorOf({2, 0.25}).accepts(2));
    EXPECT_FALSE(floorOf({2, 0.25}).accepts(3));
    EXPECT_EQ(ceilingOf(exactly(-0.5)).value, 0);
    EXPECT_EQ(inFloat.fraction(exactly(-0.25)).value, 0.75);
    EXPECT_TRUE(inFloat.fraction({2, 0.25}).accepts(0.99));
}

TEST(Bounded, SelectionsNearAThresholdGoEitherWay) {
    EXPECT_EQ(selectLess(exactly(1), exactly(1), exactly(5), exactly(7)).value, 7);
    EXPECT_EQ(selectLess(exactly(1), exactly(1.001), exactly(5), exactly(7)).value, 5);
    const Bounded near = selectLess({1, 0.1}, {1.1, 0.1}, exactly(5), exactly(7));
    EXPECT_TRUE(near.accepts(5));
    EXPECT_TRUE(near.accepts(7));
    EXPECT_FALSE(near.accepts(7.5));
    EXPECT_TRUE(selectLess({1, 0.1}, {1.1, 0.1}, exactly(5), anything()).isAnything());
}

TEST(Bounded, LimitsTheWrongWayRoundAreUndefined) {
    EXPECT_TRUE(clamp(exactly(1), exactly(3), exactly(2)).isAnything());
    EXPECT_EQ(clamp(exactly(4), exactly(2), exactly(3)).value, 3);
    EXPECT_EQ(saturate(exactly(-infinity)).value, 0);
    EXPECT_EQ(saturate(exactly(infinity)).value, 1);
}

TEST(Bounded, NothingButEverythingTakesNan) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(anything().accepts(nan));
    EXPECT_FALSE(Bounded({1, 100}).accepts(nan));
    EXPECT_FALSE(exactly(infinity).accepts(nan));
    EXPECT_FALSE(exactly(infinity).accepts(-infinity));
    EXPECT_TRUE(exactly(infinity).accepts(infinity));
}

} // namespace
} // namespace patina::testing
