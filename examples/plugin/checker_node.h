#pragma once

#include "pattern_node.h"

namespace example {

/// "ExampleChecker": the two fields of a checker board, as 0 and 1.
class CheckerNode final : public PatternNode {
public:
    static constexpr const char* staticTypeName() { return "ExampleChecker"; }

    CheckerNode();
};

} // namespace example
