#include "preview/preview.h"

#include "bindings/binding_kinds.h"
#include "host/document_xml.h"
#include "host/files.h"
#include "host/show.h"
#include "tools/patina/command.h"
#include "tools/patina/contact_sheet.h"
#include "tools/patina/terminal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace patina::tool {

using namespace detail;

namespace {

constexpr unsigned frameLimit = 10000;
constexpr int sampleLimit = 16;
constexpr double framesPerSecond = 25.0;

struct PreviewCommandOptions {
    std::string material;
    std::string output;
    std::string node;
    std::string size = "512";
    std::string background;
    std::string textureDirectory;
    std::vector<std::string> textures;
    std::vector<std::string> values;
    std::vector<std::string> rates;
    std::string time = "0";
    std::optional<unsigned> frames; ///< none for one picture without a number
    bool contactSheet = false;
    bool quiet = false;
    PreviewOptions preview;
};

// What stands on the command line

/// A number that is all of a text, whatever the locale.
template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number = {};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

/// Numbers between commas; none when one of them is not finite.
std::optional<std::vector<float>> parseNumbers(std::string_view text) {
    std::vector<float> numbers;
    for (bool isMore = true; isMore;) {
        const std::string_view part = text.substr(0, text.find(','));
        isMore = part.size() < text.size();
        text.remove_prefix(part.size() + (isMore ? 1 : 0));
        const std::optional<float> number = parseNumber<float>(part);
        if (!number || !std::isfinite(*number)) {
            return std::nullopt;
        }
        numbers.push_back(*number);
    }
    return numbers;
}

using NameAndText = std::pair<std::string, std::string>;

/// The two sides of the last "="; of a file's name the first, as it may have more.
std::optional<NameAndText> parseAssignment(const std::string& text, bool isFile) {
    const std::size_t sign = isFile ? text.find('=') : text.rfind('=');
    if (sign == std::string::npos || sign == 0 || sign + 1 == text.size()) {
        return std::nullopt;
    }
    return NameAndText{text.substr(0, sign), text.substr(sign + 1)};
}

/// W or WxH.
std::optional<std::pair<int, int>> parseSize(std::string_view text) {
    const std::size_t cross = text.find('x');
    const std::optional<int> width = parseNumber<int>(text.substr(0, cross));
    const std::optional<int> height =
        cross == std::string_view::npos ? width : parseNumber<int>(text.substr(cross + 1));
    const auto isSide = [](const std::optional<int>& side) {
        return side && *side >= 1 && *side <= pictureSideLimit;
    };
    if (!isSide(width) || !isSide(height)) {
        return std::nullopt;
    }
    return std::pair{*width, *height};
}

std::optional<std::array<float, 3>> parseColour(std::string_view text) {
    const auto numbers = parseNumbers(text);
    if (!numbers || numbers->size() != 3) {
        return std::nullopt;
    }
    return std::array<float, 3>{(*numbers)[0], (*numbers)[1], (*numbers)[2]};
}

std::optional<double> parseSeconds(std::string_view text) {
    const std::optional<double> seconds = parseNumber<double>(text);
    return seconds && std::isfinite(*seconds) ? seconds : std::nullopt;
}

constexpr const char* transparentName = "transparent";

bool isStandardOutput(const std::string& file) { return file == "-" || file == "/dev/stdout"; }

/// Whether a file's name does not promise another kind of image.
bool isPngName(const std::string& file) {
    const std::string ending = lowerCase(std::filesystem::path(file).extension().string());
    return ending.empty() || ending == ".png";
}

/// Refuses a text that cannot be used, and says what is wanted.
template <typename IsGood>
CLI::Validator wants(const std::string& wanted, IsGood isGood) {
    return {[=](const std::string& text) {
                return static_cast<bool>(isGood(text)) ? std::string() : "\"" + text + "\" is not " + wanted;
            },
            ""};
}

CLI::Validator wantsNumbersByName() {
    return wants("NAME=NUMBERS, with commas between the numbers", [](const std::string& text) {
        const auto assignment = parseAssignment(text, false);
        return assignment && parseNumbers(assignment->second);
    });
}

/// Takes over what the checks of the parser let through.
void takeOptions(PreviewCommandOptions& options) {
    PreviewOptions& preview = options.preview;
    std::tie(preview.width, preview.height) = *parseSize(options.size);
    for (const std::string& text : options.textures) {
        const NameAndText texture = *parseAssignment(text, true);
        preview.textures[texture.first] = texture.second;
    }
    for (const auto& [texts, target] :
         {std::pair{&options.values, &preview.values}, std::pair{&options.rates, &preview.rates}}) {
        for (const std::string& text : *texts) {
            const NameAndText value = *parseAssignment(text, false);
            (*target)[value.first] = *parseNumbers(value.second);
        }
    }
    if (options.background == transparentName) {
        preview.background = PreviewBackground::Transparent;
    } else if (!options.background.empty()) {
        preview.background = PreviewBackground::Colour;
        preview.colour = *parseColour(options.background);
    }
    preview.textureDirectory = options.textureDirectory.empty()
                                   ? std::filesystem::path(options.material).parent_path() / "textures"
                                   : std::filesystem::path(options.textureDirectory);
    preview.showValue = !options.node.empty();
}

// Drawing

/// A node and one of its ports from ID or ID:PORT; ids may have colons themselves.
std::pair<std::string, std::string> nodeAndPort(const std::string& text, const MaterialDocument& document) {
    const auto isNode = [&](const std::string& id) {
        return std::any_of(document.nodes.begin(), document.nodes.end(),
                           [&](const DocumentNode& node) { return node.id == id; });
    };
    const std::size_t colon = text.rfind(':');
    if (isNode(text) || colon == std::string::npos) {
        return {text, ""};
    }
    return {text.substr(0, colon), text.substr(colon + 1)};
}

MaterialDocument readShown(const PreviewCommandOptions& options) {
    MaterialDocument document = readMaterial(options.material);
    if (options.node.empty()) {
        return document;
    }
    const auto [node, port] = nodeAndPort(options.node, document);
    return showOutput(std::move(document), node, port);
}

/// Says that the directory of `--textures` is not there. One that nobody named need not be.
void requireTextureDirectory(const std::string& directory) {
    std::error_code ignored;
    if (!directory.empty() && !std::filesystem::is_directory(directory, ignored)) {
        throw HostError(
            {directory, 0},
            std::filesystem::exists(directory, ignored)
                ? "this is a file; give the directory that textures are in with --textures, and a "
                  "single image with --texture NAME=FILE"
                : "there is no such directory; give the one that textures are in with --textures");
    }
}

unsigned frameCount(const PreviewCommandOptions& options) { return options.frames.value_or(1); }

/// The name of the picture of a frame: that of the output, with the frame's number behind it where frames
/// were asked for.
std::filesystem::path frameFile(const PreviewCommandOptions& options, const std::filesystem::path& output,
                                unsigned frame) {
    if (!options.frames) {
        return output;
    }
    constexpr std::size_t fewestDigits = 3;
    const std::size_t digits = std::max(fewestDigits, std::to_string(*options.frames - 1).size());
    std::string number = std::to_string(frame);
    number.insert(0, digits - number.size(), '0');
    std::filesystem::path file = output;
    return file.replace_filename(output.stem().string() + "_" + number + output.extension().string());
}

/// Refuses an output from which no names of frames can be made: a directory, a device or a pipe.
void requireNameForFrames(const PreviewCommandOptions& options) {
    const std::filesystem::path output = options.output;
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(output, ignored);
    const bool isFile = !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
    if (options.frames && !options.output.empty() &&
        (!output.has_filename() || !isFile || isStandardOutput(options.output))) {
        throw HostError({options.output, 0}, "this is no file that can be numbered; each of the frames is "
                                             "a file of its own: give a name such as turn.png");
    }
}

/// Opening /dev/stdout anew would begin a file that it leads to from its start.
void writePicture(const std::filesystem::path& file, const std::string& content) {
    if (isStandardOutput(file.string())) {
        std::cout << content;
    } else {
        writeFileOrStream(file, content);
    }
}

void drawFrames(Preview& preview, const PreviewCommandOptions& options, const std::filesystem::path& output) {
    const unsigned count = frameCount(options);
    Progress progress(count, !options.quiet && count > 1);
    for (unsigned frame = 0; frame < count; ++frame) {
        const double seconds = *parseSeconds(options.time) + frame / framesPerSecond;
        const float turn = static_cast<float>(frame) / static_cast<float>(count);
        const std::filesystem::path file = frameFile(options, output, frame);
        writePicture(file, preview.draw(seconds, turn));
        progress.show(frame + 1, file.string());
    }
}

void printSummary(const PreviewCommandOptions& options, const std::string& material,
                  const std::filesystem::path& output) {
    std::cout << material << ": " << oneLine(frameFile(options, output, 0).string());
    const unsigned count = frameCount(options);
    if (count > 1) {
        std::cout << " to " << oneLine(frameFile(options, output, count - 1).filename().string());
    }
    std::cout << ", " << options.preview.width << " by " << options.preview.height << " pixels\n";
}

/// Nothing may stand beside a picture.
bool isSummaryWanted(const PreviewCommandOptions& options) {
    return !options.quiet && !isStandardOutput(options.output);
}

void printReports(const Warnings& warnings, const Errors& errors) {
    printWarnings(warnings);
    for (const HostError& error : errors) {
        printDiagnostic(error.what());
    }
}

int runContactSheet(const PreviewCommandOptions& options, const PluginSet& plugins) {
    Warnings warnings;
    Errors errors;
    const MaterialDocument document = readMaterial(options.material);
    std::string sheet;
    try {
        attempt(&errors, [&] { requireTextureDirectory(options.textureDirectory); });
        sheet = drawContactSheet(document, plugins, options.preview, *parseSeconds(options.time), warnings,
                                 errors);
    } catch (...) {
        printReports(warnings, errors);
        throw;
    }
    printReports(warnings, errors);
    const std::filesystem::path output = options.output.empty() ? document.name + ".png" : options.output;
    writePicture(output, sheet);
    if (isSummaryWanted(options)) {
        std::cout << document.name << ": " << oneLine(output.string()) << ", "
                  << counted(document.nodes.size(), "node") << '\n';
    }
    return errors.empty() ? success : failure;
}

int runPreview(PreviewCommandOptions& options, const CommandLine& commandLine) {
    takeOptions(options);
    const PluginSet plugins = loadPlugins(commandLine);
    if (options.contactSheet) {
        return runContactSheet(options, plugins);
    }
    requireNameForFrames(options);
    Warnings warnings;
    Errors errors;
    std::unique_ptr<Preview> preview;
    std::optional<Material> material;
    try {
        attempt(&errors, [&] { requireTextureDirectory(options.textureDirectory); });
        material = buildMaterial(readShown(options), plugins, warnings);
        preview = makePreview(*material, options.preview, warnings, errors);
    } catch (...) {
        printReports(warnings, errors);
        throw;
    }
    printReports(warnings, errors);
    const std::filesystem::path output = options.output.empty() ? material->name + ".png" : options.output;
    drawFrames(*preview, options, output);
    if (isSummaryWanted(options)) {
        printSummary(options, material->name, output);
    }
    return errors.empty() ? success : failure;
}

void addAppearanceOptions(CLI::App& command, PreviewCommandOptions& options) {
    command
        .add_option("--mesh", options.preview.mesh,
                    "sphere, plane, cube or an OBJ file; a sphere unless given")
        ->type_name("MESH")
        ->check(notEmpty());
    command.add_option("--texture", options.textures, "the image of a texture; may be given repeatedly")
        ->type_name("NAME=FILE")
        ->allow_extra_args(false)
        ->check(wants("NAME=FILE", [](const std::string& text) { return parseAssignment(text, true); }));
    command
        .add_option(
            "--textures", options.textureDirectory,
            "where the other textures are, as NAME.png; \"textures\" beside the material unless given")
        ->type_name("DIRECTORY")
        ->check(notEmpty());
    command.add_option("--set", options.values, "the value of a parameter; may be given repeatedly")
        ->type_name("NAME=NUMBERS")
        ->allow_extra_args(false)
        ->check(wantsNumbersByName());
    command
        .add_option("--animate", options.rates,
                    "by how much a parameter grows in a second; may be given repeatedly")
        ->type_name("NAME=NUMBERS")
        ->allow_extra_args(false)
        ->check(wantsNumbersByName());
    command
        .add_option("--node", options.node,
                    "show the value that a node gives, without light; its first output unless PORT is given")
        ->type_name("ID[:PORT]")
        ->check(notEmpty());
    command
        .add_option("--background", options.background,
                    "R,G,B in linear light, or \"transparent\"; a grey studio unless given")
        ->type_name("COLOUR")
        ->check(wants("R,G,B or \"transparent\"",
                      [](const std::string& text) { return text == transparentName || parseColour(text); }));
}

void addContactSheetOption(CLI::App& command, PreviewCommandOptions& options) {
    CLI::Option* sheet = command.add_flag(
        "--contact-sheet", options.contactSheet,
        "draw the graph instead, and in each node what its first output gives; needs Graphviz");
    for (const char* other : {"--node", "--size", "--frames", "--background"}) {
        sheet->excludes(other);
    }
}

void addPictureOptions(CLI::App& command, PreviewCommandOptions& options) {
    command
        .add_option("-o,--output", options.output,
                    "the PNG file to write, or - for standard output; the material's name with .png unless "
                    "given")
        ->type_name("FILE")
        ->check(notEmpty())
        ->check(wants("the name of a PNG file; a picture is one, such as turn.png", isPngName));
    command.add_option("--size", options.size, "pixels; 512 unless given")
        ->type_name("W[xH]")
        ->check(wants("W or WxH, of 1 to " + std::to_string(pictureSideLimit) + " pixels",
                      [](const std::string& text) { return parseSize(text); }));
    command.add_option("--samples", options.preview.samples, "N by N samples for each pixel; 4 unless given")
        ->type_name("N")
        ->check(CLI::Range(1, sampleLimit).description(""));
    command.add_option("--time", options.time, "the seconds that have passed; 0 unless given")
        ->type_name("SECONDS")
        ->check(wants("a number of seconds", [](const std::string& text) { return parseSeconds(text); }));
    command
        .add_option("--frames", options.frames,
                    "draw a full turn in that many pictures, FILE_000.png and on, a 25th of a second apart")
        ->type_name("N")
        ->check(CLI::Range(1U, frameLimit).description(""));
}

} // namespace

