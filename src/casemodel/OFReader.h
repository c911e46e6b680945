// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "casemodel/OFPart.h"
#include "casemodel/OFSampledSurface.h"
#include "casemodel/OFState.h"
#include "casemodel/Omissions.h"
#include "foamfile/DescriptionReaders.h"
#include "foamfile/Reading.h"
#include "interface/DataProviderInterface.h"
#include "records/OFResult.h"

#include <cstddef>
#include <map>
#include <set>
#include <vector>

/// The catalogue of one case on disk: its parts with their patches and zones, its sampled surfaces and its states.
///
/// Opening reads only the small description files; meshes and values are read later, by others, on demand. The order of
/// use is setters, `init`, the rest, `close`: flags affect what is read or built after they are set. No locks: one
/// thread opens and changes the catalogue, and nobody else reads it meanwhile. Indexes are not checked.
class OFReader
{
public:
    /// The source named in log lines.
    static constexpr const char* LOG_SOURCE = "OFReader";

    OFReader() = default;

    void setLoadBoundariesFlag(bool load) { m_loadBoundaries = load; }
    void setLoadCellZonesFlag(bool load) { m_loadCellZones = load; }
    void setLoadFaceZonesFlag(bool load) { m_loadFaceZones = load; }
    void setHideProcessorInterfacesAsBoundariesFlag(bool hide) { m_hideProcessorInterfaces = hide; }
    void setMakeNodeAverageResultFlag(bool make) { m_makeNodeAverageResult = make; }
    void setLoadGlobalMesh(bool load) { m_loadGlobalMesh = load; }
    void setLoadLocalMeshes(bool load) { m_loadLocalMeshes = load; }
    /// Sets how much of what OpenFOAM writes is read; plain until set.
    void setReading(Reading reading)
    {
        m_reading = reading;
        m_files = &DescriptionReaders::of(reading);
    }
    Reading reading() const { return m_reading; }
    /// Sets the shown names of fields, as pairs NAME=SHOWN separated by semicolons.
    void setCustomResultNames(const DDPString& names) { m_customResultNames = names.c_str(); }

    // --- opening (OFReader.cpp, OFReaderGeometry.cpp)

    /// Opens the case in this folder; "\" counts as "/".
    ///
    /// After false, with the reason in the log, what was registered so far remains and must not be used. Call `close`
    /// before opening a second case: parts of a decomposed case and states are added to those already there.
    /// @throws std::out_of_range when a file's header or a patch lacks an entry that must be there
    bool init(const dvn::Str& path);
    /// Forgets dictionary, state folders, parts and states; surfaces, path, title, description and flags stay.
    void close();

    /// Finds out how the case is laid out (decomposed, else one mesh or several regions) and registers its meshes and
    /// its sampled surfaces. A case without a mesh has no parts, which is not an error.
    bool initGeometry();
    /// Registers each processor folder that holds a mesh as a part of that name, in the order of the list; always true.
    bool initParallelGeometry(std::vector<dvn::Str>& caseSubFolders);
    /// Reads the part's patches, unless they are switched off or there is no file, and advances `nextId` past them.
    ///
    /// @param file the plain name; a file of this name with ".gz" is accepted too
    /// @return false if the file exists but cannot be read; the part then has no patches
    bool addBoundaries(OFPart& part, const dvn::Str& file, int* nextId);
    /// The same for face zones, except that a part keeps the zones before the place where a file breaks off.
    bool addFaceZones(OFPart& part, const dvn::Str& file, int* nextId);
    /// The same for cell zones.
    bool addCellZones(OFPart& part, const dvn::Str& file, int* nextId);
    /// Drops the patches between processors if they are to be hidden; always true.
    bool filterBoundariesPartByName(OFPart& part);
    /// Drops the patches without faces; always true.
    bool filterBoundariesWithZeroFaceCount(OFPart& part);

    // --- the states (OFReaderStates.cpp)

    /// Lists the sub-folders of the case, sorted; states come and go with them.
    ///
    /// @return false, with the reason in the log, if the case folder cannot be listed, or no longer exists although
    ///         sub-folders of it are known. A network disk that is gone for a moment looks like that, so the caller
    ///         must not take the states for removed.
    bool listCaseFolders(std::vector<dvn::Str>* names) const;
    /// Appends a state for each time folder, with ids from 1 in the text order of the folders' names.
    /// @return false, with no states, if the case folder cannot be listed
    bool initStates();
    /// The same after dropping all states, which stay if the case folder cannot be listed.
    bool updateStates();
    /// Appends a state for each of these folders that is a time folder, then sorts and names all states; always true.
    bool populateStates(const std::vector<dvn::Str>& folderNames, int firstId);
    /// Adds the state of a new folder and renumbers all states from 1001.
    ///
    /// The folder is known from then on, even if it is not a time folder.
    /// @return the id of the state, or -1
    int addState(const dvn::Str& folderName);
    /// Removes the state of a folder and renumbers those left from 1001.
    ///
    /// @return its position in the list before, or -1 with nothing changed
    int deleteState(const dvn::Str& folderName);
    /// Sorts the states by time; states of equal time keep their order.
    void sortStatesByReferenceValue();
    void setIdsToRespectReferenceValueOrder();
    /// Gives each state its step index, from its folder or else from its position, and its shown name.
    void setStepIndex();
    /// The first state of this id, or null; valid until the list changes.
    const OFState* stateById(int id) const;
    /// The first result of this id over all states in list order, or null; valid until the list changes.
    const OFResult* resultByIdInAllStates(int id) const;
    /// Shown name by field name from the text form, which is left trimmed; a pair without "=" is skipped.
    std::map<dvn::Str, dvn::Str> buildResultsNamesMap(dvn::Str& names) const;

