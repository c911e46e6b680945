// SPDX-License-Identifier: MIT
#include "records/OFResult.h"

#include "records/Components.h"

namespace {

constexpr std::size_t NO_COUNT = static_cast<std::size_t>(-1);

} // namespace

OFResult::OFResult(const dvn::Str& nativeName, const dvn::Str& name, const dvn::Str& idString, const OFUnit& unit,
                   OFResultType type, OFResultMapping mapping)
    : m_name(name), m_idString(idString), m_nativeName(nativeName), m_unit(unit), m_type(type), m_mapping(mapping)
{}

dvn::Str OFResult::className() const
{
    if (m_mapping == OFResultNodeAverage) {
        return "Dalvorn averaged result from volume data";
    }
    for (const auto& [name, kind] : supportedResultClasses()) {
        if (kind.type == m_type && kind.mapping == m_mapping) {
            return name;
        }
    }
    return dvn::Str();
}

int OFResult::dimension() const
{
    switch (m_type) {
    case OFResultScalar:
        return 1;
    case OFResultVector:
        return static_cast<int>(VECTOR_COMPONENTS);
    case OFResultTensor:
        return static_cast<int>(TENSOR_COMPONENTS);
    default:
        return -1;
    }
}

std::size_t OFResult::expectedValueCount(std::size_t nodeCount, std::size_t elementCount) const
{
    // A dimension of -1 becomes a huge number and the product wraps: callers that size an array check the dimension.
    const auto components = static_cast<std::size_t>(dimension());
    switch (m_mapping) {
    case OFResultOnCell:
        return components * elementCount;
    case OFResultOnNode:
    case OFResultNodeAverage:
        return components * nodeCount;
    default:
        return NO_COUNT;
    }
}

const std::map<std::string, OFResultTypeAndMapping>& OFResult::supportedResultClasses()
{
    static const std::map<std::string, OFResultTypeAndMapping> CLASSES = {
        {"volScalarField", {OFResultScalar, OFResultOnCell}},   {"volVectorField", {OFResultVector, OFResultOnCell}},
        {"volTensorField", {OFResultTensor, OFResultOnCell}},   {"pointScalarField", {OFResultScalar, OFResultOnNode}},
        {"pointVectorField", {OFResultVector, OFResultOnNode}}, {"pointTensorField", {OFResultTensor, OFResultOnNode}},
    };
    return CLASSES;
}
