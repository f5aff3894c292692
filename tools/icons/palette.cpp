#include "palette.h"

#include "colour.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace patina::icons {

namespace {

// A colour in a space where equal distances look about equally different.
struct Perceived {
    double l = 0.0;
    double a = 0.0;
    double b = 0.0;
};

Perceived perceive(std::uint32_t rgb) {
    const Colour c = hex(rgb);
    const double l = std::cbrt(0.4122214708 * c.r + 0.5363325363 * c.g + 0.0514459929 * c.b);
    const double m = std::cbrt(0.2119034982 * c.r + 0.6806995451 * c.g + 0.1073969566 * c.b);
    const double s = std::cbrt(0.0883024619 * c.r + 0.2817188376 * c.g + 0.6299787005 * c.b);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

struct Cluster {
    std::uint32_t rgb = 0;
    Colour light; // the mean of the members, in linear light
    Perceived seen;
    double weight = 0.0; // how many pixels show it
    bool live = true;

    // The cheapest merge with a later cluster.
    double bestCost = std::numeric_limits<double>::infinity();
    std::size_t bestOther = 0;
};

// How much the whole picture changes when both take their common mean.
double mergeCost(const Cluster& a, const Cluster& b) {
    const double l = a.seen.l - b.seen.l;
    const double da = a.seen.a - b.seen.a;
    const double db = a.seen.b - b.seen.b;
    return a.weight * b.weight / (a.weight + b.weight) * (l * l + da * da + db * db);
}

void findBest(std::vector<Cluster>& clusters, std::size_t i) {
    Cluster& c = clusters[i];
    c.bestCost = std::numeric_limits<double>::infinity();
    for (std::size_t j = i + 1; j < clusters.size(); ++j) {
        if (!clusters[j].live) {
            continue;
        }
        const double cost = mergeCost(c, clusters[j]);
        if (cost < c.bestCost) {
            c.bestCost = cost;
            c.bestOther = j;
        }
    }
}

std::map<std::uint32_t, std::size_t> histogram(const Raster& raster) {
    std::map<std::uint32_t, std::size_t> counts;
    for (const Pixel& pixel : raster.pixels) {
        if (pixel) {
            ++counts[*pixel];
        }
    }
    return counts;
}

} // namespace

std::size_t countColours(const Raster& raster) { return histogram(raster).size(); }

void reduceColours(Raster& raster, std::size_t wanted) {
    const std::map<std::uint32_t, std::size_t> counts = histogram(raster);
    if (counts.size() < wanted) {
        throw std::runtime_error("the drawing has " + std::to_string(counts.size()) + " colours where " +
                                 std::to_string(wanted) + " are needed");
    }

    std::vector<Cluster> clusters;
    std::map<std::uint32_t, std::size_t> clusterOf; // original colour -> cluster
    std::set<std::uint32_t> taken;
    for (const auto& [rgb, count] : counts) {
        clusterOf[rgb] = clusters.size();
        taken.insert(rgb);
        Cluster c;
        c.rgb = rgb;
        c.light = hex(rgb);
        c.seen = perceive(rgb);
        c.weight = static_cast<double>(count);
        clusters.push_back(c);
    }
    for (std::size_t i = 0; i < clusters.size(); ++i) {
        findBest(clusters, i);
    }

    for (std::size_t left = clusters.size(); left > wanted; --left) {
        std::size_t keep = clusters.size();
        for (std::size_t i = 0; i < clusters.size(); ++i) {
            if (clusters[i].live &&
                (keep == clusters.size() || clusters[i].bestCost < clusters[keep].bestCost)) {
                keep = i;
            }
        }
        Cluster& a = clusters[keep];
        const std::size_t gone = a.bestOther;
        Cluster& b = clusters[gone];

        taken.erase(a.rgb);
        taken.erase(b.rgb);
        a.light = mix(a.light, b.light, b.weight / (a.weight + b.weight));
        const std::uint32_t mean = toRgb24(a.light);
        // Where another cluster already shows the mean, one of the two colours
        // given up just now is certainly free.
        const std::uint32_t heavier = a.weight >= b.weight ? a.rgb : b.rgb;
        a.rgb = taken.contains(mean) ? heavier : mean;
        taken.insert(a.rgb);
        a.seen = perceive(a.rgb);
        a.weight += b.weight;
        b.live = false;

        for (auto& entry : clusterOf) {
            if (entry.second == gone) {
                entry.second = keep;
            }
        }
        for (std::size_t i = 0; i < clusters.size(); ++i) {
            Cluster& c = clusters[i];
            if (!c.live) {
                continue;
            }
            if (i == keep || c.bestOther == keep || c.bestOther == gone) {
                findBest(clusters, i);
            } else if (i < keep) {
                const double cost = mergeCost(c, a);
                if (cost < c.bestCost) {
                    c.bestCost = cost;
                    c.bestOther = keep;
                }
            }
        }
    }

    for (Pixel& pixel : raster.pixels) {
        if (pixel) {
            pixel = clusters[clusterOf.at(*pixel)].rgb;
        }
    }
}

} // namespace patina::icons
