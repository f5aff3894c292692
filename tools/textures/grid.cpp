#include "grid.h"

namespace patina::textures {

namespace {

Field averaged(const Field& field, int radius, int across, int down) {
    return mapped(field, [&](double, int column, int row) {
        double sum = 0.0;
        for (int i = -radius; i <= radius; ++i) {
            sum += field.at(column + across * i, row + down * i);
        }
        return sum / (2 * radius + 1);
    });
}

} // namespace

Field blurred(const Field& field, int radius) {
    // three boxes are a bell to the eye
    Field result = field;
    const int third = radius < 3 ? 1 : radius / 3;
    for (int pass = 0; pass < 3; ++pass) {
        result = averaged(averaged(result, third, 1, 0), third, 0, 1);
    }
    return result;
}

} // namespace patina::textures
