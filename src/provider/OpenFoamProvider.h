// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "casemodel/OFReader.h"
#include "interface/DataProviderInterface.h"
#include "provider/OFInitOptions.h"
#include "provider/SharedFolder.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class OFPolymeshReader;
class OFPolymeshToDDP;
class OFTriSurfaceReader;
struct OFFieldFile;

/// The two host objects that take one group of the geometry; borrowed for the length of one call.
struct OFGroupPair
{
    DDPNodeGroup* nodes = nullptr;
    DDPElementGroup* elements = nullptr;
};

/// The pairs of one part: its own, one for each patch, one for each face zone. A sampled surface has one pair.
using OFGroupPairs = std::vector<OFGroupPair>;

/// The value groups of one part: its own, then one for each patch. A sampled surface has one.
using OFValueGroups = std::vector<DDPResultValueGroup*>;

/// One open case of a host: turns the host's calls into calls on the case model.
///
/// The host calls `init`, `getMetaData`, then the others as it wishes, last `close`; it calls from one thread, and only
/// `init` is safe to fail. `getMetaData` settles the ids that the later calls use, and `getGeometry` the counts that
/// results are sized by. Host objects are borrowed for the length of a call. Nothing is caught here: a file without an
/// entry that must be there ends a call with `std::out_of_range`.
class OpenFoamProvider final : public DDPDataProvider
{
public:
    // --- lifecycle and settings (OpenFoamProvider.cpp)

    /// Opens the case in the folder of `key`, whose file name selects nothing and need not exist.
    ///
    /// @param error not touched: what went wrong is in the log
    /// @return non-zero on success, 0 also for a key without a folder
    std::int32_t init(const DDPString& key, const DDPInitOptions& options, DDPError* error) override;
    /// Forgets parts and states; the settings stay.
    void close() override;
    /// Hands all settings to the reader, given or default, and logs those that were given.
    void applyUserReaderSettings(const DDPInitOptions& options);
    bool getBoolUserSetting(const DDPInitOptions& options, const OFInitOption& option) const;
    /// Owned by the caller. The log tells that a text was given, but not which.
    DDPString getStringUserSetting(const DDPInitOptions& options, const OFInitOptionString& option) const;

    // --- description (OpenFoamProviderMetaData.cpp)

    /// Publishes title, parts, states and results, and settles all ids; always true.
    bool getMetaData(DDPMetaData* metaData) override;
    bool addGeometryInfo(DDPMetaData* metaData);
    bool addStateInfo(DDPMetaData* metaData);
    /// Gives ids to the results of all states and links averages with their sources; always true.
    ///
    /// @param metaData null to keep it from the host, for states that came later
    bool addResultInfo(DDPMetaData* metaData);
    /// The host is told of no sets: false, and nothing happens.
    bool addSetInfo(DDPMetaData* metaData);

    // --- geometry (OpenFoamProviderGeometry.cpp)

    /// Delivers all nodes and elements, each part and each surface on a worker of its own.
    ///
    /// A part that cannot be read leaves its groups empty.
    /// @return false, with no groups made, for a geometry other than the one of the case
    bool getGeometry(const DDPGeometrySpec& spec, DDPGeometry* geometry) override;
    bool getGeometryForPart(const std::size_t& partIndex, OFPolymeshReader& reader, OFGroupPairs& pairs,
                            const DDPGeometrySpec& spec);
    bool getGeometryForTrisurface(const std::size_t& surfaceIndex, OFTriSurfaceReader& reader, OFGroupPair& pair,
                                  const DDPGeometrySpec& spec);
    /// Delivers each patch on a worker of its own; always true.
    bool generateBoundaryParts(std::vector<OFBoundary>& boundaries, OFGroupPairs& pairs, OFPolymeshToDDP& converter);
    /// The same for face zones, whose pairs follow those of the patches.
    bool generateFaceZones(std::vector<OFFaceZone>& faceZones, OFGroupPairs& pairs, std::vector<OFBoundary>& boundaries,
                           OFPolymeshToDDP& converter);
    /// Tells the host which cells show in which zone; cells that the mesh does not have are left out.
    void generateCellZoneParts(OFPart* part, const std::size_t& elementCount, DDPElementGroup* group);
    /// Delivers the cells of the first cell zone with this local id; zones of several parts share ids.
    bool getSet(std::int32_t setId, DDPSet* set) override;

    // --- results (OpenFoamProviderResults.cpp, OpenFoamProviderDisplacements.cpp)

    /// Delivers one result of one state, each part and each surface on a worker of its own; values that cannot be had
    /// are undefined.
    ///
    /// @return false if the state or the result is unknown, or displaced points cannot be read
    bool getResult(const DDPResultSpec& spec, DDPResult* result) override;
    bool buildDataResults(const OFState* state, const OFResult* result, DDPResult* dataResult);
    bool getResultForPart(int partIndex, const OFState* state, const OFResult* result, OFValueGroups& groups);
    /// Reads a field with its patches and delivers what was read; `values` is used up.
    void getResultsWithBoundaries(const OFFieldFile& field, const std::vector<OFBoundary>& boundaries,
                                  std::vector<double>& values, OFValueGroups& groups);
    bool getResultForTrisurface(int surfaceIndex, const OFState* state, const OFResult* result,
                                DDPResultValueGroup* group);
    /// Delivers the positions of all nodes in this state: coordinates, not differences. Surfaces have none.
    bool getDisplacements(int stateId, DDPResult* result);
    bool updatePointsForPart(int partIndex, int stateId, OFValueGroups& groups);
    /// Fills item i of `target` with item `mapping[i]` of `source`; items that the source does not have stay as they
    /// are.
    bool applyNodalDataInFace(const std::vector<double>& source, std::vector<double>& target, int dimension,
                              const std::vector<int>& mapping) const;
    /// The case has no rigid body motion: false, and nothing happens.
    bool getRigidBodyTransformations(std::uint64_t stateIndex, std::int32_t id,
                                     DDPTransformations* transformations) override;

    // --- changes (OpenFoamProviderPolling.cpp)

    /// Tells the host which time folders appeared or vanished since the last poll.
    ///
    /// The poll behind one that found a change tells all states anew and looks for no further change.
    void pollForChanges(DDPChangeNotifications* notifications) override;
    void runVerificationForChanges(DDPChangeNotifications* notifications);
    /// Both lists are sorted.
    void handleRemovedStates(DDPChangeNotifications* notifications, const std::vector<dvn::Str>& currentFolders,
                             const std::vector<dvn::Str>& knownFolders);
    void handleAddedStates(DDPChangeNotifications* notifications, const std::vector<dvn::Str>& currentFolders,
                           const std::vector<dvn::Str>& knownFolders);

private:
    static constexpr int NO_RESULT_ID = -1;

    bool deliverCells(OFPart& part, OFPolymeshToDDP& converter, const OFGroupPair& pair);
    void deliverUndefined(const OFResult& result, DDPResult* dataResult) const;
    /// @param nodeValues undefined values for all nodes of the part; used up
    bool getAverageForPart(const OFPart& part, const OFState* state, const OFResult* result,
                           std::vector<double>& nodeValues, OFValueGroups& groups) const;

    OFReader m_reader;
    /// Set by a poll that changed the list of states; the next poll tells them all anew.
    bool m_runVerification = false;
    bool m_makeNodeAverageResults = false;
    /// Id of the result that was published as displacement; -1 means none.
    int m_displacementResultId = NO_RESULT_ID;
    /// The mesh folder of the part that was read last.
    SharedFolder m_polyMeshFolder;
    bool m_loadBoundaries = false;
};
