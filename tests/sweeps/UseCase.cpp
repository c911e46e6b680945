// SPDX-License-Identifier: MIT
#include "sweeps/UseCase.h"

#include "border/DeliveryCheck.h"
#include "support/OpenCase.h"

namespace {

template <typename Value>
void append(const std::vector<Value>& values, std::string* bytes)
{
    bytes->append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(Value));
    *bytes += '|';
}

} // namespace

std::optional<std::string> useCase(const std::filesystem::path& folder)
{
    OpenFoamProvider provider;
    if (provider.init(DDPString((folder / "case.foam").c_str()), settings({{"LOAD_FACE_ZONES", true}}), nullptr) == 0) {
        return std::nullopt;
    }
    HostMetaData metaData;
    HostGeometry geometry;
    if (!provider.getMetaData(&metaData) || !provider.getGeometry(HostGeometrySpec(), &geometry)) {
        return std::nullopt;
    }
    checkGeometry(metaData, geometry);
    std::string bytes;
    for (const HostNodeGroup& nodes : geometry.nodeGroups) {
        append(nodes.coordinates, &bytes);
    }
    for (const HostElementGroup& elements : geometry.elementGroups) {
        append(elements.connectivity, &bytes);
        append(elements.types, &bytes);
    }
    for (const HostState& state : metaData.states) {
        for (const HostResultInfo& info : metaData.results) {
            HostResult result;
            if (!provider.getResult(HostResultSpec(info.id, state.id), &result)) {
                return std::nullopt;
            }
            checkResult(metaData, geometry, info, result);
            for (const HostValueGroup& group : result.groups) {
                append(group.values, &bytes);
            }
        }
    }
    HostNotifications notifications;
    provider.pollForChanges(&notifications);
    provider.close();
    return bytes;
}
