// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "DvnCore/Undefined.h"
#include "casemodel/OFPart.h"
#include "records/OFResult.h"

#include <cstddef>
#include <map>
#include <set>
#include <vector>

class OFFile;
struct CaseNotes;

/// One time step of a case: its folder, its time and the catalogue of its results, without a single value.
///
/// A plain value: copies are deep, moves cheap. One thread builds it, any number may read it.
class OFState
{
public:
    /// The step index of a state whose number is not known.
    static constexpr std::size_t UNKNOWN_INDEX = static_cast<std::size_t>(-1);

    explicit OFState(int id);

    /// The id given to the host. It is a position in a list, not an identity, and changes when the list does.
    int id() const { return m_id; }
    void setid(int id) { m_id = id; }
    /// Full path of the time folder.
    const dvn::Str& folder() const { return m_folder; }
    /// Its last component, by which the list finds a state.
    const dvn::Str& folderName() const { return m_folderName; }
    /// The folders that may hold a part's files of this state, the preferred one first.
    std::vector<dvn::Str> foldersOf(const OFPart& part) const;
    /// The first of them that has a file for this field; if none has, the preferred one.
    dvn::Str folderOf(const OFPart& part, const dvn::Str& fieldName) const;
    /// True if a folder has a file of the field.
    bool hasField(const dvn::Str& folder, const dvn::Str& fieldName) const;
    /// The bare folder name while the list is built, after that the shown name, such as "Time 0.10000 #20". The shown
    /// name is built on demand, since each change of the list renames all states.
    dvn::Str name() const;
    void setName(const dvn::Str& name)
    {
        m_name = name;
        m_hasDefaultName = false;
    }
    /// The time as a number; the undefined mark until `init` has found one.
    double referenceValue() const { return m_referenceValue; }
    /// The solver's time step number, else `UNKNOWN_INDEX`.
    std::size_t stepIndex() const { return m_stepIndex; }
    void setStepIndex(std::size_t index) { m_stepIndex = index; }

    /// Whether each result on cells gets a twin averaged to nodes.
    void setGenerateNodeAverageResult(bool generate) { m_generateNodeAverageResult = generate; }
    /// Whether files directly in the time folder count.
    void setLoadGlobalResultFlag(bool load) { m_loadGlobalResult = load; }
    /// Whether files in the regions' sub-folders count.
    void setLoadLocalResultFlag(bool load) { m_loadLocalResult = load; }

    /// Catalogues a time folder; set the flags first.
    ///
    /// @param name        the folder's bare name, whose leading number is the time
    /// @param regionNames sub-folders in which parts other than the default region keep their files
    /// @param resultNames shown name by field name
    /// @return false if the name is not a number; the files have been read all the same
    bool init(const dvn::Str& folder, const dvn::Str& name, const std::vector<dvn::Str>& regionNames,
              const std::map<dvn::Str, dvn::Str>& resultNames);
    /// The same for extended reading, which needs no flag but the one for averages.
    ///
    /// A field has the name of its file, whatever its header says, and files that were set aside (U.orig, p.bak) do not
    /// count.
    /// @param name         the folder's bare name, a number
    /// @param fieldFolders all folders that may hold fields of this time, the one with `uniform/time` among them
    /// @param notes        takes what is there but cannot be shown
    void initExtended(const dvn::Str& folder, const dvn::Str& name, const std::vector<dvn::Str>& fieldFolders,
                      const std::map<dvn::Str, dvn::Str>& resultNames, CaseNotes* notes);
    /// "index" of the folder's `uniform/time`, or `UNKNOWN_INDEX`.
    std::size_t stepIndexFromTimeDict() const { return m_stepIndexFromTimeDict; }
    /// Makes the shown name consist of time and step index.
    void setDefaultName() { m_hasDefaultName = true; }

    // --- the catalogue

