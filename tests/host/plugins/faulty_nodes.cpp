// A sound plug-in, until PATINA_TEST_FAULT names something that it is to do wrong.

#include "bindings/bindings.h"
#include "nodemodel/nodemodel.h"
#include "plugin/plugin.h"
#include "shadergraph/shadergraph.h"

#include <stdlib.h> // NOLINT: setenv is POSIX

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace patina;

constexpr const char* sampleType = "Sample";
constexpr const char* hiddenType = "SampleStandIn";

bool has(std::string_view fault) {
    const char* chosen = std::getenv("PATINA_TEST_FAULT");
    return chosen != nullptr && fault == chosen;
}

[[noreturn]] void hang() {
    for (;;) {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
}

/// Ends the process in the ways in which a plug-in can.
void endProcess() {
    if (has("crashes")) {
        volatile int* nothing = nullptr;
        *nothing = 1; // cppcheck-suppress nullPointer ; that is the fault
    }
    if (has("aborts")) {
        std::abort();
    }
    if (has("exits")) {
        std::exit(0); // NOLINT(concurrency-mt-unsafe): that is the fault
    }
    if (has("hangs")) {
        hang();
    }
}

/// Scales its input. "Mode" and "Bright" are there to have settings.
class SampleNode : public MaterialNode {
public:
    explicit SampleNode(const std::string& type) : MaterialNode(type) {
        setName("Sample");
        mode_ = addProperty("Mode", "Mode: how to scale.");
        mode_->addEnumValue("Plain");
        mode_->addEnumValue("Scaled");
        bright_ = addProperty("Bright", has("help text without name") ? "Makes it bright."
                                                                      : "Bright: makes it bright.");
        bright_->setBool(false);
        breakProperties();
        SampleNode::updateFromProperties(nullptr);
    }

    void updateFromProperties(void* /*hostContext*/) override {
        if (!has("update keeps ports") || !isScaled()) {
            inputs.clear();
            outputs.clear();
        }
        inputs.emplace_back("in_value", "in");
        outputs.emplace_back("out_value", "out");
        if (isScaled()) {
            inputs.emplace_back("in_scale", "scale");
            inputs.back().setComponentCount(1);
        }
        if (has("update toggles")) {
            bright_->visible = !bright_->visible;
        }
        breakPorts();
    }

    void resolveComponentCounts() override {
        if (has("resolution hangs")) {
            hang();
        }
        MaterialNode::resolveComponentCounts();
        if (has("resolution grows")) {
            ++inputs.front().componentCount;
        }
        if (has("resolution leaves unknown")) {
            outputs.front().componentCountKnown = false;
        }
    }

    void resolvePrecision() override {
        MaterialNode::resolvePrecision();
        if (has("precision alternates")) {
            inputs.front().precision = ++precisions_ % 2 == 0 ? 2 : 3;
        }
    }

    void generateCode(GraphGenerator& generator) override {
        if (has("generation throws")) {
            throw std::string("no code today");
        }
        if (has("generation crashes") && isScaled()) {
            std::abort();
        }
        if (has("generation links nothing")) {
            return;
        }
        FunctionBuilder builder;
        declareInput(builder, inputs.front());
        if (isScaled()) {
            declareInput(builder, inputs.back());
        }
        builder.addOutput(portType(), has("generation misses a port") ? "out_other" : "out_value");
        builder.appendCode(code());
        if (has("generation feeds nothing")) {
            builder.addInput(portType(), "in_forgotten");
        }
        const auto function = builder.makeNode(ExecutionLevel::Automatic, functionName());
        if (!has("generation forgets a node")) {
            generator.addNode(function);
        }
        if (has("generation feeds itself")) {
            feedBack(generator, function);
        }
        if (has("generation reads nothing")) {
            for (const auto& link : inputLinks) {
                generator.linkOutputPort(link.lock(), function, "out_value");
            }
            return;
        }
        attachLinks(generator, function);
    }

    bool generatesBinding() const override {
        return has("binding announced in vain") || (!has("binding unannounced") && bright_->getBool());
    }

    void addBindings(BindingCollection& bindings) override {
        if (!bright_->getBool()) {
            return;
        }
        if (has("binding null")) {
            bindings.bindings.push_back(nullptr);
            return;
        }
        if (has("binding of no kind")) {
            bindings.bindings.push_back(std::make_shared<Binding>(BindingKind::Invalid, "odd", 1));
            return;
        }
        if (has("binding of another class")) {
            bindings.bindings.push_back(std::make_shared<Binding>(BindingKind::Texture, "odd", 1));
            return;
        }
        const auto binding = createBinding(BindingKind::Float, has("binding nameless") ? "" : name(), 2);
        binding->setDefaultValue(0, 0.25F);
        if (has("binding unknown control")) {
            binding->uiType = static_cast<UiType>(77);
        }
        if (has("binding text")) {
            binding->description = "caf\xE9";
        }
        if (has("binding cut short")) {
            binding->group = std::string("a\0z", 3);
        }
        addToBindingCollection(bindings, binding);
    }

    void loadProperties(const std::shared_ptr<PropertySet>& saved) override {
        if (has("loading newer")) {
            properties->copyValuesFrom(*saved);
            return;
        }
        if (has("loading forgets")) {
            return;
        }
        MaterialNode::loadProperties(saved);
        if (has("loading renames")) {
            setName(name() + " again");
        }
    }

private:
    bool isScaled() const { return mode_->getEnum() == "Scaled"; }

    ShaderType portType() const { return detail::portType(outputs.front()); }

    static void declareInput(FunctionBuilder& builder, const Port& input) {
        if (input.connected) {
            builder.addInputPort(input);
        } else {
            const float infinite = std::numeric_limits<float>::infinity();
            builder.declarePortConstant(input, has("generation infinite") ? infinite : 0.5F);
        }
    }

    static std::string code() {
        if (has("generation opens a bracket")) {
            return "\tout_value = ( in_value;\n";
        }
        if (has("generation closes a bracket")) {
            return "\tout_value = in_value );\n";
        }
        return has("generation closes another bracket") ? "\tout_value = ( in_value ];\n"
                                                        : "\tout_value = in_value;\n";
    }

    static std::string functionName() {
        static std::atomic<int> count = 0;
        return has("generation counts") ? "sample" + std::to_string(++count) : "sample";
    }

    void feedBack(GraphGenerator& generator, const std::shared_ptr<GeneratorNode>& function) const {
        FunctionBuilder builder;
        builder.addInput(portType(), "in_value");
        builder.addOutput(portType(), "out_value");
        const auto other = builder.makeNode(ExecutionLevel::Automatic, "back");
        generator.addNode(other);
        generator.connect(function, "out_value", other, "in_value");
        if (!function->inputs.empty()) {
            generator.connect(other, "out_value", function, function->inputs.front().name);
        }
    }

    void breakProperties() {
        if (has("Name before Type")) {
            std::swap(properties->items[0], properties->items[1]);
        }
        if (has("Name unreachable")) {
            nameProperty = bright_;
        }
        if (has("few properties")) {
            properties->items.resize(7);
        }
        if (has("Type editable")) {
            typeProperty->editable = true;
        }
        if (has("PositionX a text")) {
            positionXProperty->setString("left");
        }
        if (has("no help text")) {
            bright_->help.clear();
        }
        if (has("property twice")) {
            properties->items.push_back(bright_);
        }
        if (has("property nameless")) {
            properties->add(makeProperty(""));
        }
        if (has("property unlisted")) {
            properties->byName.erase("Bright");
        }
        if (has("property replaced")) {
            properties->byName["Bright"] = makeProperty("Bright");
        }
        if (has("PositionX of no kind")) {
            positionXProperty->kind = static_cast<PropertyType>(99);
        }
        if (has("value infinite")) {
            positionXProperty->setFloat(std::numeric_limits<float>::infinity());
        }
        if (has("enum value unknown")) {
            mode_->stringValue = "Halved";
        }
        if (has("enum value twice")) {
            mode_->allowedValues.emplace_back("Plain");
        }
    }

    void breakPorts() {
        if (has("input twice")) {
            inputs.emplace_back("in_value", "in");
        }
        if (has("output twice")) {
            outputs.emplace_back("out_value", "out");
        }
        if (has("port name")) {
            outputs.emplace_back("out value", "out");
        }
        if (has("no label")) {
            inputs.front().label.clear();
        }
        if (has("no components")) {
            outputs.front().setComponentCount(0);
        }
        if (has("five components")) {
            outputs.front().setComponentCount(5);
            outputs.front().setPrecision(2);
        }
        if (has("precision code")) {
            outputs.front().setPrecision(1);
        }
        if (has("precision code beyond all")) {
            outputs.front().setPrecision(99);
        }
        if (has("fixed width unknown")) {
            outputs.front().componentCountFixed = true;
        }
        if (has("fixed precision unknown")) {
            outputs.front().precisionFixed = true;
        }
        if (has("port connected")) {
            inputs.front().connected = true;
        }
    }

    std::shared_ptr<Property> mode_;
    std::shared_ptr<Property> bright_;
    int precisions_ = 0;
};

/// An icon of one colour.
const char* const* icon() {
    static const std::vector<const char*> strings = [] {
        std::vector<const char*> image = {has("icon size") ? "16 32 1 1" : "32 32 1 1",
                                          has("icon key") ? ". c #FFFFFF" : "  c #FFFFFF"};
        image.insert(image.end(), 32, "                                ");
        return image;
    }();
    return strings.data();
}

class Factory final : public NodeFactory {
public:
    Factory() {
        if (has("no types") || (has("works once") && std::getenv("PATINA_TEST_LOADED") != nullptr)) {
            return;
        }
        NodeDescription sample(has("empty type name") ? "" : sampleType);
        sample.category = has("empty category") ? "" : "Studio";
        sample.displayName = has("unprintable display name") ? "Sam\tple" : "Sample";
        if (has("delete in the category")) {
            sample.category = "Stu\x7F"
                              "dio";
        }
        sample.icon = has("no icon") ? nullptr : icon();
        nodeLibrary.push_back(sample);
        if (has("type twice")) {
            nodeLibrary.push_back(sample);
        }
        if (has("type with a blank")) {
            nodeLibrary.emplace_back("Sample ");
        }
        NodeDescription hidden(has("type listed only") ? "Missing" : hiddenType);
        hidden.category = "Studio";
        hidden.creatable = false;
        nodeLibrary.push_back(hidden);
    }

    ~Factory() override {
        if (has("works once")) {
            setenv("PATINA_TEST_LOADED", "1", 1);
        }
    }

    std::shared_ptr<MaterialNode> createNode(const std::string& typeName) override {
        endProcess();
        if (has("one thread") && busy_.exchange(true)) {
            throw ShaderError("the factory is busy");
        }
        std::shared_ptr<MaterialNode> node = makeNode(typeName);
        if (has("one thread")) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            busy_ = false;
        }
        return node;
    }

private:
    std::shared_ptr<MaterialNode> makeNode(const std::string& typeName) {
        if (typeName == sampleType && has("null node")) {
            return nullptr;
        }
        if (typeName != sampleType && typeName != hiddenType) {
            return makeUnknown(typeName);
        }
        auto node = std::make_shared<SampleNode>(has("other type name") ? "Simple" : typeName);
        if (has("shared node")) {
            made_.push_back(node);
        }
        return node;
    }

    static std::shared_ptr<MaterialNode> makeUnknown(const std::string& typeName) {
        if (has("null for unknown types")) {
            return nullptr;
        }
        if (has("node for unknown types")) {
            return std::make_shared<SampleNode>(typeName);
        }
        if (has("odd exception for unknown types")) {
            throw 7; // NOLINT: that is the fault
        }
        throw ShaderError("cannot create \"" + typeName + "\" node");
    }

    std::atomic<bool> busy_ = false;
    std::vector<std::shared_ptr<MaterialNode>> made_;
};

} // namespace

std::uint32_t GetMaterialLibVersion() {
    if (has("version crashes")) {
        std::abort();
    }
    static std::uint32_t calls = 0;
    return has("version changes") ? materialLibVersion + calls++ : materialLibVersion;
}

patina::NodeFactory* CreateNodeFactory() {
    static NodeFactory* only = nullptr;
    if (has("same factory")) {
        only = only == nullptr ? new Factory() : only;
        return only;
    }
    static int made = 0;
    return has("second factory missing") && ++made == 2 ? nullptr : new Factory();
}
