// SPDX-License-Identifier: MIT
#pragma once

#include "border/BorderGuard.h"

#include "DataProviderInterface.h"

#include <cstdint>
#include <string>
#include <vector>

/// One change of the list of states.
struct HostNotice
{
    /// The operation that reported it.
    enum class Kind
    {
        Update,
        Add,
        Remove
    };

    Kind kind;
    std::int32_t id;       ///< the state's id; for a removal the list position
    std::string name;      ///< empty for a removal
    double referenceValue; ///< the time; 0 for a removal
};

/// Records the changes that polls report, in order.
class HostNotifications final : public DDPChangeNotifications
{
public:
    std::vector<HostNotice> notices; ///< of all polls so far

    void reserved0() override { BorderFaults::get().addReservedRow("DDPChangeNotifications"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPChangeNotifications"); }
    void reserved2() override { BorderFaults::get().addReservedRow("DDPChangeNotifications"); }
    void reserved3() override { BorderFaults::get().addReservedRow("DDPChangeNotifications"); }
    void reserved4() override { BorderFaults::get().addReservedRow("DDPChangeNotifications"); }
    void reserved5() override { BorderFaults::get().addReservedRow("DDPChangeNotifications"); }

    void updateState(std::int32_t stateId, const DDPString& name, double referenceValue) override
    {
        notices.push_back({HostNotice::Kind::Update, stateId, name.c_str(), referenceValue});
    }

    void addState(std::int32_t stateId, const DDPString& name, double referenceValue) override
    {
        notices.push_back({HostNotice::Kind::Add, stateId, name.c_str(), referenceValue});
    }

    void removeState(std::int32_t position) override
    {
        notices.push_back({HostNotice::Kind::Remove, position, {}, 0.0});
    }
};
