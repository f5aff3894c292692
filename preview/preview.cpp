#include "preview/preview.h"

#include "host/bindings_file.h"
#include "host/export.h"
#include "host/saved_bindings.h"
#include "preview/develop.h"
#include "preview/gl_target.h"
#include "preview/material_program.h"
#include "preview/scene.h"
#include "translation/translator.h"

#include <algorithm>

namespace patina {

namespace preview {

namespace {

/// The material's programs for the driver.
ExportedMaterial exportForDriver(Material& material, bool showValue, Warnings& warnings) {
    const std::unique_ptr<ShaderTranslator> translator = makeTranslator();
    ExportOptions options;
    options.showValue = showValue;
    options.targets = {{TargetLanguage::Glsl, 330}};
    options.translator = translator.get();
    return exportMaterial(material, warnings, options);
}

/// The bindings as the export has them, whose warnings were given there.
BindingCollection savedBindings(const Material& material) {
    BindingCollection bindings = collectBindings(material);
    Warnings ignored;
    restoreSavedValues(material, bindings, ignored);
    return bindings;
}

class PreviewOnDriver final : public Preview {
public:
    PreviewOnDriver(Material& material, const PreviewOptions& options, Warnings& warnings, Errors& errors)
        : options_(options), subject_(makeSubject(options.mesh)),
          exported_(exportForDriver(material, options.showValue, warnings)),
          program_(exported_, MaterialInputs(savedBindings(material), options_, material.file, errors),
                   context_, warnings, errors),
          geometry_(program_.geometry(subject_.mesh)),
          camera_(frame(subject_, options.width, options.height, options.share)),
          tileSide_(std::max(1, targetSide / options.samples)),
          target_(tileSide_ * options.samples, tileSide_ * options.samples) {}

    std::string draw(double seconds, float turn) override {
        program_.setTime(seconds);
        const Studio studio(subject_, camera_, turn);
        const Development development(options_, studio, exported_.lit);
        Picture picture = development.start();
        for (int top = 0; top < options_.height; top += tileSide_) {
            for (int left = 0; left < options_.width; left += tileSide_) {
                const std::vector<float> samples = drawTile(left, top, turn);
                development.develop(picture, {left, top, tileSide_}, samples);
            }
        }
        return encodePng(picture);
    }

private:
    static constexpr int targetSide = 1024; ///< so that memory does not grow with the picture

    /// A square part of the picture, which may reach beyond its right and bottom.
    std::vector<float> drawTile(int left, int top, float turn) {
        const auto x = [&](int column) {
            return 2.0F * static_cast<float>(column) / static_cast<float>(options_.width) - 1.0F;
        };
        const auto y = [&](int row) {
            return 1.0F - 2.0F * static_cast<float>(row) / static_cast<float>(options_.height);
        };
        const Window window = {x(left), y(top + tileSide_), x(left + tileSide_), y(top)};
        const Matrix world = worldMatrix(subject_, turn);
        program_.setView(world, cropMatrix(window) * viewProjection(camera_) * world, eyePosition(camera_));
        target_.bind();
        target_.clear({});
        program_.use();
        geometry_.draw();
        return target_.read();
    }

    PreviewOptions options_;
    Subject subject_;
    GlContext context_;
    ExportedMaterial exported_;
    MaterialProgram program_;
    GlGeometry geometry_;
    Camera camera_;
    int tileSide_; ///< in pixels of the picture
    GlTarget target_;
};

} // namespace

} // namespace preview

std::unique_ptr<Preview> makePreview(Material& material, const PreviewOptions& options, Warnings& warnings,
                                     Errors& errors) {
    return std::make_unique<preview::PreviewOnDriver>(material, options, warnings, errors);
}

} // namespace patina
