// SPDX-License-Identifier: MIT
#include "casemodel/OFReader.h"
#include "casemodel/SampledSurfaceFolders.h"
#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

/// Compatibility (docs/compatibility.md, "renewed ids from 1001").
constexpr int FIRST_RENEWED_ID = 1001;
constexpr int DEFAULT_WRITE_INTERVAL = 1;

/// The folders of every case that are not times; they are skipped silently.
bool isFixedFolder(const dvn::Str& name)
{
    return name == dvn::Str("constant") || name == dvn::Str("system") || name == dvn::Str("postProcessing");
}

/// Sorts a list, quickly if only its last entries are out of order. Equal entries keep their order.
template <typename Entry, typename Less>
void sortAgain(std::vector<Entry>& entries, Less less)
{
    const auto rest = std::is_sorted_until(entries.begin(), entries.end(), less);
    if (!std::is_sorted(rest, entries.end(), less)) {
        std::stable_sort(rest, entries.end(), less);
    }
    std::inplace_merge(entries.begin(), rest, entries.end(), less);
}

/// Removes an entry by putting the last one in its place.
template <typename Entry>
void removeUnordered(std::vector<Entry>& entries, std::size_t position)
{
    if (position < entries.size()) {
        std::swap(entries[position], entries.back());
        entries.pop_back();
    }
}

/// The field in a file of surface values. The file has no header, so its name decides: p.orig beside p counts as p,
/// while alpha.water counts as a field of that name unless there is a file alpha.
dvn::Str surfaceFieldName(const dvn::Str& folder, const dvn::Str& file)
{
    const dvn::Str name = OFUtilities::fileNameWithoutGz(file);
    const dvn::Str baseName = OFUtilities::fileBaseName(file);
    const bool isOwnName = name == baseName || !OFUtilities::isRegularFileOrGz(folder + "/" + baseName);
    return isOwnName ? name : baseName;
}

/// Compatibility (docs/compatibility.md, "starred node ids").
OFResult surfaceResult(const dvn::Str& fieldName, OFResultType type, const std::map<dvn::Str, dvn::Str>& resultNames)
{
    return OFResult(fieldName, OFState::makeCustomName(fieldName, resultNames) + " [N]",
                    OFState::makeIdString(fieldName) + "_N*", OFUnit(), type, OFResultOnNode);
}

} // namespace

bool OFReader::listCaseFolders(std::vector<dvn::Str>* names) const
{
    if (!listSubFolders(m_path, names)) {
        return false;
    }
    if (names->empty() && !m_statesFolder.empty() && !OFUtilities::fileExists(m_path)) {
        return OFLogger::get().logError(LOG_SOURCE, dvn::Str("Case folder %1 does not exist.").arg(m_path));
    }
    if (isExtended()) {
        addTimesOfPieces(names);
    }
    std::sort(names->begin(), names->end());
    return true;
}

bool OFReader::initStates()
{
    std::vector<dvn::Str> folders;
    if (!listCaseFolders(&folders)) {
        return false;
    }
    m_statesFolder = std::move(folders);
    return populateStates(m_statesFolder, 1);
}

bool OFReader::updateStates()
{
    std::vector<dvn::Str> folders;
    if (!listCaseFolders(&folders)) {
        return false;
    }
    m_states.clear();
    populateStates(folders, 1);
    m_statesFolder = std::move(folders);
    return true;
}

bool OFReader::populateStates(const std::vector<dvn::Str>& folderNames, int firstId)
{
    const std::vector<dvn::Str> regions = regionNames();
    const std::map<dvn::Str, dvn::Str> resultNames = buildResultsNamesMap(m_customResultNames);
    // Surface folders are looked up by name, not listed: both their number and the number of times grow with the run.
    const dvn::Str surfaceRoot = sampledSurfaceRoot(m_path);
    int nextId = firstId;
    for (const dvn::Str& name : folderNames) {
        if (isFixedFolder(name) || (isExtended() && !OFUtilities::isTimeName(name))) {
            continue;
        }
        if (appendState(nextId, name, regions, resultNames)) {
            ++nextId;
        }
        if (isExtended()) {
            addSampledFields(name, resultNames);
            continue;
        }
        // Compatibility (docs/compatibility.md, "surface results of rejected folders"): also after a rejected folder.
        if (OFUtilities::hasSubFolder(surfaceRoot, name)) {
            addSampledSurfaceResults(name, resultNames);
        }
    }
    sortStatesByReferenceValue();
    setStepIndex();
    return true;
}

std::vector<dvn::Str> OFReader::regionNames() const
{
    std::vector<dvn::Str> names;
    for (const OFPart& part : m_parts) {
        if (!part.isDefaultRegion()) {
            names.push_back(part.name());
        }
    }
    return names;
}

