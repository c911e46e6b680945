// SPDX-License-Identifier: MIT
//
// Checks that a case arrives with what it should hold. A case that holds nothing is not the library's fault, but its
// user should know of it, so most of what these find are warnings.
#include "border/DeliveryCheck.h"
#include "border/HostLog.h"
#include "check/CellFaces.h"
#include "check/Check.h"
#include "check/CheckRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr std::size_t TRIANGLE_NODES = 3;

// What the library logs for an owner file whose header gives no number of cells.
constexpr const char* NO_CELL_COUNT = "Failed to read number of cells";

/// The library's error lines since the log was cleared, each once.
std::set<std::string> loggedErrors()
{
    std::set<std::string> errors;
    for (const HostLogLine& line : HostLog::get().lines()) {
        if (line.level == LOG_ERROR) {
            errors.insert(line.text);
        }
    }
    return errors;
}

bool isOfSurface(const std::string& error)
{
    return error.find("postProcessing/") != std::string::npos;
}

/// Warns of triangles that have no area, some of them because their corners are not three nodes.
void checkTriangles(CheckRun& run, const std::string& surface, const HostElementGroup& elements,
                    const std::vector<double>& coordinates)
{
    std::size_t repeated = 0;
    std::size_t flat = 0;
    std::size_t first = elements.elementCount();
    forEachFace(elements, [&](std::size_t element, std::span<const std::int32_t> nodes) {
        const bool repeats = nodes[0] == nodes[1] || nodes[1] == nodes[2] || nodes[2] == nodes[0];
        // Not "== 0": that would let NaN pass.
        if (!(lengthOf(areaVector(coordinates, nodes)) > 0)) {
            ++flat;
            repeated += repeats ? 1U : 0U;
            first = std::min(first, element);
        }
    });
    if (flat != 0) {
        run.warn(fmt::format("{}: triangles without area: {} of {}, {} with a node named twice; the first is {}",
                             surface, flat, elements.elementCount(), repeated, first));
    }
}

/// True if some part or surface has a value. Patches do not count: the value of an inlet stays in the file when nobody
/// can read those of the cells.
bool hasValue(const HostMetaData& metaData, const HostResult& result)
{
    const std::vector<const HostGroup*> groups = metaData.geometryGroups();
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const HostValueGroup* const values = valuesOfGroup(metaData, result, i);
        if (values != nullptr && groups[i]->kind() != HostGroupKind::Boundary &&
            std::ranges::any_of(values->values, [](double value) { return value != UNDEFINED_VALUE; })) {
            return true;
        }
    }
    return false;
}

bool hasValueAtSomeState(CheckedCase& open, const HostMetaData& metaData, const HostResultInfo& info)
{
    return std::ranges::any_of(metaData.states, [&](const HostState& state) {
        const std::unique_ptr<HostResult> result = open.result(info.id, state.id);
        return result != nullptr && hasValue(metaData, *result);
    });
}

} // namespace

void checkCellsPresent(CheckRun& run)
{
    const std::unique_ptr<CheckedCase> open = run.open();
    const std::unique_ptr<HostMetaData> metaData = open->metaData();
    HostLog::get().clear();
    const std::unique_ptr<HostGeometry> geometry = open->geometry();
    bool lacksCellCount = false;
    for (const std::string& error : loggedErrors()) {
        if (error.find(NO_CELL_COUNT) != std::string::npos) {
            lacksCellCount = true;
        } else if (!isOfSurface(error)) {
            run.fail(fmt::format("the library logged '{}'", error));
        }
    }
    const std::vector<const HostGroup*> groups = metaData->geometryGroups();
    bool hasParts = false;
    for (std::size_t i = 0; i < std::min(groups.size(), geometry->elementGroups.size()); ++i) {
        if (groups[i]->kind() != HostGroupKind::Part) {
            continue;
        }
        hasParts = true;
        if (geometry->elementGroups[i].elementCount() != 0) {
            continue;
        }
        if (lacksCellCount) {
            run.limit("decision 4", groups[i]->name + " has no cells: its owner file does not give their number");
        } else {
            run.warn(groups[i]->name + " has no cells");
        }
    }
    if (!hasParts) {
        run.warn("the case has no mesh");
    }
}

void checkSurfaceTriangles(CheckRun& run)
{
    const SoundGeometry sound = run.openGeometry();
    const std::set<std::string> errors = loggedErrors();
    std::size_t surfaces = 0;
    for (std::size_t i = 0; i < sound.groups.size(); ++i) {
        if (sound.groups[i]->kind() != HostGroupKind::Surface) {
            continue;
        }
        ++surfaces;
        const std::string& name = sound.groups[i]->name;
        const HostElementGroup& elements = sound.geometry->elementGroups[i];
        if (elements.elementCount() == 0) {
            const auto why = std::ranges::find_if(errors, isOfSurface);
            run.warn(name + " has no triangles" +
                     (why == errors.end() ? "" : fmt::format("; the library logged '{}'", *why)));
        } else if (elements.uniform && elements.connectivity.size() > TRIANGLE_NODES * elements.elementCount() &&
                   !sound.open->readsExtended()) {
            run.limit(R"(compatibility, "surface elements are triangles")",
                      name + " has faces of more than three nodes, so its triangles are wrong");
        } else {
            checkTriangles(run, name, elements, sound.geometry->nodesOf(elements)->coordinates);
        }
    }
    if (surfaces == 0) {
        throw CheckSkipped{"the case has no sampled surfaces"};
    }
}

void checkValuesPresent(CheckRun& run)
{
    const std::unique_ptr<CheckedCase> open = run.open();
    const std::unique_ptr<HostMetaData> metaData = open->metaData();
    if (metaData->results.empty()) {
        throw CheckSkipped{"the case has no results"};
    }
    // Arrays have their sizes from the geometry.
    (void)open->geometry();
    std::vector<const HostResultInfo*> without;
    for (const HostResultInfo& info : metaData->results) {
        if (!hasValueAtSomeState(*open, *metaData, info)) {
            without.push_back(&info);
        }
    }
    if (without.size() == metaData->results.size()) {
        run.warn(fmt::format("none of the {} results has a value at any state", without.size()));
        return;
    }
    for (const HostResultInfo* const info : without) {
        // An average has no values where its source has none.
        if (std::ranges::find(without, metaData->sourceOfAverage(*info)) == without.end()) {
            run.warn(fmt::format("{} has no value at any state", info->name));
        }
    }
}
