#include "host/export.h"

#include "host/bindings_file.h"
#include "host/bindings_json.h"
#include "host/dataflow.h"
#include "host/generate.h"
#include "host/naming.h"
#include "host/print.h"
#include "host/registers.h"
#include "host/resolve.h"
#include "host/stages.h"

namespace patina {

namespace {

std::string bindingsFileName(const Material& material) { return material.name + ".bindings.xml"; }

} // namespace

ExportedMaterial exportMaterial(Material& material, const SavedBindings& saved, Warnings& warnings,
                                const ExportOptions& options) {
    resolveMaterial(material);
    const GeneratedGraph graph = generateGraph(material);
    const Dataflow flow = joinGraph(material, graph);
    const StagedShader stages = placeInStages(material, flow);
    const ShaderNames names = nameShader(material, flow, stages);
    const RegisterAssignment registers = assignRegisters(material, flow, stages);
    const AssembledShader shader = {material, flow, stages, names, registers};

    ExportedMaterial result;
    result.name = material.name;
    result.vertexProgram = {material.name + ".vert.cg", printVertexProgram(shader)};
    result.fragmentProgram = {material.name + ".frag.cg", printFragmentProgram(shader)};

    BindingsFile bindings;
    bindings.material = material.name;
    bindings.programs = {describeProgram(vertexStageName, result.vertexProgram),
                         describeProgram(fragmentStageName, result.fragmentProgram)};
    bindings.bindings = describeBindings(collectBindings(material), flow, registers);
    carryOverArtistValues(saved, bindings.bindings, warnings);
    result.bindings = {bindingsFileName(material), printBindings(bindings)};
    if (options.json) {
        result.bindingsJson = {material.name + ".bindings.json", printBindingsJson(bindings)};
    }

    result.nodeCount = material.items.size();
    result.connectionCount = material.connections.size();
    result.vertexFunctionCount = stages.vertex.functions.size();
    result.fragmentFunctionCount = stages.fragment.functions.size();
    result.interpolantCount = stages.registers.size();
    result.bindingCount = bindings.bindings.size();
    return result;
}

ExportedMaterial exportMaterial(Material& material, const ExportOptions& options) {
    Warnings none; // there is nothing earlier to warn of
    return exportMaterial(material, {}, none, options);
}

ExportedMaterial exportDocument(const std::filesystem::path& document, const std::filesystem::path& directory,
                                const PluginSet& plugins, Warnings& warnings, const ExportOptions& options) {
    Material material = buildMaterial(readMaterial(document), plugins, warnings);
    const SavedBindings saved = readBindings(directory / bindingsFileName(material));
    ExportedMaterial exported = exportMaterial(material, saved, warnings, options);
    std::vector<OutputFile> files = {exported.vertexProgram, exported.fragmentProgram, exported.bindings};
    if (exported.bindingsJson) {
        files.push_back(*exported.bindingsJson);
    }
    writeFiles(directory, files);
    return exported;
}

} // namespace patina
