// SPDX-License-Identifier: MIT
//
// The catalogue of a time folder in extended reading.

#include "casemodel/OFState.h"

#include "casemodel/Omissions.h"
#include "foamfile/ExtendedDescription.h"
#include "foamfile/ExtendedField.h"
#include "foamfile/OFUtilities.h"

#include <algorithm>

namespace {

/// "index" of `uniform/time` in the first of these folders that has such a file.
std::size_t stepIndexIn(const std::vector<dvn::Str>& folders)
{
    const auto found = std::ranges::find_if(
        folders, [](const dvn::Str& folder) { return OFUtilities::isRegularFileOrGz(folder + "/uniform/time"); });
    if (found == folders.end()) {
        return OFState::UNKNOWN_INDEX;
    }
    std::map<dvn::Str, dvn::Str> entries;
    (void)ExtendedDescription::readDictionary(*found + "/uniform/time", "time", &entries);
    const auto entry = entries.find("index");
    bool isNumber = false;
    const unsigned int index = entry == entries.end() ? 0 : entry->second.toUInt(&isNumber);
    return isNumber ? index : OFState::UNKNOWN_INDEX;
}

/// The stem of a field's ids. Of names that differ only by case the first one has it, and the others keep their own:
/// combustion models have fields b and B.
dvn::Str idStringOf(const dvn::Str& nativeName, CaseNotes* notes)
{
    const dvn::Str stem = OFState::makeIdString(nativeName);
    return notes->idOwners.emplace(stem, nativeName).first->second == nativeName ? stem : nativeName;
}

} // namespace

void OFState::initExtended(const dvn::Str& folder, const dvn::Str& name, const std::vector<dvn::Str>& fieldFolders,
                           const std::map<dvn::Str, dvn::Str>& resultNames, CaseNotes* notes)
{
    m_wholeNamesOnly = true;
    m_folder = folder;
    m_folderName = name;
    setName(name);
    m_referenceValue = name.toDouble(dvn::UNDEFINED_DOUBLE);
    std::set<dvn::Str> seenNames = nativeNames();
    for (const dvn::Str& fieldFolder : fieldFolders) {
        addFieldsOf(fieldFolder, seenNames, resultNames, notes);
    }
    if (std::ranges::any_of(fieldFolders, [](const dvn::Str& fieldFolder) {
            return OFUtilities::isRegularFileOrGz(fieldFolder + "/polyMesh/points");
        })) {
        addMovedPoints(resultNames);
    }
    std::vector<dvn::Str> timeFolders = fieldFolders;
    timeFolders.insert(timeFolders.begin(), folder);
    m_stepIndexFromTimeDict = stepIndexIn(timeFolders);
}

/// Adds the results of a folder in the order of their names. `seenNames` are those of all results so far.
void OFState::addFieldsOf(const dvn::Str& folder, std::set<dvn::Str>& seenNames,
                          const std::map<dvn::Str, dvn::Str>& resultNames, CaseNotes* notes)
{
    std::set<dvn::Str> names;
    for (const dvn::Str& file : OFUtilities::filesInFolder(folder)) {
        const dvn::Str name = OFUtilities::fileNameWithoutGz(file);
        if (!OFUtilities::isSetAside(name)) {
            names.insert(name);
        }
    }
    for (const dvn::Str& name : names) {
        const dvn::Str path = folder + "/" + name;
        if (name == dvn::Str("lagrangian")) {
            notes->omissions.tell("Lagrangian clouds", path, "Particles have no place in the host's model.");
        }
        ExtendedField::Header header;
        if (seenNames.contains(name) || !OFUtilities::isRegularFileOrGz(path) ||
            !ExtendedField::readHeader(path, &header)) {
            continue;
        }
        if (const auto kind = ExtendedField::kindOfClass(header.className)) {
            seenNames.insert(name);
            addFieldResults(name, idStringOf(name, notes), header.unit, {kind->type, kind->mapping}, resultNames);
        } else {
            notes->omissions.tellClass(header.className, path);
        }
    }
}

void OFState::addMovedPoints(const std::map<dvn::Str, dvn::Str>& resultNames)
{
    const dvn::Str name("points");
    addResult(OFResult(name, makeCustomName(name, resultNames), makeIdString(name),
                       OFUnit::fromBase(0, 1, 0, 0, 0, 0, 0), OFResultDisplacement, OFResultOnNode));
}
