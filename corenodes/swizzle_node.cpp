#include "corenodes/swizzle_node.h"

#include "corenodes/core_node_support.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace patina {

namespace {

/// A vector type: how its ports are labelled, and its width where it is given.
struct VectorType {
    std::string_view name;
    std::int32_t componentCount; ///< 0: the artist chooses
    std::string_view vectorLabel;
    std::array<std::string_view, 4> componentLabels;
};

constexpr std::array<VectorType, 3> vectorTypes = {{
    {"Colour", 3, "colour", {"red", "green", "blue", ""}},
    {"Uv", 2, "uv", {"u", "v", "", ""}},
    {"Vector", 0, "vector", {"x", "y", "z", "w"}},
}};

/// One component: its ports when splitting and when merging, and the line of code of each.
struct Component {
    std::string_view splitPort;
    const char* splitCode;
    std::string_view mergePort;
    const char* mergeCode;
};

constexpr std::array<Component, 4> components = {{
    {"out_x", "\tout_x = in_vec.x;\n", "in_x", "\tout_vec.x = in_x;\n"},
    {"out_y", "\tout_y = in_vec.y;\n", "in_y", "\tout_vec.y = in_y;\n"},
    {"out_z", "\tout_z = in_vec.z;\n", "in_z", "\tout_vec.z = in_z;\n"},
    {"out_w", "\tout_w = in_vec.w;\n", "in_w", "\tout_vec.w = in_w;\n"},
}};

// two blanks before "This"
constexpr auto ownProperties = declareProperties({
    {"Vector Type", "Vector Type: the quantity to split (or merge) into components."},
    {"Component Count", "Component Count: the number of values for vector constants.  "
                        "This must be between 2 and 4."},
    {"Reverse", "Reverse: when checked, this merges components into a vector value instead of "
                "splitting vector values into components."},
});

} // namespace

SwizzleNode::SwizzleNode() : MaterialNode(staticTypeName(), ownProperties.layout()) {
    setName("Swizzle");
    setBodyColour(0.5F, 0.5F, 1.0F);

    takeOwnProperties(*this, {&vectorType_, &componentCount_, &reverse_});
    setEnumValues(*vectorType_, vectorTypes);
    componentCount_->setInteger(4); // the type that is set first makes 3 of it at once
    reverse_->setBool(false);

    SwizzleNode::updateFromProperties(nullptr);
}

void SwizzleNode::updateFromProperties(void* /*hostContext*/) {
    clearPorts(*this);
    const VectorType& type = findRow(vectorTypes, vectorType_->getEnum(), vectorTypes.back());
    if (type.componentCount != 0) {
        componentCount_->setInteger(type.componentCount);
    }
    componentCount_->editable = type.componentCount == 0;

    const std::uint32_t count = vectorComponentCount(*componentCount_);
    const bool merge = reverse_->getBool();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string_view label = type.componentLabels[i];
        if (merge) {
            addPort(inputs, {components[i].mergePort, label, 1});
        } else {
            addPort(outputs, {components[i].splitPort, label, 1});
        }
    }
    if (merge) {
        addPort(outputs, {"out_vec", type.vectorLabel, count});
    } else {
        addPort(inputs, {"in_vec", type.vectorLabel, count});
    }
}

std::string SwizzleNode::caption() const { return "Swizzle"; }

void SwizzleNode::generateCode(GraphGenerator& generator) {
    FunctionBuilder builder;
    declareInputs(builder, *this);
    declareOutputs(builder, *this);
    const std::int32_t count = componentCount_->getInteger();
    for (std::size_t i = 0; i < components.size(); ++i) {
        // the first two are written whatever the count; the port rebuild has checked it
        if (i < 2 || static_cast<std::int32_t>(i) < count) {
            builder.appendCode(reverse_->getBool() ? components[i].mergeCode : components[i].splitCode);
        }
    }
    emitFunction(generator, *this, builder, ExecutionLevel::Automatic, "swizzleCode");
}

} // namespace patina
