// SPDX-License-Identifier: MIT
#include "casemodel/CaseFiles.h"

#include <sstream>

namespace {

std::string labelList(const std::vector<int>& labels)
{
    std::ostringstream text;
    text << labels.size() << "\n(\n";
    for (const int label : labels) {
        text << label << '\n';
    }
    text << ")\n";
    return text.str();
}

std::string zonesFile(const std::string& kind, const std::string& type, const std::string& labelsKey,
                      const std::vector<ZoneEntry>& zones, bool withFlips)
{
    std::ostringstream text;
    text << zones.size() << "\n(\n";
    for (const auto& [name, labels] : zones) {
        text << name << "\n{\n    type " << type << ";\n"
             << labelsKey << " List<label> \n"
             << labelList(labels) << ";\n";
        if (withFlips) {
            text << "flipMap List<bool> " << labels.size() << "{0};\n";
        }
        text << "}\n\n";
    }
    text << ")\n";
    return foamFile("regIOobject", kind, text.str());
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
    text << ")\n";
    return foamFile("polyBoundaryMesh", "boundary", text.str());
}

std::string cellZonesFile(const std::vector<ZoneEntry>& zones)
{
    return zonesFile("cellZones", "cellZone", "cellLabels", zones, false);
}

std::string faceZonesFile(const std::vector<ZoneEntry>& zones)
{
    return zonesFile("faceZones", "faceZone", "faceLabels", zones, true);
}

std::string fieldFile(const std::string& className, const std::string& objectName, const std::string& interior,
                      const std::vector<std::pair<std::string, std::string>>& patches)
{
    std::string body = "dimensions [0 1 -1 0 0 0 0];\n\ninternalField " + interior + ";\n\nboundaryField\n{\n";
    for (const auto& [name, entries] : patches) {
        body += "    " + name + "\n    {\n        " + entries + "\n    }\n";
    }
    return foamFile(className, objectName, body + "}\n");
}

std::string scalarList(const std::vector<double>& values)
{
    std::ostringstream text;
    text << "nonuniform List<scalar> \n" << values.size() << "\n(\n";
    for (const double value : values) {
        text << value << '\n';
    }
    text << ")\n";
    return text.str();
}

void writeTwoCubes(const TempFolder& folder, const std::string& meshFolder)
{
    const auto write = [&](const std::string& name, const std::string& text) {
        folder.write(meshFolder + "/" + name, text);
    };
    write("points", foamFile("vectorField", "points",
                             "12\n(\n(0 0 0)\n(1 0 0)\n(2 0 0)\n(0 1 0)\n(1 1 0)\n(2 1 0)\n"
                             "(0 0 1)\n(1 0 1)\n(2 0 1)\n(0 1 1)\n(1 1 1)\n(2 1 1)\n)\n"));
    write("faces", foamFile("faceList", "faces",
                            "11\n(\n4(1 4 10 7)\n4(0 6 9 3)\n4(0 1 7 6)\n4(3 9 10 4)\n4(0 3 4 1)\n4(6 7 10 9)\n"
                            "4(2 5 11 8)\n4(1 2 8 7)\n4(4 10 11 5)\n4(1 4 5 2)\n4(7 8 11 10)\n)\n"));
    const std::string note = "    note \"nPoints:12  nCells:2  nFaces:11  nInternalFaces:1\";\n}\n";
    const auto labels = [&](const std::string& name, const std::vector<int>& values) {
        std::string text = foamFile("labelList", name, labelList(values));
        write(name, text.replace(text.find("}\n"), 2, note));
    };
    labels("owner", {0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1});
    labels("neighbour", {1});
    write("boundary", boundaryFile({{"left side", "patch", 1, 1}, {"none", "wall", 0, 2}, {"rest", "wall", 9, 2}}));
    write("cellZones", cellZonesFile({{"z %1", {1}}}));
    write("faceZones", faceZonesFile({{"inner", {0}}}));
}

void writeControlDict(const TempFolder& folder, const std::string& entries)
{
    folder.write("system/controlDict", foamFile("dictionary", "controlDict", entries));
}
