// SPDX-License-Identifier: MIT
#pragma once

#include "sample/FoamOutput.h"
#include "sample/SampleMesh.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// A named set of cells.
struct SampleCellZone
{
    std::string name;
    std::vector<std::int32_t> cells; ///< labels, ascending
};

/// A named set of faces; `flips` has one entry per face, or one entry that applies to all.
struct SampleFaceZone
{
    std::string name;
    std::vector<std::int32_t> faces; ///< labels, in any order
    std::vector<bool> flips;         ///< true where the zone faces against the face's normal
};

/// The folder of the case and a folder in it. Separate, because the header of each file contains the latter.
struct FoamPlace
{
    std::filesystem::path caseFolder;
    std::string location; ///< as in "constant/polyMesh"

    /// The path of a file at this place.
    std::filesystem::path file(const std::string& name) const { return caseFolder / location / name; }
};

/// Writes `points`, `faces`, `owner`, `neighbour` and `boundary`, and makes the folder.
void writeMeshFiles(const FoamPlace& place, const SampleMesh& mesh, const FoamFormat& format);

/// Writes only `points`, as for a moved mesh.
void writePoints(const FoamPlace& place, const std::vector<double>& points, const FoamFormat& format);

/// Writes `cellZones`. Zone files are ascii even with binary lists: they are small, and each file states its format.
void writeCellZones(const FoamPlace& place, const std::vector<SampleCellZone>& zones);

/// Writes `faceZones`, in ascii too.
void writeFaceZones(const FoamPlace& place, const std::vector<SampleFaceZone>& zones);
