// SPDX-License-Identifier: MIT
#include "casemodel/CaseFiles.h"

#include <sstream>

namespace {

std::string labelList(const std::vector<int>& labels)
{
    std::string text = std::to_string(labels.size()) + "\n(\n";
    for (const int label : labels) {
        text += std::to_string(label) + "\n";
    }
    return text + ")\n";
}

} // namespace

std::string foamFile(const std::string& className, const std::string& objectName, const std::string& body)
{
    return "FoamFile\n{\n    version 2.0;\n    format ascii;\n    class " + className + ";\n    object " + objectName +
           ";\n}\n\n" + body;
}

std::string boundaryFile(const std::vector<PatchEntry>& patches)
{
    std::ostringstream text;
    text << patches.size() << "\n(\n";
    for (const PatchEntry& patch : patches) {
        text << "    " << patch.name << "\n    {\n        type " << patch.type << ";\n        nFaces "
             << patch.faceCount << ";\n        startFace " << patch.startFace << ";\n    }\n";
    }
    return foamFile("polyBoundaryMesh", "boundary", text.str() + ")\n");
}

std::string zonesFile(bool ofFaces, const std::vector<ZoneEntry>& zones)
{
    std::ostringstream text;
    text << zones.size() << "\n(\n";
    for (const auto& [name, labels] : zones) {
        text << name << "\n{\n    type " << (ofFaces ? "faceZone;\nfaceLabels" : "cellZone;\ncellLabels")
             << " List<label> \n"
             << labelList(labels) << ";\n";
        text << (ofFaces ? "flipMap List<bool> " + std::to_string(labels.size()) + "{0};\n}\n\n" : "}\n\n");
    }
    return foamFile("regIOobject", ofFaces ? "faceZones" : "cellZones", text.str() + ")\n");
}

std::string fieldFile(const std::string& className, const std::string& objectName, const std::string& interior,
                      const std::vector<FieldPatch>& patches)
{
    std::string body = "dimensions [0 1 -1 0 0 0 0];\n\ninternalField " + interior + ";\n\nboundaryField\n{\n";
    for (const auto& [name, entries] : patches) {
        body += "    " + name + "\n    {\n        " + entries + "\n    }\n";
    }
    return foamFile(className, objectName, body + "}\n");
}

void writeControlDict(const TempFolder& folder, const std::string& entries)
{
    std::filesystem::create_directories(folder.path() / "constant");
    folder.write("system/controlDict", foamFile("dictionary", "controlDict", entries));
}

void writeTwoCubes(const TempFolder& folder, const std::string& meshFolder)
{
    const auto write = [&](const std::string& className, const std::string& name, const std::string& body) {
        std::string text = foamFile(className, name, body);
        text.insert(text.find("}\n"), "    note \"nPoints:12  nCells:2  nFaces:11  nInternalFaces:1\";\n");
        folder.write(meshFolder + "/" + name, text);
    };
    write("vectorField", "points",
          "12\n(\n(0 0 0)\n(1 0 0)\n(2 0 0)\n(0 1 0)\n(1 1 0)\n(2 1 0)\n"
          "(0 0 1)\n(1 0 1)\n(2 0 1)\n(0 1 1)\n(1 1 1)\n(2 1 1)\n)\n");
    write("faceList", "faces",
          "11\n(\n4(1 4 10 7)\n4(0 6 9 3)\n4(0 1 7 6)\n4(3 9 10 4)\n4(0 3 4 1)\n4(6 7 10 9)\n"
          "4(2 5 11 8)\n4(1 2 8 7)\n4(4 10 11 5)\n4(1 4 5 2)\n4(7 8 11 10)\n)\n");
    write("labelList", "owner", labelList({0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1}));
    write("labelList", "neighbour", labelList({1}));
    folder.write(meshFolder + "/boundary",
                 boundaryFile({{"left side", "patch", 1, 1}, {"none", "wall", 0, 2}, {"rest", "wall", 9, 2}}));
    folder.write(meshFolder + "/cellZones", zonesFile(false, {{"z %1", {1}}}));
    folder.write(meshFolder + "/faceZones", zonesFile(true, {{"inner", {0}}}));
}

std::string joined(const Texts& texts)
{
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}
