// SPDX-License-Identifier: MIT
#pragma once

#include "sample/FoamOutput.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

/// The kind of a sample case.
enum class SampleKind
{
    Hex,        ///< a block of hexahedra
    Poly,       ///< truncated octahedra of 14 faces
    Mixed,      ///< cells of all shapes
    Zones,      ///< hexahedra with cell zones and face zones
    Regions,    ///< hexahedra as one mesh and as two regions
    Decomposed, ///< hexahedra in processor folders, fields in <time>/processor<N>
    Moving,     ///< hexahedra whose points move with time
    Surface     ///< hexahedra with sampled surfaces
};

struct SampleOptions
{
    SampleKind kind = SampleKind::Hex;
    int cells = 1000;       ///< approximate number
    int states = 2;         ///< time folders, one or more
    FoamFormat format;      ///< of mesh lists and fields; dictionaries are plain text
    bool overwrite = false; ///< replace a sample that was written before
};

/// Reports what was written.
struct SampleReport
{
    int cells = 0; ///< of the whole mesh, even if it was cut into pieces
    int points = 0;
    int faces = 0;
    std::vector<std::string> times; ///< names of the time folders
};

/// Writes a whole case with the fields of `SampleFields.h`.
///
/// State k has the time k / 2. With `overwrite`, files of another case in the folder stay unless a file of the same
/// name replaces them.
/// @throws HostError of `CannotWrite`, also for a folder that is not empty unless `overwrite` is set
SampleReport writeSampleCase(const std::filesystem::path& folder, const SampleOptions& options);
