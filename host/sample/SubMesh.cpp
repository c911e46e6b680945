// SPDX-License-Identifier: MIT
#include "sample/SubMesh.h"

#include <algorithm>
#include <map>

namespace {

class Extractor
{
public:
    Extractor(const SampleMesh& whole, const std::vector<int>& domainOfCell, int domain)
        : m_whole(whole), m_domains(domainOfCell), m_domain(domain),
          m_cellLabels(static_cast<std::size_t>(whole.cellCount), -1),
          m_pointLabels(static_cast<std::size_t>(whole.pointCount()), -1)
    {}

    SubMesh extract(const std::function<SamplePatch(int)>& interfacePatch)
    {
        numberCells();
        addInternalFaces();
        for (const SamplePatch& patch : m_whole.patches) {
            addPatch(patch);
        }
        addInterfaces(interfacePatch);
        // Last, once it is known which points are used.
        numberPoints();
        return std::move(m_part);
    }

private:
    bool isMine(int cell) const { return m_domains[static_cast<std::size_t>(cell)] == m_domain; }
    int ownerOf(int face) const { return m_whole.owners[static_cast<std::size_t>(face)]; }
    int neighbourOf(int face) const { return m_whole.neighbours[static_cast<std::size_t>(face)]; }
    int labelOf(int cell) const { return m_cellLabels[static_cast<std::size_t>(cell)]; }

    /// The cells of this piece keep their order, so everything derived from it stays sorted.
    void numberCells()
    {
        for (int cell = 0; cell < m_whole.cellCount; ++cell) {
            if (isMine(cell)) {
                m_cellLabels[static_cast<std::size_t>(cell)] = m_part.mesh.cellCount++;
                m_part.cells.push_back(cell);
            }
        }
    }

    /// Cells keep their order, so internal faces stay sorted.
    void addInternalFaces()
    {
        for (int face = 0; face < m_whole.internalFaceCount(); ++face) {
            if (isMine(ownerOf(face)) && isMine(neighbourOf(face))) {
                m_part.mesh.addFace(m_whole.nodesOfFace(face), labelOf(ownerOf(face)));
                m_part.mesh.neighbours.push_back(labelOf(neighbourOf(face)));
            }
        }
    }

    /// A patch without faces here stays in the list: all pieces of a case have the same patches at the same positions.
    void addPatch(const SamplePatch& patch)
    {
        SamplePatch mine = patch;
        mine.startFace = m_part.mesh.faceCount();
        for (int face = patch.startFace; face < patch.startFace + patch.faceCount; ++face) {
            if (isMine(ownerOf(face))) {
                m_part.mesh.addFace(m_whole.nodesOfFace(face), labelOf(ownerOf(face)));
            }
        }
        mine.faceCount = m_part.mesh.faceCount() - mine.startFace;
        m_part.mesh.patches.push_back(std::move(mine));
    }

    /// Collects the faces between this piece and each of the others, in order of their labels.
    void addInterfaces(const std::function<SamplePatch(int)>& interfacePatch)
    {
        std::map<int, std::vector<int>> facesTowards;
        for (int face = 0; face < m_whole.internalFaceCount(); ++face) {
            if (isMine(ownerOf(face)) != isMine(neighbourOf(face))) {
                const int outside = isMine(ownerOf(face)) ? neighbourOf(face) : ownerOf(face);
                facesTowards[m_domains[static_cast<std::size_t>(outside)]].push_back(face);
            }
        }
        for (const auto& [other, faces] : facesTowards) {
            SamplePatch patch = interfacePatch(other);
            patch.startFace = m_part.mesh.faceCount();
            patch.faceCount = static_cast<int>(faces.size());
            m_part.mesh.patches.push_back(std::move(patch));
            std::ranges::for_each(faces, [this](int face) { addInterfaceFace(face); });
        }
    }

    /// The normal must point out of this piece, so if the neighbour is here, the face is reversed, keeping its first
    /// node.
    void addInterfaceFace(int face)
    {
        const std::span<const std::int32_t> nodes = m_whole.nodesOfFace(face);
        std::vector<std::int32_t> outward(nodes.begin(), nodes.end());
        const bool mine = isMine(ownerOf(face));
        if (!mine) {
            std::reverse(outward.begin() + 1, outward.end());
        }
        m_part.mesh.addFace(outward, labelOf(mine ? ownerOf(face) : neighbourOf(face)));
    }

    /// Points keep their order too; unused ones are dropped.
    void numberPoints()
    {
        for (const std::int32_t node : m_part.mesh.faceNodes) {
            m_pointLabels[static_cast<std::size_t>(node)] = 0;
        }
        int next = 0;
        for (int label = 0; label < m_whole.pointCount(); ++label) {
            std::int32_t& mine = m_pointLabels[static_cast<std::size_t>(label)];
            if (mine == 0) {
                mine = next++;
                m_part.mesh.addPoint(m_whole.point(label));
            }
        }
        for (std::int32_t& node : m_part.mesh.faceNodes) {
            node = m_pointLabels[static_cast<std::size_t>(node)];
        }
    }

    const SampleMesh& m_whole;
    const std::vector<int>& m_domains;
    int m_domain;
    std::vector<std::int32_t> m_cellLabels;
    std::vector<std::int32_t> m_pointLabels;
    SubMesh m_part;
};

} // namespace

SubMesh extractDomain(const SampleMesh& whole, const std::vector<int>& domainOfCell, int domain,
                      const std::function<SamplePatch(int other)>& interfacePatch)
{
    return Extractor(whole, domainOfCell, domain).extract(interfacePatch);
}
