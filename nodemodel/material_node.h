#pragma once

#include "nodemodel/node_connection.h"
#include "nodemodel/port.h"
#include "nodemodel/property.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace patina {

class GraphGenerator;
struct GeneratorNode;
struct BindingCollection;

/// The base of every node of the material graph.
///
/// A host drives a node in this order: loadProperties when a material is restored; updateFromProperties after
/// every edit; resolveComponentCounts and resolvePrecision, after it has pushed known counts and precisions
/// along its connections into the ports; generateCode; generatesBinding and addBindings.
///
/// Ownership: held by std::shared_ptr. Links are weak: neither a connection nor a neighbour is kept alive.
/// Threads: a node belongs to one thread at a time; different nodes may be used in different threads.
/// Errors: every failure is a ShaderError; nothing is rolled back.
/// Virtual operations keep their order: hosts and plug-ins that were built apart agree on it.
class MaterialNode {
public:
    /// Makes the standard properties; the name starts as the type name.
    explicit MaterialNode(const std::string& type);
    /// Makes all properties of a table; for types that have many of their own, which cost less made at once.
    MaterialNode(const std::string& type, const PropertyLayout& layout);

    virtual ~MaterialNode();

    /// Rebuilds inputs and outputs and the flags of dependent properties from the property values.
    /// The base does nothing. `hostContext` is the host's own; no Core node reads it.
    virtual void updateFromProperties(void* hostContext);

    /// The text that the editor draws on the node; the base gives the name.
    virtual std::string caption() const;

    /// Gives every free port the one width above 1 that the known, free inputs share, or 1 when there is
    /// none. Two different widths above 1 set componentCountConflict on every free input and leave the
    /// outputs alone.
    virtual void resolveComponentCounts();

    /// Gives every free input float precision when an output is known as float, else half; outputs follow.
    virtual void resolvePrecision();

    /// Emits this node's generator nodes and edges and links them to the host's connections.
    /// Ports must be resolved and their `connected` flags set.
    virtual void generateCode(GraphGenerator& generator) = 0;

    /// Whether addBindings will add anything in the current configuration; the base says false.
    virtual bool generatesBinding() const;

    /// Appends the bindings that the node presents to the artist; the base adds none.
    virtual void addBindings(BindingCollection& bindings);

    /// Restores saved values by property name. Throws when the saved version is newer than this node's, or
    /// when a value cannot be copied; values copied before that stay.
    virtual void loadProperties(const std::shared_ptr<PropertySet>& saved);

    MaterialNode(const MaterialNode&) = delete;
    MaterialNode& operator=(const MaterialNode&) = delete;

    /// @name The standard properties "Type" and "Name"
    /// @{
    const std::string& typeName() const;
    const std::string& name() const;
    void setName(const std::string& text);
    /// @}

    /// @name Colours in the editor, components from 0 to 1; alpha stays as constructed
    /// @{
    void setTextColour(float red, float green, float blue);
    void setBodyColour(float red, float green, float blue);
    /// @}

    /// The head of every port message: `node "Name" (Type)`.
    std::string describe() const;

    /// @name Ports by exact name
    /// The index is -1, and the reference throws, when there is no such port. References end with the next
    /// rebuild.
    /// @{
    int findInputPortIndex(std::string_view portName) const;
    int findOutputPortIndex(std::string_view portName) const;
    Port& inputPort(std::string_view portName);
    Port& outputPort(std::string_view portName);
    const Port& inputPort(std::string_view portName) const;
    const Port& outputPort(std::string_view portName) const;
    /// @}

    /// Records `generatedNode` in the generator as consumer of every incoming connection and producer of
    /// every outgoing one, under this node's port names. Throws std::bad_weak_ptr when a link has expired.
    /// Defined in the shader graph library.
    void attachLinks(GraphGenerator& generator, const std::shared_ptr<GeneratorNode>& generatedNode);

    std::list<std::weak_ptr<NodeConnection>> inputLinks;  ///< connections that end here; kept by the host
    std::list<std::weak_ptr<NodeConnection>> outputLinks; ///< connections that start here; kept by the host
    std::array<float, 4> textColour = {0.0F, 0.0F, 0.0F, 1.0F};
    std::array<float, 4> bodyColour = {0.9F, 0.9F, 0.9F, 0.9F};
    std::vector<Port> inputs;
    std::vector<Port> outputs;
    std::uint32_t resolvedComponentCount = 1; ///< width found by the last resolution
    std::uint32_t resolvedPrecision = 3;      ///< ComponentType code found by the last resolution
    std::shared_ptr<PropertySet> properties;  ///< the eight standard properties first
    std::shared_ptr<Property> typeProperty;
    std::shared_ptr<Property> nameProperty;
    std::shared_ptr<Property> bindingIndexProperty;
    std::shared_ptr<Property> bindingGroupProperty;
    std::shared_ptr<Property> positionXProperty;
    std::shared_ptr<Property> positionYProperty;
    std::shared_ptr<Property> descriptionProperty;
    std::shared_ptr<Property> helpUrlProperty;

protected:
    /// Makes a property with its help text and adds it to the node; the caller gives it its kind and default.
    std::shared_ptr<Property> addProperty(std::string_view propertyName, std::string_view help);
};

} // namespace patina
