// SPDX-License-Identifier: MIT
#include "support/FoamText.h"

#include <charconv>
#include <numeric>

namespace foamtext {
namespace {

/// In longer lists OpenFOAM writes one label per line.
constexpr std::size_t SHORT_LIST = 10;

std::string text(double value)
{
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof(digits), value).ptr};
}

} // namespace

std::string header(const std::string& className, const std::string& object, const std::string& format,
                   const std::string& extra)
{
    return "/*---*\\\n| banner |\n\\*---*/\nFoamFile\n{\n    version     2.0;\n    format      " + format +
           ";\n    class       " + className + ";\n" + extra + "    object      " + object +
           ";\n}\n// * * * * * * * //\n\n\n";
}

std::string note(int cellCount)
{
    return "    note        \"nPoints:8  nCells:" + std::to_string(cellCount) + "  nFaces:6  nInternalFaces:0\";\n";
}

std::string list(std::size_t count, const std::string& items)
{
    return std::to_string(count) + "\n(\n" + items + ")\n\n\n// *** //\n";
}

std::string labels(const std::vector<int>& values)
{
    std::string items;
    for (const int value : values) {
        items.append(std::to_string(value)).append("\n");
    }
    return items;
}

std::string vectors(const std::vector<double>& values)
{
    std::string items;
    for (std::size_t i = 0; i < values.size(); ++i) {
        items.append(i % 3 == 0 ? "(" : " ").append(text(values[i])).append(i % 3 == 2 ? ")\n" : "");
    }
    return items;
}

std::string faces(const Faces& values)
{
    std::string items;
    for (const std::vector<int>& nodes : values) {
        const bool isShort = nodes.size() <= SHORT_LIST;
        items.append(isShort ? "" : "\n").append(std::to_string(nodes.size())).append(isShort ? "(" : "\n(\n");
        for (const int node : nodes) {
            items.append(std::to_string(node)).append(isShort ? " " : "\n");
        }
        if (isShort) {
            items.pop_back();
        }
        items.append(")\n");
    }
    return items;
}

std::string compactFaces(const Faces& values)
{
    std::vector<int> offsets = {0};
    std::vector<int> nodes;
    for (const std::vector<int>& face : values) {
        nodes.insert(nodes.end(), face.begin(), face.end());
        offsets.push_back(static_cast<int>(nodes.size()));
    }
    return rawList(offsets) + "\n" + rawList(nodes);
}

std::vector<int> someLabels(std::size_t count)
{
    std::vector<int> values(count);
    std::iota(values.begin(), values.end(), 0);
    return values;
}

std::vector<double> someVectors(std::size_t count)
{
    std::vector<double> values(3 * count);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = (static_cast<double>(i) - 100.0) / 7.0;
    }
    return values;
}

Faces unpacked(const FacesData& data)
{
    Faces values(data.faceCount());
    for (std::size_t i = 0; i < data.faceCount(); ++i) {
        values[i].assign(data.faceNodes(i), data.faceNodes(i) + data.nodeCounts[i]);
    }
    return values;
}

FacesData packed(const Faces& faces)
{
    FacesData data;
    for (const std::vector<int>& nodes : faces) {
        data.nodeCounts.push_back(static_cast<std::uint8_t>(nodes.size()));
        data.nodeOffsets.push_back(static_cast<int>(data.nodes.size()));
        data.nodes.insert(data.nodes.end(), nodes.begin(), nodes.end());
    }
    return data;
}

} // namespace foamtext
