// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/ListItems.h"

#include <cstddef>
#include <optional>
#include <vector>

/// The files of sampled surfaces in extended reading: one list each, with or without a `FoamFile` block, depending on
/// the version that wrote them. All are read plain or gzip.
namespace SurfaceValues {

/// Whether a file begins with a `FoamFile` block. Only the lines up to the block or the list are read.
bool hasHeader(const dvn::Str& path);

/// The number of items that the list of a file has by its count; of a compact list of faces, the number of faces. The
/// items are not read. None if there is no such file or no count in it.
std::optional<std::size_t> countItems(const dvn::Str& path);

/// Reads a list of reals as the host takes them, six numbers for each tensor.
///
/// @param count the number of items, which the caller knows to be in proportion to the files of the surface
/// @return false, with the reason in the log, if the file does not hold a list of that many items
bool read(const dvn::Str& path, const ListItems& items, std::size_t count, std::vector<double>* values);

} // namespace SurfaceValues
