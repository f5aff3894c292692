#include "shadergraph/shader_type.h"

#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"
#include "shadergraph/function_builder.h"

#include <array>
#include <cstddef>
#include <ostream>

namespace patina {

using namespace detail;

namespace {

/// Indexed by ComponentType.
constexpr std::array<std::string_view, 12> componentTypeNames = {
    "unknown", "void",      "float",     "half",      "fixed",       "int",
    "bool",    "sampler1D", "sampler2D", "sampler3D", "samplerCUBE", "samplerRECT",
};

void appendElementType(std::string& text, const ShaderType& type) {
    text += componentTypeView(type);
    if (type.rows >= 2) {
        appendText(text, {std::to_string(type.rows), "x", std::to_string(type.columns)});
    } else if (type.columns >= 2) {
        text += std::to_string(type.columns);
    }
}

void appendArraySize(std::string& text, const ShaderType& type) {
    if (type.arraySize >= 2) {
        appendText(text, {"[", std::to_string(type.arraySize), "]"});
    }
}

} // namespace

std::string_view detail::componentTypeView(const ShaderType& type) {
    const auto code = static_cast<std::size_t>(type.componentType);
    if (code >= componentTypeNames.size()) {
        throw ShaderError("unknown component type");
    }
    return componentTypeNames[code];
}

std::string componentTypeName(const ShaderType& type) { return std::string(componentTypeView(type)); }

std::string detail::typeText(const ShaderType& type) {
    std::string text;
    appendElementType(text, type);
    appendArraySize(text, type);
    return text;
}

std::ostream& operator<<(std::ostream& stream, const ShaderType& type) { return stream << typeText(type); }

std::string declaration(const ShaderType& type, std::string_view name) {
    std::string text;
    appendElementType(text, type);
    appendText(text, {" ", name});
    appendArraySize(text, type);
    return text;
}

std::shared_ptr<GeneratorNode> makePromoteAndSplat(const ShaderType& from, const ShaderType& to) {
    const bool vectors = from.rows == 1 && from.arraySize == 1 && to.rows == 1 && to.arraySize == 1;
    if (!vectors || (from.columns != to.columns && from.columns != 1)) {
        throw ShaderError(joinText({"cannot convert ", typeText(from), " to ", typeText(to)}));
    }
    // component types are not compared: Cg's own assignment converts any to any
    FunctionBuilder builder;
    builder.addInput(from, "in_value");
    builder.addOutput(to, "out_value");
    if (from.columns == to.columns) {
        builder.appendCode("\tout_value = in_value;\n");
    } else {
        builder.appendCode(joinText({"\tout_value = in_value.", splat(to.columns), ";\n"}));
    }
    return builder.makeNode(ExecutionLevel::Automatic, "promoteAndSplat");
}

} // namespace patina
