// SPDX-License-Identifier: MIT
#include "border/HostOptions.h"

#include "border/TextForms.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace {

/// Empty for a text that means neither, so that a typing mistake does not count as "off".
std::optional<bool> boolFromText(const std::string& given)
{
    const std::string text = lowerCase(given);
    if (text == "on" || text == "true" || text == "yes" || text == "1") {
        return true;
    }
    if (text == "off" || text == "false" || text == "no" || text == "0") {
        return false;
    }
    return std::nullopt;
}

/// Lists the settings that the provider declares: they belong to the library, so no other list could be complete.
[[noreturn]] void refuseUnknownKey(const std::string& key, const HostProviderInfo& provider)
{
    std::string known;
    for (const HostSetting& setting : provider.settings) {
        known += fmt::format("\n  {:<26}{} [{}]", setting.key, setting.label,
                             setting.isBool ? (setting.boolDefault ? "on" : "off") : setting.stringDefault);
    }
    throw HostError(ExitCode::Usage, fmt::format("--set: unknown key '{}'; the provider knows:{}", key, known));
}

} // namespace

HostOptions HostOptions::parse(const std::vector<std::string>& texts, const HostProviderInfo& provider)
{
    HostOptions options;
    for (const std::string& text : texts) {
        const std::size_t sign = text.find('=');
        if (sign == std::string::npos) {
            throw HostError(ExitCode::Usage, fmt::format("--set: '{}' is not of the form KEY=VALUE", text));
        }
        const std::string key = text.substr(0, sign);
        const std::string value = text.substr(sign + 1);
        const HostSetting* const setting = provider.find(key);
        if (setting == nullptr && key != EXTENDED_READING) {
            refuseUnknownKey(key, provider);
        }
        if (setting != nullptr && !setting->isBool) {
            options.setString(key, value);
            continue;
        }
        const std::optional<bool> flag = boolFromText(value);
        if (!flag) {
            throw HostError(ExitCode::Usage, fmt::format("--set: {} is on or off, not '{}'", key, value));
        }
        options.setBool(key, *flag);
    }
    return options;
}

bool HostOptions::hasOption(const DDPString& key) const
{
    m_askedKeys.emplace_back(key.c_str());
    return m_bools.contains(key.c_str()) || m_strings.contains(key.c_str());
}

bool HostOptions::boolOption(const DDPString& key) const
{
    const auto found = m_bools.find(key.c_str());
    if (found == m_bools.end()) {
        BorderFaults::get().add(fmt::format("the boolean setting {} was read but not given", key.c_str()));
        return false;
    }
    return found->second;
}

const DDPString* HostOptions::stringOption(const DDPString& key) const
{
    static const DDPString empty;
    const auto found = m_strings.find(key.c_str());
    if (found == m_strings.end()) {
        BorderFaults::get().add(fmt::format("the text setting {} was read but not given", key.c_str()));
        return &empty;
    }
    return &found->second;
}
