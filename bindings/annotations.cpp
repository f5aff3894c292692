#include "bindings/binding.h"

#include "nodemodel/xml_attributes.h"

namespace patina {

using namespace detail;

namespace {

void writeUnlessEmpty(xmlNode* element, const std::string& key, const std::string& text) {
    if (!text.empty()) {
        writeAttribute(element, key, text);
    }
}

void readIfPresent(xmlNode* element, const std::string& key, std::string& text) {
    if (hasAttribute(element, key)) {
        text = readAttribute(element, key);
    }
}

void readBoolIfPresent(xmlNode* element, const std::string& key, bool& flag) {
    if (hasAttribute(element, key)) {
        flag = readBoolAttribute(element, key);
    }
}

} // namespace

void Binding::writeAnnotations(xmlNode* element) const {
    const BindingKindEntry& defaults = bindingKindDefaults(kind);
    writeAttribute(element, "tag", name);
    if (uiType != defaults.uiType) {
        writeAttribute(element, "gui", uiTypeName(uiType));
    }
    writeUnlessEmpty(element, "cgname", cgName);
    writeUnlessEmpty(element, "uv", uvSet);
    writeUnlessEmpty(element, "desc", description);
    writeUnlessEmpty(element, "helpUrl", helpUrl);
    writeUnlessEmpty(element, "uilabel", uiLabel);
    if (uiUnitType != UiUnitType::Raw) {
        writeAttribute(element, "uiunittype", uiUnitTypeName(uiUnitType));
    }
    writeUnlessEmpty(element, "min", formatMin());
    writeUnlessEmpty(element, "max", formatMax());
    writeUnlessEmpty(element, "default", formatDefault());
    if (streamType != defaults.streamType) {
        writeAttribute(element, "stream_type", streamType);
    }
    // "stream_normalize" is read but never written: the stream type code says it already
    if (datasetModifiers != defaults.datasetModifiers) {
        writeAttribute(element, "dataset_modifiers", datasetModifiers);
    }
    if (basicColour) {
        writeBoolAttribute(element, "basic_colour", true);
    }
}

void Binding::readAnnotations(xmlNode* element) {
    readIfPresent(element, "tag", name);
    if (hasAttribute(element, "gui")) {
        uiType = parseUiType(lowerCase(readAttribute(element, "gui")));
    }
    readIfPresent(element, "cgname", cgName);
    readIfPresent(element, "uv", uvSet);
    readIfPresent(element, "desc", description);
    readIfPresent(element, "helpUrl", helpUrl);
    readIfPresent(element, "uilabel", uiLabel);
    if (hasAttribute(element, "uiunittype")) {
        uiUnitType = parseUiUnitType(lowerCase(readAttribute(element, "uiunittype")));
    }
    if (hasAttribute(element, "min")) {
        parseMin(readAttribute(element, "min"));
    }
    if (hasAttribute(element, "max")) {
        parseMax(readAttribute(element, "max"));
    }
    if (hasAttribute(element, "default")) {
        parseDefault(readAttribute(element, "default"));
    }

    // the stream type always starts again from the kind's default, even when neither key is present
    const BindingKindEntry& defaults = bindingKindDefaults(kind);
    std::string typeWord = defaults.streamType;
    bool normalise = defaults.streamNormalise;
    if (hasAttribute(element, "stream_type")) {
        // "X11Y11Z10n" stays in lower case: it is then no default of any kind, and is written so again
        typeWord = lowerCase(readAttribute(element, "stream_type"));
    }
    if (hasAttribute(element, "stream_normalize")) {
        normalise = parseBindingBool(readAttribute(element, "stream_normalize"));
    }
    streamType = streamTypeFor(typeWord, normalise);

    readIfPresent(element, "dataset_modifiers", datasetModifiers);
    readBoolIfPresent(element, "basic_colour", basicColour);
}

void TextureBinding::writeAnnotations(xmlNode* element) const {
    StringBinding::writeAnnotations(element);
    if (srgb) {
        writeBoolAttribute(element, "srgb", true);
    }
    if (signedExpanded) {
        writeBoolAttribute(element, "signed_expanded", true);
    }
    if (!normalised) {
        writeBoolAttribute(element, "normalised", false);
    }
}

void TextureBinding::readAnnotations(xmlNode* element) {
    srgb = false;
    signedExpanded = false;
    normalised = true;
    StringBinding::readAnnotations(element);
    readBoolIfPresent(element, "srgb", srgb);
    readBoolIfPresent(element, "signed_expanded", signedExpanded);
    readBoolIfPresent(element, "normalised", normalised);
}

} // namespace patina
