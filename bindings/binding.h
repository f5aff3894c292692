#pragma once

#include "bindings/binding_kinds.h"

#include <libxml/tree.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace patina {

/// One parameter of a material that is presented to the artist. This class itself carries vertex streams.
///
/// The value operations do nothing, and read as 0 or empty, in classes that have no such value.
/// Ownership: held by std::shared_ptr. Threads: one thread at a time.
/// Errors: only writeAnnotations and readAnnotations throw.
/// Virtual operations keep their order: hosts and plug-ins that were built apart agree on it.
class Binding {
public:
    /// Fields start with the kind's defaults; see createBinding.
    Binding(BindingKind bindingKind, const std::string& bindingName, std::uint32_t count);
    virtual ~Binding();

    /// The number of components of the value.
    virtual std::uint32_t componentCount() const;
    virtual void setComponentCount(std::uint32_t count);

    /// @name Limits and default of one component, from index 0
    /// Reading gives 0 until a value was set, and for an index beyond the components; setting there does
    /// nothing.
    /// @{
    virtual float minValue(std::uint32_t index) const;
    virtual float maxValue(std::uint32_t index) const;
    virtual float defaultValue(std::uint32_t index) const;
    virtual void setMinText(std::uint32_t index, const std::string& text);
    virtual void setMinValue(std::uint32_t index, float value);
    virtual void setMaxText(std::uint32_t index, const std::string& text);
    virtual void setMaxValue(std::uint32_t index, float value);
    virtual void setDefaultText(std::uint32_t index, const std::string& text);
    virtual void setDefaultValue(std::uint32_t index, float value);
    virtual std::string minText(std::uint32_t index) const;
    virtual std::string maxText(std::uint32_t index) const;
    virtual std::string defaultText(std::uint32_t index) const;
    /// @}

    /// Sets the attributes that describe this binding on the caller's element, each only where it differs
    /// from the kind's default.
    virtual void writeAnnotations(xmlNode* element) const;

    /// Takes over the attributes that are present. Throws ShaderError for a boolean that is neither "Yes" nor
    /// "No"; what was read before stays. Number lists and names that are not understood are ignored.
    virtual void readAnnotations(xmlNode* element);

    /// @name All components as one text: numbers between commas, or the text itself
    /// A list that does not parse is ignored; a short one repeats its last number. Empty when nothing was
    /// set.
    /// @{
    virtual void parseMin(const std::string& text);
    virtual void parseMax(const std::string& text);
    virtual void parseDefault(const std::string& text);
    virtual std::string formatMin() const;
    virtual std::string formatMax() const;
    virtual std::string formatDefault() const;
    /// @}

    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;

    std::string name; ///< shown to the artist
    const BindingKind kind;
    std::string description; ///< the tooltip
    std::string helpUrl;
    UiType uiType;
    std::string uiLabel;
    UiUnitType uiUnitType = UiUnitType::Raw;
    std::string uvSet;   ///< the uv set that this binding refers to
    std::string cgName;  ///< the name in the shader
    std::string group;   ///< kept with the binding; no annotation
    bool hasMin = false; ///< these three only ever become true
    bool hasMax = false;
    bool hasDefault = false;

private:
    std::uint32_t storedComponentCount_;

public:
    std::string streamType; ///< code of the vertex stream's element type; empty without a stream
    std::string datasetModifiers;
    bool basicColour = false; ///< forms part of the material's basic colour
};

/// A constant of one or more floats.
class FloatBinding : public Binding {
public:
    struct Component {
        float minimum = 0.0F;
        float maximum = 0.0F;
        float initial = 0.0F; ///< the default
    };

    FloatBinding(BindingKind bindingKind, const std::string& bindingName, std::uint32_t count);

    /// The number of component records.
    std::uint32_t componentCount() const override;
    /// Drops records from the end, or repeats the last one.
    void setComponentCount(std::uint32_t count) override;
    float minValue(std::uint32_t index) const override;
    float maxValue(std::uint32_t index) const override;
    float defaultValue(std::uint32_t index) const override;
    void setMinValue(std::uint32_t index, float value) override;
    void setMaxValue(std::uint32_t index, float value) override;
    void setDefaultValue(std::uint32_t index, float value) override;
    void parseMin(const std::string& text) override;
    void parseMax(const std::string& text) override;
    void parseDefault(const std::string& text) override;
    std::string formatMin() const override;
    std::string formatMax() const override;
    std::string formatDefault() const override;

    std::vector<Component> components;

private:
    using Field = float Component::*;

    float value(std::uint32_t index, bool present, Field field) const;
    void setValue(std::uint32_t index, float newValue, bool& present, Field field);
    void parse(const std::string& text, bool& present, Field field);
    std::string format(bool present, Field field) const;
};

/// A binding whose default is a text: a uv set or a vertex-colour set.
class StringBinding : public Binding {
public:
    using Binding::Binding;

    /// Marks a default as present and stores nothing; parseDefault stores.
    void setDefaultText(std::uint32_t index, const std::string& text) override;
    /// The stored text, whatever hasDefault says.
    std::string defaultText(std::uint32_t index) const override;
    void parseDefault(const std::string& text) override;
    std::string formatDefault() const override;

private:
    std::string storedDefaultText_;
};

/// A texture.
class TextureBinding : public StringBinding {
public:
    using StringBinding::StringBinding;

    void writeAnnotations(xmlNode* element) const override;
    void readAnnotations(xmlNode* element) override;

    bool srgb = false;           ///< the texture holds sRGB colours
    bool signedExpanded = false; ///< values are expanded from 0..1 to -1..1
    bool normalised = true;
};

/// A host's list of bindings in the order in which nodes added them.
struct BindingCollection {
    std::vector<std::shared_ptr<Binding>> bindings;
    bool sorted = false; ///< for the host; adding a binding clears it
};

/// A new binding of the class that carries `kind`, with the kind's defaults; `name` is copied.
/// The handle is empty for an invalid kind and for no components.
std::shared_ptr<Binding> createBinding(BindingKind kind, const std::string& name,
                                       std::uint32_t componentCount);

/// The same binding as a texture. Throws ShaderError when it is of another kind, or an empty handle.
std::shared_ptr<TextureBinding> toTextureBinding(const std::shared_ptr<Binding>& binding);

/// Appends, shares ownership, and clears `sorted`.
void addToBindingCollection(BindingCollection& collection, const std::shared_ptr<Binding>& binding);

/// The name of the binding's kind; empty for a kind outside the enumeration.
std::string bindingKindName(const Binding& binding);

} // namespace patina
