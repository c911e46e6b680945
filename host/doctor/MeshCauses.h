// SPDX-License-Identifier: MIT
#pragma once

#include "doctor/CaseFolder.h"
#include "doctor/Delivery.h"
#include "doctor/Findings.h"
#include "doctor/ListFile.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

/// The lists that a mesh is made of.
inline constexpr std::array<std::string_view, 4> MESH_FILES = {"points", "faces", "owner", "neighbour"};

/// Finds out from the files of a mesh why it does not show.
class MeshCauses
{
public:
    /// Looks at the files, each once; the references must outlive the object.
    MeshCauses(const CaseFolder& folder, const CaseMesh& mesh);

    /// Those of `MESH_FILES`, in that order.
    const std::array<ListFile, 4>& files() const { return m_files; }

    /// What is wrong with files of the mesh: that they are missing or damaged, or that the library says so.
    std::vector<Cause> ofFiles(const std::vector<LoggedCause>& logged) const;
    /// Why not all cells are shown, if the files are all there.
    Cause ofCells(std::size_t shown) const;
    /// That faces have more nodes than hosts count; none if there are no such faces.
    std::optional<Cause> ofLongFaces() const;
    /// Why plain reading shows other cells or points; none if nothing is found.
    std::optional<Cause> ofPlain() const;

private:
    std::optional<Cause> ofMissingFiles() const;
    std::optional<Cause> ofCounts() const;
    std::string pathOf(std::string_view name) const { return m_mesh.folder + "/" + std::string(name); }
    std::size_t patchFaces() const;

    const CaseFolder& m_folder;
    const CaseMesh& m_mesh;
    std::array<ListFile, 4> m_files;
};
