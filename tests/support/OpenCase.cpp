// SPDX-License-Identifier: MIT
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

HostOptions settings(const std::vector<std::pair<std::string, bool>>& switches)
{
    HostOptions options;
    for (const auto& [key, value] : switches) {
        options.setBool(key, value);
    }
    return options;
}

OpenCase::OpenCase(const std::filesystem::path& folder, const HostOptions& options)
{
    EXPECT_NE(provider.init(DDPString((folder / "case.foam").c_str()), options, nullptr), 0);
}

OpenCase::~OpenCase()
{
    provider.close();
    EXPECT_EQ(joined(BorderFaults::get().take()), "");
}

const HostMetaData& OpenCase::metaData()
{
    if (m_metaData == nullptr) {
        m_metaData = std::make_unique<HostMetaData>();
        EXPECT_TRUE(provider.getMetaData(m_metaData.get()));
    }
    return *m_metaData;
}

const HostGeometry& OpenCase::geometry()
{
    metaData();
    if (m_geometry == nullptr) {
        m_geometry = std::make_unique<HostGeometry>();
        EXPECT_TRUE(provider.getGeometry(HostGeometrySpec(), m_geometry.get()));
    }
    return *m_geometry;
}

std::string OpenCase::groups()
{
    Texts texts;
    for (const HostGroup& group : metaData().groups) {
        texts.push_back(std::to_string(group.id) + " " + group.name + " < " +
                        std::to_string(group.parentId.value_or(0)) + " " + group.type());
    }
    return joined(texts);
}

std::string OpenCase::states()
{
    Texts texts;
    for (const HostState& state : metaData().states) {
        texts.push_back(std::to_string(state.id) + " " + state.name);
    }
    return joined(texts);
}

std::string OpenCase::results()
{
    Texts texts;
    for (const HostResultInfo& result : metaData().results) {
        texts.push_back(std::to_string(result.id) + " " + result.name + " " + result.key + " " +
                        std::to_string(result.kind) + std::to_string(result.mapping) +
                        std::to_string(result.displacementFlag) + " " + result.unit);
    }
    return joined(texts);
}

std::unique_ptr<HostResult> OpenCase::result(const std::string& key, int stateId)
{
    const auto info = std::ranges::find(metaData().results, key, &HostResultInfo::key);
    auto result = std::make_unique<HostResult>();
    const bool isDelivered =
        info != metaData().results.end() && provider.getResult(HostResultSpec(info->id, stateId), result.get());
    return isDelivered ? std::move(result) : nullptr;
}

std::vector<std::vector<double>> OpenCase::values(const std::string& key, int stateId)
{
    std::vector<std::vector<double>> values;
    if (const std::unique_ptr<HostResult> delivered = result(key, stateId)) {
        std::ranges::transform(delivered->groups, std::back_inserter(values), &HostValueGroup::values);
    }
    return values;
}

std::string OpenCase::poll()
{
    HostNotifications notifications;
    provider.pollForChanges(&notifications);
    Texts texts;
    for (const HostNotice& notice : notifications.notices) {
        constexpr std::array<const char*, 3> KINDS = {"update ", "add ", "remove "};
        texts.push_back(KINDS[static_cast<std::size_t>(notice.kind)] + std::to_string(notice.id) +
                        (notice.name.empty() ? "" : " ") + notice.name);
    }
    return joined(texts);
}

std::filesystem::path dataCase(const std::string& name)
{
    return std::filesystem::path(TEST_DATA_FOLDER) / name;
}
