#include "tests/fuzz/export_checks.h"

#include "nodemodel/text.h"
#include "translation/translator.h"

#include <spirv-tools/libspirv.hpp>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace patina::fuzz {

using namespace detail;

namespace {

void requireValidModule(const std::string& module, const std::string& program) {
    std::vector<std::uint32_t> words(module.size() / sizeof(std::uint32_t));
    std::memcpy(words.data(), module.data(), words.size() * sizeof(std::uint32_t));
    static spvtools::SpirvTools tools(SPV_ENV_VULKAN_1_0);
    std::string complaint;
    tools.SetMessageConsumer([&](spv_message_level_t /*level*/, const char* /*source*/,
                                 const spv_position_t& /*position*/, const char* message) {
        appendText(complaint, {"\n", message});
    });
    const bool isValid = tools.Validate(words);
    require(isValid,
            joinText({"The compiler made an invalid module of a program:", complaint, "\n", program}));
}

/// Null where this was built without one.
std::unique_ptr<ShaderTranslator> makeCompiler() {
    try {
        return makeTranslator();
    } catch (const HostError&) {
        return nullptr;
    }
}

const ShaderTranslator* compiler() {
    static const std::unique_ptr<ShaderTranslator> made = makeCompiler();
    return made.get();
}

void requireCompiles(ProgramStage stage, const std::string& program) {
    if (compiler() == nullptr) {
        return;
    }
    try {
        const auto translated = compiler()->translate(stage, program, {{TargetLanguage::Spirv, 10}});
        requireValidModule(translated.front().content, program);
    } catch (const TranslationError& error) {
        require(false, joinText({"The compiler refuses a program: ", error.what(), " (line ",
                                 std::to_string(error.line()), ")\n", program}));
    }
}

void requireCompiles(const ExportedMaterial& exported) {
    requireCompiles(ProgramStage::Vertex, exported.vertexProgram.content);
    requireCompiles(ProgramStage::Fragment, exported.fragmentProgram.content);
}

ExportOptions exportOptions() {
    ExportOptions options;
    options.json = true;
    options.print.annotate = true;
    return options;
}

/// The export, or why there is none.
std::optional<ExportedMaterial> tryExport(Material& material, std::string& reason) {
    try {
        Warnings warnings;
        return exportMaterial(material, warnings, exportOptions());
    } catch (const HostError& error) {
        reason = error.what();
        return std::nullopt;
    }
}

/// Looking for everything that is wrong finds something exactly where the export does.
void requireAgreement(bool isExported, const std::string& reason, const Errors& errors) {
    if (isExported && !errors.empty()) {
        require(false, joinText({"The check finds an error, and the export none: ", errors.front().what()}));
    }
    require(isExported || !errors.empty(),
            joinText({"The check finds nothing wrong, and the export fails: ", reason}));
}

/// Nobody changed anything in the bindings file of the first export: the second says the same.
void checkExportAgain(Material& material, const ExportedMaterial& first) {
    const SavedBindings saved = parseBindings(first.bindings.content, "fuzz.bindings.xml");
    Warnings before;
    restoreSavedValues(material, collectBindings(material), before);
    Warnings warnings;
    const ExportedMaterial second = exportMaterial(material, warnings, exportOptions(), saved);
    require(second.bindings.content == first.bindings.content,
            joinText({"A second export carries over what nobody changed:\n", first.bindings.content, "\n",
                      second.bindings.content}));
    require(warnings.size() == before.size(), "A second export warns of what nobody changed.");
}

/// What can be exported can be drawn too, as the programs that it becomes.
void checkDrawingOfPrograms(Material& material) {
    resolveMaterial(material);
    const GeneratedGraph graph = generateGraph(material);
    const Dataflow flow = joinGraph(material, graph);
    require(isDocumentText(printShaderGraph(material, flow, placeInStages(material, flow))),
            "Programs are not drawn in UTF-8.");
}

/// A document that is full of errors can be drawn nevertheless.
void checkDrawing(const MaterialDocument& document) {
    Warnings warnings;
    Errors errors;
    try {
        const Material material = buildMaterial(document, corePlugins(), warnings, &errors);
        require(isDocumentText(printMaterialGraph(material)), "A graph is not drawn in UTF-8.");
    } catch (const HostError& error) {
        require(false, joinText({"A document cannot be drawn: ", error.what()}));
    }
}

std::optional<Material> tryBuild(const MaterialDocument& document, std::string& reason) {
    Warnings warnings;
    try {
        return buildMaterial(document, corePlugins(), warnings);
    } catch (const HostError& error) {
        reason = error.what();
        return std::nullopt;
    }
}

} // namespace

void require(bool condition, std::string_view text) {
    if (!condition) {
        std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
        std::abort();
    }
}

const PluginSet& corePlugins() {
    static const PluginSet plugins = [] {
        PluginSet set;
        set.add(PATINA_CORE_PLUGIN);
        return set;
    }();
    return plugins;
}

void checkExport(const MaterialDocument& document, bool compile) {
    checkDrawing(document);
    std::string reason;
    std::optional<Material> material = tryBuild(document, reason);
    const auto exported = material ? tryExport(*material, reason) : std::nullopt;
    const CheckReport report = checkMaterial(document, corePlugins());
    requireAgreement(exported.has_value(), reason, report.errors);
    if (!exported) {
        return;
    }
    checkExportAgain(*material, *exported);
    checkDrawingOfPrograms(*material);
    if (compile) {
        requireCompiles(*exported);
    }
}

void checkAssembly(Material& material) {
    std::string reason;
    const auto exported = tryExport(material, reason);
    Errors errors;
    Warnings ignored;
    findErrors(material, errors, ignored);
    requireAgreement(exported.has_value(), reason, errors);
    if (!exported) {
        return;
    }
    checkExportAgain(material, *exported);
    checkDrawingOfPrograms(material);
    ExportOptions options;
    options.targets = {{TargetLanguage::Spirv, 10}};
    options.translator = compiler();
    Warnings warnings;
    try {
        exportMaterial(material, warnings, options);
    } catch (const HostError&) {
        return; // the nodes' code need not compile
    }
}

void checkShown(const MaterialDocument& document, const std::string& nodeId, const std::string& port) {
    ExportOptions options;
    options.showValue = true;
    Warnings warnings;
    try {
        Material material = buildMaterial(showOutput(document, nodeId, port), corePlugins(), warnings);
        requireCompiles(exportMaterial(material, warnings, options));
    } catch (const HostError&) {
        return;
    }
}

} // namespace patina::fuzz
