// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/FacesData.h"
#include "records/Components.h"

#include <cstddef>
#include <vector>

/// One sampled surface as it is in its folder. Every face counts as a triangle.
class OFTriSurface
{
public:
    /// x, y, z of each point in turn.
    std::vector<double>& points() { return m_points; }
    const std::vector<double>& points() const { return m_points; }
    /// x, y, z of each face's centre in turn.
    std::vector<double>& facecenters() { return m_facecenters; }
    const std::vector<double>& facecenters() const { return m_facecenters; }
    std::size_t nodeCount() const { return m_points.size() / VECTOR_COMPONENTS; }
    FacesData& faces() { return m_faces; }
    const FacesData& faces() const { return m_faces; }

private:
    std::vector<double> m_points;
    std::vector<double> m_facecenters;
    FacesData m_faces;
};
