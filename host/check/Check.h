// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string_view>

class CheckRun;

/// One check of the library: what it claims, and the function that verifies it.
struct Check
{
    std::string_view name;  ///< area, point, subject, such as "load.twice"
    std::string_view claim; ///< what holds for a correct library, in one sentence
    bool needsCase;         ///< run once for each case; the others once for the library
    bool silent;            ///< anything that its process writes to stdout or stderr is a finding
    void (*run)(CheckRun& run);
};

/// All checks, those of the library first.
std::span<const Check> allChecks();

/// Whether the library opens the case at all. It runs before all checks and is not one of them.
const Check& openingCheck();

/// The check with this name, or null.
const Check* findCheck(std::string_view name);

// The functions of the checks, by source file. Each notes its findings in the run and throws nothing but `HostError`
// and `CheckSkipped`.

// LibraryChecks.cpp
void checkLoadTwice(CheckRun& run);
void checkRefusedRegistration(CheckRun& run);
void checkExportedSymbol(CheckRun& run);
void checkDescriptor(CheckRun& run);
void checkSettings(CheckRun& run);
void checkSupportedPaths(CheckRun& run);

// LifeChecks.cpp
void checkReload(CheckRun& run);
void checkOpening(CheckRun& run);
void checkSettingsAsked(CheckRun& run);
void checkOddCallOrders(CheckRun& run);
void checkGarbageIds(CheckRun& run);
void checkEqualOpenings(CheckRun& run);
void checkEqualThreads(CheckRun& run);

// MetaDataChecks.cpp
void checkMetaDataOrder(CheckRun& run);
void checkDeclaredGroups(CheckRun& run);
void checkDeclaredStates(CheckRun& run);
void checkDeclaredResults(CheckRun& run);

// CompletenessChecks.cpp
void checkCellsPresent(CheckRun& run);
void checkSurfaceTriangles(CheckRun& run);
void checkValuesPresent(CheckRun& run);

// GeometryChecks.cpp
void checkGeometryOrder(CheckRun& run);
void checkGeometryThreads(CheckRun& run);
void checkGeometryArrays(CheckRun& run);
void checkGeometryIds(CheckRun& run);
void checkPartIds(CheckRun& run);
void checkPolyhedronTables(CheckRun& run);
void checkCellVolumes(CheckRun& run);
void checkClosedSurfaces(CheckRun& run);
void checkSets(CheckRun& run);

// ResultChecks.cpp
void checkValueGroups(CheckRun& run);
void checkValueArrays(CheckRun& run);
void checkReplacedValues(CheckRun& run);
void checkValueThreads(CheckRun& run);

// PollChecks.cpp
void checkPollUnchanged(CheckRun& run);
void checkPollAddAtEnd(CheckRun& run);
void checkPollAddInMiddle(CheckRun& run);
void checkPollRemove(CheckRun& run);
void checkPollRemoveAndAdd(CheckRun& run);
void checkPollForeignFolder(CheckRun& run);

// SilenceChecks.cpp
void checkSilentOutput(CheckRun& run);
void checkFilesUntouched(CheckRun& run);
void checkProcessUntouched(CheckRun& run);
