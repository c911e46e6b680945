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
    {"load.case", "Loaded again, the library delivers the same of a case.", true, false, checkReload},
    {"init.settings", "Settings are asked for in order, and read only if they were given.", true, false,
     checkSettingsAsked},
    {"metadata.order", "Title, groups, states and results are told in this order.", true, false, checkMetaDataOrder},
    {"metadata.groups", "Group ids go up, and each group hangs under a part before it.", true, false,
     checkDeclaredGroups},
    {"metadata.states", "States have ids of their own and stand in the order of time.", true, false,
     checkDeclaredStates},
    {"metadata.results", "Results count from 1 and have keys, kinds and mappings.", true, false, checkDeclaredResults},
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
    {"result.groups", "Values come in the order of the groups, with none for face zones.", true, false,
     checkValueGroups},
    {"result.arrays", "Values are as many as the items, with the components of their kind.", true, false,
     checkValueArrays},
    {"result.replaced", "Values replace what was set before, and are the same when asked for again.", true, false,
     checkReplacedValues},
    {"result.threads", "Value groups are made on the calling thread and filled by one thread at a time.", true, false,
     checkValueThreads},
    {"equal.openings", "Two openings at a time deliver equal data.", true, false, checkEqualOpenings},
    {"equal.threads", "1, 2 and 8 threads deliver equal data.", true, false, checkEqualThreads},
    {"calls.order", "Calls in an odd order do no harm.", true, false, checkOddCallOrders},
    {"calls.garbage", "What does not exist is refused and leaves no trace.", true, false, checkGarbageIds},
    {"poll.unchanged", "Without a change there is no notice.", true, false, checkPollUnchanged},
    {"poll.end", "A folder at the end is added, and the next poll tells all states.", true, false, checkPollAddAtEnd},
    {"poll.middle", "A folder in the middle takes its place, and the last one is added.", true, false,
     checkPollAddInMiddle},
    {"poll.remove", "A folder that goes is told by all states that stay and the positions behind them.", true, false,
     checkPollRemove},
    {"poll.both", "Of a folder that goes and one that comes, the one that goes is told first.", true, false,
     checkPollRemoveAndAdd},
    {"poll.foreign", "A folder that is no time makes the next poll tell all states.", true, false,
     checkPollForeignFolder},
    {"silence.output", "Nothing is written to stdout or stderr.", true, true, checkSilentOutput},
    {"silence.files", "No file is written, in the case or elsewhere.", true, false, checkFilesUntouched},
    {"silence.process", "Locale, working folder, signals and the rest of the process stay as they were.", true, false,
     checkProcessUntouched},
});

constexpr Check OPENING = {"opening", "The library opens the case.", true, false, checkOpening};

} // namespace

std::span<const Check> allChecks()
{
    return TABLE;
}

const Check& openingCheck()
{
    return OPENING;
}

const Check* findCheck(std::string_view name)
{
    if (name == OPENING.name) {
        return &OPENING;
    }
    const auto found = std::ranges::find(TABLE, name, &Check::name);
    return found == TABLE.end() ? nullptr : &*found;
}
