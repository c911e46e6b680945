// SPDX-License-Identifier: MIT
//
// Targets without files: texts, cells and meshes of random faces.
#include "DvnCore/Str.h"
#include "border/DeliveryCheck.h"
#include "fuzz/FuzzHarness.h"
#include "mesh/OFPolymeshToDDP.h"
#include "support/ReferenceCells.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <locale>
#include <set>
#include <sstream>
#include <type_traits>

namespace {

/// Compares a conversion with extraction from a stream in the classic locale, which defines it.
template <typename Number, typename Wide>
void checkConversion(const dvn::Str& text, Number (dvn::Str::*convert)(bool*) const)
{
    std::wistringstream stream(text.toStdWString());
    stream.imbue(std::locale::classic());
    Wide expected = 0;
    stream >> expected;
    // The unsigned conversion is compared with a wider one and refuses what only the wider one accepts.
    const bool isOutside = !std::is_same_v<Number, Wide> && (expected < Wide(0) || expected > Wide(4294967295LL));
    bool isNumber = false;
    const Number number = (text.*convert)(&isNumber);
    expect(isNumber == (!stream.fail() && !isOutside), "a text is wrongly accepted or refused as a number");
    const bool isKept = isNumber || std::is_same_v<Number, Wide>;
    expect(static_cast<Wide>(number) == (isKept ? expected : Wide(0)), "a number differs from that of a stream");
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t hit = from.empty() ? std::string::npos : text.find(from); hit != std::string::npos;
         hit = text.find(from, hit + to.size())) {
        text.replace(hit, from.size(), to);
    }
    return text;
}

void runStrings(FuzzInput input)
{
    const std::string a(input.text(input.byte()));
    const std::string b(input.text(static_cast<std::size_t>(input.below(8))));
    const std::string c(input.text(static_cast<std::size_t>(input.below(32))));
    const int width = static_cast<std::int8_t>(input.byte());
    const int precision = static_cast<std::int8_t>(input.byte());
    const std::size_t start = input.byte();
    const dvn::Str text(a);
    expect(text.toUtf8() == a, "bytes do not come back");
    expect(text.find(b, start) == a.find(b, start) && text.startsWith(b) == a.starts_with(b), "find");
    expect(start >= a.size() || text.subStr(start, b.size()).toUtf8() == a.substr(start, b.size()), "subStr");
    dvn::Str changed = text;
    changed.replace(b, c);
    expect(changed.toUtf8() == replaced(a, b, c), "replace");
    std::string kept = a;
    std::erase_if(kept, [&b](char unit) { return b.find(unit) != std::string::npos; });
    for (const dvn::Str& piece : text.split(b)) {
        expect(!piece.isEmpty() && kept.starts_with(piece.toUtf8()), "split");
        kept.erase(0, piece.size());
    }
    expect(kept.empty(), "split");
    checkConversion<double, double>(text, &dvn::Str::toDouble);
    checkConversion<float, float>(text, &dvn::Str::toFloat);
    checkConversion<int, int>(text, &dvn::Str::toInt);
    checkConversion<unsigned, long long>(text, &dvn::Str::toUInt);
    const dvn::Str simple = text.simplified();
    expect(simple.simplified() == simple && simple.trimmed() == simple && simple.find("  ") > a.size(), "simplified");
    expect(a.find('%') != std::string::npos || text.arg(c, width) == text, "arg without placeholder");
    const dvn::Str filled = dvn::Str("<%2%1>").arg(text, width, '.');
    const std::size_t length = std::max(a.size(), static_cast<std::size_t>(std::abs(width)));
    expect(filled.size() == 4 + length && filled.find(text) < filled.size(), "arg");
    static_cast<void>(text.arg(c, width).arg(precision).arg(text.toDouble(), width, 'e', precision).toStdString());
}

/// A label, which may be a bad one.
int labelFrom(std::uint8_t byte)
{
    return byte == 255 ? -1 : byte == 254 ? std::numeric_limits<int>::max() : byte;
}

void addFace(const std::vector<int>& nodes, FacesData* faces)
{
    faces->nodeCounts.push_back(static_cast<std::uint8_t>(nodes.size()));
    faces->nodeOffsets.push_back(static_cast<int>(faces->nodes.size()));
    faces->nodes.insert(faces->nodes.end(), nodes.begin(), nodes.end());
}

/// One cell: a reference cell with its faces in any order, rotated and seen from either side, and some labels changed
/// at random; or random faces.
void runCells(FuzzInput input)
{
    const std::size_t shape = input.byte() % 5U;
    const int scale = input.below(2) == 0 ? 1 : 8000000;
    std::vector<std::vector<int>> faces;
    if (shape < referenceCells().size()) {
        faces = referenceCells()[shape].faces;
    } else {
        faces.resize(static_cast<std::size_t>(input.below(24)));
        for (std::vector<int>& face : faces) {
            face.resize(static_cast<std::size_t>(input.below(7)));
            std::generate(face.begin(), face.end(), [&input] { return input.below(12); });
        }
    }
    OFCell cell;
    FacesData data;
    while (!faces.empty()) {
        const auto next = faces.begin() + input.byte() % static_cast<int>(faces.size());
        const bool isOwner = input.below(2) == 0;
        if (!next->empty()) {
            std::rotate(next->begin(), next->begin() + input.byte() % static_cast<int>(next->size()), next->end());
        }
        if (!isOwner) {
            std::reverse(next->begin(), next->end());
        }
        cell.cellFaces().push_back({static_cast<int>(data.faceCount()), isOwner});
        addFace(*next, &data);
        faces.erase(next);
    }
    const bool isWhole = shape < referenceCells().size() && input.isEmpty();
    while (!input.isEmpty() && !data.nodes.empty()) {
        data.nodes[input.byte() % data.nodes.size()] = input.below(12);
    }
    std::transform(data.nodes.begin(), data.nodes.end(), data.nodes.begin(),
                   [scale](int node) { return node * scale; });
    DDPElementType type = DDP_POLY;
    PolyDataVector polys;
    const bool isOrdered = cell.buildElementData(0, &type, &polys, &data);
    std::vector<int> nodes = cell.elementNodes();
    if (isWhole) {
        const ReferenceCell& reference = referenceCells()[shape];
        std::transform(nodes.begin(), nodes.end(), nodes.begin(), [scale](int node) { return node / scale; });
        expect(type == reference.type && isOrdered, "a solid is not recognised");
        expect(std::abs(signedVolume(type, reference.points, nodes) - volumeInside(reference.points, reference.faces)) <
                   1e-9,
               "a solid comes out twisted");
        return;
    }
    const std::set<int> distinct(data.nodes.begin(), data.nodes.end());
    expect((type == DDP_POLY) == (polys.size() == 1), "face tables of a solid");
    // Faces that name a node twice can pass for those of a solid if the counts match, but no other node may appear.
    expect(nodes.size() == distinct.size() &&
               std::ranges::includes(distinct, std::set<int>(nodes.begin(), nodes.end())),
           "an element has other nodes than its faces");
    expect(type != DDP_POLY || polys.front().faceNodes.size() == data.nodes.size(), "a polyhedron has other faces");
}

