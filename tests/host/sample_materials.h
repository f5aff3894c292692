#pragma once

// Materials with every Core node in every mode, and what a compiler is to make of them.

#include <string>
#include <vector>

namespace patina::testing {

/// The body of a material, under the name that a failure shows.
struct Sample {
    std::string name;
    std::string body;
};

struct SampleGroup {
    std::string name;
    std::vector<Sample> samples;
};

std::vector<SampleGroup> sampleGroups();

struct CgPrograms {
    std::string vertex;
    std::string fragment;
};

/// Programs whose parameters name registers, with a matrix, an array of matrices, and a constant far away.
CgPrograms programsWithRegisters();

} // namespace patina::testing
