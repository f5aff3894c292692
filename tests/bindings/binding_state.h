#pragma once

#include "bindings/bindings.h"

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

namespace patina::testing {

constexpr BindingKind everyKind[] = {
    BindingKind::Position, BindingKind::Normal, BindingKind::Uv,           BindingKind::Tangent,
    BindingKind::Binormal, BindingKind::Colour, BindingKind::BlendIndices, BindingKind::BlendWeights,
    BindingKind::Texture,  BindingKind::Float,
};

/// One kind for each of the four classes.
constexpr BindingKind plainKind = BindingKind::Position;
constexpr BindingKind floatKind = BindingKind::Float;
constexpr BindingKind stringKind = BindingKind::Uv;
constexpr BindingKind textureKind = BindingKind::Texture;
constexpr BindingKind kindOfEveryClass[] = {plainKind, floatKind, stringKind, textureKind};

template <typename Class>
std::shared_ptr<Class> makeBinding(BindingKind kind, std::uint32_t componentCount = 1) {
    return std::dynamic_pointer_cast<Class>(createBinding(kind, "tint", componentCount));
}

/// Everything that can be seen of a binding, one line each.
inline std::string stateOf(const Binding& binding) {
    std::ostringstream state;
    state.imbue(std::locale::classic());
    state << std::boolalpha << "name " << binding.name << "\nkind " << static_cast<int>(binding.kind)
          << "\ndescription " << binding.description << "\nhelpUrl " << binding.helpUrl << "\nuiType "
          << static_cast<int>(binding.uiType) << "\nuiLabel " << binding.uiLabel << "\nuiUnitType "
          << static_cast<int>(binding.uiUnitType) << "\nuvSet " << binding.uvSet << "\ncgName "
          << binding.cgName << "\ngroup " << binding.group << "\nhasMin " << binding.hasMin << "\nhasMax "
          << binding.hasMax << "\nhasDefault " << binding.hasDefault << "\nstored component count "
          << binding.Binding::componentCount() << "\ncomponent count " << binding.componentCount()
          << "\nstreamType " << binding.streamType << "\ndatasetModifiers " << binding.datasetModifiers
          << "\nbasicColour " << binding.basicColour << "\nmin " << binding.formatMin() << "\nmax "
          << binding.formatMax() << "\ndefault " << binding.formatDefault() << "\ndefault text "
          << binding.defaultText(0) << "\n";
    if (const auto* constant = dynamic_cast<const FloatBinding*>(&binding)) {
        for (const FloatBinding::Component& component : constant->components) {
            state << "component " << component.minimum << ' ' << component.maximum << ' ' << component.initial
                  << "\n";
        }
    }
    if (const auto* texture = dynamic_cast<const TextureBinding*>(&binding)) {
        state << "srgb " << texture->srgb << "\nsignedExpanded " << texture->signedExpanded << "\nnormalised "
              << texture->normalised << "\n";
    }
    return state.str();
}

} // namespace patina::testing
