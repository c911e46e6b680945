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

/// Without faces between cells solvers may leave out the file, and it says nothing.
bool MeshCauses::needsNeighbours() const
{
    std::size_t outer = 0;
    for (const CasePatch& patch : m_mesh.patches) {
        outer += static_cast<std::size_t>(std::max<std::int64_t>(patch.faces, 0));
    }
    return outer != m_files[FACES].count;
}

std::optional<Cause> MeshCauses::ofMissingFiles() const
{
    std::string names;
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        if (!m_files[i].isOpen && (i != NEIGHBOUR || needsNeighbours())) {
            names += fmt::format("{}{}", names.empty() ? "" : ", ", MESH_FILES[i]);
        }
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
    const auto faces = m_files[FACES].count;
    const auto owners = m_files[OWNER].count;
    const auto neighbours = m_files[NEIGHBOUR].count;
    if (!faces || !owners || faces == owners) {
        return neighbours && owners && *neighbours > *owners
                   ? std::optional(Cause{"mesh-counts",
                                         fmt::format("there are {} neighbours of {} faces", *neighbours, *owners),
                                         WRITE_AGAIN,
                                         {pathOf("neighbour"), 0}})
                   : std::nullopt;
    }
    return Cause{"mesh-counts",
                 fmt::format("there are {} owners of {} faces", *owners, *faces),
                 WRITE_AGAIN,
                 {pathOf("owner"), 0}};
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
        const bool isMissing = file == pathOf("neighbour") && !m_files[NEIGHBOUR].isOpen;
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
