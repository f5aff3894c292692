#include "host/export.h"
#include "host/targets.h"
#include "tools/patina/command.h"
#include "tools/patina/in_order.h"
#include "tools/patina/terminal.h"
#include "translation/translator.h"

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace patina::tool {

namespace {

constexpr std::size_t threadLimit = 256;

struct ExportCommandOptions {
    std::vector<std::string> materials;
    std::string directory = ".";
    std::string framework = "patina";
    std::vector<std::string> targets;
    std::size_t threadCount = 1;
    bool quiet = false;
    ExportOptions exporting;
};

/// One material on its way from the command line into the directory.
struct Job {
    std::optional<ExportedMaterial> exported; ///< nothing when it failed
    Warnings warnings;
    std::string error; ///< the line for the user, or empty
};

void printFile(const std::filesystem::path& file, std::size_t count, const std::string& noun) {
    std::cout << "  " << oneLine(file.string()) << ": " << counted(count, noun) << '\n';
}

void printSummary(const ExportedMaterial& exported, const std::filesystem::path& directory) {
    std::cout << exported.name << ": " << counted(exported.nodeCount, "node") << ", "
              << counted(exported.connectionCount, "connection") << ", "
              << counted(exported.interpolantCount, "interpolant register") << '\n';
    if (exported.writesCg) {
        printFile(directory / exported.vertexProgram.name, exported.vertexFunctionCount, "call");
        printFile(directory / exported.fragmentProgram.name, exported.fragmentFunctionCount, "call");
    }
    for (const TargetProgram& program : exported.targetPrograms) {
        printFile(directory / program.file.name,
                  program.stage == ProgramStage::Vertex ? exported.vertexFunctionCount
                                                        : exported.fragmentFunctionCount,
                  "call");
    }
    printFile(directory / exported.bindings.name, exported.bindingCount, "binding");
    if (exported.bindingsJson) {
        printFile(directory / exported.bindingsJson->name, exported.bindingCount, "binding");
    }
}

/// Exports materials side by side; what is printed and written comes in the order of the command line.
class Exporter {
public:
    Exporter(const ExportCommandOptions& options, const PluginSet& plugins)
        : options_(options), plugins_(plugins), jobs_(options.materials.size()),
          progress_(jobs_.size(), !options.quiet && jobs_.size() > 1) {}

    int run() {
        prepareAndFinishInOrder(
            jobs_.size(), options_.threadCount, [&](std::size_t index) { prepare(index); },
            [&](std::size_t index) { finish(index); });
        progress_.clear();
        if (!options_.quiet && jobs_.size() > 1) {
            std::cout << counted(jobs_.size() - failedCount_, "material") << " exported, "
                      << counted(changedCount_, "file") << " changed\n";
        }
        return failedCount_ == 0 ? success : failure;
    }

private:
    void prepare(std::size_t index) {
        Job& job = jobs_[index];
        guard(job, [&] {
            job.exported = prepareExport(options_.materials[index], options_.directory, plugins_,
                                         job.warnings, options_.exporting);
        });
    }

    void finish(std::size_t index) {
        Job job = std::exchange(jobs_[index], {});
        if (job.exported) {
            guard(job, [&] { write(*job.exported, options_.materials[index]); });
        }
        progress_.clear();
        printWarnings(job.warnings);
        if (!job.error.empty()) {
            ++failedCount_;
            printDiagnostic(job.error);
        } else if (!options_.quiet && jobs_.size() == 1) {
            printSummary(*job.exported, options_.directory);
        }
        progress_.show(index + 1, options_.materials[index]);
    }

    void write(const ExportedMaterial& exported, const std::string& file) {
        const auto [earlier, isNew] = fileByName_.try_emplace(exported.name, file);
        if (!isNew) {
            throw HostError({file, 1},
                            "this material has the name \"" + exported.name + "\" of that in " +
                                earlier->second +
                                ", and would replace its files; rename one of them, or export them "
                                "into different directories");
        }
        changedCount_ += writeExport(exported, options_.directory);
    }

    /// Runs a part of a job; what it throws becomes the job's error.
    template <typename Action>
    static void guard(Job& job, Action&& action) {
        try {
            action();
        } catch (...) {
            job.error = errorLine();
        }
    }

    const ExportCommandOptions& options_;
    const PluginSet& plugins_;
    std::vector<Job> jobs_;
    Progress progress_;
    std::map<std::string, std::string> fileByName_;
    std::size_t failedCount_ = 0;
    std::size_t changedCount_ = 0;
};

constexpr const char* targetOption = "--target";

void appendTarget(std::vector<ShaderTarget>& targets, const std::string& text) {
    if (text.empty()) {
        throw CLI::ValidationError(targetOption,
                                   "a language is missing beside a comma; there are " + targetsText());
    }
    const std::optional<ShaderTarget> target = parseTarget(text);
    if (!target) {
        throw CLI::ValidationError(targetOption, "there is no \"" + text + "\"; there are " + targetsText());
    }
    const auto isSame = [&](const ShaderTarget& earlier) { return earlier.language == target->language; };
    if (std::any_of(targets.begin(), targets.end(), isSame)) {
        throw CLI::ValidationError(targetOption, "\"" + targetName(target->language) +
                                                     "\" is there twice, and its files have one name; "
                                                     "export the versions into different directories");
    }
    targets.push_back(*target);
}

/// The targets that the user named, in lists with commas. Throws CLI::ValidationError for one that does not
/// exist, and for a language that is named twice.
std::vector<ShaderTarget> parseTargets(const std::vector<std::string>& lists) {
    std::vector<ShaderTarget> targets;
    for (const std::string& list : lists) {
        for (std::size_t begin = 0; begin <= list.size();) {
            const std::size_t end = std::min(list.find(',', begin), list.size());
            appendTarget(targets, list.substr(begin, end - begin));
            begin = end + 1;
        }
    }
    return targets;
}

bool needsTranslator(const std::vector<ShaderTarget>& targets) {
    const auto isOther = [](const ShaderTarget& target) { return target.language != TargetLanguage::Cg; };
    return std::any_of(targets.begin(), targets.end(), isOther);
}

int runExport(ExportCommandOptions& options, const CommandLine& commandLine) {
    options.exporting.print.framework = options.framework == "patina";
    if (options.threadCount == 0) {
        options.threadCount = std::max(1U, std::thread::hardware_concurrency());
    }
    std::unique_ptr<ShaderTranslator> translator;
    if (needsTranslator(options.exporting.targets)) {
        translator = makeTranslator();
        options.exporting.translator = translator.get();
    }
    const PluginSet plugins = loadPlugins(commandLine);
    return Exporter(options, plugins).run();
}

} // namespace

void addExportCommand(CommandLine& commandLine) {
    const auto options = std::make_shared<ExportCommandOptions>();
    CLI::App* command =
        commandLine.parser.add_subcommand("export", "Write the shaders and bindings of materials.");
    command->add_option("materials", options->materials, "material documents, XML files")
        ->required()
        ->type_name("MATERIAL.xml")
        ->check(notEmpty());
    command->add_option("-o,--output", options->directory, "where to write; made when missing")
        ->type_name("DIRECTORY")
        ->check(notEmpty());
    addPluginOption(*command, commandLine);
    command
        ->add_option("-j,--jobs", options->threadCount,
                     "how many materials to export at once; 0 for one on each processor")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{0}, threadLimit));
    command
        ->add_option(
            targetOption, options->targets,
            "the languages of the programs, separated by commas or given repeatedly: cg, hlsl, glsl, "
            "essl, msl, spirv, or with a version, glsl:450; cg without this option")
        ->type_name("LIST")
        ->allow_extra_args(false);
    command
        ->add_option("--framework", options->framework,
                     "\"none\" leaves the framework's functions out, for those who have their own")
        ->check(CLI::IsMember({"patina", "none"}));
    command->add_flag("--annotate", options->exporting.print.annotate,
                      "in Cg, write a comment with node and types over each call");
    // -MD is a short option of two letters, as compilers have it
    command->add_flag("--depfile", options->exporting.dependencyFile,
                      "write NAME.d too, a rule for Make and Ninja; -MD means the same");
    command->add_flag("--json", options->exporting.json, "write the bindings as NAME.bindings.json too");
    command->add_flag("-q,--quiet", options->quiet, "print nothing but warnings and errors");
    command->footer("Writes NAME.vert.cg, NAME.frag.cg and NAME.bindings.xml for each material, all or none. "
                    "A file\n"
                    "that would not change is left alone. What an artist changed in an earlier\n"
                    "NAME.bindings.xml is carried over.\n\n"
                    "Examples:\n"
                    "  patina export painted_metal.xml\n"
                    "  patina export -j 0 -MD -o shaders materials/*.xml\n"
                    "  patina export painted_metal.xml --target glsl:450,spirv\n"
                    "  patina export painted_metal.xml --framework none --plugin studio_nodes.so\n\n"
                    "Exit code: 0 when all went well, 1 for an error in a material, 2 for wrong usage.");
    command->callback([options, &commandLine] {
        options->exporting.targets = parseTargets(options->targets);
        commandLine.run = [options, &commandLine] { return runExport(*options, commandLine); };
    });
}

} // namespace patina::tool
