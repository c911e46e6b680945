// SPDX-License-Identifier: MIT
#include "check/Check.h"

#include <algorithm>
#include <array>

namespace {

constexpr auto TABLE = std::to_array<Check>({
    {"load.twice", "The library loads, unloads and loads again, and tells the same each time.", false, false,
     checkLoadTwice},
    {"load.refused", "A refused registration gives no exit function and does no harm.", false, false,
     checkRefusedRegistration},
    {"load.symbols", "The entry is the one exported symbol.", false, false, checkExportedSymbol},
    {"info.descriptor", "Names, version and file mask are those that hosts know.", false, false, checkDescriptor},
    {"info.settings", "The settings come in order, with their labels and defaults.", false, false, checkSettings},
    {"info.paths", "A path is taken for its file name alone.", false, false, checkSupportedPaths},
    {"geometry.order", "Groups come in pairs, and each is filled once and in order.", true, false, checkGeometryOrder},
    {"geometry.threads", "Groups are made on the calling thread and filled by one thread at a time.", true, false,
     checkGeometryThreads},
    {"geometry.arrays", "Arrays are as long as the counts say, and their entries in range.", true, false,
     checkGeometryArrays},
    {"geometry.ids", "Node and element ids count up without a gap.", true, false, checkGeometryIds},
    {"geometry.parts", "Each element shows in a group that was declared for it.", true, false, checkPartIds},
    {"geometry.polyhedra", "The tables of general elements sum up.", true, false, checkPolyhedronTables},
    {"geometry.volumes", "Every cell has a positive volume.", true, false, checkCellVolumes},
    {"geometry.closed", "Cells and parts are closed, and the patches are the outer faces.", true, false,
     checkClosedSurfaces},
    {"geometry.sets", "A set holds the cells that show in its zone.", true, false, checkSets},
});

} // namespace

std::span<const Check> allChecks()
{
    return TABLE;
}

const Check* findCheck(std::string_view name)
{
    const auto found = std::ranges::find(TABLE, name, &Check::name);
    return found == TABLE.end() ? nullptr : &*found;
}
