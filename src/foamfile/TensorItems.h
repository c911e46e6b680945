// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/ListItems.h"
#include "records/Components.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

// The items of a list as the host takes them: scalars and vectors as they are, six numbers for each tensor.

/// The numbers of a tensor of any kind: xx xy xz yy yz zz. Of a tensor that is not symmetric this is the symmetric
/// part, as there is no place for the rest.
inline std::array<double, TENSOR_COMPONENTS> hostTensor(const ListItems& items, const double* item)
{
    if (items == ListItems::sphericalTensors()) {
        return {item[0], 0.0, 0.0, item[0], 0.0, item[0]};
    }
    if (items == ListItems::symmTensors()) {
        return {item[0], item[1], item[2], item[3], item[4], item[5]};
    }
    return {item[0], 0.5 * (item[1] + item[3]), 0.5 * (item[2] + item[6]), item[4], 0.5 * (item[5] + item[7]), item[8]};
}

/// The values of a whole list.
inline std::vector<double> hostItems(const ListItems& items, std::vector<double> values)
{
    if (items != ListItems::sphericalTensors() && items != ListItems::tensors()) {
        return values;
    }
    const std::size_t count = values.size() / items.components;
    std::vector<double> tensors(count * TENSOR_COMPONENTS);
    for (std::size_t i = 0; i < count; ++i) {
        std::ranges::copy(hostTensor(items, values.data() + i * items.components),
                          tensors.begin() + static_cast<std::ptrdiff_t>(i * TENSOR_COMPONENTS));
    }
    return tensors;
}
