// SPDX-License-Identifier: MIT
#include "casemodel/OFState.h"

#include "foamfile/OFFile.h"
#include "foamfile/OFUtilities.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <type_traits>

// The list of states grows and is sorted. Copying whole catalogues would cost more than reading them.
static_assert(std::is_nothrow_move_constructible_v<OFState> && std::is_nothrow_move_assignable_v<OFState>);

namespace {

constexpr int NAME_DIGITS = 5;

/// "index" of a `uniform/time`. An unreadable file is not an error: the index then comes from the state's position.
std::size_t readStepIndex(const dvn::Str& timeFile)
{
    std::map<dvn::Str, dvn::Str> timeDict;
    (void)OFFile(true).readDictionary(timeFile, "time", &timeDict);
    const auto entry = timeDict.find("index");
    bool isNumber = false;
    const unsigned int index = entry == timeDict.end() ? 0 : entry->second.toUInt(&isNumber);
    return isNumber ? index : OFState::UNKNOWN_INDEX;
}

/// The regions that a time folder has an entry for, in their own order.
///
/// They are taken from the listing of the time folder and not looked for one by one: each processor folder of a
/// decomposed case is also a candidate for a time folder, in which every other could be a region.
std::vector<dvn::Str> regionsIn(const dvn::Str& folder, const std::vector<dvn::Str>& files,
                                const std::vector<dvn::Str>& regionNames)
{
    if (regionNames.empty()) {
        return {};
    }
    std::vector<dvn::Str> entries;
    entries.reserve(files.size());
    const std::size_t prefixSize = folder.size() + 1;
    for (const dvn::Str& file : files) {
        entries.push_back(file.subStr(prefixSize, file.size() - prefixSize));
    }
    std::ranges::sort(entries, std::less<>());
    std::vector<dvn::Str> regions;
    std::ranges::copy_if(regionNames, std::back_inserter(regions), [&](const dvn::Str& name) {
        return std::ranges::binary_search(entries, name, std::less<>());
    });
    return regions;
}

} // namespace

OFState::OFState(int id) : m_id(id) {}

bool OFState::init(const dvn::Str& folder, const dvn::Str& name, const std::vector<dvn::Str>& regionNames,
                   const std::map<dvn::Str, dvn::Str>& resultNames)
{
    m_folder = folder;
    m_folderName = OFUtilities::folderNameFromPath(folder);
    setName(name);
    std::set<dvn::Str> seenNames = nativeNames();
    const std::vector<dvn::Str> files = OFUtilities::filesInFolder(folder);
    if (m_loadGlobalResult) {
        addResultsFrom(folder, files, seenNames, resultNames);
    }
    if (m_loadLocalResult) {
        for (const dvn::Str& region : regionsIn(folder, files, regionNames)) {
            const dvn::Str regionFolder = folder + "/" + region;
            addResultsFrom(regionFolder, OFUtilities::filesInFolder(regionFolder), seenNames, resultNames);
        }
    }
    const dvn::Str timeFile = folder + "/uniform/time";
    m_stepIndexFromTimeDict = OFUtilities::fileExists(timeFile) ? readStepIndex(timeFile) : UNKNOWN_INDEX;
    if (m_referenceValue == dvn::UNDEFINED_DOUBLE) {
        m_referenceValue = m_folderName.toDouble(dvn::UNDEFINED_DOUBLE);
    }
    return m_referenceValue != dvn::UNDEFINED_DOUBLE;
}

dvn::Str OFState::name() const
{
    return m_hasDefaultName
               ? dvn::Str("Time %1 #%2").arg(dvn::Str::number(m_referenceValue, 'f', NAME_DIGITS)).arg(m_stepIndex)
               : m_name;
}

std::vector<dvn::Str> OFState::foldersOf(const OFPart& part) const
{
    return part.timeFolders(m_folder);
}

dvn::Str OFState::folderOf(const OFPart& part, const dvn::Str& fieldName) const
{
    const std::vector<dvn::Str> folders = foldersOf(part);
    if (folders.size() == 1) {
        return folders.front();
    }
    const auto found =
        std::ranges::find_if(folders, [&](const dvn::Str& folder) { return hasField(folder, fieldName); });
    return found == folders.end() ? folders.front() : *found;
}

bool OFState::hasField(const dvn::Str& folder, const dvn::Str& fieldName) const
{
    return m_wholeNamesOnly ? OFUtilities::isRegularFileOrGz(folder + "/" + fieldName)
                            : OFUtilities::hasFieldFile(folder, fieldName);
}

const OFResult* OFState::resultById(int id) const
{
    const auto found = std::ranges::find(m_results, id, &OFResult::id);
    return found == m_results.end() ? nullptr : &*found;
}

bool OFState::registerVolumeResultSourceOfAverageNodeResult(int nodeResultId, int volumeResultId)
{
    m_mappingSourceToAverageNode[nodeResultId] = volumeResultId;
    return true;
}
