// SPDX-License-Identifier: MIT
#include "casemodel/OFPart.h"

#include <utility>

OFPart::OFPart(int id, const dvn::Str& name, const dvn::Str& folder) : m_id(id), m_name(name), m_folder(folder) {}

void OFPart::setConnectivities(std::vector<int>&& connectivities)
{
    m_connectivities = std::exchange(connectivities, {});
    m_elementBlocks = itemBlocks(m_nodesCountPerElt, m_connectivities);
}

void OFPart::setNodesCountPerElt(std::vector<std::uint8_t>&& counts)
{
    m_nodesCountPerElt = std::exchange(counts, {});
    m_elementBlocks = itemBlocks(m_nodesCountPerElt, m_connectivities);
}
