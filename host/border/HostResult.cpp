// SPDX-License-Identifier: MIT
#include "border/HostResult.h"

#include "border/ArrayCopy.h"

#include <algorithm>

void HostValueGroup::setValues(const double* array, std::int32_t componentCount, std::uint64_t items)
{
    const HostCall call(&calls, "setValues");
    if (!call) {
        return;
    }
    shapes.emplace_back(componentCount, items);
    dimension = componentCount;
    if (componentCount < 1 || (array == nullptr && items != 0)) {
        values.clear();
        BorderFaults::get().add("a value group without components or without an array");
        return;
    }
    copyArray(array, items * static_cast<std::uint64_t>(componentCount), &values);
}

bool HostValueGroup::canReplacePoints(std::size_t nodeCount) const
{
    return dimension == 3 && itemCount() == nodeCount &&
           std::ranges::none_of(values, [](double value) { return value == UNDEFINED_VALUE; });
}

DDPResultValueGroup* HostResult::addValueGroup()
{
    if (std::this_thread::get_id() != m_owner) {
        BorderFaults::get().add("addValueGroup was called on a worker thread");
    }
    return &groups.emplace_back();
}

std::size_t HostResult::byteCount() const
{
    std::size_t bytes = 0;
    for (const HostValueGroup& group : groups) {
        bytes += group.values.capacity() * sizeof(double);
    }
    return bytes;
}
