// SPDX-License-Identifier: MIT
#pragma once

#include "support/TempFolder.h"

#include <string>
#include <utility>
#include <vector>

// Small case files as text, in the layout in which the solvers write them.

/// One patch of a `boundary` file.
struct PatchEntry
{
    std::string name;
    std::string type;
    int faceCount;
    int startFace;
};

using ZoneEntry = std::pair<std::string, std::vector<int>>; ///< name and labels
using FieldPatch = std::pair<std::string, std::string>;     ///< name and entries
using Texts = std::vector<std::string>;

/// A header and whatever stands behind it.
std::string foamFile(const std::string& className, const std::string& objectName, const std::string& body = {});
std::string boundaryFile(const std::vector<PatchEntry>& patches);
/// A file of cell zones, or of face zones with flip maps.
std::string zonesFile(bool ofFaces, const std::vector<ZoneEntry>& zones);
/// A field file whose interior is given as text, such as "uniform 0".
std::string fieldFile(const std::string& className, const std::string& objectName, const std::string& interior,
                      const std::vector<FieldPatch>& patches = {});
void writeControlDict(const TempFolder& folder, const std::string& entries = {});
/// A mesh of two cubes side by side, cell 0 from x = 0 and cell 1 from x = 1. Node (x, y, z) has the label x + 3y + 6z.
/// The patch "left side" is the face x = 0, "rest" all other outer faces, four of cell 0 and five of cell 1; the cell
/// zone "z %1" holds cell 1, the face zone "inner" the face between the cells.
void writeTwoCubes(const TempFolder& folder, const std::string& meshFolder = "constant/polyMesh");

std::string joined(const Texts& texts);
