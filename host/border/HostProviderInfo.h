// SPDX-License-Identifier: MIT
#pragma once

#include "border/BorderGuard.h"

#include "DataProviderInterface.h"

#include <string>
#include <vector>

/// One user setting as the provider declares it.
struct HostSetting
{
    std::string key;
    std::string label;         ///< what a graphical host would show
    bool isBool;               ///< otherwise the setting is a text
    bool boolDefault;          ///< for a boolean
    std::string stringDefault; ///< for a text
};

/// Records what a factory reports about its provider.
class HostProviderInfo final : public DDPDataProviderInfo
{
public:
    std::string name;
    std::string fileMask;
    std::vector<HostSetting> settings; ///< in order of declaration

    /// The setting with this key, or null.
    const HostSetting* find(const std::string& key) const
    {
        for (const HostSetting& setting : settings) {
            if (setting.key == key) {
                return &setting;
            }
        }
        return nullptr;
    }

    void reserved0() override { BorderFaults::get().addReservedRow("DDPDataProviderInfo"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPDataProviderInfo"); }
    void setProviderName(const DDPString& text) override { name = text.c_str(); }
    void setProviderFileMask(const DDPString& mask) override { fileMask = mask.c_str(); }
    void reserved2() override { BorderFaults::get().addReservedRow("DDPDataProviderInfo"); }

    void addBoolOption(const DDPString& key, const DDPString& label, bool defaultValue) override
    {
        settings.push_back({key.c_str(), label.c_str(), true, defaultValue, {}});
    }

    void reserved3() override { BorderFaults::get().addReservedRow("DDPDataProviderInfo"); }

    void addStringOption(const DDPString& key, const DDPString& label, const DDPString& defaultValue) override
    {
        settings.push_back({key.c_str(), label.c_str(), false, false, defaultValue.c_str()});
    }
};
