// SPDX-License-Identifier: MIT
#include "view/OuterFaces.h"

#include "border/CellFaces.h"

#include <algorithm>
#include <limits>
#include <span>

namespace {

using Face = std::span<const std::int32_t>;

constexpr std::size_t LEAST_CORNERS = 3;

/// Spreads the bits of a label, so that sums of several labels seldom meet.
std::uint64_t mixed(std::int32_t label)
{
    auto bits = static_cast<std::uint64_t>(label) + 0x9e3779b97f4a7c15U;
    bits = (bits ^ (bits >> 30U)) * 0xbf58476d1ce4e5b9U;
    bits = (bits ^ (bits >> 27U)) * 0x94d049bb133111ebU;
    return bits ^ (bits >> 31U);
}

/// The same for the same nodes in any order in cells of the same set.
std::uint64_t digestOf(Face face, std::int32_t set)
{
    std::uint64_t sum = mixed(-1 - set); // never a node
    for (const std::int32_t node : face) {
        sum += mixed(node);
    }
    return sum;
}

/// One face among those with the same least node.
struct FaceMark
{
    std::uint64_t digest;
    std::uint32_t ordinal; ///< among all faces that were walked
};

/// Finds the faces that occur once in each set of cells.
///
/// Faces are sorted into buckets by their least node, of which there are about six in each, so that the search takes
/// linear time and two equal digests stand for the same nodes.
class SingleFaces
{
public:
    SingleFaces(std::size_t nodeCount) : m_starts(nodeCount + 1) {}

    void count(Face face) { ++m_starts[static_cast<std::size_t>(std::ranges::min(face)) + 1]; }

    /// To be called once between counting and adding the same faces in the same order.
    void sizeBuckets()
    {
        for (std::size_t node = 1; node < m_starts.size(); ++node) {
            m_starts[node] += m_starts[node - 1];
        }
        m_marks.resize(m_starts.back());
        m_ends.assign(m_starts.begin(), m_starts.end() - 1);
        m_isSingle.assign(m_marks.size(), true);
    }

    void add(Face face, std::int32_t set)
    {
        const auto node = static_cast<std::size_t>(std::ranges::min(face));
        const std::uint64_t digest = digestOf(face, set);
        const auto first = m_marks.begin() + static_cast<std::ptrdiff_t>(m_starts[node]);
        const auto end = m_marks.begin() + static_cast<std::ptrdiff_t>(m_ends[node]);
        const auto twin = std::find_if(first, end, [=](const FaceMark& mark) { return mark.digest == digest; });
        if (twin != end) {
            m_isSingle[twin->ordinal] = false;
            m_isSingle[m_added] = false;
        } else {
            m_marks[m_ends[node]++] = {digest, static_cast<std::uint32_t>(m_added)};
        }
        ++m_added;
    }

    bool isSingle(std::size_t ordinal) const { return m_isSingle[ordinal]; }

private:
    std::vector<std::size_t> m_starts; ///< first mark of each node's bucket
    std::vector<std::size_t> m_ends;   ///< one past the last mark that is in use
    std::vector<FaceMark> m_marks;
    std::vector<bool> m_isSingle;
    std::size_t m_added = 0;
};

/// Collects faces of each of some sets.
class FaceCollector
{
public:
    FaceCollector(const HostNodeGroup& nodes, std::size_t setCount)
        : m_coordinates(nodes.coordinates), m_pointOfNode(nodes.nodeCount(), -1), m_faces(setCount)
    {}

    void add(std::size_t element, Face face, std::size_t set)
    {
        DrawnFaces& faces = m_faces[set];
        const std::size_t start = fanStart(face);
        for (std::size_t k = 0; k < face.size(); ++k) {
            faces.corners.push_back(face[(start + k) % face.size()]);
        }
        faces.sizes.push_back(static_cast<std::uint8_t>(face.size()));
        faces.elements.push_back(static_cast<std::int32_t>(element));
    }