    // --- what the case holds

    /// Last component of the case folder.
    dvn::Str simulationTitle() const { return m_simulationTitle; }
    /// The kind of the case in words.
    dvn::Str simulationDescription() const { return m_simulationDescription; }
    /// The case folder.
    const dvn::Str& path() const { return m_path; }
    /// Names of all sub-folders of the case that are known, time folders or not, sorted.
    const std::vector<dvn::Str>& statesFolder() const { return m_statesFolder; }
    std::size_t partCount() const { return m_parts.size(); }
    OFPart& part(std::size_t index) { return m_parts[index]; }
    const OFPart& part(std::size_t index) const { return m_parts[index]; }
    std::size_t sampledSurfaceCount() const { return m_sampledSurfaces.size(); }
    OFSampledSurface& sampledSurface(std::size_t index) { return m_sampledSurfaces[index]; }
    const OFSampledSurface& sampledSurface(std::size_t index) const { return m_sampledSurfaces[index]; }
    /// States in the order of time.
    std::size_t stateCount() const { return m_states.size(); }
    OFState& state(std::size_t index) { return m_states[index]; }
    const OFState& state(std::size_t index) const { return m_states[index]; }

private:
    bool isExtended() const { return m_reading == Reading::Extended; }
    bool listSubFolders(const dvn::Str& folder, std::vector<dvn::Str>* names) const;
    bool hasMesh(const dvn::Str& folder) const;
    bool initSerialGeometry(const std::vector<dvn::Str>& caseSubFolders);
    bool addConstantMeshes(const dvn::Str& constantPath, int* nextId);
    bool addGlobalMesh(const dvn::Str& meshPath, int* nextId);
    bool addRegion(const dvn::Str& name, const dvn::Str& meshPath, int* nextId);
    bool addTimeZeroMesh(int* nextId);
    void addProcessorPart(const dvn::Str& name, int* nextId);
    void addSampledSurfaces();

    // --- extended reading (OFReaderExtended.cpp)

    bool initExtendedGeometry(const std::vector<dvn::Str>& caseSubFolders);
    void addPieces(const dvn::Str& processor, int* nextId);
    void addPiece(const dvn::Str& processor, const dvn::Str& region, const dvn::Str& meshPath, int* nextId);
    dvn::Str firstMesh(const dvn::Str& region, const dvn::Str& constantMesh) const;
    bool wasReconstructed(const std::vector<dvn::Str>& caseSubFolders) const;
    void addTimesOfPieces(std::vector<dvn::Str>* names) const;
    std::vector<dvn::Str> fieldFolders(const dvn::Str& timeName) const;

    std::vector<dvn::Str> regionNames() const;
    bool appendState(int id, const dvn::Str& folderName, const std::vector<dvn::Str>& regions,
                     const std::map<dvn::Str, dvn::Str>& resultNames);
    void addSampledSurfaceResults(const dvn::Str& folderName, const std::map<dvn::Str, dvn::Str>& resultNames);
    int writeInterval() const;

    // --- sampled surfaces in extended reading (OFReaderSurfaces.cpp)

    void addSampledFields(const dvn::Str& timeName, const std::map<dvn::Str, dvn::Str>& resultNames);

    dvn::Str m_path;
    std::vector<dvn::Str> m_statesFolder;
    std::vector<OFPart> m_parts;
    std::vector<OFSampledSurface> m_sampledSurfaces;
    std::vector<OFState> m_states;
    std::map<dvn::Str, dvn::Str> m_controlDict;
    dvn::Str m_simulationTitle;
    dvn::Str m_simulationDescription;
    Reading m_reading = Reading::Plain;
    const DescriptionReaders* m_files = &DescriptionReaders::of(Reading::Plain);
    CaseNotes m_notes;
    bool m_loadBoundaries = false;
    bool m_loadCellZones = false;
    bool m_loadFaceZones = false;
    bool m_hideProcessorInterfaces = false;
    bool m_makeNodeAverageResult = false;
    bool m_loadGlobalMesh = true;
    bool m_loadLocalMeshes = true;
    dvn::Str m_customResultNames;
};
