// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "casemodel/OFReader.h"
#include "casemodel/OFResultReader.h"
#include "interface/DataProviderInterface.h"
#include "provider/OFInitOptions.h"
#include "provider/SharedFolder.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class OFPolymeshReader;
class OFPolymeshToDDP;
class OFTriSurfaceReader;

/// The two host objects that take one group of the geometry; borrowed for the length of one call.
struct OFGroupPair
{
    DDPNodeGroup* nodes = nullptr;
    DDPElementGroup* elements = nullptr;
};

/// The pairs of one part: its own, one per patch, one per face zone. A sampled surface has one pair.
using OFGroupPairs = std::vector<OFGroupPair>;

/// The value groups of one part: its own, then one per patch. A sampled surface has one.
using OFValueGroups = std::vector<DDPResultValueGroup*>;

/// One open case of a host: turns the host's calls into calls on the case model.
///
/// From one thread, the host calls `init`, `getMetaData`, then the others in any order, and `close` last. Only `init`
/// is expected to fail. `getMetaData` sets the ids that later calls use, and `getGeometry` the counts
/// that size the results. Host objects are borrowed for the length of a call. Nothing is caught here: a file that lacks
/// a required entry ends a call with `std::out_of_range`.
class OpenFoamProvider final : public DDPDataProvider
{
public:
    // --- lifecycle and settings (OpenFoamProvider.cpp)

    /// Opens the case in the folder of `key`. The file name in `key` is ignored and need not exist.
    ///
    /// @param error not touched: the reason of a failure is in the log
    /// @return non-zero on success; 0 also for a key without a folder
    std::int32_t init(const DDPString& key, const DDPInitOptions& options, DDPError* error) override;
    /// Forgets parts and states; keeps the settings.
    void close() override;
    /// Passes all settings to the reader, given or default, and logs those that were given.
    void applyUserReaderSettings(const DDPInitOptions& options);
    bool getBoolUserSetting(const DDPInitOptions& options, const OFInitOption& option) const;
    /// The value, owned by the caller. The log says that a text was given, but not what it is.
    DDPString getStringUserSetting(const DDPInitOptions& options, const OFInitOptionString& option) const;
    /// The setting that the factory does not declare: the host's value, else that of the environment, else plain.
    Reading getReadingUserSetting(const DDPInitOptions& options) const;

    // --- description (OpenFoamProviderMetaData.cpp)

    /// Publishes title, parts, states and results, and sets all ids; always true.
    bool getMetaData(DDPMetaData* metaData) override;
    bool addGeometryInfo(DDPMetaData* metaData);
    bool addStateInfo(DDPMetaData* metaData);
    /// Gives ids to the results of all states and links averages to their sources; always true.
    ///
    /// @param metaData null for states found by polling, about which the host is not told
    bool addResultInfo(DDPMetaData* metaData);
    /// Does nothing and returns false: no sets are declared to the host.
    bool addSetInfo(DDPMetaData* metaData);

    // --- geometry (OpenFoamProviderGeometry.cpp)

    /// Delivers all nodes and elements, parts and surfaces in parallel.
    ///
    /// A part that cannot be read leaves its groups empty.
    /// @return false, with no groups made, unless the selector is that of the case's only geometry
    bool getGeometry(const DDPGeometrySpec& spec, DDPGeometry* geometry) override;
    bool getGeometryForPart(const std::size_t& partIndex, OFPolymeshReader& reader, OFGroupPairs& pairs,
                            const DDPGeometrySpec& spec);
    bool getGeometryForTrisurface(const std::size_t& surfaceIndex, OFTriSurfaceReader& reader, OFGroupPair& pair,
                                  const DDPGeometrySpec& spec);
    /// Delivers the patches in parallel; always true.
    bool generateBoundaryParts(std::vector<OFBoundary>& boundaries, OFGroupPairs& pairs, OFPolymeshToDDP& converter);
    /// The same for face zones, whose pairs follow those of the patches.
    bool generateFaceZones(std::vector<OFFaceZone>& faceZones, OFGroupPairs& pairs, std::vector<OFBoundary>& boundaries,
                           OFPolymeshToDDP& converter);
    /// Tells the host which zone each cell belongs to; cells that the mesh does not have are left out.
    void generateCellZoneParts(OFPart* part, const std::size_t& elementCount, DDPElementGroup* group);
    /// Delivers the cells of the first cell zone with this id.
    /// Compatibility (docs/compatibility.md, "zone ids per part").
    bool getSet(std::int32_t setId, DDPSet* set) override;