    /// Numbers the points of each set in the order in which they are used, which keeps neighbours together.
    std::vector<DrawnFaces> take()
    {
        for (DrawnFaces& faces : m_faces) {
            for (std::int32_t& corner : faces.corners) {
                std::int32_t& point = m_pointOfNode[static_cast<std::size_t>(corner)];
                if (point < 0) {
                    point = static_cast<std::int32_t>(faces.nodes.size());
                    faces.nodes.push_back(corner);
                }
                corner = point;
            }
            for (const std::int32_t node : faces.nodes) {
                m_pointOfNode[static_cast<std::size_t>(node)] = -1;
            }
        }
        return std::move(m_faces);
    }

private:
    /// The node from which a fan folds least; the first one unless the face is concave.
    std::size_t fanStart(Face face) const
    {
        if (face.size() == LEAST_CORNERS) {
            return 0;
        }
        const Vector3 whole = areaVector(m_coordinates, face);
        std::size_t best = 0;
        double bestFold = -std::numeric_limits<double>::infinity();
        for (std::size_t start = 0; start < face.size(); ++start) {
            const double fold = leastTurn(face, start, whole);
            if (fold >= 0) {
                return start;
            }
            if (fold > bestFold) {
                bestFold = fold;
                best = start;
            }
        }
        return best;
    }

    /// Negative if a triangle of the fan faces the other way than the face as a whole.
    double leastTurn(Face face, std::size_t start, const Vector3& whole) const
    {
        double least = std::numeric_limits<double>::infinity();
        for (std::size_t k = 1; k + 1 < face.size(); ++k) {
            const std::array<std::int32_t, 3> triangle = {face[start], face[(start + k) % face.size()],
                                                          face[(start + k + 1) % face.size()]};
            const Vector3 area = areaVector(m_coordinates, triangle);
            least = std::min(least, area[0] * whole[0] + area[1] * whole[1] + area[2] * whole[2]);
        }
        return least;
    }

    const std::vector<double>& m_coordinates;
    std::vector<std::int32_t> m_pointOfNode; ///< -1 for nodes without a point
    std::vector<DrawnFaces> m_faces;         ///< of each set; until the end, corners are nodes
};

/// Walks the faces that can be drawn of the cells of some sets: `visit(element, face, set)`.
/// @param setOf gives the set of an element, negative for an element in none
template <typename SetOf, typename Visit>
void walk(const HostElementGroup& elements, SetOf setOf, Visit visit)
{
    forEachFace(elements, [&](std::size_t element, Face face) {
        const std::int32_t set = setOf(element);
        if (set >= 0 && face.size() >= LEAST_CORNERS) {
            visit(element, face, set);
        }
    });
}

template <typename SetOf>
std::vector<DrawnFaces> outerFacesOfSets(const HostNodeGroup& nodes, const HostElementGroup& elements,
                                         std::size_t setCount, SetOf setOf)
{
    SingleFaces single(nodes.nodeCount());
    walk(elements, setOf, [&](std::size_t, Face face, std::int32_t) { single.count(face); });
    single.sizeBuckets();
    walk(elements, setOf, [&](std::size_t, Face face, std::int32_t set) { single.add(face, set); });
    FaceCollector collector(nodes, setCount);
    std::size_t ordinal = 0;
    walk(elements, setOf, [&](std::size_t element, Face face, std::int32_t set) {
        if (single.isSingle(ordinal++)) {
            collector.add(element, face, static_cast<std::size_t>(set));
        }
    });
    return collector.take();
}

constexpr auto ONE_SET = [](std::size_t) { return 0; };

} // namespace

DrawnFaces outerFaces(const HostNodeGroup& nodes, const HostElementGroup& elements)
{
    return std::move(outerFacesOfSets(nodes, elements, 1, ONE_SET).front());
}

std::vector<DrawnFaces> outerFacesOfZones(const HostNodeGroup& nodes, const HostElementGroup& elements,
                                          std::span<const std::int32_t> zoneOfCell, std::size_t zoneCount)
{
    return outerFacesOfSets(nodes, elements, zoneCount, [=](std::size_t element) { return zoneOfCell[element]; });
}

DrawnFaces flatFaces(const HostNodeGroup& nodes, const HostElementGroup& elements)
{
    FaceCollector collector(nodes, 1);
    walk(elements, ONE_SET, [&](std::size_t element, Face face, std::int32_t) { collector.add(element, face, 0); });
    return std::move(collector.take().front());
}
