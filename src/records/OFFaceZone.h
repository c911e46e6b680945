// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "interface/DataProviderInterface.h"

#include <cstddef>
#include <utility>
#include <vector>

/// One entry of a `faceZones` file. A plain value: copies are deep.
class OFFaceZone
{
public:
    OFFaceZone() = default;

    dvn::Str name() const { return m_name; }
    void setName(dvn::Str name) { m_name = std::move(name); }
    /// Id of the owning part; -1 until read.
    int partId() const { return m_partId; }
    void setPartId(int id) { m_partId = id; }
    /// 1-based position in the file; -1 until read.
    int id() const { return m_id; }
    void setId(int id) { m_id = id; }
    /// The group id given to the host; 0 until the metadata is published.
    int geometryGlobalPartId() const { return m_geometryGlobalPartId; }

    std::size_t faceCount() const { return m_faceIds.size(); }
    /// 0-based face labels in file order, which need be neither ascending nor contiguous.
    const std::vector<int>& faceIds() const { return m_faceIds; }
    std::vector<int>& faceIds() { return m_faceIds; }
    /// The flip entries as in the file.
    const std::vector<int>& flipMap() const { return m_flipMap; }
    std::vector<int>& flipMap() { return m_flipMap; }

    /// Declares the zone to the host as its name + " [FZ]", with the id `offset` + `id`, which is stored.
    void addFaceZoneInfo(int offset, DDPElementGroupInfo* info);

private:
    dvn::Str m_name;
    int m_partId = -1;
    int m_id = -1;
    int m_geometryGlobalPartId = 0;
    std::vector<int> m_faceIds;
    std::vector<int> m_flipMap;
};
