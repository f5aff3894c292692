#pragma once

#include "preview/image.h"
#include "preview/preview.h"
#include "preview/scene.h"

#include <vector>

namespace patina::preview {

// From what was drawn to what is seen. [thread-safe]

/// A square of a picture.
struct Tile {
    int left = 0;
    int top = 0;
    int side = 0;
};

/// Turns samples of linear light into the bytes of a picture: the mean of a pixel's samples over the
/// background, as sRGB.
///
/// What the lights shine on has its highlights rolled off, so that they do not end in flat white; what is not
/// lit is shown as it is, up to white. What is not a number is black. Where colours change slowly, on the
/// studio's background and under light, an ordered pattern of less than half a step hides the steps.
class Development {
public:
    /// `studio` is the background, where the options want that. Both must outlive this.
    Development(const PreviewOptions& options, const Studio& studio, bool isLit)
        : options_(options), studio_(studio), isLit_(isLit) {}

    /// A picture of the right size that is still black.
    Picture start() const;

    /// Fills what a tile covers of the picture. Each pixel has options.samples by options.samples of them,
    /// of four floats, colour and alpha; they come from the bottom up.
    void develop(Picture& picture, const Tile& tile, const std::vector<float>& samples) const;

private:
    Vec3 backgroundAt(int column, int row) const;
    float patternStrength(float alpha) const;

    const PreviewOptions& options_;
    const Studio& studio_;
    bool isLit_;
};

} // namespace patina::preview
