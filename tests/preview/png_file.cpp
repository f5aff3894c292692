#include "tests/preview/png_file.h"

#include "tests/host/host_checks.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstddef>

namespace patina::testing {

PngFile::PngFile(const std::filesystem::path& file) {
    const std::string content = readText(file);
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_memory(&image, content.data(), content.size()), 0) << file;
    EXPECT_TRUE(image.format == PNG_FORMAT_RGB || image.format == PNG_FORMAT_RGBA) << file;
    width_ = static_cast<int>(image.width);
    height_ = static_cast<int>(image.height);
    channels_ = image.format == PNG_FORMAT_RGBA ? 4 : 3;
    bytes_.resize(PNG_IMAGE_SIZE(image));
    EXPECT_NE(png_image_finish_read(&image, nullptr, bytes_.data(), 0, nullptr), 0) << file;
}

Colour PngFile::at(int column, int row) const {
    if (column < 0 || column >= width_ || row < 0 || row >= height_) {
        ADD_FAILURE() << "there is no pixel " << column << ", " << row;
        return {};
    }
    const std::ptrdiff_t index = (static_cast<std::ptrdiff_t>(row) * width_ + column) * channels_;
    return {bytes_.begin() + index, bytes_.begin() + index + channels_};
}

std::string pngText(int width, int height, const std::vector<std::uint8_t>& pixels) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string content(size, '\0');
    EXPECT_NE(png_image_write_to_memory(&image, content.data(), &size, 0, pixels.data(), 0, nullptr), 0);
    content.resize(size);
    return content;
}

} // namespace patina::testing
