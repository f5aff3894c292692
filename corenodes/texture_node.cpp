#include "corenodes/texture_node.h"

#include "corenodes/core_node_support.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"
#include "shadergraph/graph_generator.h"

#include <array>
#include <string_view>
#include <typeinfo>

namespace patina {

using namespace detail;

namespace {

constexpr std::uint32_t floatPrecision = static_cast<std::uint32_t>(ComponentType::Float);

/// One way to present a texture: its outputs, and the code that fills them from `value`.
struct ColourType {
    std::string_view name;
    std::array<PortDeclaration, 3> outputs; ///< ends at the first without a name
    bool fourComponents;                    ///< always samples all four and has no alpha output
    bool normal;
    const char* code;
};

constexpr std::array<ColourType, 5> colourTypes = {{
    {"Colour", {{{"out_colour", "colour", 3}}}, false, false, "\tout_colour = value.xyz;\n"},
    {"Normal", {{{"out_colour", "normal", 3}}}, false, true, "\tout_colour = 2.0.xxx*value.xyz - 1.0.xxx;\n"},
    {"Component",
     {{{"out_red", "red", 1}, {"out_green", "green", 1}, {"out_blue", "blue", 1}}},
     false,
     false,
     "\tout_red = value.x;\n"
     "\tout_green = value.y;\n"
     "\tout_blue = value.z;\n"},
    {"Vector", {{{"out_colour", "rgba", 4}}}, true, false, "\tout_colour = value;\n"},
    {"DXT5 Normal",
     {{{"out_colour", "normal", 3}}},
     true,
     true,
     "\tout_colour.xy = 2.0.xx*value.ag - 1.0.xx;\n"
     "\tout_colour.z = sqrt( 1.0 - dot( out_colour.xy, out_colour.xy ) );\n"},
}};

constexpr const ColourType& componentType = colourTypes[2];

const ColourType& findColourType(const std::string& name) {
    return findRow(colourTypes, name, componentType);
}

constexpr auto ownProperties = declareProperties({
    {"Reference", "Reference: can point to another texture to use the same name and settings. Only one "
                  "binding will be created in Maya and shared between all references."},
    {"Texture Type", "Texture Type: the type of texture to read. At the moment only 1D and 2D "
                     "textures are supported, but this may be extended to 3D and CUBE in "
                     "future."},
    {"Colour Type", "Colour Type: the colour outputs to present from this node. Normal maps "
                    "should always use the \"Normal\" or \"DXT5 Normal\" setting to properly "
                    "unpack the normal from the texture."},
    {"Alpha", "Alpha: check this box in order to use the alpha channel of the texture."},
    {"sRGB", "sRGB: uncheck this box in order to read raw texture values without sRGB conversion. "
             "Painted 8-bit art is usually saved in the sRGB colour space, however this box should "
             "be unchecked to directly read HDR images or texture lookup data."},
    // two blanks in "has  no", and no word on locked constants
    {"Basic Colour", "Basic Colour: check this box to use this binding as the basic colour of the material."
                     "  At most one constant and one texture can form the basic colour, which is used for "
                     "QeliLocator preview and the vela diffuse term.  If a material has  no basic colours "
                     "then the names of the bindings are used to guess which ones to use."},
});

} // namespace

TextureNode::TextureNode() : MaterialNode(staticTypeName(), ownProperties.layout()) {
    setName("Texture");
    setBodyColour(1.0F, 1.0F, 0.5F);

    takeOwnProperties(*this, {&reference_, &textureType_, &colourType_, &alpha_, &srgb_, &basicColour_});
    reference_->addNodeTypename(staticTypeName());
    setEnumValues(*textureType_, {"1D", "2D"});
    textureType_->setEnum("2D");
    setEnumValues(*colourType_, colourTypes);
    alpha_->setBool(false);
    srgb_->setBool(true);
    basicColour_->setBool(false);
    settings_ = {textureType_, colourType_, alpha_, srgb_, basicColour_};

    TextureNode::updateFromProperties(nullptr);
}

bool TextureNode::isReferenced() const { return reference_->getNode() != nullptr; }

bool TextureNode::isNormal() const { return findColourType(colourType_->getEnum()).normal; }

bool TextureNode::convertsFromSrgb() const { return srgb_->getBool() && !isNormal(); }

bool TextureNode::isAlphaSampled() const {
    return findColourType(colourType_->getEnum()).fourComponents ||
           (alpha_->getBool() && isOutputConnected(*this, "out_alpha"));
}

void TextureNode::updateFromProperties(void* /*hostContext*/) {
    clearPorts(*this);
    const bool referenced = isReferenced();
    descriptionProperty->editable = !referenced;
    for (const std::shared_ptr<Property>& setting : settings_) {
        setting->editable = !referenced;
    }
    const float grey = referenced ? 0.6F : 0.0F;
    setTextColour(grey, grey, grey);
    if (referenced) {
        const PropertySet& source = *reference_->getNode()->properties;
        for (const std::shared_ptr<Property>& setting : settings_) {
            setting->copyFrom(*source.find(setting->name));
        }
    }
    srgb_->visible = !isNormal();
    basicColour_->visible = !isNormal();

    if (textureType_->getEnum() == "1D") {
        addPort(inputs, {"in_uv", "u", 1});
    } else {
        addPort(inputs, {"in_uv", "uv", 2});
    }
    inputs.back().setPrecision(floatPrecision);

    const ColourType& type = findColourType(colourType_->getEnum());
    for (const PortDeclaration& output : type.outputs) {
        if (!output.name.empty()) {
            addPort(outputs, output);
        }
    }
    if (!referenced) {
        alpha_->editable = !type.fourComponents;
        if (type.fourComponents) {
            // stays so when the type changes back
            alpha_->setBool(true);
        }
    }
    if (!type.fourComponents && alpha_->getBool()) {
        addPort(outputs, {"out_alpha", "alpha", 1});
    }
}

std::string TextureNode::caption() const {
    // no recursion: textures may refer to one another in chains that are longer than the stack is deep
    const TextureNode* texture = this;
    for (;;) {
        const MaterialNode* const referenced = texture->reference_->getNode().get();
        if (referenced == nullptr) {
            return texture->name();
        }
        // nothing derives from this class, and a cast that looks for what does is most of the work of a chain
        if (typeid(*referenced) != typeid(TextureNode)) { // GCOVR_EXCL_BR_LINE: how types are compared
            return referenced->caption();
        }
        texture = static_cast<const TextureNode*>(referenced);
    }
}

bool TextureNode::generatesBinding() const { return !isReferenced(); }

void TextureNode::addBindings(BindingCollection& bindings) {
    if (isReferenced()) {
        return;
    }
    const auto binding = toTextureBinding(createBinding(BindingKind::Texture, caption(), 1));
    describeBinding(*binding, *this);
    binding->srgb = convertsFromSrgb();
    binding->basicColour = basicColour_->getBool() && !isNormal();
    addToBindingCollection(bindings, binding);
}

void TextureNode::generateCode(GraphGenerator& generator) {
    const Port& coordinate = inputPort("in_uv");
    if (!coordinate.connected) {
        throw ShaderError(describe() + ": please attach a texture coordinate before exporting");
    }
    const ColourType& type = findColourType(colourType_->getEnum());
    const bool is1D = textureType_->getEnum() == "1D";
    const std::int32_t sampleCount = isAlphaSampled() ? 4 : 3;
    const ShaderType samplerType = {is1D ? ComponentType::Sampler1D : ComponentType::Sampler2D, 1, 1, 1};

    FunctionBuilder builder;
    builder.addInputPort(coordinate);
    builder.addInput(samplerType, "in_sampler");
    builder.appendCode(joinText({"\t", typeText(resolvedType(*this, sampleCount)), " value = ",
                                 resolvedPrecision == floatPrecision ? "f" : "h", std::to_string(sampleCount),
                                 "tex", is1D ? "1D" : "2D", "( in_sampler, in_uv );\n"}));
    // of a vector too: all but its alpha
    if (convertsFromSrgb()) {
        builder.appendCode("\tvalue.xyz = QelSrgbToLinear( value.xyz );\n");
    }
    for (const PortDeclaration& output : type.outputs) {
        if (!output.name.empty()) {
            builder.addOutputPort(outputPort(output.name));
        }
    }
    builder.appendCode(type.code);
    if (!type.fourComponents && sampleCount == 4) {
        builder.addOutputPort(outputPort("out_alpha"));
        builder.appendCode("\tout_alpha = value.w;\n");
    }

    const auto function = builder.makeNode(ExecutionLevel::Fragment, "textureCode");
    const auto sampler = makeUniformParameter(caption(), samplerType);
    generator.addNode(function);
    generator.addNode(sampler);
    generator.connect(sampler, "read", function, "in_sampler");
    attachLinks(generator, function);
}

} // namespace patina
