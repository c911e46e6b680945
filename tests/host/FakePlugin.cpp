// SPDX-License-Identifier: MIT
// A plug-in that delivers one part with one result, and that misbehaves in the way which the name of the case's folder
// says. The host's answers to a bad library cannot be tested with a good one.
#include "support/ReferenceCells.h"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

DDPString text(const std::string& characters)
{
    return DDPString(characters.c_str());
}

class FakeProvider final : public DDPDataProvider
{
public:
    std::int32_t init(const DDPString& key, const DDPInitOptions& options, DDPError* /*error*/) override
    {
        const std::string path = key.c_str();
        const std::size_t end = path.rfind('/');
        m_folder = path.substr(path.rfind('/', end - 1) + 1, end - path.rfind('/', end - 1) - 1);
        if (m_folder == "unasked-option") {
            (void)options.boolOption(text("FLAG"));
        }
        if (m_folder == "throws") {
            throw std::runtime_error("thrown on purpose");
        }
        return m_folder == "refused" ? 0 : 1;
    }

    void close() override {}

    bool getMetaData(DDPMetaData* metaData) override
    {
        if (m_folder == "reserved-row") {
            metaData->reserved1();
        }
        metaData->setSimulationInfo(text("fake"), text("A case made up\n"), 4, 4);
        metaData->geometryInfo()->setGeometryMode(0);
        metaData->geometryInfo()->elementGroupInfo()->addGroup(1, text("body"));
        metaData->addState(7, text("Time 0.00000 #0"), 0.0);
        DDPResultInfo* const info = metaData->addResult(0, 1, text("T"), 1);
        info->setResultKey(text("T_E"));
        info->setResultUnit(text("K"));
        return true;
    }

    bool getGeometry(const DDPGeometrySpec& /*spec*/, DDPGeometry* geometry) override
    {
        if (m_folder == "crashes") {
            std::abort();
        }
        if (m_folder == "group-on-worker") {
            std::thread([geometry] { geometry->addNodeGroup(); }).join();
        }
        if (m_folder == "missing-group") {
            return true;
        }
        DDPNodeGroup* const nodes = geometry->addNodeGroup();
        DDPElementGroup* const elements = geometry->addElementGroup(nodes->nodeGroupId());
        DeliveredCells cells;
        if (m_folder == "bad-connectivity") {
            cells.connectivity.back() = static_cast<std::int32_t>(cells.points.size() / 3);
        }
        std::thread([&] { cells.deliverTo(nodes, elements); }).join();
        const std::vector<std::int32_t> partIds = {2, 2, 1, 1, 1};
        elements->setElementPartIds(partIds.data(), partIds.size());
        return true;
    }

    bool getSet(std::int32_t /*setId*/, DDPSet* /*set*/) override { return false; }

    bool getResult(const DDPResultSpec& /*spec*/, DDPResult* result) override
    {
        const std::vector<double> values = {1.0, 2.0, 3.0, 4.0, 5.0};
        result->addValueGroup()->setValues(values.data(), 1, m_folder == "short-values" ? 4 : 5);
        return true;
    }

    bool getRigidBodyTransformations(std::uint64_t, std::int32_t, DDPTransformations*) override { return false; }

    void pollForChanges(DDPChangeNotifications* notifications) override
    {
        notifications->updateState(7, text("Time 0.00000 #0"), 0.0);
        notifications->addState(9, text("Time 1.00000 #20"), 1.0);
        notifications->removeState(2);
    }

private:
    std::string m_folder;
};

class FakeFactory final : public DDPDataProviderFactory
{
public:
    bool getProviderInfo(DDPDataProviderInfo* info) override
    {
        info->setProviderName(text("Fake provider"));
        info->setProviderFileMask(text("case.foam"));
        info->addBoolOption(text("FLAG"), text("A flag"), true);
        info->addStringOption(text("TEXT"), text("A text"), text("default"));
        return true;
    }

    bool isSupportedByProvider(const DDPString& path) override
    {
        return std::string(path.c_str()).ends_with("/case.foam");
    }

    DDPDataProvider* createProviderInstance() override { return new FakeProvider; }
    void destroyProviderInstance(DDPDataProvider* provider) override { delete provider; }
};

void destroyFactory(DDPDataProviderFactory* factory)
{
    delete factory;
}

void onExit() {}

} // namespace

extern "C" __attribute__((visibility("default"))) DDPPluginExitFunction
initializeDataProviderPlugin(DDPPluginInitRecord* record)
{
    record->setPluginInfo("name", "FakePlugin");
    record->pluginLogCallback(1, "an error line");
    record->pluginLogCallback(3, "an info line");
    record->pluginLogCallback(4, "a debug line");
    const char* const version = std::getenv("FAKE_PLUGIN_VERSION");
    DDPFactoryRegistration registration = {version == nullptr ? 7 : std::atoi(version), new FakeFactory,
                                           destroyFactory};
    return record->registerProviderFactory("Fake", &registration) != 0 ? onExit : nullptr;
}

/// A symbol that no host asks for.
extern "C" __attribute__((visibility("default"))) void needlessSymbol() {}
