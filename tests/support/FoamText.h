// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/FacesData.h"

#include <cstddef>
#include <string>
#include <vector>

/// Texts of OpenFOAM files as OpenFOAM writes them.
namespace foamtext {

using Faces = std::vector<std::vector<int>>;

/// A `FoamFile` block with the entries that readers use; `extra` holds more lines.
std::string header(const std::string& className, const std::string& object, const std::string& format = "ascii",
                   const std::string& extra = {});
/// The header line with the number of cells.
std::string note(int cellCount);

/// "N\n(\n" + items + ")\n" and a closing comment.
std::string list(std::size_t count, const std::string& items);
/// One label per line.
std::string labels(const std::vector<int>& values);
/// One "(x y z)" per line.
std::string vectors(const std::vector<double>& values);
/// One face per line, but one label per line in a face of more than ten nodes.
std::string faces(const Faces& values);

/// The bytes of values in memory.
template <typename T>
std::string raw(const std::vector<T>& values)
{
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}
/// "N\n(" + bytes + ")".
template <typename T>
std::string rawList(const std::vector<T>& values, std::size_t components = 1)
{
    return std::to_string(values.size() / components) + "\n(" + raw(values) + ")";
}
/// The two raw lists of a compact face list.
std::string compactFaces(const Faces& values);

/// 0, 1, 2 ... as labels, and three times as many numbers with a fraction.
std::vector<int> someLabels(std::size_t count);
std::vector<double> someVectors(std::size_t count);

/// Conversion between faces and the record that holds them.
Faces unpacked(const FacesData& data);
FacesData packed(const Faces& faces);

} // namespace foamtext
