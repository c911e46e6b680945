// SPDX-License-Identifier: MIT
#include "support/CaseFiles.h"

using foamtext::header;

std::string boundaryFile(const std::vector<PatchEntry>& patches)
{
    std::string text = header("polyBoundaryMesh", "boundary") + std::to_string(patches.size()) + "\n(\n";
    for (const PatchEntry& patch : patches) {
        text += "    " + patch.name + "\n    {\n        type " + patch.type + ";\n        nFaces " +
                std::to_string(patch.faceCount) + ";\n        startFace " + std::to_string(patch.startFace) +
                ";\n    }\n";
    }
    return text + ")\n";
}

std::string zonesFile(bool ofFaces, const std::vector<ZoneEntry>& zones)
{
    const std::string kind = ofFaces ? "face" : "cell";
    std::string text = header("regIOobject", kind + "Zones") + std::to_string(zones.size()) + "\n(\n";
    for (const auto& [name, labels] : zones) {
        const std::string count = std::to_string(labels.size());
        text += name + "\n{\n    type " + kind + "Zone;\n" + kind + "Labels List<label> \n" + count + "\n(\n" +
                foamtext::labels(labels) + ")\n;\n" + (ofFaces ? "flipMap List<bool> " + count + "{0};\n" : "") +
                "}\n\n";
    }
    return text + ")\n";
}

std::string fieldFile(const std::string& className, const std::string& objectName, const std::string& interior,
                      const std::vector<FieldPatch>& patches)
{
    std::string text = header(className, objectName) + "dimensions [0 1 -1 0 0 0 0];\n\ninternalField " + interior +
                       ";\n\nboundaryField\n{\n";
    for (const auto& [name, entries] : patches) {
        text += "    " + name + "\n    {\n        " + entries + "\n    }\n";
    }
    return text + "}\n";
}

void writeControlDict(const TempFolder& folder, const std::string& entries)
{
    std::filesystem::create_directories(folder / "constant");
    folder.write("system/controlDict", header("dictionary", "controlDict") + entries);
}

void writeMesh(const TempFolder& folder, const std::string& meshFolder, const MeshFiles& files)
{
    folder.write(meshFolder + "/points", files.points);
    folder.write(meshFolder + "/faces", files.faces);
    folder.write(meshFolder + "/owner", files.owner);
    folder.write(meshFolder + "/neighbour", files.neighbour);
}

void writeTwoCubes(const TempFolder& folder, const std::string& meshFolder)
{
    writeMesh(folder, meshFolder, asciiFiles(hexahedronMesh(2, 1, 1)));
    folder.write(meshFolder + "/boundary",
                 boundaryFile({{"left side", "patch", 1, 1}, {"none", "wall", 0, 2}, {"rest", "wall", 9, 2}}));
    folder.write(meshFolder + "/cellZones", zonesFile(false, {{"z %1", {1}}}));
    folder.write(meshFolder + "/faceZones", zonesFile(true, {{"inner", {0}}}));
}

void writePressure(const TempFolder& folder, const std::string& time, const std::string& interior,
                   const std::string& className)
{
    folder.write(time + "/p", fieldFile(className, "p", interior,
                                        {{"left side", "type fixedValue;\n        value uniform 7;"},
                                         {"rest", "type zeroGradient;"}}));
}

std::string joined(const Texts& texts)
{
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}
