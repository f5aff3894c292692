#pragma once

#include "bindings/bindings.h"
#include "host/material.h"

#include <string>

namespace patina {

/// The bindings of a material's nodes, by "BindingIndex" and then in document order.
/// Their code may be a plug-in's: they must not outlive the material.
/// Throws HostError, naming the nodes, when two of them present a binding of one name. With `errors`, goes on
/// with the next node and puts them there.
BindingCollection collectBindings(const Material& material, Errors* errors = nullptr);

/// The bindings as an XML document: a <binding> element each, with kind, components, group and the
/// annotations.
std::string printBindings(const Material& material, const BindingCollection& bindings);

} // namespace patina
