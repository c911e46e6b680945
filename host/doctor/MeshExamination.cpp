// SPDX-License-Identifier: MIT
#include "doctor/Examination.h"
#include "doctor/MeshCauses.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace {

/// Why plain reading has no patch or another one.
Cause plainPatchGroup(const CaseMesh& mesh, const CasePatch& patch)
{
    const FindingPlace place = {mesh.folder + "/boundary", patch.line};
    if (timeOfName(mesh.folder.substr(0, mesh.folder.find('/')))) {
        return {"first-time-mesh", "the mesh in the first time folder is read without its patches", "", place};
    }
    return {"boundary-layout", "the boundary file is laid out as OpenFOAM does not write it", "", place};
}

bool isSameShape(const HostElementGroup& a, const HostElementGroup& b)
{
    return a.elementCount() == b.elementCount() && a.connectivity == b.connectivity &&
           a.polyhedra.faceConnectivity == b.polyhedra.faceConnectivity;
}

bool isSameGroup(const Delivery& plain, std::size_t inPlain, const Delivery& extended, std::size_t inExtended)
{
    const HostNodeGroup* const a = plain.nodes(inPlain);
    const HostNodeGroup* const b = extended.nodes(inExtended);
    return isSameShape(*plain.elements(inPlain), *extended.elements(inExtended)) &&
           (a == nullptr || b == nullptr ? a == b : a->coordinates == b->coordinates);
}

/// How far a group of a mesh is shown.
struct GroupOutcome
{
    std::size_t shown = 0; ///< elements that extended reading shows
    bool isSame = false;   ///< plain reading shows the same
};

GroupOutcome outcomeOfGroup(const Examination& examination, const CaseMesh& mesh, const std::string& name)
{
    const std::optional<std::size_t> inPlain = examination.plain.group(mesh.part, name);
    const std::optional<std::size_t> inExtended = examination.extended.group(mesh.part, name);
    const std::size_t shown = inExtended ? examination.extended.elements(*inExtended)->elementCount() : 0;
    return {shown,
            inPlain && inExtended && isSameGroup(examination.plain, *inPlain, examination.extended, *inExtended)};
}

/// Tells something that hosts are not given because of a setting.
void tellSetting(Examination& examination, const char* name, const char* what, const char* key, const std::string& file)
{
    examination.report.findings.add(
        FindingKind::Setting, {name, fmt::format("{} are not shown", what), fmt::format("set {}=on", key), {file, 0}});
}

void examinePatches(Examination& examination, const CaseMesh& mesh)
{
    Findings& findings = examination.report.findings;
    const bool isSame = isSameMeshInPlain(examination, mesh);
    const auto hasFaces = [](const CasePatch& patch) { return patch.faces > 0; };
    if (!examination.isSet("LOAD_BC_PARTS") && std::ranges::any_of(mesh.patches, hasFaces)) {
        tellSetting(examination, "patches", "patches", "LOAD_BC_PARTS", mesh.folder + "/boundary");
    }
    for (const CasePatch& patch : mesh.patches) {
        const bool isUnwanted = examination.isSet("HIDE_PARALLEL_INTERFACES") && patch.name.starts_with("procBoundary");
        if (patch.faces <= 0 || isUnwanted || !examination.isSet("LOAD_BC_PARTS")) {
            continue;
        }
        const FindingPlace place = {mesh.folder + "/boundary", patch.line};
        const GroupOutcome outcome = outcomeOfGroup(examination, mesh, patch.name);
        if (outcome.shown != static_cast<std::size_t>(patch.faces)) {
            findings.add(FindingKind::Hidden, {"patch-missing",
                                               fmt::format("the patch {} is shown with {} of its {} faces", patch.name,
                                                           outcome.shown, patch.faces),
                                               "check the mesh with checkMesh", place});
        } else if (!outcome.isSame) {
            // Without the part there is one finding, which is about the part.
            findings.add(FindingKind::Extended,
                         isSame ? plainPatchGroup(mesh, patch) : plainMeshCause(examination, mesh));
        }
    }
}

