// SPDX-License-Identifier: MIT
#pragma once

#include "border/OpenedCase.h"
#include "view/OuterFaces.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// Something that a page can show or hide: a part, a patch, a zone or a sampled surface, with its faces.
struct PageGroup
{
    const HostGroup* group;
    HostGroupKind kind;
    std::size_t index;               ///< of the element group; a cell zone has that of its part
    std::optional<std::size_t> part; ///< position in the list of the part that it belongs to
    DrawnFaces faces;
    std::vector<std::int32_t> cells; ///< of a cell zone: positions of its cells; empty for other groups
    std::vector<std::int32_t> nodes; ///< of a cell zone: positions of the nodes of its cells
    std::size_t elementCount;        ///< cells of parts and zones, faces of others
};

/// The selected groups, each part followed by its cell zones, then the rest in the order of the case.
/// @param selected positions in `HostMetaData::geometryGroups`
std::vector<PageGroup> pageGroups(OpenedCase& opened, const std::vector<std::size_t>& selected);

/// The values of all items of a group, also of those that are not drawn; empty if there are none.
HostValueGroup allValues(OpenedCase& opened, const PageGroup& group, const HostResultInfo& info,
                         const HostResult& result);

/// The values of what is drawn: one item for each face, or for each point if the result is on nodes.
///
/// @param values those of the whole element group, with an item for each node or element
std::vector<double> drawnValues(const PageGroup& group, const HostResultInfo& info, const HostValueGroup& values);
