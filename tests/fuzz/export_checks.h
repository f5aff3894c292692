#pragma once

#include "host/host.h"

#include <string>
#include <string_view>

namespace patina::fuzz {

/// Ends the program with the text when the condition does not hold.
void require(bool condition, std::string_view text);

/// The Core plug-in, loaded once.
const PluginSet& corePlugins();

/// Exports what a document describes, as a command does, and looks at it in every other way that a host
/// offers. Either everything succeeds and all agree, or HostError says why not, and the check of the document
/// reports an error too. With `compile`, the programs are taken to the compiler, which must accept them.
void checkExport(const MaterialDocument& document, bool compile);

/// Exports a material whose nodes may do anything, and takes it through the steps that go on after errors:
/// both find it sound, or both do not. What its nodes say is code need not compile.
void checkAssembly(Material& material);

/// Shows an output of a node of a document, by its port's name or the first one, in the same way: a program
/// or HostError comes of it.
void checkShown(const MaterialDocument& document, const std::string& nodeId, const std::string& port);

} // namespace patina::fuzz