void addGroup(const HostNodeGroup& nodes, const HostElementGroup& elements, bool isChecked, Outcome* outcome)
{
    const std::string fault = findGroupFault(nodes, elements);
    expect(!isChecked || fault.empty(), fault);
    const HostPolyhedra& tables = elements.polyhedra;
    outcome->add(nodes.coordinates, nodes.ids, elements.types, elements.connectivity, elements.ids,
                 tables.nodesPerPolyhedron, tables.facesPerPolyhedron, tables.nodesPerFace, tables.faceConnectivity);
}

struct RandomMesh
{
    OFPolymesh mesh;
    OFBoundary patch;
    OFFaceZone zone;
    /// False if a cell may have more face nodes than a byte can count: its tables are then cut.
    bool fitsBytes = true;
};

RandomMesh meshFrom(FuzzInput input)
{
    RandomMesh random;
    OFPolymesh& mesh = random.mesh;
    mesh.points().resize(3 * std::size_t{input.byte()} + static_cast<std::size_t>(input.below(2)));
    mesh.setCellCount(labelFrom(input.byte()));
    const std::size_t neighbours = input.byte();
    const std::size_t missingOwners = input.byte() == 255 ? 3 : 0;
    random.patch.setStartFaceIndex(labelFrom(input.byte()));
    random.patch.setFaceCount(static_cast<std::size_t>(std::max(labelFrom(input.byte()), 0)));
    for (int i = input.below(6); i > 0; --i) {
        random.zone.faceIds().push_back(labelFrom(input.byte()));
    }
    while (!input.isEmpty() && mesh.owners().size() < 120) {
        const std::uint8_t size = input.byte();
        mesh.owners().push_back(labelFrom(input.byte()));
        if (mesh.neighbors().size() < neighbours) {
            mesh.neighbors().push_back(labelFrom(input.byte()));
        }
        std::vector<int> nodes(size == 255 ? 300 : size % 12);
        std::generate(nodes.begin(), nodes.end(), [&input] { return labelFrom(input.byte()); });
        addFace(nodes, &mesh.faces());
    }
    random.fitsBytes = 2 * mesh.faces().nodes.size() < 256;
    mesh.owners().resize(mesh.owners().size() - std::min(mesh.owners().size(), missingOwners));
    return random;
}

void convert(RandomMesh random, bool (OFPolymeshToDDP::*createMesh)(), Outcome* outcome)
{
    const std::vector<double> points = random.mesh.points();
    OFPolymeshToDDP converter(&random.mesh);
    std::array<HostNodeGroup, 3> nodes = {HostNodeGroup(0), HostNodeGroup(1), HostNodeGroup(2)};
    std::array<HostElementGroup, 3> elements = {HostElementGroup(0), HostElementGroup(1), HostElementGroup(2)};
    std::array<std::size_t, 6> counts = {};
    converter.populateBoundaryGroup(random.patch, &nodes[1], &counts[0], &elements[1], &counts[1]);
    converter.populateFaceZoneGroup(random.zone, &nodes[2], &counts[2], &elements[2], &counts[3]);
    (converter.*createMesh)();
    converter.populateElementGroup(&elements[0], &counts[4]);
    converter.populateNodeGroup(&nodes[0], &counts[5]);
    outcome->add(counts, random.patch.faceToCellMapping(), random.patch.faceNodeToNodeMapping(),
                 random.patch.faceConnectivity(), random.patch.nodeCountPerFace(), converter.connectivities());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        addGroup(nodes[i], elements[i], random.fitsBytes, outcome);
    }
}

void runMeshes(FuzzInput input)
{
    const RandomMesh random = meshFrom(input);
    const auto convertWith = [&random](int threads, bool (OFPolymeshToDDP::*createMesh)()) {
        return observe(threads, [&](Outcome* outcome) { convert(random, createMesh, outcome); });
    };
    const Outcome direct = convertWith(1, &OFPolymeshToDDP::createMesh);
    expectEqual(direct, convertWith(8, &OFPolymeshToDDP::createMesh), "a mesh depends on the number of threads");
    expectEqual(direct, convertWith(1, &OFPolymeshToDDP::createMeshInChunks), "a mesh depends on how it is converted");
}

} // namespace

std::vector<FuzzTarget> valueTargets()
{
    return {{"strings", runStrings}, {"cells", runCells}, {"meshes", runMeshes}};
}
