#pragma once

#include "pattern_node.h"

namespace example {

/// "ExampleValueNoise": a random value at every corner of a grid, and smooth transitions between them.
///
/// The same on every machine, and repeated after 251 cells.
class ValueNoiseNode final : public PatternNode {
public:
    static constexpr const char* staticTypeName() { return "ExampleValueNoise"; }

    ValueNoiseNode();
};

} // namespace example
