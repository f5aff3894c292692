#include "corenodes/uv_node.h"

#include "corenodes/core_node_support.h"
#include "shadergraph/graph_generator.h"

namespace patina {

using namespace detail;

namespace {

constexpr auto ownProperties = declareProperties({
    {"Primary", "Primary: this box can be checked to hint this uv for use when generating tangents and "
                "binormals. Most of the time this is not necessary to set manually and should be left "
                "unchecked."},
});

} // namespace

UvNode::UvNode() : MaterialNode(staticTypeName(), ownProperties.layout()) {
    setName("Uv");
    setBodyColour(0.8F, 0.8F, 1.0F);

    takeOwnProperties(*this, {&primary_});
    primary_->setBool(false);

    addPort(outputs, {"read", "uv", 2});
}

void UvNode::generateCode(GraphGenerator& generator) {
    const std::string& varyingName = name();
    const auto varying = makeVaryingParameter(varyingName, portType(outputPort("read")));
    generator.addNode(varying);
    attachLinks(generator, varying);
}

bool UvNode::generatesBinding() const { return true; }

void UvNode::addBindings(BindingCollection& bindings) {
    const auto binding = createBinding(BindingKind::Uv, name(), 1);
    describeBinding(*binding, *this);
    addToBindingCollection(bindings, binding);
}

} // namespace patina
