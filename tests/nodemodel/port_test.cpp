#include "nodemodel/port.h"

#include "tests/support/messages.h"

#include <gtest/gtest.h>

namespace patina {
namespace {

using testing::shaderErrorOf;

TEST(Port, StartsUnresolvedAndUnconnected) {
    const Port port("in_uv", "uv");
    EXPECT_EQ(port.name, "in_uv");
    EXPECT_EQ(port.label, "uv");
    EXPECT_EQ(port.componentCount, 0U);
    EXPECT_FALSE(port.componentCountKnown);
    EXPECT_FALSE(port.componentCountFixed);
    EXPECT_FALSE(port.componentCountConflict);
    EXPECT_EQ(port.precision, 1U);
    EXPECT_FALSE(port.precisionKnown);
    EXPECT_FALSE(port.precisionFixed);
    EXPECT_FALSE(port.connected);
}

TEST(Port, AnEmptyLabelBecomesTheName) {
    EXPECT_EQ(Port("in_uv", "").label, "in_uv");
    EXPECT_EQ(Port("in_uv", " ").label, " ");
    EXPECT_EQ(Port("", "").label, "");
    EXPECT_EQ(Port("", "uv").name, "");
}

TEST(Port, SettingTheCountMakesItKnownAndFixed) {
    Port port("in_uv", "uv");
    port.setComponentCount(3);
    EXPECT_EQ(port.componentCount, 3U);
    EXPECT_TRUE(port.componentCountKnown);
    EXPECT_TRUE(port.componentCountFixed);
    EXPECT_FALSE(port.componentCountConflict);
    EXPECT_EQ(port.getComponentCount(), 3U);
    EXPECT_EQ(port.precision, 1U);
    EXPECT_FALSE(port.precisionKnown);
    EXPECT_FALSE(port.precisionFixed);
    EXPECT_FALSE(port.connected);
}

TEST(Port, SettingThePrecisionMakesItKnownAndFixed) {
    Port port("in_uv", "uv");
    port.setPrecision(2);
    EXPECT_EQ(port.precision, 2U);
    EXPECT_TRUE(port.precisionKnown);
    EXPECT_TRUE(port.precisionFixed);
    EXPECT_EQ(port.getPrecision(), 2U);
    EXPECT_EQ(port.componentCount, 0U);
    EXPECT_FALSE(port.componentCountKnown);
    EXPECT_FALSE(port.componentCountFixed);
    EXPECT_FALSE(port.connected);
}

TEST(Port, UnknownValuesCannotBeRead) {
    Port port("in_uv", "uv");
    EXPECT_EQ(shaderErrorOf([&] { (void)port.getComponentCount(); }), "cannot read unknown component count");
    EXPECT_EQ(shaderErrorOf([&] { (void)port.getPrecision(); }), "cannot read unknown precision");
    port.setComponentCount(2);
    EXPECT_EQ(shaderErrorOf([&] { (void)port.getPrecision(); }), "cannot read unknown precision");
    port.setPrecision(3);
    port.componentCountKnown = false;
    EXPECT_EQ(shaderErrorOf([&] { (void)port.getComponentCount(); }), "cannot read unknown component count");
    EXPECT_EQ(port.getPrecision(), 3U);
}

TEST(Port, KnownValuesCanBeReadWithoutBeingFixed) {
    Port port("in_uv", "uv");
    port.componentCount = 4;
    port.componentCountKnown = true;
    port.precision = 3;
    port.precisionKnown = true;
    EXPECT_EQ(port.getComponentCount(), 4U);
    EXPECT_EQ(port.getPrecision(), 3U);
}

} // namespace
} // namespace patina
