// SPDX-License-Identifier: MIT
#include "doctor/Examination.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

/// The form of a mesh file, if it is one that plain reading gets wrong.
std::optional<Cause> rawCause(const CaseFolder& folder, const CaseMesh& mesh)
{
    for (const char* const name : {"points", "faces", "owner", "neighbour"}) {
        const std::string path = mesh.folder + "/" + name;
        const CaseFile file = readCaseFile(folder.root() / path, folder.root(), true);
        const std::string arch = file.header("arch");
        const bool isUnusual = arch.find("MSB") != std::string::npos || arch.find("scalar=32") != std::string::npos ||
                               arch.find("label=64") != std::string::npos;
        if (file.header("format") == "binary" && isUnusual) {
            return Cause{"raw-form",
                         fmt::format("raw values are written in another form than is usual ({})", arch),
                         "",
                         {path, 0}};
        }
    }
    return std::nullopt;
}

Cause hiddenMesh(const CaseFolder& folder, const CaseMesh& mesh, std::optional<std::size_t> shown)
{
    for (const char* const name : {"points", "faces", "owner"}) {
        const std::string path = mesh.folder + "/" + name;
        const CaseFile file = readCaseFile(folder.root() / path, folder.root(), true);
        if (!file.isOpen) {
            return {"mesh-file",
                    fmt::format("the mesh has no file {} that can be opened", name),
                    "write the mesh again",
                    {mesh.folder, 0}};
        }
    }
    return {"mesh-cells",
            fmt::format("{} cells of the mesh are shown, and its owner file says {}", shown.value_or(0),
                        mesh.cells ? std::to_string(*mesh.cells) : "nothing of their number"),
            "check the mesh with checkMesh",
            {mesh.folder + "/owner", 0}};
}

/// Why plain reading has no patch or another one.
Cause plainPatchGroup(const CaseMesh& mesh, const CasePatch& patch)
{
    const FindingPlace place = {mesh.folder + "/boundary", patch.line};
    if (timeOfName(mesh.folder.substr(0, mesh.folder.find('/')))) {
        return {"first-time-mesh", "the mesh in the first time folder is read without its patches", "", place};
    }
    return {"boundary-layout", "the boundary file is laid out as OpenFOAM does not write it", "", place};
}

bool isSameGroup(const Delivery& plain, std::size_t inPlain, const Delivery& extended, std::size_t inExtended)
{
    const HostNodeGroup* const a = plain.nodes(inPlain);
    const HostNodeGroup* const b = extended.nodes(inExtended);
    return plain.elements(inPlain)->connectivity == extended.elements(inExtended)->connectivity &&
           (a == nullptr || b == nullptr ? a == b : a->coordinates == b->coordinates);
}

void examineGroup(Examination& examination, const CaseMesh& mesh, const std::string& name,
                  std::optional<std::size_t> expected, const Cause& hidden, const Cause& plain)
{
    const std::optional<std::size_t> inPlain = examination.plain.group(mesh.part, name);
    const std::optional<std::size_t> inExtended = examination.extended.group(mesh.part, name);
    const std::size_t shown = inExtended ? examination.extended.elements(*inExtended)->elementCount() : 0;
    if (!inExtended || shown == 0 || (expected && shown != *expected)) {
        examination.report.findings.add(FindingKind::Hidden, hidden);
    } else if (!inPlain || !isSameGroup(examination.plain, *inPlain, examination.extended, *inExtended)) {
        examination.report.findings.add(FindingKind::Extended, plain);
    }
}

void examinePatches(Examination& examination, const CaseMesh& mesh)
{
    const bool isSame = isSameMeshInPlain(examination, mesh);
    for (const CasePatch& patch : mesh.patches) {
        const bool isUnwanted = examination.isSet("HIDE_PARALLEL_INTERFACES") && patch.name.starts_with("procBoundary");
        if (patch.faces <= 0 || isUnwanted || !examination.isSet("LOAD_BC_PARTS")) {
            continue;
        }
        const Cause hidden = {"patch-missing",
                              fmt::format("the patch {} is not shown with its {} faces", patch.name, patch.faces),
                              "check the mesh with checkMesh",
                              {mesh.folder + "/boundary", patch.line}};
        // Without the part there is one finding, which is about the part.
        const Cause plain = isSame ? plainPatchGroup(mesh, patch) : plainMeshCause(examination, mesh);
        examineGroup(examination, mesh, patch.name, static_cast<std::size_t>(patch.faces), hidden, plain);
    }
}

