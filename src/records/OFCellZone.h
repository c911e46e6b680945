// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "interface/DataProviderInterface.h"

#include <cstddef>
#include <utility>
#include <vector>

/// One entry of a `cellZones` file. A plain value: copies are deep.
class OFCellZone
{
public:
    OFCellZone() = default;

    dvn::Str name() const { return m_name; }
    void setName(dvn::Str name) { m_name = std::move(name); }
    /// Id of the owning part; -1 until read.
    int partId() const { return m_partId; }
    void setPartId(int id) { m_partId = id; }
    /// 1-based position among the non-empty zones of the file; -1 until read.
    int id() const { return m_id; }
    void setId(int id) { m_id = id; }
    /// The group id given to the host; 0 until the metadata is published.
    int geometryGlobalPartId() const { return m_geometryGlobalPartId; }

    std::size_t cellCount() const { return m_cellIds.size(); }
    /// 0-based cell labels.
    const std::vector<int>& cellIds() const { return m_cellIds; }
    std::vector<int>& cellIds() { return m_cellIds; }

    /// Declares the zone to the host under its part, with the id `offset` + `id`, which is stored.
    void addCellZoneInfo(int offset, DDPElementGroupInfo* info);

private:
    dvn::Str m_name;
    int m_partId = -1;
    int m_id = -1;
    int m_geometryGlobalPartId = 0;
    std::vector<int> m_cellIds;
};
