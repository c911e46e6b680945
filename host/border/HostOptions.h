// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostProviderInfo.h"

#include "DataProviderInterface.h"

#include <map>
#include <string>
#include <vector>

/// The user's settings for one case.
class HostOptions final : public DDPInitOptions
{
public:
    /// A boolean setting that the library reads without declaring it.
    static constexpr const char* EXTENDED_READING = "EXTENDED_READING";

    /// Parses texts of the form KEY=VALUE and checks them against what the provider declares, `EXTENDED_READING` aside.
    ///
    /// A boolean accepts on, off, true, false, yes, no, 1 and 0 in any case. If a key is given twice, the last value
    /// wins.
    /// @throws HostError of `Usage` for a text without "=", an unknown key or a bad boolean
    static HostOptions parse(const std::vector<std::string>& texts, const HostProviderInfo& provider);

    /// Sets an option without a check, for callers that know the provider.
    void setBool(const std::string& key, bool value) { m_bools[key] = value; }
    void setString(const std::string& key, const std::string& value) { m_strings[key] = DDPString(value.c_str()); }

    /// The keys that the provider asked for with `hasOption`, in order.
    const std::vector<std::string>& askedKeys() const { return m_askedKeys; }

    bool hasOption(const DDPString& key) const override;
    void reserved0() override { BorderFaults::get().addReservedRow("DDPInitOptions"); }
    bool boolOption(const DDPString& key) const override;
    const DDPString* stringOption(const DDPString& key) const override;

private:
    std::map<std::string, bool> m_bools;
    std::map<std::string, DDPString> m_strings;
    mutable std::vector<std::string> m_askedKeys;
};
