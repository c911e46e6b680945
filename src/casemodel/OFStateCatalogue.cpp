// SPDX-License-Identifier: MIT
#include "casemodel/OFState.h"

#include "casemodel/ResultIdStrings.h"
#include "foamfile/CheckedLookup.h"
#include "foamfile/OFFile.h"
#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"

#include <string>

namespace {

constexpr const char* AVERAGE_NAME_SUFFIX = " [node]";
constexpr const char* NODE_NAME_SUFFIX = " [N]";

const dvn::Str& valueOr(const std::map<dvn::Str, dvn::Str>& map, const dvn::Str& key, const dvn::Str& otherwise)
{
    const auto entry = map.find(key);
    return entry == map.end() ? otherwise : entry->second;
}

/// Whether the header has a class and this object.
bool isFieldOfName(const OFFile& file, const dvn::Str& name)
{
    const std::map<std::string, std::string>& header = file.headerMap();
    const auto object = header.find("object");
    return object != header.end() && object->second == name.toUtf8() && header.contains("class");
}

void logUnlessEmpty(const dvn::Str& line)
{
    if (!line.isEmpty()) {
        OFLogger::get().logInfo("OFState", line);
    }
}

OFUnit readUnit(OFFile& file)
{
    std::vector<dvn::Str> tokens;
    // A line of another form has a different number of tokens, which makes the unit dimensionless.
    (void)file.readDimensions(&tokens);
    return OFUnit::fromString(tokens);
}

} // namespace

bool OFState::addResultsFromFiles(const dvn::Str& folder, const std::vector<dvn::Str>& files,
                                  const std::map<dvn::Str, dvn::Str>& resultNames)
{
    // The first folder that has a field decides its class and unit; later regions add nothing.
    std::set<dvn::Str> seenNames = nativeNames();
    addResultsFrom(folder, files, seenNames, resultNames);
    return true;
}

std::set<dvn::Str> OFState::nativeNames() const
{
    std::set<dvn::Str> names;
    for (const OFResult& result : m_results) {
        names.insert(result.nativeName());
    }
    return names;
}

/// Adds the results of a folder; `seenNames` are those of all results so far.
void OFState::addResultsFrom(const dvn::Str& folder, const std::vector<dvn::Str>& files, std::set<dvn::Str>& seenNames,
                             const std::map<dvn::Str, dvn::Str>& resultNames)
{
    findDisplacementResult(folder, seenNames, resultNames);
    // The log line for each file. Files of the same base name count as one file, which is opened once.
    std::map<dvn::Str, dvn::Str> lines;
    for (const dvn::Str& file : files) {
        const auto [entry, isNew] = lines.emplace(folder + "/" + OFUtilities::fileBaseName(file), dvn::Str());
        if (isNew) {
            entry->second = addResultFromFile(entry->first, seenNames, resultNames);
        }
        logUnlessEmpty(entry->second);
    }
    // Whole names, for fields such as alpha.water. They come last, so that they never replace a field found by its base
    // name.
    for (const dvn::Str& file : files) {
        const auto [entry, isNew] = lines.emplace(folder + "/" + OFUtilities::fileNameWithoutGz(file), dvn::Str());
        if (isNew) {
            logUnlessEmpty(addResultFromFileOfSameName(entry->first, seenNames, resultNames));
        }
    }
}

/// Adds the result of a file. Returns the log line if its class is not supported.
dvn::Str OFState::addResultFromFile(const dvn::Str& path, std::set<dvn::Str>& seenNames,
                                    const std::map<dvn::Str, dvn::Str>& resultNames)
{
    OFFile file(true);
    return file.open(path) ? addResultFromOpenFile(file, path, seenNames, resultNames) : dvn::Str();
}

/// The same for a file that counts only if its field has the name of the file: U.orig and T.0 are copies of U and T.
dvn::Str OFState::addResultFromFileOfSameName(const dvn::Str& path, std::set<dvn::Str>& seenNames,
                                              const std::map<dvn::Str, dvn::Str>& resultNames)
{
    OFFile file(true);
    const bool counts = file.open(path) && isFieldOfName(file, OFUtilities::fileNameFromPath(path));
    return counts ? addResultFromOpenFile(file, path, seenNames, resultNames) : dvn::Str();
}

