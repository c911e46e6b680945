// SPDX-License-Identifier: MIT
#include "mesh/MeshArrays.h"

#include "LibCore/Parallel.h"

#include <algorithm>
#include <numeric>
#include <type_traits>

namespace {

/// The host reads types as plain 32-bit values.
const std::int32_t* typeValues(const std::vector<DDPElementType>& types)
{
    static_assert(std::is_same_v<std::underlying_type_t<DDPElementType>, std::int32_t>);
    return reinterpret_cast<const std::int32_t*>(types.data());
}

} // namespace

void sendElements(const ElementArrays& elements, DDPElementGroup* group)
{
    group->setMixedElements(typeValues(elements.types), elements.types.size(), elements.connectivities.data(),
                            elements.connectivities.size(), elements.ids.data());
}

void sendPolyhedra(const PolyhedronArrays& polyhedra, DDPElementGroup* group)
{
    group->setPolyhedra(polyhedra.nodeCounts.data(), polyhedra.faceCounts.data(), polyhedra.nodeCounts.size(),
                        polyhedra.nodeCountPerFace.data(), polyhedra.nodeCountPerFace.size(),
                        polyhedra.faceNodes.data(), polyhedra.faceNodes.size());
}

std::vector<int> numbersFrom(int first, std::size_t count)
{
    std::vector<int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), first);
    return numbers;
}

void dvn_sort(std::vector<int>& values)
{
    dvf::sortPar(&values);
}

void sortUnique(std::vector<int>* values)
{
    dvn_sort(*values);
    values->erase(std::unique(values->begin(), values->end()), values->end());
}

std::size_t dvn_exclusive_partial_sum(const unsigned char* values, std::size_t count, int start, int* out)
{
    auto sum = static_cast<std::size_t>(start);
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<int>(sum);
        sum += values[i];
    }
    return sum;
}
