#include "preview/material_inputs.h"

#include "host/files.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <optional>

namespace patina::preview {

using namespace detail;

namespace {

const std::string& parameterName(const Binding& binding) {
    return binding.cgName.empty() ? binding.name : binding.cgName;
}

std::string listedNames(const BindingCollection& bindings, BindingKind kind) {
    std::string names;
    for (const std::shared_ptr<Binding>& binding : bindings.bindings) {
        if (binding->kind == kind) {
            appendText(names, {names.empty() ? "" : ", ", binding->name});
        }
    }
    return names;
}

void requireSide(const Image& image, int sideLimit, const std::filesystem::path& file) {
    if (image.width > sideLimit || image.height > sideLimit) {
        throw HostError({file.string(), 0},
                        joinText({"the graphics driver takes textures of up to ", std::to_string(sideLimit),
                                  " pixels on a side; make this image smaller"}));
    }
}

} // namespace

MaterialInputs::MaterialInputs(BindingCollection bindings, const PreviewOptions& options,
                               const std::string& materialFile, Errors& errors)
    : bindings_(std::move(bindings)), options_(options), materialFile_(materialFile) {
    for (auto* values : {&options_.values, &options_.rates}) {
        std::erase_if(*values, [&](const auto& entry) {
            return !attempt(&errors, [&] { requireValues(entry.first, entry.second); });
        });
    }
    std::erase_if(options_.textures, [&](const auto& entry) {
        return !attempt(&errors, [&] { require(entry.first, BindingKind::Texture); });
    });
}

const Binding& MaterialInputs::require(const std::string& name, BindingKind kind) const {
    for (const std::shared_ptr<Binding>& binding : bindings_.bindings) {
        if (binding->name == name && binding->kind == kind) {
            return *binding;
        }
    }
    const char* what = kind == BindingKind::Texture ? "texture" : "value";
    const std::string names = listedNames(bindings_, kind);
    throw HostError(
        {materialFile_, 0},
        names.empty()
            ? joinText({"this material has no ", what, " that can be set, and so none \"", name, "\""})
            : joinText({"this material has no ", what, " \"", name, "\"; it has ", names}));
}

void MaterialInputs::requireValues(const std::string& name, const std::vector<float>& values) const {
    const std::size_t wanted = require(name, BindingKind::Float).componentCount();
    if (values.size() != 1 && values.size() != wanted) {
        throw HostError({materialFile_, 0},
                        joinText({"\"", name, "\" takes ", std::to_string(wanted),
                                  " numbers, or one for all, and not ", std::to_string(values.size())}));
    }
}

const Binding* MaterialInputs::find(const std::string& parameter) const {
    const auto found =
        std::find_if(bindings_.bindings.begin(), bindings_.bindings.end(),
                     [&](const auto& binding) { return parameterName(*binding) == parameter; });
    return found == bindings_.bindings.end() ? nullptr : found->get();
}

bool MaterialInputs::isGiven(const Binding& binding) const {
    return binding.kind == BindingKind::Float &&
           (options_.values.contains(binding.name) || options_.rates.contains(binding.name));
}

std::vector<float> MaterialInputs::value(const Binding& binding, double seconds) const {
    const auto component = [](const std::vector<float>& list, std::size_t index) {
        return list.size() == 1 ? list.front() : list.at(index);
    };
    const auto given = options_.values.find(binding.name);
    const auto rate = options_.rates.find(binding.name);
    std::vector<float> values;
    for (std::uint32_t i = 0; i < binding.componentCount(); ++i) {
        float value = given == options_.values.end() ? binding.defaultValue(i) : component(given->second, i);
        if (rate != options_.rates.end()) {
            value += static_cast<float>(seconds * static_cast<double>(component(rate->second, i)));
        }
        values.push_back(value);
    }
    return values;
}

TextureInput MaterialInputs::texture(const std::string& parameter, int sideLimit, Warnings& warnings,
                                     Errors& errors) const {
    const auto* binding = dynamic_cast<const TextureBinding*>(find(parameter));
    const std::string& name = binding == nullptr ? parameter : binding->name;
    const bool isColour = binding != nullptr && binding->srgb;
    const bool mayHoldNormals = binding != nullptr && !binding->srgb;
    const std::optional<Image> found = image(name, sideLimit, warnings, errors);
    const Image shown = found ? *found : mayHoldNormals ? labelledSlopes(name) : labelledChecker(name);
    TextureInput input = {textureLevels(shown, isColour), shown.depth};
    if (binding != nullptr && binding->signedExpanded) {
        input.format = TexelFormat::Float;
        for (TextureLevel& level : input.levels) {
            std::transform(level.texels.begin(), level.texels.end(), level.texels.begin(),
                           [](float value) { return 2.0F * value - 1.0F; });
        }
    }
    return input;
}

std::optional<Image> MaterialInputs::image(const std::string& name, int sideLimit, Warnings& warnings,
                                           Errors& errors) const {
    const auto given = options_.textures.find(name);
    const bool isGiven = given != options_.textures.end();
    std::filesystem::path file;
    if (isGiven) {
        file = given->second;
    } else if (isFileName(name)) {
        file = options_.textureDirectory / (name + ".png");
    }
    std::error_code ignored;
    if (isGiven || (!file.empty() && std::filesystem::exists(file, ignored))) {
        try {
            Image found = readImage(file);
            requireSide(found, sideLimit, file);
            return found;
        } catch (const HostError& error) {
            if (isGiven) {
                errors.push_back(error);
            } else {
                warnings.push_back({error.position(), error.text()});
            }
        }
    }
    return std::nullopt;
}

} // namespace patina::preview
