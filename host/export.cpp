#include "host/export.h"

#include "host/assemble.h"
#include "host/bindings_file.h"
#include "host/bindings_json.h"
#include "host/resolve.h"
#include "nodemodel/text.h"

#include <string_view>

namespace patina {

using namespace detail;

namespace {

std::string bindingsFileName(const Material& material) { return material.name + ".bindings.xml"; }

std::vector<OutputFile> filesOf(const ExportedMaterial& exported) {
    std::vector<OutputFile> files;
    if (exported.writesCg) {
        files = {exported.vertexProgram, exported.fragmentProgram};
    }
    for (const TargetProgram& program : exported.targetPrograms) {
        files.push_back(program.file);
    }
    files.push_back(exported.bindings);
    for (const std::optional<OutputFile>* file : {&exported.bindingsJson, &exported.dependencies}) {
        if (*file) {
            files.push_back(**file);
        }
    }
    return files;
}

// What Make takes for more than a part of a name, where a backslash before it does not say otherwise.
constexpr std::string_view specialInTargets = " #:%";
constexpr std::string_view specialInPrerequisites = " #:|";

/// A file name as Make reads it in a rule. A backslash stands for itself, except before what is special and
/// at the end, where each is doubled. Ninja reads the same, but takes the backslash of `\%` and `\|` and
/// doubled ones for parts of the name. Make has no way to write `;`, `=` and `(` with `)` at the end.
std::string makeName(const std::filesystem::path& file, std::string_view special) {
    std::string name;
    std::size_t backslashes = 0;
    for (const char letter : file.string()) {
        if (special.find(letter) != std::string_view::npos) {
            name.append(backslashes + 1, '\\');
        } else if (letter == '$') {
            name += '$';
        }
        name += letter;
        backslashes = letter == '\\' ? backslashes + 1 : 0;
    }
    return name.append(backslashes, '\\');
}

/// A Make rule: the files depend on the document and on the plug-ins.
std::string printDependencies(const ExportedMaterial& exported, const std::filesystem::path& document,
                              const std::filesystem::path& directory, const PluginSet& plugins) {
    std::string text;
    for (const OutputFile& file : filesOf(exported)) {
        appendText(text, {text.empty() ? "" : " ",
                          makeName((directory / file.name).lexically_normal(), specialInTargets)});
    }
    appendText(text, {": ", makeName(document.lexically_normal(), specialInPrerequisites)});
    for (const std::shared_ptr<Plugin>& plugin : plugins.plugins()) {
        appendText(text, {" \\\n ", makeName(plugin->file().lexically_normal(), specialInPrerequisites)});
    }
    return text + '\n';
}

} // namespace

ExportedMaterial exportMaterial(Material& material, Warnings& warnings, const ExportOptions& options,
                                const SavedBindings& saved) {
    resolveMaterial(material);
    const AssembledShader shader = assembleShader(
        material, options.print, options.showValue ? ColourWidth::Any : ColourWidth::OneOrThree);

    ExportedMaterial result;
    result.name = material.name;
    result.vertexProgram = {material.name + ".vert.cg", printVertexProgram(shader)};
    result.fragmentProgram = {material.name + ".frag.cg", printFragmentProgram(shader)};

    result.lit = shader.flow.lit;
    result.writesCg = wantsCg(options.targets);
    result.targetPrograms = translatePrograms(shader, options.targets, options.translator);

    BindingsFile bindings;
    bindings.material = material.name;
    if (result.writesCg) {
        bindings.programs = {describeProgram(vertexStageName, result.vertexProgram),
                             describeProgram(fragmentStageName, result.fragmentProgram)};
    }
    for (const TargetProgram& program : result.targetPrograms) {
        bindings.programs.push_back(describeProgram(program));
    }
    const BindingCollection collected = collectBindings(material);
    restoreSavedValues(material, collected, warnings);
    bindings.bindings =
        describeBindings(collected, shader.flow, result.writesCg ? shader.registers : RegisterAssignment());
    carryOverArtistValues(saved, bindings.bindings, warnings);
    result.bindings = {bindingsFileName(material), printBindings(bindings)};
    if (options.json) {
        result.bindingsJson = {material.name + ".bindings.json", printBindingsJson(bindings)};
    }

    result.nodeCount = material.items.size();
    result.connectionCount = material.connections.size();
    result.vertexFunctionCount = shader.stages.vertex.functions.size();
    result.fragmentFunctionCount = shader.stages.fragment.functions.size();
    result.interpolantCount = shader.stages.registers.size();
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
