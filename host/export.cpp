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
#include "host/verify.h"
#include "nodemodel/text.h"

namespace patina {

using namespace detail;

namespace {

std::string bindingsFileName(const Material& material) { return material.name + ".bindings.xml"; }

std::vector<OutputFile> filesOf(const ExportedMaterial& exported) {
    std::vector<OutputFile> files = {exported.vertexProgram, exported.fragmentProgram, exported.bindings};
    for (const std::optional<OutputFile>* file : {&exported.bindingsJson, &exported.dependencies}) {
        if (*file) {
            files.push_back(**file);
        }
    }
    return files;
}

/// A file name as Make reads it.
std::string makeName(const std::filesystem::path& file) {
    std::string name;
    for (const char letter : file.string()) {
        if (letter == ' ' || letter == '#' || letter == '\\') {
            name += '\\';
        } else if (letter == '$') {
            name += '$';
        }
        name += letter;
    }
    return name;
}

/// A Make rule: the files depend on the document and on the plug-ins.
std::string printDependencies(const ExportedMaterial& exported, const std::filesystem::path& document,
                              const std::filesystem::path& directory, const PluginSet& plugins) {
    std::string text;
    for (const OutputFile& file : filesOf(exported)) {
        appendText(text, {text.empty() ? "" : " ", makeName((directory / file.name).lexically_normal())});
    }
    appendText(text, {": ", makeName(document.lexically_normal())});
    for (const std::shared_ptr<Plugin>& plugin : plugins.plugins()) {
        appendText(text, {" \\\n ", makeName(plugin->file().lexically_normal())});
    }
    return text + '\n';
}

} // namespace

ExportedMaterial exportMaterial(Material& material, Warnings& warnings, const ExportOptions& options,
                                const SavedBindings& saved) {
    resolveMaterial(material);
    const GeneratedGraph graph = generateGraph(material);
    const Dataflow flow = joinGraph(material, graph);
    verifyCode(material, flow);
    const StagedShader stages = placeInStages(material, flow);
    const ShaderNames names = nameShader(material, flow, stages);
    const RegisterAssignment registers = assignRegisters(material, flow, stages);
    const AssembledShader shader = {material, flow, stages, names, registers, options.print};

    ExportedMaterial result;
    result.name = material.name;
    result.vertexProgram = {material.name + ".vert.cg", printVertexProgram(shader)};
    result.fragmentProgram = {material.name + ".frag.cg", printFragmentProgram(shader)};

    BindingsFile bindings;
    bindings.material = material.name;
    bindings.programs = {describeProgram(vertexStageName, result.vertexProgram),
                         describeProgram(fragmentStageName, result.fragmentProgram)};
    const BindingCollection collected = collectBindings(material);
    restoreSavedValues(material, collected, warnings);
    bindings.bindings = describeBindings(collected, flow, registers);
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

ExportedMaterial prepareExport(const std::filesystem::path& document, const std::filesystem::path& directory,
                               const PluginSet& plugins, Warnings& warnings, const ExportOptions& options) {
    Material material = buildMaterial(readMaterial(document), plugins, warnings);
    const SavedBindings saved = readBindings(directory / bindingsFileName(material));
    ExportedMaterial exported = exportMaterial(material, warnings, options, saved);
    if (options.dependencyFile) {
        exported.dependencies = {exported.name + ".d",
                                 printDependencies(exported, document, directory, plugins)};
    }
    return exported;
}

std::size_t writeExport(const ExportedMaterial& exported, const std::filesystem::path& directory) {
    return writeFiles(directory, filesOf(exported));
}

ExportedMaterial exportDocument(const std::filesystem::path& document, const std::filesystem::path& directory,
                                const PluginSet& plugins, Warnings& warnings, const ExportOptions& options) {
    ExportedMaterial exported = prepareExport(document, directory, plugins, warnings, options);
    writeExport(exported, directory);
    return exported;
}

} // namespace patina
