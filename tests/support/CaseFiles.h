// SPDX-License-Identifier: MIT
#pragma once

#include "bench/SyntheticMesh.h"
#include "support/FoamText.h"
#include "support/TempFolder.h"

#include <string>
#include <utility>
#include <vector>

// Files of small cases, in the layout that the solvers write.

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

std::string boundaryFile(const std::vector<PatchEntry>& patches);
/// A file of cell zones, or of face zones with flip maps.
std::string zonesFile(bool ofFaces, const std::vector<ZoneEntry>& zones);
/// A field file whose interior is given as text, such as "uniform 0".
std::string fieldFile(const std::string& className, const std::string& objectName, const std::string& interior,
                      const std::vector<FieldPatch>& patches = {});
void writeControlDict(const TempFolder& folder, const std::string& entries = {});
/// Writes points, faces, owner and neighbour.
void writeMesh(const TempFolder& folder, const std::string& meshFolder, const MeshFiles& files);
/// A mesh of two cubes side by side, cell 0 from x = 0 and cell 1 from x = 1. Node (x, y, z) has the label x + 3y + 6z.
/// The patch "left side" is the face x = 0, "rest" all other outer faces, four of cell 0 and five of cell 1; the cell
/// zone "z %1" holds cell 1, the face zone "inner" the face between the cells.
void writeTwoCubes(const TempFolder& folder, const std::string& meshFolder = "constant/polyMesh");

/// Writes the field p of such a mesh at a time: 7 in the patch "left side", the value of the cell in "rest". The cells
/// are given as in a field file; by default they have 1 and 3.
void writePressure(const TempFolder& folder, const std::string& time,
                   const std::string& interior = "nonuniform List<scalar> \n2\n(\n1\n3\n)\n",
                   const std::string& className = "volScalarField");

/// The texts, separated by ", ".
std::string joined(const Texts& texts);