/// A kind of zone.
struct ZoneKind
{
    HostGroupKind kind;
    std::size_t CaseMesh::*count;
    const char* file;
    const char* name; ///< of the cause
    const char* what;
    const char* setting;
};

constexpr std::array<ZoneKind, 2> ZONE_KINDS = {
    {{HostGroupKind::CellZone, &CaseMesh::cellZones, "cellZones", "cell-zones", "cell zones", "LOAD_CELL_ZONES"},
     {HostGroupKind::FaceZone, &CaseMesh::faceZones, "faceZones", "face-zones", "face zones", "LOAD_FACE_ZONES"}}};

void examineZones(Examination& examination, const CaseMesh& mesh, const ZoneKind& zones)
{
    const std::string file = mesh.folder + "/" + zones.file;
    const std::size_t expected = mesh.*zones.count;
    if (expected == 0) {
        return;
    }
    if (!examination.isSet(zones.setting)) {
        tellSetting(examination, zones.name, zones.what, zones.setting, file);
        return;
    }
    const std::size_t inExtended = examination.extended.zoneCount(mesh.part, zones.kind);
    const std::size_t inPlain = examination.plain.zoneCount(mesh.part, zones.kind);
    const bool isOfRegion = zones.kind == HostGroupKind::CellZone && !mesh.region.empty();
    if (inExtended < expected) {
        examination.report.findings.add(
            FindingKind::Hidden,
            {zones.name, fmt::format("not all {} are shown", zones.what), "write them again", {file, 0}});
    } else if (isSameMeshInPlain(examination, mesh) && inPlain < inExtended) {
        examination.report.findings.add(FindingKind::Extended,
                                        {zones.name,
                                         isOfRegion ? "the cell zones of regions are not read"
                                                    : fmt::format("not all {} are read in their layout", zones.what),
                                         "",
                                         {file, 0}});
    }
}

/// Meshes that change with time, of which hosts are given one.
void examineChanges(Examination& examination, const CaseMesh& mesh)
{
    for (const CaseTime& time : examination.folder.times()) {
        for (const std::string& folder : examination.folder.fieldFolders(mesh, time.name)) {
            if (folder + "/polyMesh" != mesh.folder && examination.folder.hasFile(folder + "/polyMesh/faces")) {
                Finding& finding = examination.report.findings.add(FindingKind::Hidden, meshChangesCause(folder));
                finding.times.insert(time.name);
            }
        }
    }
}

void countForms(Examination& examination, const CaseMesh& mesh, const MeshCauses& causes)
{
    CaseForms& forms = examination.report.forms;
    forms.patches += mesh.patches.size();
    for (const ListFile& file : causes.files()) {
        if (file.isOpen) {
            forms.count(file.isGzip, file.isBinary(), file.arch);
        }
    }
}

/// What of the cells is left out because the interface cannot hold it; in a line of the host after the name of the
/// part or surface.
void examineLimits(Examination& examination)
{
    for (const std::string& limit : examination.extended.limits()) {
        const std::size_t colon = limit.find(": ");
        const std::string name = limit.substr(0, colon);
        const auto mesh = std::ranges::find(examination.folder.meshes(), name, &CaseMesh::part);
        const auto surface = std::ranges::find(examination.folder.surfaces(), name, &CaseSurface::group);
        const std::string place = mesh != examination.folder.meshes().end()        ? mesh->folder + "/faces"
                                  : surface != examination.folder.surfaces().end() ? surface->folder + "/faces"
                                                                                   : ".";
        examination.report.findings.add(FindingKind::Hidden, {"limit", limit.substr(colon + 2), "", {place, 0}});
    }
}

/// The number of cells that the host is given without faces.
std::size_t cellsWithoutFaces(const Examination& examination, const CaseMesh& mesh)
{
    const auto group = examination.extended.group(mesh.part, "");
    return group ? static_cast<std::size_t>(
                       std::ranges::count(examination.extended.elements(*group)->polyhedra.facesPerPolyhedron, 0))
                 : 0;
}

