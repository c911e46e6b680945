// SPDX-License-Identifier: MIT
#include "support/RawText.h"

#include "support/FoamText.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace {

std::string bytesOf(std::uint64_t bits, int width, bool isBigEndian)
{
    std::string bytes;
    for (int shift = 0; shift < width; shift += 8) {
        bytes += static_cast<char>(bits >> shift);
    }
    if (isBigEndian) {
        std::ranges::reverse(bytes);
    }
    return bytes;
}

std::string bracketed(std::size_t count, const std::string& bytes)
{
    return std::to_string(count) + "\n(" + bytes + ")\n";
}

} // namespace

std::string archOf(const RawWidths& widths)
{
    return (widths.isBigEndian ? "MSB;label=" : "LSB;label=") + std::to_string(widths.labelBits) +
           ";scalar=" + std::to_string(widths.scalarBits);
}

std::string rawLabels(const std::vector<long long>& labels, const RawWidths& widths)
{
    std::string bytes;
    for (const long long label : labels) {
        bytes += bytesOf(static_cast<std::uint64_t>(label), widths.labelBits, widths.isBigEndian);
    }
    return bytes;
}

std::string rawLabels(const std::vector<int>& labels, const RawWidths& widths)
{
    return rawLabels(std::vector<long long>(labels.begin(), labels.end()), widths);
}

std::string rawReals(const std::vector<double>& values, const RawWidths& widths)
{
    std::string bytes;
    for (const double value : values) {
        const std::uint64_t bits = widths.scalarBits == 32 ? std::bit_cast<std::uint32_t>(static_cast<float>(value))
                                                           : std::bit_cast<std::uint64_t>(value);
        bytes += bytesOf(bits, widths.scalarBits, widths.isBigEndian);
    }
    return bytes;
}

MeshFiles rawMeshFiles(const OFPolymesh& mesh, const RawWidths& widths)
{
    const auto header = [&](const std::string& className, const std::string& object) {
        return foamtext::header(className, object, "binary", "    arch        \"" + archOf(widths) + "\";\n");
    };
    std::vector<int> offsets = {0};
    std::vector<int> nodes;
    for (const std::vector<int>& face : foamtext::unpacked(mesh.faces())) {
        nodes.insert(nodes.end(), face.begin(), face.end());
        offsets.push_back(static_cast<int>(nodes.size()));
    }
    return {header("vectorField", "points") + bracketed(mesh.nodeCount(), rawReals(mesh.points(), widths)),
            header("faceCompactList", "faces") + bracketed(offsets.size(), rawLabels(offsets, widths)) +
                bracketed(nodes.size(), rawLabels(nodes, widths)),
            header("labelList", "owner") + bracketed(mesh.owners().size(), rawLabels(mesh.owners(), widths)),
            header("labelList", "neighbour") + bracketed(mesh.neighbors().size(), rawLabels(mesh.neighbors(), widths))};
}
