// SPDX-License-Identifier: MIT
#include "provider/OpenFoamProvider.h"

#include "DvnCore/Timer.h"
#include "DvnCore/Undefined.h"
#include "LibCore/LargePages.h"
#include "LibCore/Parallel.h"
#include "casemodel/OFResultReader.h"
#include "casemodel/SampledSurfaceFields.h"
#include "casemodel/SampledSurfaceFolders.h"
#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"
#include "provider/PluginIdentity.h"
#include "provider/ValueArrays.h"

#include <algorithm>

namespace {

/// Reads and delivers one result for parts, then for sampled surfaces: indices from the part count on are surfaces.
///
/// Each index writes only to its own value groups and arrays; state, result and parts are only read. A part that fails
/// has logged why and keeps its undefined values, so its return value is ignored.
struct OFReadResultsFunctor
{
    OpenFoamProvider* provider;
    const OFState* state;
    const OFResult* result;
    std::vector<OFValueGroups>* groups;
    std::size_t partCount;
    dvf::Failures* failures;

    void operator()(const dvf::IndexRange& range) const
    {
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
            failures->guard(i, [&] {
                if (i < partCount) {
                    (void)provider->getResultForPart(static_cast<int>(i), state, result, (*groups)[i]);
                } else {
                    (void)provider->getResultForTrisurface(static_cast<int>(i - partCount), state, result,
                                                           (*groups)[i].front());
                }
            });
        }
    }
};

/// Makes all value groups on the calling thread, in the order of the geometry's groups but with none for a face zone.
std::vector<OFValueGroups> makeValueGroups(const OFReader& reader, DDPResult* dataResult)
{
    const std::size_t partCount = reader.partCount();
    std::vector<OFValueGroups> groups(partCount + reader.sampledSurfaceCount());
    for (std::size_t i = 0; i < groups.size(); ++i) {
        groups[i].resize(i < partCount ? 1 + reader.part(i).boundaries().size() : 1);
        std::ranges::generate(groups[i], [&] { return dataResult->addValueGroup(); });
    }
    return groups;
}

/// True if there is any value: a file of another class counts as read but gives only undefined values.
bool holdsValues(const std::vector<double>& values)
{
    return std::ranges::any_of(values, [](double value) { return value != dvn::UNDEFINED_DOUBLE; });
}

/// Reads a field on cells with its patches; true if there are cell values to average, even without those of patches.
bool readForAverage(const OFResultReader& reader, const OFFieldFile& field, const std::vector<OFBoundary>& boundaries,
                    std::vector<double>* cellValues, std::vector<std::vector<double>>* faceValues)
{
    bool isInteriorRead = false;
    // Patches that cannot be read leave the interior good.
    (void)reader.readValuesForCellAndBoundaries(field, cellValues, boundaries, *faceValues, &isInteriorRead);
    // guard: cells-to-average
    return isInteriorRead && holdsValues(*cellValues);
}

/// Undefined face values for each patch.
std::vector<std::vector<double>> undefinedFaceValues(const std::vector<OFBoundary>& boundaries, int dimension)
{
    std::vector<std::vector<double>> values;
    values.reserve(boundaries.size());
    for (const OFBoundary& boundary : boundaries) {
        values.push_back(undefinedItems(boundary.nodeCountPerFace().size(), dimension));
    }
    return values;
}

/// The patches at the front and back of a case in two dimensions have no values of their own. Cell values of the whole
/// plane would dilute those of walls and inlets at their common nodes.
void leaveOutEmptyPatches(const std::vector<OFBoundary>& boundaries, std::vector<std::vector<double>>* faceValues)
{
    for (std::size_t i = 0; i < boundaries.size(); ++i) {
        if (boundaries[i].type() == dvn::Str("empty")) {
            (*faceValues)[i].clear();
        }
    }
}

} // namespace

