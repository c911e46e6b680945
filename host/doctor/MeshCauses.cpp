// SPDX-License-Identifier: MIT
#include "doctor/MeshCauses.h"

#include "doctor/Wording.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

constexpr std::size_t FACES = 1;
constexpr std::size_t OWNER = 2;
constexpr std::size_t NEIGHBOUR = 3;
/// Hosts count the nodes of a face in a byte.
constexpr std::size_t MOST_NODES = 255;

const char* const WRITE_AGAIN = "write the mesh again";

} // namespace

MeshCauses::MeshCauses(const CaseFolder& folder, const CaseMesh& mesh) : m_folder(folder), m_mesh(mesh)
{
    std::ranges::transform(MESH_FILES, m_files.begin(),
                           [&](std::string_view name) { return readListFile(folder.root() / pathOf(name)); });
}

std::size_t MeshCauses::patchFaces() const
{
    std::size_t faces = 0;
    for (const CasePatch& patch : m_mesh.patches) {
        faces += static_cast<std::size_t>(std::max<std::int64_t>(patch.faces, 0));
    }
    return faces;
}

std::optional<Cause> MeshCauses::ofMissingFiles() const
{
    std::string names;
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        // Without faces between cells there may be no neighbours.
        if (!m_files[i].isOpen && (i != NEIGHBOUR || patchFaces() != m_files[FACES].count)) {
            names += fmt::format("{}{}", names.empty() ? "" : ", ", MESH_FILES[i]);
        }
    }
    if (!m_folder.hasFile(pathOf("boundary"))) {
        names += names.empty() ? "boundary" : ", boundary";
    }
    if (names.empty()) {
        return std::nullopt;
    }
    const std::string first = pathOf(names.substr(0, names.find(',')));
    return Cause{"mesh-file",
                 fmt::format("files of the mesh that are missing or cannot be opened: {}", names),
                 m_folder.hasFile(first) ? "check the permissions" : "make the mesh, or write it again",
                 {first, 0}};
}

std::optional<Cause> MeshCauses::ofCounts() const
{
    const std::size_t faces = m_files[FACES].count.value_or(0);
    const std::size_t owners = m_files[OWNER].count.value_or(0);
    const std::size_t neighbours = m_files[NEIGHBOUR].count.value_or(0);
    if (faces != owners) {
        return Cause{"mesh-counts",
                     fmt::format("there are {} owners of {} faces", owners, faces),
                     WRITE_AGAIN,
                     {pathOf("owner"), 0}};
    }
    // Some programs name a neighbour of each face, those of the outer ones being -1.
    if (neighbours + patchFaces() != faces && neighbours != faces) {
        return Cause{"mesh-counts",
                     fmt::format("{} faces have neighbours and {} are in patches, but there are {} faces", neighbours,
                                 patchFaces(), faces),
                     WRITE_AGAIN,
                     {pathOf("boundary"), 0}};
    }
    return std::nullopt;
}

std::vector<Cause> MeshCauses::ofFiles(const std::vector<LoggedCause>& logged) const
{
    std::vector<Cause> causes;
    const auto add = [&](const std::optional<Cause>& found) {
        if (found) {
            causes.push_back(*found);
        }
    };
    add(ofMissingFiles());
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        if (!m_files[i].fault.empty()) {
            causes.push_back({"mesh-list",
                              "the list " + m_files[i].fault,
                              "write the mesh again; the file may have been cut off",
                              {pathOf(MESH_FILES[i]), m_files[i].faultLine}});
        }
    }
    if (causes.empty()) {
        add(ofCounts());
    }
    for (const LoggedCause& said : logged) {
        const std::string file = wording::pathIn(m_folder.root(), said.file);
        const bool isMissing = !m_folder.hasFile(file);
        const bool isNew = std::ranges::none_of(causes, [&](const Cause& one) { return one.place.file == file; });
        if (file.starts_with(m_mesh.folder + "/") && isNew && !isMissing) {
            causes.push_back({"mesh-unread", "the file is not read: " + said.reason, WRITE_AGAIN, {file, 0}});
        }
    }
    return causes;
}

Cause MeshCauses::ofCells(std::size_t shown) const
{
    if (m_mesh.cells == std::size_t(0)) {
        return {"mesh-empty", "the mesh has no cells", "make the mesh again", {pathOf("owner"), 0}};
    }
    if (shown == 0 && timeOfName(m_mesh.folder.substr(0, m_mesh.folder.find('/')))) {
        return {"mesh-in-time",
                "a mesh in a time folder is read only if there is one in constant, or if the time is 0",
                "move it to constant",
                {m_mesh.folder, 0}};
    }
    return {"mesh-cells",
            fmt::format("{} cells of the mesh are shown, and its owner file says {}", shown,
                        m_mesh.cells ? std::to_string(*m_mesh.cells) : "nothing of their number"),
            "check the mesh with checkMesh",
            {pathOf("owner"), 0}};
}

std::optional<Cause> MeshCauses::ofLongFaces() const
{
    if (m_files[FACES].longestItem <= MOST_NODES) {
        return std::nullopt;
    }
    return Cause{"long-faces",
                 fmt::format("faces have up to {} nodes, and hosts count {}", m_files[FACES].longestItem, MOST_NODES),
                 "divide these faces",
                 {pathOf("faces"), 0}};
}

std::optional<Cause> MeshCauses::ofPlain() const
{
    if (!m_mesh.cells) {
        return Cause{"no-note", "the owner file has no note with the number of cells", "", {pathOf("owner"), 0}};
    }
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        if (m_files[i].hasUnusualRawForm()) {
            return Cause{"raw-form",
                         fmt::format("raw values are written in another form than is usual ({})", m_files[i].arch),
                         "",
                         {pathOf(MESH_FILES[i]), 0}};
        }
    }
    return std::nullopt;
}
