// SPDX-License-Identifier: MIT
#include "provider/ValueArrays.h"

#include "DvnCore/Undefined.h"
#include "LibCore/LargePages.h"

namespace {

std::size_t knownCount(std::size_t count)
{
    // guard: unknown-count
    return count == OFPart::UNKNOWN_COUNT ? 0 : count;
}

std::size_t valueCount(const OFResult& result, std::size_t nodeCount, std::size_t elementCount)
{
    // A displacement has no number of components, so it has no number of values.
    return result.dimension() <= 0 ? 0 : result.expectedValueCount(nodeCount, elementCount);
}

std::vector<double> undefinedValues(const OFResult& result, std::size_t nodeCount, std::size_t elementCount)
{
    return dvf::filledLarge(valueCount(result, nodeCount, elementCount), dvn::UNDEFINED_DOUBLE);
}

} // namespace

std::size_t valueCount(const OFResult& result, const OFPart& part)
{
    return valueCount(result, knownCount(part.nodeCount()), knownCount(part.elementCount()));
}

std::vector<double> undefinedItems(std::size_t itemCount, int dimension)
{
    if (dimension <= 0) {
        return {};
    }
    return std::vector<double>(itemCount * static_cast<std::size_t>(dimension), dvn::UNDEFINED_DOUBLE);
}

std::vector<double> undefinedValues(const OFResult& result, const OFPart& part)
{
    return undefinedValues(result, knownCount(part.nodeCount()), knownCount(part.elementCount()));
}

std::vector<double> undefinedValues(const OFResult& result, const OFBoundary& boundary)
{
    return undefinedValues(result, boundary.nodeCount(), boundary.nodeCountPerFace().size());
}

std::vector<double> undefinedValues(const OFResult& result, const OFSampledSurface& surface)
{
    return undefinedValues(result, surface.nodeCount(), surface.elementCount());
}

void deliver(const std::vector<double>& values, int dimension, DDPResultValueGroup* group)
{
    const std::size_t itemCount = dimension > 0 ? values.size() / static_cast<std::size_t>(dimension) : 0;
    group->setValues(values.data(), dimension, itemCount);
}

void deliverAndRelease(std::vector<double>& values, int dimension, DDPResultValueGroup* group)
{
    deliver(values, dimension, group);
    std::vector<double>().swap(values);
}
