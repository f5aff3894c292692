#include "host/diagnostic.h"
#include "host/files.h"
#include "nodemodel/text.h"
#include "preview/mesh.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <optional>

namespace patina::preview {

using namespace detail;

namespace {

constexpr std::size_t fileLimit = std::size_t{256} * 1024 * 1024;
constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

/// The corner of a face: where its position, texture coordinates and normal are, or `none`.
struct Corner {
    std::size_t position = none;
    std::size_t uv = none;
    std::size_t normal = none;

    // NOLINTNEXTLINE(modernize-use-nullptr): what is compared with 0 is no pointer
    auto operator<=>(const Corner&) const = default;
};

/// As exact as the file, which may have a small mesh far from its origin.
using Position = std::array<double, 3>;

float narrow(double value) { return static_cast<float>(value); }

/// A text without its plus sign.
std::string_view unsignedText(std::string_view text) {
    const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return text.substr(hasPlus ? 1 : 0);
}

/// Whether a number that is out of range is too small rather than too large.
bool isTiny(std::string_view number) {
    const std::size_t exponent = number.find_first_of("eE");
    return exponent == std::string_view::npos ? number.find_first_not_of("-0") == number.find('.')
                                              : number.substr(exponent + 1).starts_with('-');
}

/// A number that is all of a text; 0 for one that is too small.
std::optional<double> parseNumber(std::string_view text) {
    const std::string_view number = unsignedText(text);
    double value = 0.0;
    const char* end = number.data() + number.size();
    const auto [stop, error] = std::from_chars(number.data(), end, value);
    if (stop != end) {
        return std::nullopt;
    }
    if (error == std::errc::result_out_of_range && isTiny(number)) {
        return 0.0;
    }
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

class ObjReader {
public:
    explicit ObjReader(std::string file) : file_(std::move(file)) {}

    Mesh read(std::string_view text) {
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        text.remove_prefix(text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
        while (!text.empty()) {
            line_ = nextLine_;
            readLine(takeStatement(text));
        }
        if (mesh_.indices.empty()) {
            throw HostError({file_, 0}, "this file has no faces to show; save a mesh as Wavefront OBJ");
        }
        scale();
        if (lacksUvs_) {
            useProjectedUvs();
        }
        if (lacksNormals_) {
            useSmoothNormals();
        }
        makeTangents();
        return std::move(mesh_);
    }

private:
    [[noreturn]] void fail(std::initializer_list<std::string_view> pieces) const {
        throw HostError({file_, line_}, joinText(pieces));
    }

    /// What is left of a text loses a line, and those after it as long as one ends with a backslash. Gives
    /// them without comments.
    std::string takeStatement(std::string_view& text) {
        std::string statement;
        for (bool isMore = true; isMore && !text.empty(); ++nextLine_) {
            const std::size_t size = std::min(text.find('\n'), text.size());
            std::string_view line = text.substr(0, size);
            text.remove_prefix(std::min(size + 1, text.size()));
            line = line.substr(0, line.find('#'));
            if (line.ends_with('\r')) {
                line.remove_suffix(1);
            }
            isMore = line.ends_with('\\');
            appendText(statement, {line.substr(0, line.size() - (isMore ? 1 : 0)), " "});
        }
        return statement;
    }

    static std::vector<std::string_view> words(std::string_view line) {
        constexpr std::string_view blanks = " \t\r";
        std::vector<std::string_view> found;
        for (std::size_t begin = line.find_first_not_of(blanks); begin != std::string_view::npos;
             begin = line.find_first_not_of(blanks, begin)) {
            const std::size_t end = std::min(line.find_first_of(blanks, begin), line.size());
            found.push_back(line.substr(begin, end - begin));
            begin = end;
        }
        return found;
    }

    void readLine(std::string_view line) {
        const std::vector<std::string_view> parts = words(line);
        if (parts.empty()) {
            return;
        }
        if (parts[0] == "v") {
            readPosition(parts);
        } else if (parts[0] == "vt") {
            const std::vector<double> values = numbers(parts, 1);
            uvs_.push_back({narrow(values[0]), values.size() > 1 ? narrow(values[1]) : 0.0F});
        } else if (parts[0] == "vn") {
            const std::vector<double> values = numbers(parts, 3);
            normals_.push_back(
                normalised({narrow(values[0]), narrow(values[1]), narrow(values[2])}, {0.0F, 0.0F, 1.0F}));
        } else if (parts[0] == "f") {
            readFace(parts);
        } // groups, materials, lines and curves do not matter here
    }

    /// What follows the first word, at least that many.
    std::vector<double> numbers(const std::vector<std::string_view>& parts, std::size_t least) const {
        constexpr double largest = 1.0e18; // of which a mesh can still be computed
        std::vector<double> values;
        for (std::size_t i = 1; i < parts.size(); ++i) {
            const std::optional<double> value = parseNumber(parts[i]);
            if (!value || !(std::abs(*value) <= largest)) {
                fail({"\"", parts[i], "\" is no number"});
            }
            values.push_back(*value);
        }
        if (values.size() < least) {
            fail({"\"", parts[0], "\" needs ", std::to_string(least), " numbers"});
        }
        return values;
    }

    void readPosition(const std::vector<std::string_view>& parts) {
        constexpr std::size_t withColour = 6;
        const std::vector<double> values = numbers(parts, 3);
        positions_.push_back({values[0], values[1], values[2]});
        colours_.push_back(values.size() < withColour
                               ? Vec4{1.0F, 1.0F, 1.0F, 1.0F}
                               : Vec4{narrow(values[3]), narrow(values[4]), narrow(values[5]), 1.0F});
    }

    /// An index, from 1 on, or counting back from the last one that was read; `none` for no text.
    std::size_t index(std::string_view text, std::size_t count, std::string_view what) const {
        if (text.empty()) {
            return none;
        }
        long long number = 0;
        const std::string_view digits = unsignedText(text);
        const char* end = digits.data() + digits.size();
        const auto [stop, error] = std::from_chars(digits.data(), end, number);
        const auto limit = static_cast<long long>(count);
        if (error != std::errc() || stop != end) {
            fail({"\"", text, "\" is no index of a ", what});
        }
        if (number == 0 || number > limit || number < -limit) {
            fail({"there is no ", what, " ", text, "; there are ", std::to_string(count), " up to here"});
        }
        return static_cast<std::size_t>(number > 0 ? number - 1 : limit + number);
    }

    Corner corner(std::string_view text) const {
        std::array<std::string_view, 3> fields = {};
        for (std::string_view& field : fields) {
            field = text.substr(0, text.find('/'));
            text.remove_prefix(std::min(field.size() + 1, text.size()));
        }
        const Corner corner = {index(fields[0], positions_.size(), "position"),
                               index(fields[1], uvs_.size(), "texture coordinate"),
                               index(fields[2], normals_.size(), "normal")};
        if (corner.position == none || !text.empty()) {
            fail({"a corner of a face is POSITION, POSITION/TEXTURE, POSITION//NORMAL or "
                  "POSITION/TEXTURE/NORMAL"});
        }
        return corner;
    }

    /// A polygon as a fan of triangles.
    void readFace(const std::vector<std::string_view>& parts) {
        constexpr std::size_t least = 3;
        if (parts.size() < least + 1) {
            fail({"a face needs at least 3 corners"});
        }
        std::vector<std::uint32_t> polygon;
        for (std::size_t i = 1; i < parts.size(); ++i) {
            polygon.push_back(vertex(corner(parts[i])));
        }
        for (std::size_t i = 2; i < polygon.size(); ++i) {
            mesh_.indices.insert(mesh_.indices.end(), {polygon[0], polygon[i - 1], polygon[i]});
        }
    }

    std::uint32_t vertex(const Corner& corner) {
        const auto [entry, isNew] =
            vertices_.try_emplace(corner, static_cast<std::uint32_t>(mesh_.vertices.size()));
        if (isNew) {
            Vertex made;
            made.colour = colours_[corner.position];
            lacksUvs_ = lacksUvs_ || corner.uv == none;
            lacksNormals_ = lacksNormals_ || corner.normal == none;
            made.uv = corner.uv == none ? Vec2{} : uvs_[corner.uv];
            made.normal = corner.normal == none ? Vec3{} : normals_[corner.normal];
            mesh_.vertices.push_back(made);
            corners_.push_back(corner);
        }
        return entry->second;
    }

    /// Moves and scales what is used of the positions, so that it fits.
    void scale() {
        Position low = positions_[corners_.front().position];
        Position high = low;
        for (const Corner& corner : corners_) {
            const Position& position = positions_[corner.position];
            for (std::size_t i = 0; i < low.size(); ++i) {
                low.at(i) = std::min(low.at(i), position.at(i));
                high.at(i) = std::max(high.at(i), position.at(i));
            }
        }
        const double largest = std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]}) / 2.0;
        if (largest <= 0.0) {
            throw HostError({file_, 0}, "this mesh has no size: all its corners are in one place");
        }
        for (std::size_t vertex = 0; vertex < corners_.size(); ++vertex) {
            for (std::size_t i = 0; i < low.size(); ++i) {
                const double fromCentre =
                    positions_[corners_[vertex].position].at(i) - (low.at(i) + high.at(i)) / 2.0;
                const double scaled = std::clamp(fromCentre / largest, -1.0, 1.0); // the centre is rounded
                mesh_.vertices[vertex].position.at(i) = narrow(scaled);
            }
        }
    }

