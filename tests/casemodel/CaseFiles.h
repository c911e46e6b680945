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

/// Name and labels of a cell or face zone.
using ZoneEntry = std::pair<std::string, std::vector<int>>;

/// A header and whatever stands behind it.
std::string foamFile(const std::string& className, const std::string& objectName, const std::string& body = {});
std::string boundaryFile(const std::vector<PatchEntry>& patches);
std::string cellZonesFile(const std::vector<ZoneEntry>& zones);
std::string faceZonesFile(const std::vector<ZoneEntry>& zones);

/// A field file whose interior is given as text, such as "uniform 0", and whose patches as pairs of name and entries.
std::string fieldFile(const std::string& className, const std::string& objectName, const std::string& interior,
                      const std::vector<std::pair<std::string, std::string>>& patches = {});
/// Values one a line, as in "nonuniform List<scalar> 2 (1 2)".
std::string scalarList(const std::vector<double>& values);

/// A case of two cubes side by side, cell 0 from x = 0 and cell 1 from x = 1, with all that belongs to it but time
/// folders. Node (x, y, z) has the label x + 3y + 6z. Patch "left side" is the face x = 0, patch "rest" all other outer
/// faces; cell zone "z %1" holds cell 1, face zone "inner" the face between the cells.
void writeTwoCubes(const TempFolder& folder, const std::string& meshFolder = "constant/polyMesh");
void writeControlDict(const TempFolder& folder, const std::string& entries = {});
