#include "contact_sheet.h"

#include "shapes.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace patina::icons {

namespace {

constexpr int kZoom = 6;
constexpr int kLarge = kIconSide * kZoom;
constexpr int kGap = 24;
constexpr int kMargin = 32;
constexpr int kChip = 48;    // ground under an icon at its own size
constexpr int kChipGap = 24; // between the three grounds

struct Rgb {
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
};

constexpr Rgb kGround{92, 95, 102};
constexpr Rgb kCard{106, 109, 116};
constexpr Rgb kDark{38, 40, 44};
constexpr Rgb kLight{222, 224, 228};

class Sheet {
public:
    Sheet(int width, int height)
        : width_(width), height_(height),
          bytes_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3) {}

    void blend(int x, int y, const Rgb& c, double cover) {
        const std::size_t at =
            (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)) *
            3;
        const std::array<double, 3> channels{c.r, c.g, c.b};
        for (std::size_t i = 0; i < 3; ++i) {
            const double mixed = bytes_[at + i] * (1.0 - cover) + channels[i] * cover;
            bytes_[at + i] = static_cast<std::uint8_t>(std::lround(mixed));
        }
    }

    void panel(int left, int top, int width, int height, double radius, const Rgb& c) {
        const Shape shape =
            box({static_cast<double>(left), static_cast<double>(top)},
                {static_cast<double>(left + width), static_cast<double>(top + height)}, radius);
        for (int y = top; y < top + height; ++y) {
            for (int x = left; x < left + width; ++x) {
                const double d = shape({x + 0.5, y + 0.5});
                blend(x, y, c, std::min(1.0, std::max(0.0, 0.5 - d)));
            }
        }
    }

    void icon(const Raster& raster, int left, int top, int zoom) {
        for (int y = 0; y < kIconSide * zoom; ++y) {
            for (int x = 0; x < kIconSide * zoom; ++x) {
                if (const Pixel& pixel = raster.at(x / zoom, y / zoom)) {
                    blend(left + x, top + y,
                          {static_cast<double>((*pixel >> 16U) & 0xFFU),
                           static_cast<double>((*pixel >> 8U) & 0xFFU), static_cast<double>(*pixel & 0xFFU)},
                          1.0);
                }
            }
        }
    }

    void write(const std::string& path) const {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        image.width = static_cast<png_uint_32>(width_);
        image.height = static_cast<png_uint_32>(height_);
        image.format = PNG_FORMAT_RGB;
        if (png_image_write_to_file(&image, path.c_str(), 0, bytes_.data(), 0, nullptr) == 0) {
            throw std::runtime_error(path + ": " + image.message);
        }
    }

private:
    int width_;
    int height_;
    std::vector<std::uint8_t> bytes_;
};

} // namespace

void writeContactSheet(const std::vector<Raster>& icons, const std::string& path) {
    const int count = static_cast<int>(icons.size());
    constexpr int kPad = 16; // around the icon on its card
    constexpr int kCardWidth = kLarge + 2 * kPad;
    constexpr int kCardHeight = kLarge + kChip + 3 * kPad;
    const int width = 2 * kMargin + count * kCardWidth + (count - 1) * kGap;
    constexpr int kHeight = 2 * kMargin + kCardHeight;

    Sheet sheet(width, kHeight);
    sheet.panel(0, 0, width, kHeight, 0.0, kGround);
    for (int i = 0; i < count; ++i) {
        const int left = kMargin + i * (kCardWidth + kGap);
        const Raster& raster = icons[static_cast<std::size_t>(i)];
        sheet.panel(left, kMargin, kCardWidth, kCardHeight, 12.0, kCard);
        sheet.icon(raster, left + kPad, kMargin + kPad, kZoom);

        const int chipTop = kMargin + 2 * kPad + kLarge;
        const int inset = (kChip - kIconSide) / 2;
        int chipLeft = left + (kCardWidth - 3 * kChip - 2 * kChipGap) / 2;
        for (const Rgb* ground : {&kDark, &kCard, &kLight}) {
            sheet.panel(chipLeft, chipTop, kChip, kChip, 8.0, *ground);
            sheet.icon(raster, chipLeft + inset, chipTop + inset, 1);
            chipLeft += kChip + kChipGap;
        }
    }
    sheet.write(path);
}

} // namespace patina::icons
