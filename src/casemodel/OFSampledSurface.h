// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "interface/DataProviderInterface.h"

#include <cstddef>
#include <vector>

/// One surface under `postProcessing`. A plain value.
class OFSampledSurface
{
public:
    /// A surface of the function "sampleSurface".
    ///
    /// @param id     1-based position among the sampled surfaces
    /// @param name   the surface's folder name
    /// @param folder path of the surface's folder in the first time folder
    OFSampledSurface(int id, const dvn::Str& name, const dvn::Str& folder);
    /// A surface of any function.
    ///
    /// @param function the folder under `postProcessing` that has the time folders, such as "cuts" or "cuts/solid"
    OFSampledSurface(int id, const dvn::Str& function, const dvn::Str& name, const dvn::Str& folder);

    int id() const { return m_id; }
    const dvn::Str& name() const { return m_name; }
    /// The name shown: the folder name followed by "[Surf]", and with the function before it unless that is
    /// "sampleSurface".
    const dvn::Str& userName() const { return m_userName; }
    const dvn::Str& folder() const { return m_folder; }
    /// Path of the surface's folder at a time, which need not exist.
    dvn::Str folderAt(const dvn::Str& casePath, const dvn::Str& timeName) const;
    /// The group id given to the host; -1 until the metadata is published.
    int globalPartId() const { return m_globalPartId; }

    /// Counts of the read surface; 0 before.
    std::size_t nodeCount() const { return m_nodeCount; }
    void setNodeCount(std::size_t count) { m_nodeCount = count; }
    std::size_t elementCount() const { return m_elementCount; }
    void setElementCount(std::size_t count) { m_elementCount = count; }

    /// In extended reading, the number of faces in the file and for each element the face that it is part of, 0-based.
    std::size_t faceCount() const { return m_faceCount; }
    const std::vector<int>& faceOfElement() const { return m_faceOfElement; }
    void setFaces(std::vector<int> faceOfElement, std::size_t faceCount);

    /// Declares the surface to the host, under no part, with the id `offset` + `id`, which is stored.
    void addSampleSurfaceInfo(int offset, DDPElementGroupInfo* info);

private:
    dvn::Str m_function;
    dvn::Str m_name;
    dvn::Str m_userName;
    std::size_t m_nodeCount = 0;
    std::size_t m_elementCount = 0;
    std::size_t m_faceCount = 0;
    std::vector<int> m_faceOfElement;
    int m_id;
    int m_globalPartId = -1;
    dvn::Str m_folder;
};