void examineZones(Examination& examination, const CaseMesh& mesh)
{
    Findings& findings = examination.report.findings;
    const FindingPlace cells = {mesh.folder + "/cellZones", 0};
    if (examination.isSet("LOAD_CELL_ZONES")) {
        const std::size_t inExtended = examination.extended.zoneCount(mesh.part, HostGroupKind::CellZone);
        if (inExtended < mesh.cellZones) {
            findings.add(FindingKind::Hidden,
                         {"cell-zones", "not all cell zones are shown", "write them again", cells});
        } else if (isSameMeshInPlain(examination, mesh) &&
                   examination.plain.zoneCount(mesh.part, HostGroupKind::CellZone) < inExtended) {
            findings.add(FindingKind::Extended, {"cell-zones",
                                                 mesh.region.empty() ? "not all cell zones are read in their layout"
                                                                     : "the cell zones of regions are not read",
                                                 "", cells});
        }
    }
    const FindingPlace faces = {mesh.folder + "/faceZones", 0};
    if (mesh.faceZones > 0 && !examination.isSet("LOAD_FACE_ZONES")) {
        findings.add(FindingKind::Setting, {"face-zones", "face zones are not shown", "set LOAD_FACE_ZONES=on", faces});
    } else if (mesh.faceZones > 0) {
        const std::size_t inExtended = examination.extended.zoneCount(mesh.part, HostGroupKind::FaceZone);
        if (inExtended < mesh.faceZones) {
            findings.add(FindingKind::Hidden,
                         {"face-zones", "not all face zones are shown", "write them again", faces});
        } else if (isSameMeshInPlain(examination, mesh) &&
                   examination.plain.zoneCount(mesh.part, HostGroupKind::FaceZone) < inExtended) {
            findings.add(FindingKind::Extended, {"face-zones", "not all face zones are read", "", faces});
        }
    }
}

/// Meshes that change with time, of which hosts are given one.
void examineChanges(Examination& examination, const CaseMesh& mesh)
{
    for (const CaseTime& time : examination.folder.times()) {
        for (const std::string& folder : examination.folder.fieldFolders(mesh, time.name)) {
            if (folder + "/polyMesh" != mesh.folder && examination.folder.hasFile(folder + "/polyMesh/faces")) {
                Finding& finding = examination.report.findings.add(
                    FindingKind::Hidden, {"mesh-changes",
                                          "the mesh changes with time, and only the first one is shown",
                                          "open the times of each mesh as a case of their own",
                                          {folder + "/polyMesh/faces", 0}});
                finding.times.insert(time.name);
            }
        }
    }
}

void countForms(Examination& examination, const CaseMesh& mesh)
{
    CaseForms& forms = examination.report.forms;
    forms.patches += mesh.patches.size();
    for (const char* const name : {"points", "faces", "owner", "neighbour"}) {
        const CaseFile file =
            readCaseFile(examination.folder.root() / mesh.folder / name, examination.folder.root(), true);
        const bool isBinary = file.header("format") == "binary";
        forms.files[isBinary ? "binary" : "ascii"] += file.isOpen ? 1 : 0;
        forms.files["gzip"] += file.isOpen && file.isGzip ? 1 : 0;
        if (isBinary && !file.header("arch").empty()) {
            forms.rawForms.insert(file.header("arch"));
        }
    }
}

} // namespace

bool isSameMeshInPlain(const Examination& examination, const CaseMesh& mesh)
{
    const auto inPlain = examination.plain.group(mesh.part, "");
    const auto inExtended = examination.extended.group(mesh.part, "");
    return inPlain && inExtended &&
           examination.plain.elements(*inPlain)->elementCount() ==
               examination.extended.elements(*inExtended)->elementCount();
}

Cause plainMeshCause(const Examination& examination, const CaseMesh& mesh)
{
    if (!examination.plain.isOpen()) {
        return examination.plainRefusal;
    }
    const FindingPlace place = {mesh.folder, 0};
    if (mesh.isBesidePieces) {
        return {"whole-mesh", "the whole mesh beside the pieces of the processors is not read", "", place};
    }
    if (!mesh.processor.empty() && !mesh.region.empty()) {
        return {"processor-region", "regions of processors are not read", "", place};
    }
    if (timeOfName(mesh.folder.substr(0, mesh.folder.find('/')))) {
        return {"first-time-mesh", "the mesh in the first time folder is not read in place of that in constant", "",
                place};
    }
    if (mesh.processor.empty() && !examination.folder.collatedFolders().empty()) {
        return {"whole-mesh", "the folder of collated files makes it a decomposed case, whose whole mesh is not read",
                "", place};
    }
    if (!mesh.cells) {
        return {"no-note", "the owner file has no note with the number of cells", "", {mesh.folder + "/owner", 0}};
    }
    for (const std::string& folder : examination.folder.foldersIn(mesh.processor)) {
        const std::string points = mesh.processor + "/" + folder + "/polyMesh";
        if (!mesh.processor.empty() && points != mesh.folder && examination.folder.hasFolder(points)) {
            return {
                "processor-points", "the folder of moved points of a processor is taken for its mesh", "", {points, 0}};
        }
    }
    if (auto found = rawCause(examination.folder, mesh)) {
        return *found;
    }
    return {"mesh", "the mesh differs between plain and extended reading, and no cause was found in its files", "",
            place};
}

void examineMeshes(Examination& examination)
{
    for (const CaseMesh& mesh : examination.folder.meshes()) {
        if (!isToBeShown(examination, mesh)) {
            examination.report.forms.hasWholeMeshBesidePieces |= mesh.isBesidePieces;
            continue;
        }
        countForms(examination, mesh);
        const std::optional<std::size_t> group = examination.extended.group(mesh.part, "");
        const std::optional<std::size_t> shown =
            group ? std::optional(examination.extended.elements(*group)->elementCount()) : std::nullopt;
        examination.report.forms.cells += shown.value_or(0);
        examineGroup(examination, mesh, "", mesh.cells, hiddenMesh(examination.folder, mesh, shown),
                     plainMeshCause(examination, mesh));
        if (shown.value_or(0) > 0) {
            examinePatches(examination, mesh);
        }
        examineZones(examination, mesh);
        examineChanges(examination, mesh);
    }
}
