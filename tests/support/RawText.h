// SPDX-License-Identifier: MIT
#pragma once

#include "bench/SyntheticMesh.h"

#include <string>
#include <vector>

/// How a binary file holds its values, as the `arch` entry of its header says it.
struct RawWidths
{
    int labelBits = 32;
    int scalarBits = 64;
    bool isBigEndian = false;
};

/// "LSB;label=32;scalar=64"
std::string archOf(const RawWidths& widths);
/// The bytes of values of such a file.
std::string rawLabels(const std::vector<long long>& labels, const RawWidths& widths);
std::string rawLabels(const std::vector<int>& labels, const RawWidths& widths);
std::string rawReals(const std::vector<double>& values, const RawWidths& widths);
/// The files of a mesh, with a `faceCompactList`; their `owner` has no note.
MeshFiles rawMeshFiles(const OFPolymesh& mesh, const RawWidths& widths);