    /// Adds one result for each file that can be opened and whose class is supported, unless the field is already
    /// known.
    ///
    /// An entry stands for the file of its base name, so U.gz and U.orig both give U. It also stands for the file of
    /// its whole name, as in alpha.water, which counts only if the field has that name.
    ///
    /// @throws std::out_of_range when a file's header lacks `class` or `object`
    bool addResultsFromFiles(const dvn::Str& folder, const std::vector<dvn::Str>& files,
                             const std::map<dvn::Str, dvn::Str>& resultNames);
    /// Adds the displacement result if the folder's `polyMesh` holds points, and notes it in `seenNames`.
    void findDisplacementResult(const dvn::Str& folder, std::set<dvn::Str>& seenNames,
                                const std::map<dvn::Str, dvn::Str>& resultNames);
    /// Appends a copy; duplicates are not looked for.
    void addResult(const OFResult& result) { m_results.push_back(result); }
    std::size_t resultCount() const { return m_results.size(); }
    const OFResult& result(std::size_t index) const { return m_results[index]; }
    OFResult& result(std::size_t index) { return m_results[index]; }
    /// The first result of this id, or null; valid until the catalogue changes.
    const OFResult* resultById(int id) const;

    /// From the id of each node average to that of the result on cells that it is computed from.
    std::map<int, int>& getMappingSourceToAverageNode() { return m_mappingSourceToAverageNode; }
    /// Adds such a pair, replacing an older one; always true.
    bool registerVolumeResultSourceOfAverageNodeResult(int nodeResultId, int volumeResultId);
    /// The result that a node average is computed from, or null if none of its shape and name is registered.
    const OFResult* sourceVolumefromAverageNodeResult(const OFResult* result) const;
    /// Whether the part has a file for this result. Looks at the disk each time, so a file may come or go at any time.
    bool hasResultForPart(const OFResult* result, const OFPart* part) const;

    /// The shown name of a field: the user's, else the field's own.
    static dvn::Str makeCustomName(const dvn::Str& nativeName, const std::map<dvn::Str, dvn::Str>& resultNames);
    /// The stem of a result's id: the fixed word for well-known fields, else the name in upper case.
    static dvn::Str makeIdString(const dvn::Str& nativeName);

private:
    void addResultsFrom(const dvn::Str& folder, const std::vector<dvn::Str>& files, std::set<dvn::Str>& seenNames,
                        const std::map<dvn::Str, dvn::Str>& resultNames);
    std::set<dvn::Str> nativeNames() const;
    void addFieldsOf(const dvn::Str& folder, std::set<dvn::Str>& seenNames,
                     const std::map<dvn::Str, dvn::Str>& resultNames, CaseNotes* notes);
    void addMovedPoints(const std::map<dvn::Str, dvn::Str>& resultNames);
    dvn::Str addResultFromFile(const dvn::Str& path, std::set<dvn::Str>& seenNames,
                               const std::map<dvn::Str, dvn::Str>& resultNames);
    dvn::Str addResultFromFileOfSameName(const dvn::Str& path, std::set<dvn::Str>& seenNames,
                                         const std::map<dvn::Str, dvn::Str>& resultNames);
    dvn::Str addResultFromOpenFile(OFFile& file, const dvn::Str& path, std::set<dvn::Str>& seenNames,
                                   const std::map<dvn::Str, dvn::Str>& resultNames);
    void addFieldResults(const dvn::Str& nativeName, const OFUnit& unit, const OFResultTypeAndMapping& kind,
                         const std::map<dvn::Str, dvn::Str>& resultNames);
    void addFieldResults(const dvn::Str& nativeName, const dvn::Str& stem, const OFUnit& unit,
                         const OFResultTypeAndMapping& kind, const std::map<dvn::Str, dvn::Str>& resultNames);

    int m_id;
    dvn::Str m_folder;
    dvn::Str m_folderName;
    dvn::Str m_name;
    std::vector<OFResult> m_results;
    std::size_t m_stepIndex = UNKNOWN_INDEX;
    double m_referenceValue = dvn::UNDEFINED_DOUBLE;
    std::size_t m_stepIndexFromTimeDict = UNKNOWN_INDEX;
    std::map<int, int> m_mappingSourceToAverageNode;
    bool m_hasDefaultName = false;
    bool m_generateNodeAverageResult = false;
    bool m_wholeNamesOnly = false; ///< a file stands for the field of its own name only, never T.gas for T
    bool m_loadGlobalResult = true;
    bool m_loadLocalResult = true;
};

/// Orders states by time only; states of equal time compare equal.
struct OFStateLesser
{
    bool operator()(const OFState& a, const OFState& b) const { return a.referenceValue() < b.referenceValue(); }
};