    void useProjectedUvs() {
        for (std::size_t i = 0; i < corners_.size(); ++i) {
            Vertex& vertex = mesh_.vertices[i];
            if (corners_[i].uv == none) {
                vertex.uv = {0.5F + 0.5F * vertex.position[0], 0.5F + 0.5F * vertex.position[1]};
            }
        }
    }

    /// The mean of the triangles around a position; larger ones count more.
    void useSmoothNormals() {
        std::vector<Vec3> sums(positions_.size());
        forEachTriangle([&](const std::array<std::uint32_t, 3>& triangle) {
            const Vec3& origin = mesh_.vertices[triangle[0]].position;
            const Vec3 normal = cross(mesh_.vertices[triangle[1]].position - origin,
                                      mesh_.vertices[triangle[2]].position - origin);
            for (const std::uint32_t vertex : triangle) {
                Vec3& sum = sums[corners_[vertex].position];
                sum = sum + normal;
            }
        });
        for (std::size_t i = 0; i < corners_.size(); ++i) {
            if (corners_[i].normal == none) {
                mesh_.vertices[i].normal = normalised(sums[corners_[i].position], {0.0F, 0.0F, 1.0F});
            }
        }
    }

    /// Along u, at right angles to the normal.
    void makeTangents() {
        std::vector<Vec3> alongU(mesh_.vertices.size());
        std::vector<Vec3> alongV(mesh_.vertices.size());
        forEachTriangle([&](const std::array<std::uint32_t, 3>& triangle) {
            const Vertex& a = mesh_.vertices[triangle[0]];
            const Vertex& b = mesh_.vertices[triangle[1]];
            const Vertex& c = mesh_.vertices[triangle[2]];
            const Vec3 ab = b.position - a.position;
            const Vec3 ac = c.position - a.position;
            const Vec2 uvAb = {b.uv[0] - a.uv[0], b.uv[1] - a.uv[1]};
            const Vec2 uvAc = {c.uv[0] - a.uv[0], c.uv[1] - a.uv[1]};
            const float sign = uvAb[0] * uvAc[1] - uvAb[1] * uvAc[0] < 0.0F ? -1.0F : 1.0F;
            for (const std::uint32_t vertex : triangle) {
                alongU[vertex] = alongU[vertex] + (ab * uvAc[1] - ac * uvAb[1]) * sign;
                alongV[vertex] = alongV[vertex] + (ac * uvAb[0] - ab * uvAc[0]) * sign;
            }
        });
        for (std::size_t i = 0; i < mesh_.vertices.size(); ++i) {
            Vertex& vertex = mesh_.vertices[i];
            const Vec3 flat = alongU[i] - vertex.normal * dot(alongU[i], vertex.normal);
            const Vec3 tangent = normalised(flat, perpendicular(vertex.normal));
            const float sign = dot(cross(vertex.normal, tangent), alongV[i]) < 0.0F ? -1.0F : 1.0F;
            vertex.tangent = {tangent[0], tangent[1], tangent[2], sign};
        }
    }

