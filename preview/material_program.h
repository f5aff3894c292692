#pragma once

#include "host/export.h"
#include "preview/gl_context.h"
#include "preview/gl_geometry.h"
#include "preview/gl_program.h"
#include "preview/gl_texture.h"
#include "preview/material_inputs.h"
#include "preview/mesh.h"
#include "preview/scene.h"

#include <map>
#include <span>
#include <string>
#include <vector>

namespace patina::preview {

/// A material's programs on the graphics driver, with all that they read. Threads: as the context.
class MaterialProgram {
public:
    /// `exported` has programs for the driver. Warns of what they read and nothing gives. Throws HostError.
    MaterialProgram(const ExportedMaterial& exported, MaterialInputs inputs, const GlContext& context,
                    Warnings& warnings, Errors& errors);

    /// What its vertex program reads of a mesh.
    GlGeometry geometry(const Mesh& mesh) const;

    void setTime(double seconds);
    /// What is the material's own, and what the options give a value, keeps it.
    void setView(const Matrix& world, const Matrix& worldViewProjection, const Vec3& eye);

    /// What is drawn from now on is drawn with it.
    void use() const;

private:
    void set(const std::string& parameter, std::span<const float> values);
    bool isBindings(const std::string& parameter) const;
    void supply(const std::string& parameter, std::span<const float> values);
    void setLights();
    void loadTextures(const GlContext& context, Warnings& warnings, Errors& errors);
    void warnOfUnsetUniforms(Warnings& warnings) const;
    void chooseStreams(Warnings& warnings);
    Warning warning(std::string text) const;

    struct Stream {
        int location = 0;
        Vec4 (*read)(const Vertex& vertex) = nullptr;
    };

    std::vector<ProgramParameter> parameters_; ///< of both programs
    GlProgram program_;
    MaterialInputs inputs_;
    bool lit_;
    std::map<int, GlTexture> textures_; ///< by their units
    std::vector<Stream> streams_;
};

} // namespace patina::preview
