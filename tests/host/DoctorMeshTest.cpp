// SPDX-License-Identifier: MIT
// What "ddphost doctor" says of meshes, and of the folders that a case is laid out in.
#include "host/DoctorCase.h"

#include <cmath>
#include <numbers>

namespace {

using namespace doctor;

Seed cutOff(const std::string& file, std::size_t bytes)
{
    return [=](const TempFolder& folder) {
        const std::string text = fileBytes(folder / file);
        folder.write(file, text.substr(0, text.rfind(')') - bytes));
    };
}

Seed copied(const std::string& from, const std::string& to)
{
    return [=](const TempFolder& folder) {
        std::filesystem::create_directories((folder / to).parent_path());
        std::filesystem::copy(folder / from, folder / to, std::filesystem::copy_options::recursive);
    };
}

/// Writes a list of the mesh raw, in widths that OpenFOAM can be built with.
template <typename Value>
Seed rawMeshFile(const std::string& name, const std::string& className, const std::vector<Value>& values,
                 std::size_t components)
{
    return written(std::string(MESH) + "/" + name,
                   foamtext::header(className, name, "binary",
                                    foamtext::note(2) + "    arch        \"LSB;label=64;scalar=32\";\n") +
                       foamtext::rawList(values, components));
}

/// A mesh of one prism whose ends have this many corners.
void writePrism(const TempFolder& folder, int corners)
{
    MeshJoiner joiner;
    for (const double z : {0.0, 1.0}) {
        for (int i = 0; i < corners; ++i) {
            const double angle = 2 * std::numbers::pi * i / corners;
            (void)joiner.addPoint(std::cos(angle), std::sin(angle), z);
        }
    }
    joiner.startCell();
    std::vector<int> top;
    for (int i = 0; i < corners; ++i) {
        const int next = (i + 1) % corners;
        joiner.addFace({i, next, corners + next, corners + i});
        top.push_back(corners + i);
    }
    joiner.addFace(top);
    std::vector<int> bottom;
    for (int i = corners; i > 0; --i) {
        bottom.push_back(i - 1);
    }
    joiner.addFace(bottom);
    writeMesh(folder, MESH, asciiFiles(joiner.join()));
    folder.write("constant/polyMesh/boundary", boundaryFile({{"all", "patch", corners + 2, 0}}));
    std::filesystem::remove(folder / "constant/polyMesh/cellZones");
    for (const char* const time : {"0.5", "1"}) {
        folder.write(std::string(time) + "/p",
                     fieldFile("volScalarField", "p", "uniform 1", {{"all", "type zeroGradient;"}}));
    }
}

/// Takes the case apart into one processor, as solvers lay it out.
const Seed IN_PROCESSOR = all({moved(MESH, "processor0/constant/polyMesh"), moved("0.5", "processor0/0.5"),
                               moved("1", "processor0/1"), written("constant/note", "")});

const std::vector<double> CUBE_POINTS = hexahedronMesh(2, 1, 1).points();
const std::vector<int> CUBE_OWNERS = hexahedronMesh(2, 1, 1).owners();
const std::string CUBE_FILE_OF_POINTS = asciiFiles(hexahedronMesh(2, 1, 1)).points;

const std::vector<Fault> MESH_FAULTS = {
    {"no points", removed("constant/polyMesh/points"), "hidden mesh-file constant/polyMesh/points"},
    {"no faces, no owners", all({removed("constant/polyMesh/faces"), removed("constant/polyMesh/owner")}),
     "hidden mesh-file constant/polyMesh/faces"},
    {"no neighbours", removed("constant/polyMesh/neighbour"), "hidden mesh-file constant/polyMesh/neighbour"},
    {"no boundary", removed("constant/polyMesh/boundary"), "hidden mesh-file constant/polyMesh/boundary"},
    {"no mesh", removed(MESH), "hidden no-mesh constant/polyMesh"},
    {"points cut off", cutOff("constant/polyMesh/points", 3), "hidden mesh-list constant/polyMesh/points"},
    {"owners cut off", cutOff("constant/polyMesh/owner", 3), "hidden mesh-list constant/polyMesh/owner"},
    {"faces cut off", cutOff("constant/polyMesh/faces", 12), "hidden mesh-list constant/polyMesh/faces"},
    {"point without a number", replaced("constant/polyMesh/points", "(1 0 0)", "(1 0)"),
     "hidden mesh-list constant/polyMesh/points"},
    {"point of a word", replaced("constant/polyMesh/points", "(1 0 0)", "(1 0 zero)"),
     "hidden mesh-list constant/polyMesh/points", "(1 0 zero)"},
    {"points of another class", replaced("constant/polyMesh/points", "vectorField", "dictionary"),
     "hidden mesh-unread constant/polyMesh/points"},
    {"points in a damaged file",
     all({[](const TempFolder& folder) {
              const std::string bytes = gzipped(fileBytes(folder / "constant/polyMesh/points"));
              folder.write("constant/polyMesh/points.gz", bytes.substr(0, bytes.size() - 12));
          },
          removed("constant/polyMesh/points")}),
     "hidden mesh-list constant/polyMesh/points"},
    {"other number of owners", replaced("constant/polyMesh/owner", "11\n(\n", "12\n(\n0\n"),
     "hidden mesh-counts constant/polyMesh/owner"},
    {"fewer faces in a patch", replaced("constant/polyMesh/boundary", "nFaces 9", "nFaces 8"),
     "hidden mesh-counts constant/polyMesh/boundary"},
    {"more cells in the note", replaced("constant/polyMesh/owner", "nCells:2", "nCells:3"),
     "hidden mesh-cells constant/polyMesh/owner"},
    {"no note", replaced("constant/polyMesh/owner", "note", "other"), "extended no-note constant/polyMesh/owner"},
    {"boundary without a count", replaced("constant/polyMesh/boundary", "3\n(", "("),
     "extended no-count constant/polyMesh/boundary"},
    {"face zones", written("constant/polyMesh/faceZones", zonesFile(true, {{"inner", {0}}})),
     "setting face-zones constant/polyMesh/faceZones"},
    {"labels of 64 bits",
     rawMeshFile("owner", "labelList", std::vector<std::int64_t>(CUBE_OWNERS.begin(), CUBE_OWNERS.end()), 1),
     "extended raw-form constant/polyMesh/owner"},
    {"scalars of 32 bits",
     rawMeshFile("points", "vectorField", std::vector<float>(CUBE_POINTS.begin(), CUBE_POINTS.end()), 3),
     "extended raw-form constant/polyMesh/points"},
    {"as many corners as hosts count", [](const TempFolder& folder) { writePrism(folder, 40); }, ""},
    {"more corners", [](const TempFolder& folder) { writePrism(folder, 300); }, "hidden limit constant/polyMesh/faces"},
    {"no faces between cells, no neighbours",
     all({[](const TempFolder& folder) { writePrism(folder, 5); }, removed("constant/polyMesh/neighbour")}), ""},
};

const std::vector<Fault> LAYOUTS = {
    {"binary", [](const TempFolder& folder) { writeMesh(folder, MESH, binaryFiles(hexahedronMesh(2, 1, 1))); }, ""},
    {"collated files", written("processors2/1/p", ""),
     "extended whole-mesh constant/polyMesh, hidden collated processors2"},
    {"region", all({moved(MESH, "constant/solid/polyMesh"), moved("0.5/p", "0.5/solid/p"), moved("1/p", "1/solid/p")}),
     "extended cell-zones constant/solid/polyMesh/cellZones"},
    {"fields in folders of processors", IN_PROCESSOR, "extended processor-times processor0/0.5/p"},
    {"the same beside times of the case", all({IN_PROCESSOR, written("0.5/note", ""), written("1/note", "")}),
     "extended processor-folder processor0/0.5/p"},
    {"folders of processors in times",
     all({moved(MESH, "processor0/constant/polyMesh"), moved("0.5/p", "0.5/processor0/p"),
          moved("1/p", "1/processor0/p")}),
     ""},
    {"region of a processor",
     all({moved(MESH, "processor0/constant/solid/polyMesh"), moved("0.5/p", "0.5/processor0/solid/p"),
          moved("1/p", "1/processor0/solid/p")}),
     "extended processor-region processor0/constant/solid/polyMesh"},
    {"the same mesh in the first time", copied(MESH, "0.5/polyMesh"), ""},
    {"another mesh in the first time",
     all({copied(MESH, "0.5/polyMesh"), replaced("constant/polyMesh/points", "(1 0 0)", "(1 0 0.1)")}),
     "extended first-time-mesh 0.5/polyMesh"},
    {"mesh in a time alone", moved(MESH, "0.5/polyMesh"), "hidden mesh-in-time 0.5/polyMesh"},
    {"moved points",
     all({written("0.5/polyMesh/points", CUBE_FILE_OF_POINTS), written("1/polyMesh/points", CUBE_FILE_OF_POINTS)}), ""},
    {"moved points of another number", written("1/polyMesh/points", "11" + std::string("\n()\n")),
     "hidden moved-points 1/polyMesh/points"},
    {"mesh that changes",
     [](const TempFolder& folder) { writeMesh(folder, "1/polyMesh", asciiFiles(hexahedronMesh(3, 1, 1))); },
     "hidden mesh-changes 1/polyMesh/faces"},
    {"folder like a time", written("0.orig/readme", "text"), "extended no-time 0.orig"},
    {"clouds", written("1/lagrangian/cloud/positions", ""), "hidden clouds 1/lagrangian"},
    {"finite areas", written("constant/faMesh/faBoundary", ""), "hidden finite-area constant/faMesh"},
};

} // namespace

TEST(DoctorOfMeshes, FindsEachFaultOnce)
{
    expectFindings(MESH_FAULTS);
}

TEST(DoctorOfMeshes, KnowsTheLayoutsOfCases)
{
    expectFindings(LAYOUTS);
}

TEST(DoctorOfMeshes, CountsNoFieldsOfAMeshWithoutPoints)
{
    const TempFolder folder;
    writeSound(folder);
    std::filesystem::remove(folder / "constant/polyMesh/points");
    const json found = examine(folder, 1);
    EXPECT_EQ(found["arrays"], json({{"all", 6}, {"plain", 0}, {"extended", 0}}));
    EXPECT_EQ(found["findings"][0]["fields"], json({"p"}));
}
