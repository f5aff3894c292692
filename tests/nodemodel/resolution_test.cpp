#include "nodemodel/material_node.h"

#include "tests/nodemodel/plain_node.h"
#include "tests/support/property_state.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::PlainNode;
using testing::stateOf;

// Ports are written as words, the value and then a letter for each flag: k known, f fixed, c conflict.

std::vector<Port> portsWithCounts(const std::string& text) {
    std::vector<Port> ports;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        Port& port = ports.emplace_back("port", "port");
        port.componentCount = static_cast<std::uint32_t>(word[0] - '0');
        port.componentCountKnown = word.find('k') != std::string::npos;
        port.componentCountFixed = word.find('f') != std::string::npos;
        port.componentCountConflict = word.find('c') != std::string::npos;
    }
    return ports;
}

std::vector<Port> portsWithPrecisions(const std::string& text) {
    std::vector<Port> ports;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        Port& port = ports.emplace_back("port", "port");
        port.precision = static_cast<std::uint32_t>(word[0] - '0');
        port.precisionKnown = word.find('k') != std::string::npos;
        port.precisionFixed = word.find('f') != std::string::npos;
    }
    return ports;
}

struct Resolution {
    const char* inputs;
    const char* outputs;
    std::uint32_t resolved;
    const char* inputsAfter;
    const char* outputsAfter;
};

constexpr Resolution countResolutions[] = {
    // nothing known: every free port becomes scalar
    {"", "", 1, "", ""},
    {"", "0", 1, "", "1k"},
    {"0", "", 1, "1k", ""},
    {"0 0", "0 0", 1, "1k 1k", "1k 1k"},
    // a leftover count that is not known has no say
    {"4 0", "3", 1, "1k 1k", "1k"},
    {"4 2k", "0", 2, "2k 2k", "2k"},
    // scalars go with any width, in any place
    {"1k", "0", 1, "1k", "1k"},
    {"1k 3k 1k", "0", 3, "1k 3k 1k", "3k"},
    {"3k 1k", "0", 3, "3k 1k", "3k"},
    {"1k 1k 4k", "0 0", 4, "1k 1k 4k", "4k 4k"},
    // one shared width fills the unknown ports before and after it
    {"2k 2k", "0", 2, "2k 2k", "2k"},
    {"0 3k 0", "0", 3, "3k 3k 3k", "3k"},
    {"4k 1k 0", "0", 4, "4k 1k 4k", "4k"},
    // outputs have no say, and are overwritten unless fixed
    {"0", "4k", 1, "1k", "1k"},
    {"2k", "4k 0 3", 2, "2k", "2k 2k 2k"},
    {"3k", "1kf 2kf 4f", 3, "3k", "1kf 2kf 4f"},
    {"0", "4kf", 1, "1k", "4kf"},
    // fixed and known inputs have no say and are never flagged
    {"3kf", "0", 1, "3kf", "1k"},
    {"3kf 0", "0", 1, "3kf 1k", "1k"},
    {"3kf 2k", "0", 2, "3kf 2k", "2k"},
    {"4kf 3k 2kf 0", "0", 3, "4kf 3k 2kf 3k", "3k"},
    // fixed inputs that are not known are flagged unless the width is theirs or 1, and nothing else stops
    {"0 2f", "0", 1, "1k 2f", "1k"},
    {"1k 2f", "0", 1, "1k 2f", "1k"},
    {"3k 3f", "0", 3, "3k 3f", "3k"},
    {"3k 2f", "0", 3, "3k 2fc", "3k"},
    {"2f 3k 0", "0 1kf", 3, "2fc 3k 3k", "3k 1kf"},
    {"3k 1f", "0", 3, "3k 1fc", "3k"},
    {"3k 0f", "0", 3, "3k 0fc", "3k"},
    // two widths conflict: every free input is flagged, known or not, and outputs stay
    {"2k 3k", "0", 2, "2kc 3kc", "0"},
    {"3k 2k", "0 4k 1kf", 3, "3kc 2kc", "0 4k 1kf"},
    {"1k 4k 1k 2k", "", 4, "1kc 4kc 1kc 2kc", ""},
    {"2k 3k 2k 4k", "0", 2, "2kc 3kc 2kc 4kc", "0"},
    {"0 2k 3k 0", "0", 2, "0c 2kc 3kc 0c", "0"},
    {"1k 2k 3k 0 4kf 3f", "0", 2, "1kc 2kc 3kc 0c 4kf 3f", "0"},
    // a flag that is set is not taken back
    {"2kc", "0", 2, "2kc", "2k"},
    {"2kf 3kfc 0c", "0", 1, "2kf 3kfc 1kc", "1k"},
};

TEST(ComponentCountResolution, FollowsTheKnownFreeInputs) {
    for (const Resolution& row : countResolutions) {
        PlainNode node;
        node.inputs = portsWithCounts(row.inputs);
        node.outputs = portsWithCounts(row.outputs);
        for (const char* time : {"once", "again"}) {
            SCOPED_TRACE(std::string(row.inputs) + " -> " + row.outputs + ", " + time);
            node.resolveComponentCounts();
            EXPECT_EQ(node.resolvedComponentCount, row.resolved);
            EXPECT_EQ(stateOf(node.inputs), stateOf(portsWithCounts(row.inputsAfter)));
            EXPECT_EQ(stateOf(node.outputs), stateOf(portsWithCounts(row.outputsAfter)));
        }
    }
}

