#include "tools/patina/contact_sheet.h"

#include "host/bindings_file.h"
#include "host/files.h"
#include "host/graphviz.h"
#include "host/material.h"
#include "host/show.h"
#include "nodemodel/text.h"
#include "tools/patina/graphviz_program.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <random>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

namespace patina::tool {

using namespace detail;

namespace {

/// A directory of this process alone, which goes with what is in it.
class WorkingDirectory {
public:
    WorkingDirectory() {
        std::error_code error;
        const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
        require(error);
        std::random_device random;
        do {
            path_ = parent / ("patina-" + std::to_string(random()));
            // one that is there already is somebody else's, and no error
        } while (!std::filesystem::create_directory(path_, error) && !error);
        require(error);
    }
    ~WorkingDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

    /// Writes a file, and gives its path.
    std::string write(const OutputFile& file) const {
        writeFiles(path_, {file});
        return (path_ / file.name).string();
    }

private:
    static void require(const std::error_code& error) {
        if (error) {
            throw HostError({}, joinText({"cannot make a directory for temporary files: ", reasonText(error),
                                          "; set TMPDIR to a directory that can be written to"}));
        }
    }

    std::filesystem::path path_;
};

/// Takes over the reports that are not there yet: the same texture may serve many nodes.
template <typename Report, typename Line>
void addNew(std::vector<Report>& all, const std::vector<Report>& more, const Line& line) {
    for (const Report& report : more) {
        const auto isSame = [&](const Report& other) { return line(other) == line(report); };
        if (std::none_of(all.begin(), all.end(), isSame)) {
            all.push_back(report);
        }
    }
}

std::string errorText(const HostError& error) { return error.what(); }

class SheetPainter {
public:
    SheetPainter(const MaterialDocument& document, const PluginSet& plugins, const PreviewOptions& options,
                 double seconds, Warnings& warnings, Errors& errors)
        : document_(document), plugins_(plugins), options_(options), seconds_(seconds), warnings_(warnings),
          errors_(errors) {
        constexpr std::size_t manyNodes = 48;
        isDense_ = document.nodes.size() > manyNodes;
        options_.width = (isDense_ ? denseGraphPictureSize : graphPictureSize) * pixelsPerPoint;
        options_.height = options_.width;
        options_.share = 0.96F;
        options_.background = PreviewBackground::Transparent;
    }

    std::string draw() {
        const Material material = buildMaterial(document_, plugins_, warnings_);
        GraphPictures pictures;
        pictures.dense = isDense_;
        attempt(&errors_, [&] { pictures.material = drawMaterial(); });
        options_.showValue = true;
        for (const MaterialItem& item : material.items) {
            pictures.nodes.push_back(item.node->outputs.empty() ? std::string() : drawNode(item));
        }
        return drawGraph(printMaterialGraph(material, pictures), "png");
    }

private:
    std::string drawMaterial() {
        Warnings sameAsAbove;
        Material material = buildMaterial(document_, plugins_, sameAsAbove);
        return drawPicture("material", material, options_);
    }

    std::string drawNode(const MaterialItem& item) {
        try {
            Warnings sameAsAbove;
            Material material = buildMaterial(showOutput(document_, item.id, ""), plugins_, sameAsAbove);
            return drawPicture("node" + std::to_string(count_++), material, optionsFor(material));
        } catch (const HostError& failure) {
            addNew(errors_, {failure}, errorText); // the material's own error, more often than not
            return {};
        }
    }

    /// The options without what is set for bindings of other nodes.
    PreviewOptions optionsFor(const Material& material) const {
        std::set<std::string> names;
        for (const std::shared_ptr<Binding>& binding : collectBindings(material).bindings) {
            names.insert(binding->name);
        }
        const auto isOfOthers = [&](const auto& entry) { return names.count(entry.first) == 0; };
        PreviewOptions options = options_;
        std::erase_if(options.textures, isOfOthers);
        std::erase_if(options.values, isOfOthers);
        std::erase_if(options.rates, isOfOthers);
        return options;
    }

    /// Draws a material into a file, and gives its path.
    std::string drawPicture(const std::string& name, Material& material, const PreviewOptions& options) {
        Warnings warnings;
        Errors errors;
        std::unique_ptr<Preview> preview;
        try {
            preview = makePreview(material, options, warnings, errors);
        } catch (...) {
            addReports(warnings, errors);
            throw;
        }
        addReports(warnings, errors);
        return directory_.write({name + ".png", preview->draw(seconds_, 0.0F)});
    }

    void addReports(const Warnings& warnings, const Errors& errors) {
        addNew(warnings_, warnings, [](const Warning& warning) {
            return diagnosticText(warning.position, "warning", warning.text);
        });
        addNew(errors_, errors, errorText);
    }

    const MaterialDocument& document_;
    const PluginSet& plugins_;
    PreviewOptions options_;
    double seconds_;
    Warnings& warnings_;
    Errors& errors_;
    WorkingDirectory directory_;
    std::size_t count_ = 0;
    bool isDense_ = false;
};

} // namespace

std::string drawContactSheet(const MaterialDocument& document, const PluginSet& plugins,
                             const PreviewOptions& options, double seconds, Warnings& warnings,
                             Errors& errors) {
    return SheetPainter(document, plugins, options, seconds, warnings, errors).draw();
}

} // namespace patina::tool