    // --- results (OpenFoamProviderResults.cpp, OpenFoamProviderDisplacements.cpp)

    /// Delivers one result of one state, parts and surfaces in parallel. Values that cannot be read are undefined.
    ///
    /// @return false if the state or the result is unknown, or displaced points cannot be read
    bool getResult(const DDPResultSpec& spec, DDPResult* result) override;
    bool buildDataResults(const OFState* state, const OFResult* result, DDPResult* dataResult);
    bool getResultForPart(int partIndex, const OFState* state, const OFResult* result, OFValueGroups& groups);
    /// Reads a field with its patches and delivers what was read; `values` is empty afterwards.
    void getResultsWithBoundaries(const OFFieldFile& field, const std::vector<OFBoundary>& boundaries,
                                  std::vector<double>& values, OFValueGroups& groups);
    bool getResultForTrisurface(int surfaceIndex, const OFState* state, const OFResult* result,
                                DDPResultValueGroup* group);
    /// Delivers the positions of all nodes in this state (coordinates, not differences), except those of surfaces.
    bool getDisplacements(int stateId, DDPResult* result);
    bool updatePointsForPart(int partIndex, int stateId, OFValueGroups& groups);
    /// Copies item `mapping[i]` of `source` to item i of `target`; items that the source lacks stay unchanged.
    bool applyNodalDataInFace(const std::vector<double>& source, std::vector<double>& target, int dimension,
                              const std::vector<int>& mapping) const;
    /// Does nothing and returns false: cases have no rigid body motion.
    bool getRigidBodyTransformations(std::uint64_t stateIndex, std::int32_t id,
                                     DDPTransformations* transformations) override;

    // --- changes (OpenFoamProviderPolling.cpp)

    /// Tells the host which time folders appeared or vanished since the last poll.
    ///
    /// If the case folder cannot be listed, nothing is reported and the next poll tries again. The poll after one that
    /// found a change announces all states again and looks for no other change.
    void pollForChanges(DDPChangeNotifications* notifications) override;
    void runVerificationForChanges(DDPChangeNotifications* notifications);
    /// Both lists are sorted.
    void handleRemovedStates(DDPChangeNotifications* notifications, const std::vector<dvn::Str>& currentFolders,
                             const std::vector<dvn::Str>& knownFolders);
    void handleAddedStates(DDPChangeNotifications* notifications, const std::vector<dvn::Str>& currentFolders,
                           const std::vector<dvn::Str>& knownFolders);

private:
    static constexpr int NO_RESULT_ID = -1;

    bool isExtended() const { return m_reader.reading() == Reading::Extended; }
    OFResultReader resultReader() const { return OFResultReader(m_reader.reading()); }
    dvn::Str pointsFolder(const OFPart& part, const OFState& state) const;
    bool deliverCells(OFPart& part, OFPolymeshToDDP& converter, const OFGroupPair& pair);
    void deliverUndefined(const OFResult& result, DDPResult* dataResult) const;
    /// @param nodeValues undefined values for all nodes of the part; may be empty afterwards
    bool getAverageForPart(const OFPart& part, const OFState* state, const OFResult* result,
                           std::vector<double>& nodeValues, OFValueGroups& groups) const;

    OFReader m_reader;
    /// Set by a poll that changed the list of states; the next poll announces them all again.
    bool m_runVerification = false;
    bool m_makeNodeAverageResults = false;
    /// Id of the result that was published as displacement; -1 means none.
    int m_displacementResultId = NO_RESULT_ID;
    /// The mesh folder of the part read last.
    SharedFolder m_polyMeshFolder;
    bool m_loadBoundaries = false;
};
