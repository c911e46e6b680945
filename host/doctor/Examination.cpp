// SPDX-License-Identifier: MIT
#include "doctor/Examination.h"

#include <algorithm>
#include <cmath>

namespace {

/// Equal numbers, or both not a number.
bool areSame(const std::vector<double>& a, const std::vector<double>& b)
{
    return std::ranges::equal(a, b, [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); });
}

} // namespace

bool Examination::isSet(const std::string& key) const
{
    const DDPString name(key.c_str());
    if (settings.hasOption(name)) {
        return settings.boolOption(name);
    }
    const HostSetting* const declared = provider.find(key);
    return declared != nullptr && declared->boolDefault;
}

bool isToBeShown(const Examination& examination, const CaseMesh& mesh)
{
    const bool isWanted =
        mesh.region.empty() ? examination.isSet("LOAD_GLOBAL_MESH") : examination.isSet("LOAD_LOCAL_MESHES");
    return (isWanted || !mesh.processor.empty()) &&
           (!mesh.isBesidePieces || examination.extended.group(mesh.part, "").has_value());
}

const char* wordOf(ArrayStatus status)
{
    switch (status) {
    case ArrayStatus::NoCase:
        return "case refused";
    case ArrayStatus::NoTime:
        return "no such time";
    case ArrayStatus::NoField:
        return "not listed";
    case ArrayStatus::NoGroup:
        return "no such group";
    case ArrayStatus::Failed:
        return "failed";
    case ArrayStatus::Undefined:
        return "undefined";
    case ArrayStatus::Some:
        return "partly undefined";
    case ArrayStatus::All:
        return "shown";
    }
    return "";
}

ArrayOutcome outcomeOf(Examination& examination, const DeliveredResult& plain, const DeliveredResult& extended,
                       const std::string& part, const std::string& group)
{
    Delivery& inPlain = examination.plain;
    Delivery& inExtended = examination.extended;
    const std::optional<std::size_t> plainGroup = inPlain.group(part, group);
    const std::optional<std::size_t> extendedGroup = inExtended.group(part, group);
    ArrayOutcome outcome;
    outcome.plain = inPlain.statusOf(plain, plainGroup);
    outcome.extended = inExtended.statusOf(extended, extendedGroup);
    if (isShown(outcome.plain) && isShown(outcome.extended)) {
        outcome.isSame =
            areSame(inPlain.valuesOf(plain, plainGroup)->values, inExtended.valuesOf(extended, extendedGroup)->values);
    }
    return outcome;
}
