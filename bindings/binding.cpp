#include "bindings/binding.h"

#include "bindings/float_list.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <optional>

namespace patina {

using namespace detail;

Binding::Binding(BindingKind bindingKind, const std::string& bindingName, std::uint32_t count)
    : name(bindingName), kind(bindingKind), uiType(bindingKindDefaults(bindingKind).uiType),
      storedComponentCount_(count), streamType(bindingKindDefaults(bindingKind).streamType),
      datasetModifiers(defaultDatasetModifiers(bindingKind)) {}

Binding::~Binding() = default;

std::uint32_t Binding::componentCount() const { return storedComponentCount_; }
void Binding::setComponentCount(std::uint32_t count) { storedComponentCount_ = count; }
float Binding::minValue(std::uint32_t /*index*/) const { return 0.0F; }
float Binding::maxValue(std::uint32_t /*index*/) const { return 0.0F; }
float Binding::defaultValue(std::uint32_t /*index*/) const { return 0.0F; }
void Binding::setMinText(std::uint32_t /*index*/, const std::string& /*text*/) {}
void Binding::setMinValue(std::uint32_t /*index*/, float /*value*/) {}
void Binding::setMaxText(std::uint32_t /*index*/, const std::string& /*text*/) {}
void Binding::setMaxValue(std::uint32_t /*index*/, float /*value*/) {}
void Binding::setDefaultText(std::uint32_t /*index*/, const std::string& /*text*/) {}
void Binding::setDefaultValue(std::uint32_t /*index*/, float /*value*/) {}
std::string Binding::minText(std::uint32_t /*index*/) const { return {}; }
std::string Binding::maxText(std::uint32_t /*index*/) const { return {}; }
std::string Binding::defaultText(std::uint32_t /*index*/) const { return {}; }
void Binding::parseMin(const std::string& /*text*/) {}
void Binding::parseMax(const std::string& /*text*/) {}
void Binding::parseDefault(const std::string& /*text*/) {}
std::string Binding::formatMin() const { return {}; }
std::string Binding::formatMax() const { return {}; }
std::string Binding::formatDefault() const { return {}; }

FloatBinding::FloatBinding(BindingKind bindingKind, const std::string& bindingName, std::uint32_t count)
    : Binding(bindingKind, bindingName, count), components(count) {}

std::uint32_t FloatBinding::componentCount() const { return static_cast<std::uint32_t>(components.size()); }

void FloatBinding::setComponentCount(std::uint32_t count) {
    // the count that Binding stores is deliberately left as it was
    const Component last = components.empty() ? Component{} : components.back();
    components.resize(count, last);
}

float FloatBinding::value(std::uint32_t index, bool present, Field field) const {
    return present && index < components.size() ? components[index].*field : 0.0F;
}

void FloatBinding::setValue(std::uint32_t index, float newValue, bool& present, Field field) {
    if (index < components.size()) {
        components[index].*field = newValue;
        present = true;
    }
}

void FloatBinding::parse(const std::string& text, bool& present, Field field) {
    const std::optional<std::vector<float>> values = parseFloatList(text);
    if (!values) {
        return;
    }
    float last = 0.0F;
    for (std::size_t i = 0; i < components.size(); ++i) {
        if (i < values->size()) {
            last = (*values)[i];
        }
        components[i].*field = last;
    }
    present = true;
}

std::string FloatBinding::format(bool present, Field field) const {
    std::string text;
    if (present) {
        for (const Component& component : components) {
            appendText(text, {text.empty() ? "" : ", ", formatFloat(component.*field)});
        }
    }
    return text;
}

float FloatBinding::minValue(std::uint32_t index) const { return value(index, hasMin, &Component::minimum); }

float FloatBinding::maxValue(std::uint32_t index) const { return value(index, hasMax, &Component::maximum); }

float FloatBinding::defaultValue(std::uint32_t index) const {
    return value(index, hasDefault, &Component::initial);
}

void FloatBinding::setMinValue(std::uint32_t index, float newValue) {
    setValue(index, newValue, hasMin, &Component::minimum);
}

void FloatBinding::setMaxValue(std::uint32_t index, float newValue) {
    setValue(index, newValue, hasMax, &Component::maximum);
}

void FloatBinding::setDefaultValue(std::uint32_t index, float newValue) {
    setValue(index, newValue, hasDefault, &Component::initial);
}

void FloatBinding::parseMin(const std::string& text) { parse(text, hasMin, &Component::minimum); }

void FloatBinding::parseMax(const std::string& text) { parse(text, hasMax, &Component::maximum); }

void FloatBinding::parseDefault(const std::string& text) { parse(text, hasDefault, &Component::initial); }

std::string FloatBinding::formatMin() const { return format(hasMin, &Component::minimum); }

std::string FloatBinding::formatMax() const { return format(hasMax, &Component::maximum); }

std::string FloatBinding::formatDefault() const { return format(hasDefault, &Component::initial); }

void StringBinding::setDefaultText(std::uint32_t /*index*/, const std::string& /*text*/) {
    // the text is deliberately not stored: parseDefault is the way to store one
    hasDefault = true;
}

std::string StringBinding::defaultText(std::uint32_t /*index*/) const { return storedDefaultText_; }

void StringBinding::parseDefault(const std::string& text) {
    storedDefaultText_ = text;
    hasDefault = true;
}

std::string StringBinding::formatDefault() const { return hasDefault ? storedDefaultText_ : std::string(); }

std::shared_ptr<Binding> createBinding(BindingKind kind, const std::string& name,
                                       std::uint32_t componentCount) {
    const BindingKindEntry* entry = findBindingKind(kind);
    if (entry == nullptr || componentCount == 0) {
        return nullptr;
    }
    switch (entry->bindingClass) { // GCOVR_EXCL_BR_LINE: the table has no other classes
    case BindingClass::None:
        break;
    case BindingClass::Plain:
        return std::make_shared<Binding>(kind, name, componentCount);
    case BindingClass::String:
        return std::make_shared<StringBinding>(kind, name, componentCount);
    case BindingClass::Texture:
        return std::make_shared<TextureBinding>(kind, name, componentCount);
    case BindingClass::Float:
        return std::make_shared<FloatBinding>(kind, name, componentCount);
    }
    return nullptr;
}

std::shared_ptr<TextureBinding> toTextureBinding(const std::shared_ptr<Binding>& binding) {
    if (!binding || binding->kind != BindingKind::Texture) {
        const std::string kindName = binding ? bindingKindName(*binding) : "";
        throw ShaderError(joinText({"Cannot cast \"", kindName, "\" into a TextureBinding"}));
    }
    return std::static_pointer_cast<TextureBinding>(binding);
}

void addToBindingCollection(BindingCollection& collection, const std::shared_ptr<Binding>& binding) {
    collection.bindings.push_back(binding);
    collection.sorted = false;
}

std::string bindingKindName(const Binding& binding) {
    const BindingKindEntry* entry = findBindingKind(binding.kind);
    return entry != nullptr ? entry->name : "";
}

} // namespace patina
