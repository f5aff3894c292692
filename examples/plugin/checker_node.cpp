#include "checker_node.h"

namespace example {

namespace {

constexpr Pattern checker = {"out_checker", "checker", "checker",
                             "\tfloat2 cell = floor( uv );\n"
                             "\tout_checker = frac( ( cell.x + cell.y )*0.5 )*2.0;\n"};

} // namespace

CheckerNode::CheckerNode() : PatternNode(staticTypeName(), checker) { setName("Checker"); }

} // namespace example
