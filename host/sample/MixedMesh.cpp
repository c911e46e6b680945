// SPDX-License-Identifier: MIT
#include "sample/MixedMesh.h"

#include "sample/SampleMeshBuilder.h"

#include <algorithm>

namespace {

constexpr std::size_t HIGH_X = 1;

enum class Slab
{
    Prisms,
    Pyramids,
    Hexahedra,
    Tetrahedra
};

constexpr std::array<Slab, MIXED_SLABS> SLABS = {Slab::Prisms, Slab::Pyramids, Slab::Hexahedra, Slab::Hexahedra,
                                                 Slab::Tetrahedra};

using Triangle = std::array<std::int32_t, 3>;
using Quad = BoxLattice::Side;

/// Splits a side along the diagonal through its lowest node. That way both cells at the side choose the same diagonal.
std::array<Triangle, 2> split(const Quad& side)
{
    const auto lowest = static_cast<std::size_t>(std::ranges::min_element(side) - side.begin());
    const auto at = [&](std::size_t k) { return side[(lowest + k) % 4]; };
    return {{{at(0), at(1), at(2)}, {at(0), at(2), at(3)}}};
}

class MixedMesher
{
public:
    explicit MixedMesher(const BoxLattice& lattice) : m_lattice(lattice) { lattice.addPoints(&m_builder.points()); }

    SampleMesh mesh()
    {
        for (int k = 0; k < m_lattice.counts[2]; ++k) {
            for (int j = 0; j < m_lattice.counts[1]; ++j) {
                for (int i = 0; i < m_lattice.counts[0]; ++i) {
                    addCube(i, j, k);
                }
            }
        }
        return m_builder.build(m_lattice.size());
    }

private:
    Slab slabOf(int i) const { return SLABS[static_cast<std::size_t>(MIXED_SLABS * i / m_lattice.counts[0])]; }

    void addCube(int i, int j, int k)
    {
        switch (slabOf(i)) {
        case Slab::Prisms:
            return addPrisms(i, j, k);
        case Slab::Hexahedra:
            return addHexahedron(i, j, k);
        case Slab::Pyramids:
        case Slab::Tetrahedra:
            return addStar(i, j, k);
        }
    }

    /// True if a side is split into triangles; both cells at the side must get the same answer.
    bool isSplit(int i, std::size_t side) const
    {
        const bool nextToTetrahedra =
            side == HIGH_X && i + 1 < m_lattice.counts[0] && slabOf(i + 1) == Slab::Tetrahedra;
        return slabOf(i) == Slab::Tetrahedra || nextToTetrahedra;
    }

    /// Halves a cube along the diagonal of its base. All cubes above are halved in the same way, so the halves match.
    void addPrisms(int i, int j, int k)
    {
        const Quad low = m_lattice.side(i, j, k, 4);  // 0 3 2 1
        const Quad high = m_lattice.side(i, j, k, 5); // 4 5 6 7
        const Quad cut = {low[0], low[2], high[2], high[0]};
        m_builder.beginCell();
        m_builder.addFace(Triangle{low[0], low[2], low[3]});
        m_builder.addFace(Triangle{high[0], high[1], high[2]});
        m_builder.addFace(m_lattice.side(i, j, k, 1));
        m_builder.addFace(m_lattice.side(i, j, k, 2));
        m_builder.addFace(Quad{cut[3], cut[2], cut[1], cut[0]});
        m_builder.beginCell();
        m_builder.addFace(Triangle{low[0], low[1], low[2]});
        m_builder.addFace(Triangle{high[0], high[2], high[3]});
        m_builder.addFace(m_lattice.side(i, j, k, 0));
        m_builder.addFace(m_lattice.side(i, j, k, 3));
        m_builder.addFace(cut);
    }

    /// A cube, with more than six faces if a neighbour needs triangles.
    void addHexahedron(int i, int j, int k)
    {
        m_builder.beginCell();
        for (std::size_t number = 0; number < 6; ++number) {
            const Quad side = m_lattice.side(i, j, k, number);
            if (isSplit(i, number)) {
                m_builder.addFace(split(side)[0]);
                m_builder.addFace(split(side)[1]);
            } else {
                m_builder.addFace(side);
            }
        }
    }

    /// Cuts a cube into cells that have its sides as bases and its centre as apex.
    void addStar(int i, int j, int k)
    {
        const int middle = m_builder.addPoint(
            {BoxLattice::SPACING * (i + 0.5), BoxLattice::SPACING * (j + 0.5), BoxLattice::SPACING * (k + 0.5)});
        for (std::size_t number = 0; number < 6; ++number) {
            const Quad side = m_lattice.side(i, j, k, number);
            if (isSplit(i, number)) {
                addCone(split(side)[0], middle);
                addCone(split(side)[1], middle);
            } else {
                addCone(side, middle);
            }
        }
    }

    /// A pyramid or a tetrahedron: a base, and a triangle from each of its edges to the apex.
    void addCone(std::span<const std::int32_t> base, std::int32_t apex)
    {
        m_builder.beginCell();
        m_builder.addFace(base);
        for (std::size_t k = 0; k < base.size(); ++k) {
            m_builder.addFace(Triangle{base[(k + 1) % base.size()], base[k], apex});
        }
    }

    const BoxLattice& m_lattice;
    SampleMeshBuilder m_builder;
};

} // namespace

SampleMesh makeMixedMesh(const BoxLattice& lattice)
{
    return MixedMesher(lattice).mesh();
}