void addPreviewCommand(CommandLine& commandLine) {
    const auto options = std::make_shared<PreviewCommandOptions>();
    CLI::App* command = commandLine.parser.add_subcommand("preview", "Draw a picture of a material.");
    command->add_option("material", options->material, "the material document, an XML file")
        ->required()
        ->type_name("MATERIAL.xml")
        ->check(notEmpty());
    addPictureOptions(*command, *options);
    addAppearanceOptions(*command, *options);
    addContactSheetOption(*command, *options);
    addPluginOption(*command, commandLine);
    command->add_flag("-q,--quiet", options->quiet, "print nothing but warnings and errors");
    command->footer("Needs no window and no graphics card: OpenGL draws, by EGL. A texture that is not there "
                    "is a grey\n"
                    "checker that bears its name.\n\n"
                    "Examples:\n"
                    "  patina preview painted_metal.xml -o painted_metal.png\n"
                    "  patina preview painted_metal.xml --mesh cube --set Tint=0.1,0.3,0.9\n"
                    "  patina preview painted_metal.xml --node chips --texture Paint=old_paint.jpg\n"
                    "  patina preview painted_metal.xml --contact-sheet -o graph.png\n"
                    "  patina preview painted_metal.xml --frames 100 --animate RainFrame=12\n\n"
                    "Exit code: 0 when all went well, 1 for an error in the material or its textures, 2 for\n"
                    "wrong usage.");
    command->callback(
        [options, &commandLine] { commandLine.run = [&] { return runPreview(*options, commandLine); }; });
}

} // namespace patina::tool
