#pragma once

#include "nodemodel/property_index.h"
#include "nodemodel/property_table.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

class MaterialNode;

/// The kind of value that a property holds.
enum class PropertyType : std::uint32_t { Bool, Integer, Float, String, Colour, Enum, Node };

/// A named, typed value of a node, with the texts and flags by which a host presents it.
///
/// The kind is not fixed at creation: each setter makes the property one of its own kind and writes that
/// kind's slot, and the slots of the other kinds keep what they held. Every getter throws ShaderError when
/// the property is of another kind. A setter or copy that throws leaves the property unchanged.
///
/// Ownership: properties are held by std::shared_ptr, by their set and by handles in the node.
/// Threads: not locked; a node and its properties belong to one thread at a time.
struct Property {
    /// A property that reads as bool false; see makeProperty.
    explicit Property(std::string_view propertyName, std::string_view helpText = {});

    const std::string name;        ///< key in the set, shown to the artist
    std::string label;             ///< a second text for hosts; the SDK never sets or reads it
    std::string help;              ///< begins with the name and a colon
    bool editable = true;          ///< the artist may change the value
    bool visible = true;           ///< the host shows the property
    std::uint32_t stringStyle = 0; ///< how to edit a string: 0 one line, 1 free text, 2 a web address
    PropertyType kind = PropertyType::Bool;
    std::string stringValue;                 ///< String, and the selected value of Enum
    std::int32_t intValue = 0;               ///< Integer, and 0 or 1 of Bool
    std::array<float, 3> floatValues = {};   ///< Float in the first, Colour as red, green, blue
    std::shared_ptr<MaterialNode> nodeValue; ///< Node; may be empty
    std::vector<std::string> allowedValues;  ///< Enum values in list order, or type names for Node

    /// @name Setters
    /// @{
    void setBool(bool value);
    void setInteger(std::int32_t value);
    void setFloat(float value);
    void setString(const std::string& text);
    /// Components are stored as given, unclamped.
    void setColour(float red, float green, float blue);
    /// Selects one of allowedValues; throws when `text` is not among them.
    void setEnum(std::string_view text);
    /// Appends to allowedValues; the first value becomes the selected one. Throws when `text` is there
    /// already.
    void addEnumValue(std::string_view text);
    /// Appends a node type name to allowedValues, unchecked, and makes the property of kind Node.
    void addNodeTypename(std::string_view text);
    /// @}

    /// @name Getters
    /// References stay valid as long as the property, and follow later changes.
    /// @{
    bool getBool() const;
    std::int32_t getInteger() const;
    float getFloat() const;
    /// Of kind String only: an enum's text is read with getEnum.
    const std::string& getString() const;
    const std::string& getEnum() const;
    void getColour(float& red, float& green, float& blue) const;
    /// The stored reference itself: a host assigns the node that the artist picked.
    std::shared_ptr<MaterialNode>& getNode();
    const std::shared_ptr<MaterialNode>& getNode() const;
    /// @}

    /// Takes over every value slot of a property of the same kind; name, texts, flags and allowedValues stay.
    /// Throws when the kinds differ, when a selected enum value is not allowed here, or when the referred
    /// node's type is not allowed here (an empty list allows any type).
    void copyFrom(const Property& source);

private:
    bool allows(std::string_view value) const;
    void require(PropertyType wanted, const char* kindText) const;
};

/// A new property named `name` that reads as bool false until a setter gives it its kind.
std::shared_ptr<Property> makeProperty(const std::string& name);

/// The properties of a node in the order in which they were added, found by exact name, with the version of
/// their layout. Threads: as Property.
struct PropertySet {
    std::int32_t version = 0;
    std::vector<std::shared_ptr<Property>> items;
    PropertyIndex byName;

    /// Makes new properties as the layout declares them, that read as bool false. Only for an empty set.
    void addNew(const PropertyLayout& layout);

    /// Appends; shares ownership. Throws, changing nothing, when the name is taken.
    void add(const std::shared_ptr<Property>& property);

    /// Throws when there is no property of that name.
    std::shared_ptr<Property> find(std::string_view name) const;

    /// Copies the values of all properties that `saved` has too, by name, in the order of items. The first
    /// copy that throws ends it; earlier copies stay done.
    void copyValuesFrom(const PropertySet& saved);

    auto begin() { return items.begin(); }
    auto end() { return items.end(); }
    auto begin() const { return items.begin(); }
    auto end() const { return items.end(); }
};

} // namespace patina