/// Compares the cells of a mesh.
/// @return true if they are shown, so that patches can be
bool examineCells(Examination& examination, const CaseMesh& mesh, const MeshCauses& causes)
{
    const GroupOutcome outcome = outcomeOfGroup(examination, mesh, "");
    examination.report.forms.cells += outcome.shown;
    std::vector<Cause> hidden = causes.ofFiles(examination.extended.errors());
    const auto isOfMesh = [&](const std::string& limit) { return limit.starts_with(mesh.part + ": "); };
    const bool isLimited = std::ranges::any_of(examination.extended.limits(), isOfMesh);
    const std::size_t empty = isLimited ? 0 : cellsWithoutFaces(examination, mesh);
    if (hidden.empty() && (empty > 0 || outcome.shown == 0 || (mesh.cells && outcome.shown != *mesh.cells))) {
        hidden.push_back(causes.ofCells(outcome.shown - empty));
    }
    MeshOutcome& found = examination.meshes[mesh.part];
    found = {hidden.empty() ? std::nullopt : std::optional(hidden.front()), causes.ofPlain(), outcome.isSame};
    for (const Cause& cause : hidden) {
        examination.report.findings.add(FindingKind::Hidden, cause);
    }
    if (hidden.empty() && !outcome.isSame) {
        examination.report.findings.add(FindingKind::Extended, plainMeshCause(examination, mesh));
    }
    if (const auto longFaces = causes.ofLongFaces(); longFaces && !isLimited) {
        examination.report.findings.add(FindingKind::Hidden, *longFaces);
    }
    return hidden.empty();
}

} // namespace

bool isSameMeshInPlain(const Examination& examination, const CaseMesh& mesh)
{
    const auto found = examination.meshes.find(mesh.part);
    return found != examination.meshes.end() && found->second.isSameInPlain;
}

Cause meshChangesCause(const std::string& folder)
{
    return {"mesh-changes",
            "the mesh changes with time, and only the first one is shown",
            "open the times of each mesh as a case of their own",
            {folder + "/polyMesh/faces", 0}};
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
    for (const std::string& folder : examination.folder.foldersIn(mesh.processor)) {
        const std::string points = mesh.processor + "/" + folder + "/polyMesh";
        if (!mesh.processor.empty() && points != mesh.folder && examination.folder.hasFolder(points)) {
            return {
                "processor-points", "the folder of moved points of a processor is taken for its mesh", "", {points, 0}};
        }
    }
    if (const auto found = examination.meshes.find(mesh.part);
        found != examination.meshes.end() && found->second.plain) {
        return *found->second.plain;
    }
    return {"mesh", "the mesh differs between plain and extended reading, and no cause was found in its files", "",
            place};
}

void examineMeshes(Examination& examination)
{
    for (const CaseMesh& mesh : examination.folder.meshes()) {
        if (!isToBeShown(examination, mesh)) {
            examination.report.forms.hasWholeMeshBesidePieces |= mesh.isBesidePieces;
            if (!mesh.isBesidePieces) {
                tellSetting(examination, "meshes", mesh.region.empty() ? "cells" : "cells of regions",
                            mesh.region.empty() ? "LOAD_GLOBAL_MESH" : "LOAD_LOCAL_MESHES", mesh.folder);
            }
            continue;
        }
        const MeshCauses causes(examination.folder, mesh);
        countForms(examination, mesh, causes);
        if (examineCells(examination, mesh, causes)) {
            examinePatches(examination, mesh);
            for (const ZoneKind& zones : ZONE_KINDS) {
                examineZones(examination, mesh, zones);
            }
        }
        examineChanges(examination, mesh);
    }
    if (examination.folder.meshes().empty() && examination.folder.collatedFolders().empty()) {
        examination.report.findings.add(FindingKind::Hidden,
                                        {"no-mesh",
                                         "there is no mesh",
                                         "make one, for instance with blockMesh, or open the folder that holds it",
                                         {"constant/polyMesh", 0}});
    }
    examineLimits(examination);
}