dvn::Str OFState::addResultFromOpenFile(OFFile& file, const dvn::Str& path, std::set<dvn::Str>& seenNames,
                                        const std::map<dvn::Str, dvn::Str>& resultNames)
{
    const std::string& className = checkedLookup(file.headerMap(), "class");
    const dvn::Str nativeName = checkedLookup(file.headerMap(), "object");
    const auto kind = OFResult::supportedResultClasses().find(className);
    if (kind == OFResult::supportedResultClasses().end()) {
        return dvn::Str("Ignoring class::%1 foung in %2, result not supported in this reader")
            .arg(excerpt(className))
            .arg(path);
    }
    if (seenNames.insert(nativeName).second) {
        addFieldResults(nativeName, readUnit(file), kind->second, resultNames);
    }
    return {};
}

void OFState::addFieldResults(const dvn::Str& nativeName, const OFUnit& unit, const OFResultTypeAndMapping& kind,
                              const std::map<dvn::Str, dvn::Str>& resultNames)
{
    addFieldResults(nativeName, makeIdString(nativeName), unit, kind, resultNames);
}

void OFState::addFieldResults(const dvn::Str& nativeName, const dvn::Str& stem, const OFUnit& unit,
                              const OFResultTypeAndMapping& kind, const std::map<dvn::Str, dvn::Str>& resultNames)
{
    const dvn::Str name = makeCustomName(nativeName, resultNames);
    if (kind.mapping == OFResultOnNode) {
        addResult(OFResult(nativeName, name + NODE_NAME_SUFFIX, stem + "_N*", unit, kind.type, OFResultOnNode));
        return;
    }
    addResult(OFResult(nativeName, name, stem + "_E", unit, kind.type, OFResultOnCell));
    if (m_generateNodeAverageResult) {
        addResult(OFResult(nativeName, name + AVERAGE_NAME_SUFFIX, stem + "_N", unit, kind.type, OFResultNodeAverage));
    }
}

void OFState::findDisplacementResult(const dvn::Str& folder, std::set<dvn::Str>& seenNames,
                                     const std::map<dvn::Str, dvn::Str>& resultNames)
{
    for (const dvn::Str& path : OFUtilities::filesInFolder(folder + "/polyMesh")) {
        OFFile file(true);
        if (!file.open(path)) {
            continue;
        }
        const std::string& className = checkedLookup(file.headerMap(), "class");
        const dvn::Str objectName = checkedLookup(file.headerMap(), "object");
        const bool arePoints = objectName == dvn::Str("points") && className == "vectorField";
        if (arePoints && seenNames.insert(objectName).second) {
            addResult(OFResult(objectName, makeCustomName(objectName, resultNames), makeIdString(objectName),
                               OFUnit::fromBase(0, 1, 0, 0, 0, 0, 0), OFResultDisplacement, OFResultOnNode));
        }
    }
}

const OFResult* OFState::sourceVolumefromAverageNodeResult(const OFResult* result) const
{
    const auto link = m_mappingSourceToAverageNode.find(result->id());
    if (link == m_mappingSourceToAverageNode.end()) {
        return nullptr;
    }
    const OFResult* const source = resultById(link->second);
    const bool fits = source != nullptr && source->dimension() == result->dimension() &&
                      source->type() == result->type() && source->name() + AVERAGE_NAME_SUFFIX == result->name();
    return fits ? source : nullptr;
}

bool OFState::hasResultForPart(const OFResult* result, const OFPart* part) const
{
    const OFResult* const read =
        result->mapping() == OFResultNodeAverage ? sourceVolumefromAverageNodeResult(result) : result;
    if (read == nullptr) {
        return false;
    }
    // Compatibility (docs/compatibility.md, "field named otherwise"): the name is the one in the file's header.
    return hasField(folderOf(*part, read->nativeName()), read->nativeName());
}

dvn::Str OFState::makeCustomName(const dvn::Str& nativeName, const std::map<dvn::Str, dvn::Str>& resultNames)
{
    return valueOr(resultNames, nativeName, nativeName);
}

dvn::Str OFState::makeIdString(const dvn::Str& nativeName)
{
    return valueOr(OPENFOAM_IDSTRINGS_MAP, nativeName, nativeName.toUpper());
}
