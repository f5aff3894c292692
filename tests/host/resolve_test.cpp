#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina {
namespace {

using testing::built;
using testing::connection;
using testing::expectErrorAt;
using testing::hostErrorOf;
using testing::maths;
using testing::node;
using testing::output;
using testing::property;

constexpr std::uint32_t floatCode = 2;
constexpr std::uint32_t halfCode = 3;

const Port& outputOf(const Material& material, std::size_t item, const char* port) {
    return std::as_const(*material.items.at(item).node).outputPort(port);
}

const Port& inputOf(const Material& material, std::size_t item, const char* port) {
    return std::as_const(*material.items.at(item).node).inputPort(port);
}

/// Width and precision of every port, in order.
std::vector<std::uint32_t> resolution(const Material& material) {
    std::vector<std::uint32_t> values;
    for (const MaterialItem& item : material.items) {
        for (const auto* ports : {&item.node->inputs, &item.node->outputs}) {
            for (const Port& port : *ports) {
                EXPECT_TRUE(port.componentCountKnown && port.precisionKnown) << item.id << "." << port.name;
                EXPECT_FALSE(port.componentCountConflict) << item.id << "." << port.name;
                values.push_back(port.componentCount);
                values.push_back(port.precision);
            }
        }
    }
    return values;
}

TEST(ResolveMaterial, GivesUnconnectedNodesHalfScalars) {
    Material material = built(maths("a", "Lerp"));
    resolveMaterial(material);
    EXPECT_EQ(resolution(material), (std::vector<std::uint32_t>{1, 3, 1, 3, 1, 3, 1, 3}));
}

TEST(ResolveMaterial, PassesWidthsDownAChain) {
    for (const char* count : {"2", "3", "4"}) {
        const auto width = static_cast<std::uint32_t>(std::stoi(count));
        // in reverse document order, so that only the connections tell the order
        Material material =
            built(maths("c", "Invert") + maths("b", "Multiply") + maths("a", "Addition") +
                  node("v", "CoreConstant",
                       property("Constant Type", "enum", "Vector") +
                           property("Component Count", "integer", count)) +
                  connection("b", "out_value", "c", "in_value1") +
                  connection("a", "out_value", "b", "in_value2") + connection("v", "read", "a", "in_value1"));
        resolveMaterial(material);
        EXPECT_EQ(outputOf(material, 0, "out_value").componentCount, width);
        EXPECT_EQ(inputOf(material, 1, "in_value1").componentCount, width) << "an unconnected input follows";
        EXPECT_EQ(inputOf(material, 1, "in_value2").componentCount, width);
        EXPECT_EQ(inputOf(material, 2, "in_value2").componentCount, width);
    }
}

/// Two uv sets into one maths node, by two ways of different width.
std::string diamond(const std::string& left, const std::string& right) {
    return node("uv", "CoreUv") + node("split", "CoreSwizzle", property("Vector Type", "enum", "Uv")) +
           maths("left", "Invert") + maths("right", "Invert") + maths("join", "Addition") +
           connection("uv", "read", "split", "in_vec") + connection("uv", "read", "left", "in_value1") +
           connection("split", "out_x", "right", "in_value1") +
           connection(left, "out_value", "join", "in_value1") +
           connection(right, "out_value", "join", "in_value2");
}

TEST(ResolveMaterial, LetsAScalarMeetAnyWidthInADiamond) {
    for (const auto& body : {diamond("left", "right"), diamond("right", "left")}) {
        Material material = built(body);
        resolveMaterial(material);
        EXPECT_EQ(outputOf(material, 4, "out_value").componentCount, 2U);
        EXPECT_EQ(outputOf(material, 3, "out_value").componentCount, 1U);
        EXPECT_EQ(outputOf(material, 2, "out_value").componentCount, 2U);
    }
}

TEST(ResolveMaterial, PassesPrecisionUpwards) {
    // a texture reads its coordinate as float; nothing else asks for more than half
    const std::string chain =
        node("uv", "CoreUv") + maths("a", "Multiply") + maths("b", "Multiply") + node("t", "CoreTexture") +
        maths("c", "Invert") + connection("uv", "read", "a", "in_value1") +
        connection("a", "out_value", "b", "in_value1") + connection("b", "out_value", "t", "in_uv") +
        connection("t", "out_colour", "c", "in_value1");
    Material material = built(chain);
    resolveMaterial(material);
    EXPECT_EQ(outputOf(material, 0, "read").precision, floatCode);
    EXPECT_EQ(inputOf(material, 1, "in_value2").precision, floatCode);
    EXPECT_EQ(outputOf(material, 2, "out_value").precision, floatCode);
    EXPECT_EQ(inputOf(material, 3, "in_uv").precision, floatCode);
    EXPECT_EQ(outputOf(material, 3, "out_colour").precision, halfCode);
    EXPECT_EQ(inputOf(material, 4, "in_value1").precision, halfCode);
    EXPECT_EQ(outputOf(material, 4, "out_value").precision, halfCode);
}

TEST(ResolveMaterial, GivesAnOutputFloatWhenOneReaderNeedsIt) {
    const std::string nodes =
        node("uv", "CoreUv") + node("t", "CoreTexture") + maths("h", "Invert") + maths("g", "Invert");
    const std::string toTexture = connection("uv", "read", "t", "in_uv");
    const std::string toHalf = connection("uv", "read", "h", "in_value1");
    const std::string toOther = connection("uv", "read", "g", "in_value1");
    for (const std::string& body :
         {nodes + toTexture + toHalf + toOther, nodes + toHalf + toTexture + toOther,
          nodes + toHalf + toOther + toTexture}) {
        Material material = built(body);
        resolveMaterial(material);
        EXPECT_EQ(outputOf(material, 0, "read").precision, floatCode);
        EXPECT_EQ(inputOf(material, 2, "in_value1").precision, halfCode);
    }
    Material material = built(nodes + toHalf + toOther);
    resolveMaterial(material);
    EXPECT_EQ(outputOf(material, 0, "read").precision, halfCode);
}

TEST(ResolveMaterial, GivesTheSameWhenRepeated) {
    for (const auto& body :
         {diamond("left", "right"), node("uv", "CoreUv") + maths("a", "Multiply") + node("t", "CoreTexture") +
                                        connection("uv", "read", "a", "in_value1") +
                                        connection("a", "out_value", "t", "in_uv")}) {
        Material material = built(body);
        resolveMaterial(material);
        const auto first = resolution(material);
        resolveMaterial(material);
        EXPECT_EQ(resolution(material), first);
    }
}

TEST(ResolveMaterial, NamesBothSourcesOfAConflict) {
    const std::string body = node("uv", "CoreUv", property("Name", "string", "map1")) +
                             node("c", "CoreConstant") + maths("clash", "Clamp") +
                             connection("c", "read", "clash", "in_min") +
                             connection("uv", "read", "clash", "in_max");
    Material material = built(body);
    const auto resolve = [&] { resolveMaterial(material); };
    const std::string error = hostErrorOf(resolve);
    expectErrorAt(error, 6,
                  {"node \"clash\" (\"Maths\")", "\"in_min\"", "3", "node \"c\" (\"Constant\")", "\"in_max\"",
                   "2", "node \"uv\" (\"map1\")"});
    EXPECT_EQ(hostErrorOf(resolve), error) << "and again";
}

TEST(ResolveMaterial, ReportsTheFirstTwoWidthsThatDiffer) {
    Material material =
        built(node("uv", "CoreUv") + node("c", "CoreConstant") + maths("clash", "Clamp") +
              connection("c", "read", "clash", "in_value1") + connection("c", "read", "clash", "in_min") +
              connection("uv", "read", "clash", "in_max"));
    expectErrorAt(hostErrorOf([&] { resolveMaterial(material); }), 7,
                  {"node \"clash\" (\"Maths\")", "\"in_value1\"", "3", "\"in_max\"", "2"});
}

TEST(ResolveMaterial, ReportsAConflictBehindAScalar) {
    // the scalar comes first, then two, then three components
    const std::string body = node("uv", "CoreUv") + node("c", "CoreConstant") +
                             node("s", "CoreConstant", property("Constant Type", "enum", "Scalar")) +
                             maths("clash", "Clamp") + connection("s", "read", "clash", "in_value1") +
                             connection("uv", "read", "clash", "in_min") +
                             connection("c", "read", "clash", "in_max");
    Material material = built(body);
    const std::string error = hostErrorOf([&] { resolveMaterial(material); });
    expectErrorAt(error, 8, {"\"clash\"", "\"uv\"", "\"c\""});
    EXPECT_EQ(error.find("\"s\""), std::string::npos) << error;
}

TEST(ResolveMaterial, LeavesFixedPortsToTheJoin) {
    Material material = built(node("c", "CoreConstant") + node("t", "CoreTexture") +
                              connection("c", "read", "t", "in_uv") + output("colour", "t", "out_colour"));
    resolveMaterial(material);
    EXPECT_EQ(inputOf(material, 1, "in_uv").componentCount, 2U);
    expectErrorAt(hostErrorOf([&] { testing::exportedFrom(material); }), 4,
                  {"node \"c\" (\"Constant\")", "\"read\"", "node \"t\" (\"Texture\")", "\"in_uv\"",
                   "cannot convert float3 to float2"});
}

} // namespace
} // namespace patina