bool OFReader::appendState(int id, const dvn::Str& folderName, const std::vector<dvn::Str>& regions,
                           const std::map<dvn::Str, dvn::Str>& resultNames)
{
    const dvn::Str folder = m_path + "/" + folderName;
    OFState state(id);
    state.setGenerateNodeAverageResult(m_makeNodeAverageResult);
    state.setLoadGlobalResultFlag(m_loadGlobalMesh);
    state.setLoadLocalResultFlag(m_loadLocalMeshes);
    if (isExtended()) {
        state.initExtended(folder, folderName, fieldFolders(folderName), resultNames, &m_notes);
    } else if (!state.init(folder, folderName, regions, resultNames)) {
        OFLogger::get().logInfo(LOG_SOURCE, dvn::Str("Parsed folder, non registered %1 state.").arg(folder));
        return false;
    }
    m_states.push_back(std::move(state));
    return true;
}

void OFReader::addSampledSurfaceResults(const dvn::Str& folderName, const std::map<dvn::Str, dvn::Str>& resultNames)
{
    if (m_states.empty()) {
        return;
    }
    const dvn::Str timeFolder = sampledSurfaceRoot(m_path) + "/" + folderName;
    for (const dvn::Str& surface : OFUtilities::subFolders(timeFolder)) {
        for (const OFResultType type : {OFResultScalar, OFResultVector, OFResultTensor}) {
            const dvn::Str fieldFolder = timeFolder + "/" + surface + sampledFieldFolder(type);
            for (const dvn::Str& file : OFUtilities::filesInFolder(fieldFolder)) {
                m_states.back().addResult(surfaceResult(surfaceFieldName(fieldFolder, file), type, resultNames));
            }
        }
    }
}

int OFReader::addState(const dvn::Str& folderName)
{
    populateStates({folderName}, static_cast<int>(m_states.size()));
    m_statesFolder.push_back(folderName);
    sortAgain(m_statesFolder, std::less<>());
    setIdsToRespectReferenceValueOrder();
    setStepIndex();
    const auto added = std::ranges::find(m_states, folderName, &OFState::folderName);
    return added == m_states.end() ? -1 : added->id();
}

int OFReader::deleteState(const dvn::Str& folderName)
{
    const auto removed = std::ranges::find(m_states, folderName, &OFState::folderName);
    if (removed == m_states.end()) {
        return -1;
    }
    const auto position = static_cast<std::size_t>(removed - m_states.begin());
    removeUnordered(m_states, position);
    if (isExtended()) {
        std::erase(m_statesFolder, folderName);
    } else {
        // Compatibility (docs/compatibility.md, "the folder that is forgotten"): the same position in a list of another
        // order and length, so usually another name goes.
        removeUnordered(m_statesFolder, position);
    }
    sortAgain(m_statesFolder, std::less<>());
    setIdsToRespectReferenceValueOrder();
    if (!m_states.empty()) {
        setStepIndex();
    }
    return static_cast<int>(position);
}

void OFReader::sortStatesByReferenceValue()
{
    sortAgain(m_states, OFStateLesser());
}

void OFReader::setIdsToRespectReferenceValueOrder()
{
    sortStatesByReferenceValue();
    int id = FIRST_RENEWED_ID;
    for (OFState& state : m_states) {
        state.setid(id++);
    }
}

int OFReader::writeInterval() const
{
    const auto entry = m_controlDict.find("writeInterval");
    if (entry == m_controlDict.end()) {
        return DEFAULT_WRITE_INTERVAL;
    }
    const std::string text = entry->second.toUtf8();
    const std::string words = text.substr(0, text.find_last_not_of(' ') + 1);
    const std::string last = words.substr(words.rfind(' ') + 1);
    bool isNumber = false;
    const int interval = dvn::Str(last).toInt(&isNumber);
    if (!isNumber) {
        OFLogger::get().logInfo(
            LOG_SOURCE, dvn::Str("Failed to convert writeInterval value ( %1 ) from controlDict. Using 1 instead")
                            .arg(excerpt(last)));
        return DEFAULT_WRITE_INTERVAL;
    }
    return interval;
}

void OFReader::setStepIndex()
{
    // Compatibility (docs/compatibility.md, "negative write interval"): unsigned, so a negative interval wraps.
    const auto interval = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(writeInterval()));
    std::size_t indexFromPosition = 0;
    for (OFState& state : m_states) {
        const std::size_t indexFromFolder = state.stepIndexFromTimeDict();
        state.setStepIndex(indexFromFolder == OFState::UNKNOWN_INDEX ? indexFromPosition : indexFromFolder);
        state.setDefaultName();
        indexFromPosition += interval;
    }
}
