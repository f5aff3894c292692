#include "host/export.h"

#include "host/bindings_file.h"
#include "host/dataflow.h"
#include "host/generate.h"
#include "host/naming.h"
#include "host/print.h"
#include "host/registers.h"
#include "host/resolve.h"
#include "host/stages.h"

namespace patina {

ExportedMaterial exportMaterial(Material& material) {
    resolveMaterial(material);
    const GeneratedGraph graph = generateGraph(material);
    const Dataflow flow = joinGraph(material, graph);
    const StagedShader stages = placeInStages(material, flow);
    const ShaderNames names = nameShader(material, flow, stages);
    const RegisterAssignment registers = assignRegisters(material, flow, stages);
    const AssembledShader shader = {material, flow, stages, names, registers};
    const BindingCollection bindings = collectBindings(material);

    ExportedMaterial result;
    result.name = material.name;
    result.vertexProgram = {material.name + ".vert.cg", printVertexProgram(shader)};
    result.fragmentProgram = {material.name + ".frag.cg", printFragmentProgram(shader)};
    result.bindings = {material.name + ".bindings.xml", printBindings(material, bindings)};
    result.nodeCount = material.items.size();
    result.connectionCount = material.connections.size();
    result.vertexFunctionCount = stages.vertex.functions.size();
    result.fragmentFunctionCount = stages.fragment.functions.size();
    result.interpolantCount = stages.registers.size();
    result.bindingCount = bindings.bindings.size();
    return result;
}

ExportedMaterial exportDocument(const std::filesystem::path& document, const std::filesystem::path& directory,
                                const PluginSet& plugins, Warnings& warnings) {
    Material material = buildMaterial(readMaterial(document), plugins, warnings);
    ExportedMaterial exported = exportMaterial(material);
    writeFiles(directory, {exported.vertexProgram, exported.fragmentProgram, exported.bindings});
    return exported;
}

} // namespace patina