TEST(ComponentCountResolution, StartsAfreshEachTime) {
    PlainNode node;
    node.resolvedComponentCount = 4;
    node.inputs = portsWithCounts("3k");
    node.outputs = portsWithCounts("0");
    node.resolveComponentCounts();
    EXPECT_EQ(node.resolvedComponentCount, 3U);
    node.inputs = portsWithCounts("0");
    node.resolveComponentCounts();
    EXPECT_EQ(node.resolvedComponentCount, 1U);
    EXPECT_EQ(stateOf(node.outputs), stateOf(portsWithCounts("1k")));
}

TEST(ComponentCountResolution, LeavesPrecisionsAndConnectionsAlone) {
    PlainNode node;
    node.resolvedPrecision = 2;
    node.inputs = portsWithPrecisions("2k 1 3kf");
    node.inputs[0].connected = true;
    node.outputs = portsWithPrecisions("1 2kf");
    node.resolveComponentCounts();
    EXPECT_EQ(node.resolvedPrecision, 2U);
    auto inputs = portsWithPrecisions("2k 1 3kf");
    inputs[0].connected = true;
    auto outputs = portsWithPrecisions("1 2kf");
    for (auto* ports : {&inputs, &outputs}) {
        for (Port& port : *ports) {
            port.componentCount = 1;
            port.componentCountKnown = true;
        }
    }
    EXPECT_EQ(stateOf(node.inputs), stateOf(inputs));
    EXPECT_EQ(stateOf(node.outputs), stateOf(outputs));
}

constexpr Resolution precisionResolutions[] = {
    // no float demanded: half
    {"", "", 3, "", ""},
    {"1 1", "", 3, "3k 3k", ""},
    {"", "1 1", 3, "", "3k 3k"},
    {"1 1", "1", 3, "3k 3k", "3k"},
    {"1", "3k", 3, "3k", "3k"},
    {"1", "3kf 1", 3, "3k", "3kf 3k"},
    // a known float output demands float, fixed or not, in any place
    {"1", "2k", 2, "2k", "2k"},
    {"1", "2kf", 2, "2k", "2kf"},
    {"1 1", "3k 2k 1", 2, "2k 2k", "3k 2k 2k"},
    {"1", "1 3kf 2kf", 2, "2k", "2k 3kf 2kf"},
    // a leftover float that is not known demands nothing
    {"1", "2", 3, "3k", "3k"},
    {"1", "2f", 3, "3k", "2f"},
    // neither half nor float: kept, and no float demanded
    {"1", "4k 5kf", 3, "3k", "4k 5kf"},
    // inputs have no say, and are overwritten unless fixed
    {"2k", "1", 3, "3k", "3k"},
    {"3k", "2k", 2, "2k", "2k"},
    {"2kf 3kf 1", "1", 3, "2kf 3kf 3k", "3k"},
    {"3kf 1", "2k 1", 2, "3kf 2k", "2k 2k"},
    {"1f", "2k 1f", 2, "1f", "2k 1f"},
};

TEST(PrecisionResolution, FollowsTheKnownOutputs) {
    for (const Resolution& row : precisionResolutions) {
        PlainNode node;
        node.resolvedPrecision = 9;
        node.inputs = portsWithPrecisions(row.inputs);
        node.outputs = portsWithPrecisions(row.outputs);
        for (const char* time : {"once", "again"}) {
            SCOPED_TRACE(std::string(row.inputs) + " -> " + row.outputs + ", " + time);
            node.resolvePrecision();
            EXPECT_EQ(node.resolvedPrecision, row.resolved);
            EXPECT_EQ(stateOf(node.inputs), stateOf(portsWithPrecisions(row.inputsAfter)));
            EXPECT_EQ(stateOf(node.outputs), stateOf(portsWithPrecisions(row.outputsAfter)));
        }
    }
}

TEST(PrecisionResolution, LeavesCountsAndConnectionsAlone) {
    PlainNode node;
    node.resolvedComponentCount = 3;
    node.inputs = portsWithCounts("3k 2kf 0c");
    node.inputs[0].connected = true;
    node.outputs = portsWithCounts("0 4k");
    node.resolvePrecision();
    EXPECT_EQ(node.resolvedComponentCount, 3U);
    auto inputs = portsWithCounts("3k 2kf 0c");
    inputs[0].connected = true;
    auto outputs = portsWithCounts("0 4k");
    for (auto* ports : {&inputs, &outputs}) {
        for (Port& port : *ports) {
            port.precision = 3;
            port.precisionKnown = true;
        }
    }
    EXPECT_EQ(stateOf(node.inputs), stateOf(inputs));
    EXPECT_EQ(stateOf(node.outputs), stateOf(outputs));
}

} // namespace
} // namespace patina
