#pragma once

#include "bindings/bindings.h"
#include "host/material.h"
#include "host/plugins.h"

#include <string>
#include <vector>

namespace patina {

// Edits of a live material, each of which changes nodes and document together: at any time the material is
// what buildMaterial would make of its document.
//
// Errors: an edit that throws HostError has changed nothing. Threads: as the material.
// What the document says of a node whose type no plug-in offers stays as it is, but for the standard
// properties that are set here and for references to nodes that are removed.

/// What an edit took along, as it was, for an editor that shows or undoes it.
struct EditResult {
    struct Reference {
        std::string node; ///< id of the node that referred to the removed one
        std::string property;
    };

    std::vector<DocumentConnection> connections; ///< whose node or port is gone
    std::vector<DocumentOutput> outputs;         ///< whose node or port is gone
    std::vector<Reference> references;           ///< which are empty now
};

/// Adds a node with the defaults of its type, and gives its id: the one that is wanted, or one made of the
/// type's name and a number. Throws when no plug-in offers the type, when it is not for artists to create,
/// when the id is taken or has a character that XML cannot hold, and for whatever the new node throws while
/// it loads its defaults and updates.
std::string addNode(Material& material, const PluginSet& plugins, const std::string& typeName,
                    const std::string& wantedId = {});

/// Removes a node with its connections and outputs, and empties the references of others to it; those are
/// updated then, and may lose ports. Throws when there is no such node, and for whatever an update throws.
EditResult removeNode(Material& material, const std::string& id);

/// Sets a property to a value in the form that documents have for its kind, and updates the node and those
/// that refer to it, directly or not. Connections and outputs whose ports are gone go too. What the updates
/// change is saved with the nodes.
///
/// Throws when there is no such node or property, for "Type", for a value that is none of the kind, that XML
/// cannot hold or that the node refuses, for a reference to a node that is not there, for a cycle of
/// references, and for whatever an update throws. On a placeholder only the standard properties can be set;
/// it goes on to explain itself in its "Description" while the document takes the new one.
EditResult setProperty(Material& material, const std::string& id, const std::string& propertyName,
                       const std::string& valueText);

/// Connects two ports. Those of a placeholder are taken on trust.
/// Throws when there is no such node or port, for the name of a placeholder's port that XML cannot hold, when
/// the input is connected already, and for a cycle.
void connect(Material& material, const std::string& sourceId, const std::string& output,
             const std::string& destinationId, const std::string& input);

/// Removes the connection of an input. Throws when there is no such node, and when it has no such input or
/// one that is not connected.
void disconnect(Material& material, const std::string& destinationId, const std::string& input);

/// Adds an output of the material, or makes the one of that name come from another port. That of a
/// placeholder is taken on trust, and so is the name: an export refuses others than docs/material-document.md
/// lists. Throws when there is no such node or port, and for a name, of the output or of a placeholder's
/// port, that XML cannot hold.
void setOutput(Material& material, const std::string& name, const std::string& sourceId,
               const std::string& port);

/// Throws when there is no such output.
void removeOutput(Material& material, const std::string& name);

/// Throws when the name cannot be that of a file.
void setMaterialName(Material& material, const std::string& name);

/// Makes the document's bindings those of the collection, with kind, components, group and annotations, and
/// beside each value that an artist can change the graph's own: an export tells by it what was changed.
/// Attributes that are no annotations stay with the binding of their tag. In a material with a placeholder,
/// bindings that no node presents stay whole: they may be those of the missing type. Throws when two bindings
/// bear one name, and what a node throws.
void saveBindings(Material& material, const BindingCollection& bindings);

} // namespace patina
