// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/ListHeader.h"

#include <cstddef>
#include <vector>

/// Lists of labels: `owner`, `neighbour`, the members of zones.
///
/// Ascii: unsigned labels, separated by one blank or by line feeds, read by a walk from chunk to chunk. Binary:
/// labels of the file's raw form, in one read if that is the usual one. What follows the labels stays to be read.
namespace LabelList {

/// The message for a header whose note does not give the number of cells; %1 is the path.
inline constexpr const char* NO_CELL_COUNT =
    "Failed to read number of cells in file. This info should be available as 'note' in the header of File: %1";

/// The number of cells, in extended reading, where the header has no note that gives it.
inline constexpr int UNKNOWN_CELL_COUNT = -1;

/// Reads a whole `owner` or `neighbour` file. See `OFFile::readLabelList`.
bool readFile(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, std::vector<int>* labels,
              int* cellCount);

/// Advances past the next "(" and reads as many labels as the target has; a list that ends early is reported.
/// @return false if not all of them could be read
bool readNextReportingShort(TextSource& text, std::vector<int>* labels);
/// Reads labels at the position, ascii or binary, and returns how many were read.
std::size_t read(TextSource& text, std::vector<int>* labels);
/// Reads ascii labels to the end of the target or to the first text that is not a label, and returns how many were
/// read.
std::size_t walk(TextSource& text, std::vector<int>* labels);

} // namespace LabelList