bool OpenFoamProvider::getResult(const DDPResultSpec& spec, DDPResult* result)
{
    const int stateId = spec.stateId();
    const int resultId = spec.resultId();
    if (resultId < 0) {
        // -1 stands for "no displacement" and for results without an id yet; neither is a result.
        return false;
    }
    if (resultId == m_displacementResultId) {
        return getDisplacements(stateId, result);
    }
    const OFState* const state = m_reader.stateById(stateId);
    if (state == nullptr) {
        return false;
    }
    const OFResult* const sought = state->resultById(resultId);
    if (sought == nullptr) {
        const OFResult* const elsewhere = m_reader.resultByIdInAllStates(resultId);
        if (elsewhere != nullptr) {
            deliverUndefined(*elsewhere, result);
        }
        return elsewhere != nullptr;
    }
    return !sought->className().isEmpty() && buildDataResults(state, sought, result);
}

/// Answers for a result that the case has, but not in this state.
/// Compatibility (docs/compatibility.md, "undefined without surfaces"): surfaces get no group here.
void OpenFoamProvider::deliverUndefined(const OFResult& result, DDPResult* dataResult) const
{
    for (std::size_t i = 0; i < m_reader.partCount(); ++i) {
        const OFPart& part = m_reader.part(i);
        deliver(undefinedValues(result, part), result.dimension(), dataResult->addValueGroup());
        for (const OFBoundary& boundary : part.boundaries()) {
            deliver(undefinedValues(result, boundary), result.dimension(), dataResult->addValueGroup());
        }
    }
}

bool OpenFoamProvider::buildDataResults(const OFState* state, const OFResult* result, DDPResult* dataResult)
{
    std::vector<OFValueGroups> groups = makeValueGroups(m_reader, dataResult);
    const dvn::Timer timer;
    dvf::Failures failures(groups.size());
    const OFReadResultsFunctor readResults = {this, state, result, &groups, m_reader.partCount(), &failures};
    dvf::forLargeItems(groups.size(), readResults);
    failures.rethrowFirst();
    OFLogger::get().logInfo(PROVIDER_NAME, dvn::Str("getResult [Parallel] in %1 seconds").arg(timer.time()));
    return true;
}

bool OpenFoamProvider::getResultForPart(int partIndex, const OFState* state, const OFResult* result,
                                        OFValueGroups& groups)
{
    const OFPart& part = m_reader.part(static_cast<std::size_t>(partIndex));
    const int dimension = result->dimension();
    // From here on the groups hold a complete answer; values that are read replace it.
    std::vector<double> values = undefinedValues(*result, part);
    deliver(values, dimension, groups.front());
    for (std::size_t i = 0; i < part.boundaries().size(); ++i) {
        deliver(undefinedValues(*result, part.boundaries()[i]), dimension, groups[i + 1]);
    }
    if (!state->hasResultForPart(result, &part)) {
        return true;
    }
    if (result->mapping() == OFResultNodeAverage) {
        return getAverageForPart(part, state, result, values, groups);
    }
    const OFFieldFile field = fieldFile(state->folderOf(part, result->nativeName()), *result);
    if (m_loadBoundaries) {
        getResultsWithBoundaries(field, part.boundaries(), values, groups);
        return true;
    }
    if (!resultReader().readValues(field, &values)) {
        return false;
    }
    deliverAndRelease(values, dimension, groups.front());
    return true;
}

bool OpenFoamProvider::getAverageForPart(const OFPart& part, const OFState* state, const OFResult* result,
                                         std::vector<double>& nodeValues, OFValueGroups& groups) const
{
    const OFResult* const source = state->sourceVolumefromAverageNodeResult(result);
    if (source == nullptr) {
        return false;
    }
    const OFFieldFile field = fieldFile(state->folderOf(part, source->nativeName()), *source);
    const int dimension = field.dimension;
    std::vector<double> cellValues = dvf::filledLarge(valueCount(*source, part), 0.0);
    if (!m_loadBoundaries) {
        if (!resultReader().readValues(field, &cellValues) || !holdsValues(cellValues)) {
            return false;
        }
        // Compatibility (docs/compatibility.md, "averages without patches"): the array goes in full of the undefined
        // mark and is added to.
        if (isExtended()) {
            std::ranges::fill(nodeValues, 0.0);
        }
        part.computeAverageNodeResult(cellValues, nodeValues, dimension);
        deliverAndRelease(nodeValues, dimension, groups.front());
        return true;
    }
    std::vector<std::vector<double>> faceValues = undefinedFaceValues(part.boundaries(), dimension);
    if (!readForAverage(resultReader(), field, part.boundaries(), &cellValues, &faceValues)) {
        return false;
    }
    if (isExtended()) {
        leaveOutEmptyPatches(part.boundaries(), &faceValues);
    }
    part.computeAverageNodeResultAwareBC(cellValues, faceValues, nodeValues, dimension);
    deliver(nodeValues, dimension, groups.front());
    for (std::size_t i = 0; i < part.boundaries().size(); ++i) {
        const OFBoundary& boundary = part.boundaries()[i];
        std::vector<double> values = undefinedValues(*result, boundary);
        applyNodalDataInFace(nodeValues, values, dimension, boundary.faceNodeToNodeMapping());
        deliverAndRelease(values, dimension, groups[i + 1]);
    }
    return true;
}

