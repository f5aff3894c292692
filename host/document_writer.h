#pragma once

#include "host/document.h"

#include <filesystem>
#include <string>

namespace patina {

/// The text of a document, which read again gives an equal one.
///
/// A document that is as it was read gives the very bytes of its source. Of one that was changed, only what
/// differs is changed in the source: attributes, elements that went, together with the white space before
/// them, and new elements with the indentation of their neighbours, after those of their kind that precede
/// them. Comments, processing instructions, what is not of this format, the order of everything, the encoding
/// that the document declares, and the line ends, as the first is, stay; the layout inside of tags and
/// outside of the root element, and character references do not. A document without a source is laid out
/// afresh, in UTF-8. Linear in the document's size.
///
/// Throws HostError, naming the node and property, for what no document can hold: a text with characters that
/// XML or the document's encoding does not allow, a material's name that names no file, an id that is empty,
/// and an id, property or tag that is there twice. [thread-safe]
std::string printMaterial(const MaterialDocument& document);

/// Prints a document into a file, which is replaced whole or, when HostError is thrown, not touched; see
/// replaceFile. What became of the file since it was read does not count.
/// [thread-safe]
void writeMaterial(const MaterialDocument& document, const std::filesystem::path& file);

} // namespace patina
