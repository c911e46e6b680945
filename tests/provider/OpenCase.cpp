// SPDX-License-Identifier: MIT
#include "provider/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>

OpenCase::OpenCase(const std::filesystem::path& folder, const HostOptions& settings)
    : isOpen(provider.init(DDPString((folder / "case.foam").c_str()), settings, nullptr) != 0)
{}

OpenCase::~OpenCase()
{
    provider.close();
    EXPECT_EQ(BorderFaults::get().take(), std::vector<std::string>());
}

HostMetaData& OpenCase::metaData()
{
    m_metaData = std::make_unique<HostMetaData>();
    EXPECT_TRUE(provider.getMetaData(m_metaData.get()));
    return *m_metaData;
}

HostGeometry& OpenCase::geometry()
{
    metaData();
    m_geometry = std::make_unique<HostGeometry>();
    EXPECT_TRUE(provider.getGeometry(HostGeometrySpec(), m_geometry.get()));
    return *m_geometry;
}

int OpenCase::resultId(const std::string& key) const
{
    const auto found = std::ranges::find(m_metaData->results, key, &HostResultInfo::key);
    EXPECT_NE(found, m_metaData->results.end()) << key;
    return found == m_metaData->results.end() ? -2 : found->id;
}

std::unique_ptr<HostResult> OpenCase::result(const std::string& key, int stateId)
{
    auto result = std::make_unique<HostResult>();
    const HostResultSpec spec(resultId(key), stateId);
    return provider.getResult(spec, result.get()) ? std::move(result) : nullptr;
}

std::vector<std::vector<double>> OpenCase::values(const std::string& key, int stateId)
{
    std::vector<std::vector<double>> values;
    const std::unique_ptr<HostResult> delivered = result(key, stateId);
    EXPECT_NE(delivered, nullptr) << key;
    if (delivered != nullptr) {
        std::ranges::transform(delivered->groups, std::back_inserter(values), &HostValueGroup::values);
    }
    return values;
}

std::vector<std::string> OpenCase::poll()
{
    HostNotifications notifications;
    provider.pollForChanges(&notifications);
    std::vector<std::string> texts;
    for (const HostNotice& notice : notifications.notices) {
        const std::string tail = std::to_string(notice.id) + (notice.name.empty() ? "" : " ") + notice.name;
        switch (notice.kind) {
        case HostNotice::Kind::Update:
            texts.push_back("update " + tail);
            break;
        case HostNotice::Kind::Add:
            texts.push_back("add " + tail);
            break;
        case HostNotice::Kind::Remove:
            texts.push_back("remove " + tail);
            break;
        }
    }
    return texts;
}

std::filesystem::path dataCase(const std::string& name)
{
    return std::filesystem::path(TEST_DATA_FOLDER) / name;
}
