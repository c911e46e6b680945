// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "interface/DataProviderInterface.h"

#include <cstddef>

/// One surface under `postProcessing/sampleSurface`. A plain value.
class OFSampledSurface
{
public:
    /// @param id     1-based position among the sampled surfaces
    /// @param name   the surface's folder name
    /// @param folder path of the surface's folder in the first time folder
    OFSampledSurface(int id, const dvn::Str& name, const dvn::Str& folder);

    int id() const { return m_id; }
    const dvn::Str& name() const { return m_name; }
    /// The name shown: the folder name followed by "[Surf]".
    const dvn::Str& userName() const { return m_userName; }
    const dvn::Str& folder() const { return m_folder; }
    /// The group id given to the host; -1 until the metadata is published.
    int globalPartId() const { return m_globalPartId; }

    /// Counts of the read surface; 0 before.
    std::size_t nodeCount() const { return m_nodeCount; }
    void setNodeCount(std::size_t count) { m_nodeCount = count; }
    std::size_t elementCount() const { return m_elementCount; }
    void setElementCount(std::size_t count) { m_elementCount = count; }

    /// Declares the surface to the host, under no part, with the id `offset` + `id`, which is stored.
    void addSampleSurfaceInfo(int offset, DDPElementGroupInfo* info);

private:
    dvn::Str m_name;
    dvn::Str m_userName;
    std::size_t m_nodeCount = 0;
    std::size_t m_elementCount = 0;
    int m_id;
    int m_globalPartId = -1;
    dvn::Str m_folder;
};
