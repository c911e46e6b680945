// SPDX-License-Identifier: MIT
#pragma once

#include "output/VtkGrid.h"

#include <filesystem>
#include <string>
#include <vector>

/// Writes a grid of solid cells as VTK XML unstructured grid.
///
/// Arrays are raw in the appended section, with all bits of doubles. Throws as `OutputFile` does.
void writeVtu(const std::filesystem::path& path, const VtkGrid& grid, bool overwrite);

/// Writes a grid of polygons as VTK XML polygonal data, in the same format.
void writeVtp(const std::filesystem::path& path, const VtkGrid& grid, bool overwrite);

/// One entry of an index: a data set, or a named block of entries.
struct VtkIndexEntry
{
    std::string name;
    std::string file;                    ///< relative to the index; empty for a block
    std::vector<VtkIndexEntry> children; ///< of a block
};

/// Writes a multi-block index over data files.
void writeVtm(const std::filesystem::path& path, const std::vector<VtkIndexEntry>& entries, bool overwrite);

/// One state of a series: the index file of the state, relative to the series, and its time.
struct VtkSeriesEntry
{
    std::string file;
    double time;
};

/// Writes the index of the states of a case, which viewers use for an animation.
void writeSeries(const std::filesystem::path& path, const std::vector<VtkSeriesEntry>& entries, bool overwrite);