    /// Some vector of length 1 at right angles.
    static Vec3 perpendicular(const Vec3& normal) {
        const Vec3 axis = std::abs(normal[0]) < 0.8F ? Vec3{1.0F, 0.0F, 0.0F} : Vec3{0.0F, 1.0F, 0.0F};
        return normalised(axis - normal * dot(axis, normal), axis);
    }

    template <typename Action>
    void forEachTriangle(Action&& action) {
        for (std::size_t i = 0; i < mesh_.indices.size(); i += 3) {
            action(
                std::array<std::uint32_t, 3>{mesh_.indices[i], mesh_.indices[i + 1], mesh_.indices[i + 2]});
        }
    }

    std::string file_;
    int line_ = 0; ///< where what is being read begins
    int nextLine_ = 1;
    std::vector<Position> positions_;
    std::vector<Vec4> colours_; ///< of the positions
    std::vector<Vec2> uvs_;
    std::vector<Vec3> normals_;
    std::map<Corner, std::uint32_t> vertices_;
    std::vector<Corner> corners_; ///< of the vertices
    bool lacksUvs_ = false;
    bool lacksNormals_ = false;
    Mesh mesh_;
};

} // namespace

Mesh parseObj(std::string_view text, const std::string& file) { return ObjReader(file).read(text); }

Mesh readObj(const std::filesystem::path& file) { return parseObj(readFile(file, fileLimit), file.string()); }

} // namespace patina::preview
