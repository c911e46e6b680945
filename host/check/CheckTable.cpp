// SPDX-License-Identifier: MIT
#include "check/Check.h"

#include <algorithm>
#include <array>

namespace {

constexpr auto TABLE = std::to_array<Check>({
    {"load.twice", "The library loads, unloads and loads again, and reports the same each time.", false, false,
     checkLoadTwice},
    {"load.refused", "A refused registration gives no exit function, and the library still loads afterwards.", false,
     false, checkRefusedRegistration},
    {"load.symbols", "The entry is the only exported symbol.", false, false, checkExportedSymbol},
    {"info.descriptor", "Names, version and file mask are those that hosts expect.", false, false, checkDescriptor},
    {"info.settings", "The settings come in order, with their labels and defaults.", false, false, checkSettings},
    {"info.paths", "A path is accepted or refused by its file name only.", false, false, checkSupportedPaths},
    {"load.case", "After reloading, the library delivers the same data for a case.", true, false, checkReload},
    {"init.settings", "Settings are queried in order, and read only if they were given.", true, false,
     checkSettingsAsked},
    {"metadata.order", "Title, groups, states and results are declared in this order.", true, false,
     checkMetaDataOrder},
    {"metadata.groups", "Group ids increase, and each group belongs to a part declared before it.", true, false,
     checkDeclaredGroups},
    {"metadata.states", "States have unique ids and are in order of time.", true, false, checkDeclaredStates},
    {"metadata.results", "Result ids count from 1, and each result has a key, a kind and a mapping.", true, false,
     checkDeclaredResults},
    {"geometry.order", "Groups are created in pairs, and each is filled once and in order.", true, false,
     checkGeometryOrder},
    {"geometry.threads", "Groups are made on the calling thread and filled by one thread at a time.", true, false,
     checkGeometryThreads},
    {"geometry.arrays", "Array lengths match the counts, and all entries are in range.", true, false,
     checkGeometryArrays},
    {"geometry.ids", "Node and element ids count up without gaps.", true, false, checkGeometryIds},
    {"geometry.parts", "Each element has the id of a group that was declared for it.", true, false, checkPartIds},
    {"geometry.polyhedra", "The tables of general elements agree with each other.", true, false, checkPolyhedronTables},
    {"geometry.volumes", "Every cell has a positive volume.", true, false, checkCellVolumes},
    {"geometry.closed", "Cells and parts are closed, and the patches consist of the outer faces.", true, false,
     checkClosedSurfaces},
    {"geometry.cells", "Every mesh can be read and has cells.", true, false, checkCellsPresent},
    {"geometry.surfaces", "The triangles of sampled surfaces have an area.", true, false, checkSurfaceTriangles},
    {"geometry.sets", "A set holds the cells that have the id of its zone.", true, false, checkSets},
    {"result.groups", "Values come in the order of the groups, with none for face zones.", true, false,
     checkValueGroups},
    {"result.values", "Every result has a value at some state.", true, false, checkValuesPresent},
    {"result.arrays", "There is a value for each item, with the components of its kind.", true, false,
     checkValueArrays},
    {"result.replaced", "Values replace those set before, and a second request gives the same.", true, false,
     checkReplacedValues},
    {"result.threads", "Value groups are made on the calling thread and filled by one thread at a time.", true, false,
     checkValueThreads},
    {"equal.openings", "A case opened twice at the same time delivers equal data.", true, false, checkEqualOpenings},
    {"equal.threads", "1, 2 and 8 threads deliver equal data.", true, false, checkEqualThreads},
    {"calls.order", "Calls in an unusual order do not change what is delivered later.", true, false,
     checkOddCallOrders},
    {"calls.garbage", "Requests for things that do not exist are refused and change nothing.", true, false,
     checkGarbageIds},
    {"poll.unchanged", "Without a change nothing is reported.", true, false, checkPollUnchanged},
    {"poll.end", "A folder at the end is added, and the next poll reports all states.", true, false, checkPollAddAtEnd},
    {"poll.middle", "A new folder in the middle shifts the later states by one, and the last state is added.", true,
     false, checkPollAddInMiddle},
    {"poll.remove", "A removed folder is reported as all remaining states and the positions after them.", true, false,
     checkPollRemove},
    {"poll.both", "If one folder is removed and one added, the removal is reported first.", true, false,
     checkPollRemoveAndAdd},
    {"poll.foreign", "After a new folder that is not a time, the next poll reports all states.", true, false,
     checkPollForeignFolder},
    {"silence.output", "Nothing is written to stdout or stderr.", true, true, checkSilentOutput},
    {"silence.files", "No file is written, in the case or elsewhere.", true, false, checkFilesUntouched},
    {"silence.process", "Locale, working folder, signals and other process state stay as they were.", true, false,
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