void OpenFoamProvider::getResultsWithBoundaries(const OFFieldFile& field, const std::vector<OFBoundary>& boundaries,
                                                std::vector<double>& values, OFValueGroups& groups)
{
    const bool isOnPoints = field.className.startsWith("point");
    if (!isOnPoints && !field.className.startsWith("vol")) {
        return;
    }
    std::vector<std::vector<double>> patchValues;
    patchValues.reserve(boundaries.size());
    for (const OFBoundary& boundary : boundaries) {
        const std::size_t itemCount = isOnPoints ? boundary.nodeCount() : boundary.nodeCountPerFace().size();
        patchValues.push_back(undefinedItems(itemCount, field.dimension));
    }
    bool isInteriorRead = false;
    // A file without a sound boundary section still has its interior. Without that, the undefined values stay.
    (void)resultReader().readValuesForCellAndBoundaries(field, &values, boundaries, patchValues, &isInteriorRead);
    if (!isInteriorRead) {
        return;
    }
    OFLogger::get().printTrackedData();
    deliverAndRelease(values, field.dimension, groups.front());
    for (std::size_t i = 0; i < boundaries.size(); ++i) {
        deliverAndRelease(patchValues[i], field.dimension, groups[i + 1]);
    }
}

bool OpenFoamProvider::getResultForTrisurface(int surfaceIndex, const OFState* state, const OFResult* result,
                                              DDPResultValueGroup* group)
{
    const OFSampledSurface& surface = m_reader.sampledSurface(static_cast<std::size_t>(surfaceIndex));
    if (result->type() == OFResultDisplacement) {
        return false;
    }
    std::vector<double> values = undefinedValues(*result, surface);
    if (isExtended()) {
        readSampledField(surface, surface.folderAt(m_reader.path(), state->folderName()), *result, &values);
        deliver(values, result->dimension(), group);
        return true;
    }
    const dvn::Str folder = sampledSurfaceRoot(m_reader.path()) + "/" + state->folderName() + "/" + surface.name() +
                            sampledFieldFolder(result->type());
    if (result->mapping() == OFResultOnNode) {
        const bool hasFile = OFUtilities::hasFieldFile(folder, result->nativeName());
        bool isRead = true;
        if (hasFile && !resultReader().readNonHeaderValues(fieldFile(folder, *result), &values, &isRead)) {
            return false;
        }
        if (!isRead) {
            values = undefinedValues(*result, surface);
        }
    }
    deliver(values, result->dimension(), group);
    return true;
}

bool OpenFoamProvider::applyNodalDataInFace(const std::vector<double>& source, std::vector<double>& target,
                                            int dimension, const std::vector<int>& mapping) const
{
    if (dimension <= 0) {
        return true;
    }
    const auto width = static_cast<std::size_t>(dimension);
    const std::size_t itemCount = std::min(target.size() / width, mapping.size());
    const std::size_t sourceCount = source.size() / width;
    for (std::size_t i = 0; i < itemCount; ++i) {
        // A negative label turns into a very large one. guard: moved-points
        const auto item = static_cast<std::size_t>(mapping[i]);
        if (item < sourceCount) {
            std::copy_n(source.data() + item * width, width, target.data() + i * width);
        }
    }
    return true;
}

bool OpenFoamProvider::getRigidBodyTransformations(std::uint64_t /*stateIndex*/, std::int32_t /*id*/,
                                                   DDPTransformations* /*transformations*/)
{
    return false;
}
