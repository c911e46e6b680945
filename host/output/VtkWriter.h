// SPDX-License-Identifier: MIT
#pragma once

#include "output/VtkGrid.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// How a grid is written.
struct VtkFormat
{
    bool ascii = false; ///< numbers as text, with all digits that matter, instead of raw
    /// Called with the number of bytes that a stretch of an array takes in memory, after each stretch; may be empty.
    std::function<void(std::size_t)> progress;
};

/// Writes a grid of solid cells to a new file, as VTK XML unstructured grid.
///
/// Raw arrays are in the appended section, with all bits of doubles. The grid's time, group ids and texts become field
/// data, and the unit of an array its information key UNITS_LABEL. Throws as `OutputFile` does.
/// @return the size of the file
std::uint64_t writeVtu(const std::filesystem::path& path, const VtkGrid& grid, const VtkFormat& format);

/// Writes a grid of polygons as VTK XML polygonal data, in the same way.
std::uint64_t writeVtp(const std::filesystem::path& path, const VtkGrid& grid, const VtkFormat& format);

/// One entry of an index: a data set, or a named block of entries.
struct VtkIndexEntry
{
    std::string name;
    std::string file;                    ///< relative to the index; empty for a block
    std::vector<VtkIndexEntry> children; ///< of a block
};

/// Writes a new multi-block index over data files and returns its size.
std::uint64_t writeVtm(const std::filesystem::path& path, const std::vector<VtkIndexEntry>& entries);

/// One state of a series: the index file of the state, relative to the series, and its time.
struct VtkSeriesEntry
{
    std::string file;
    double time;
};

/// Writes a new index of the states of a case, which viewers use for an animation, and returns its size.
std::uint64_t writeSeries(const std::filesystem::path& path, const std::vector<VtkSeriesEntry>& entries);
