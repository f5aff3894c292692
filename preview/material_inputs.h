#pragma once

#include "bindings/bindings.h"
#include "host/diagnostic.h"
#include "preview/image.h"
#include "preview/preview.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace patina::preview {

/// A texture of a material, as it is to be read by its programs.
struct TextureInput {
    std::vector<TextureLevel> levels;
    TexelFormat format = TexelFormat::Byte;
};

/// What a material's programs read that artists set: the values and textures of its bindings.
/// Threads: as the bindings.
class MaterialInputs {
public:
    /// What the options set that no binding of the right kind has, and values that do not fit, go to `errors`
    /// and have no effect.
    MaterialInputs(BindingCollection bindings, const PreviewOptions& options, const std::string& materialFile,
                   Errors& errors);

    const std::string& materialFile() const { return materialFile_; } ///< as messages name it

    /// The binding that presents a parameter of the programs; null when there is none.
    const Binding* find(const std::string& parameter) const;

    /// Whether the options say what a float binding's value is.
    bool isGiven(const Binding& binding) const;

    /// The value of a float binding at a time.
    std::vector<float> value(const Binding& binding, double seconds) const;

    /// The texture of a binding, or of a parameter that no binding presents. What could not be read is in
    /// `errors` when the options named it, and else in `warnings`.
    TextureInput texture(const std::string& parameter, int sideLimit, Warnings& warnings,
                         Errors& errors) const;

private:
    const Binding& require(const std::string& name, BindingKind kind) const;
    void requireValues(const std::string& name, const std::vector<float>& values) const;
    std::optional<Image> image(const std::string& name, int sideLimit, Warnings& warnings,
                               Errors& errors) const;

    BindingCollection bindings_;
    PreviewOptions options_;
    std::string materialFile_;
};

} // namespace patina::preview
