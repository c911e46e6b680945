// SPDX-License-Identifier: MIT
//
// A plug-in that delivers one known case, and that misbehaves in the way which the name of the case's folder says. The
// host's answers to a bad library cannot be tested with a good one.
#include "ReferenceCells.h"

#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

constexpr double UNDEFINED = std::numeric_limits<double>::max();

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
        describeGroups(metaData->geometryInfo());
        metaData->addState(7, text("Time 0.00000 #0"), 0.0);
        metaData->addState(3, text("Time 0.50000 #10"), 0.5);
        addResult(metaData, 0, 1, "T", 1, "T_E");
        addResult(metaData, 0, 2, "T [node]", 0, "T_N");
        addResult(metaData, 1, 3, "U", 0, "U_N*");
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
        DDPNodeGroup* const bodyNodes = geometry->addNodeGroup();
        DDPElementGroup* const body = geometry->addElementGroup(bodyNodes->nodeGroupId());
        DDPNodeGroup* const skinNodes = geometry->addNodeGroup();
        DDPElementGroup* const skin = geometry->addElementGroup(skinNodes->nodeGroupId());
        if (m_folder == "missing-group") {
            return true;
        }
        DDPNodeGroup* const cutNodes = geometry->addNodeGroup();
        geometry->addElementGroup(cutNodes->nodeGroupId());
        std::thread([&] { fillBody(bodyNodes, body); }).join();
        fillSkin(skinNodes, skin);
        return true;
    }

    bool getSet(std::int32_t /*setId*/, DDPSet* /*set*/) override { return false; }

    bool getResult(const DDPResultSpec& spec, DDPResult* result) override
    {
        DDPResultValueGroup* const body = result->addValueGroup();
        DDPResultValueGroup* const skin = result->addValueGroup();
        if (spec.resultId() == 1) {
            const double last = m_folder == "not-finite" ? std::numeric_limits<double>::quiet_NaN() : 5.0;
            const std::vector<double> values = {1.0, 2.0, 3.0, UNDEFINED, last};
            body->setValues(values.data(), 1, m_folder == "short-values" ? 4 : 5);
            const std::vector<double> skinValues = {0.1, 0.2};
            skin->setValues(skinValues.data(), 1, 2);
            return true;
        }
        const std::int32_t dimension = spec.resultId() == 3 ? 3 : 1;
        fillNodeValues(body, dimension, m_cells.points.size() / 3);
        fillNodeValues(skin, dimension, 5);
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
    static void describeGroups(DDPGeometryInfo* info)
    {
        info->setGeometryMode(0);
        DDPElementGroupInfo* const groups = info->elementGroupInfo();
        groups->addGroup(1, text("body"));
        groups->addGroup(2, text("left half"));
        groups->setParentPart(2, 1);
        groups->setBoundaryFlag(2, 0);
        groups->setGroupProperty(2, text("type"), text("CellZone"));
        // A name that would leave the folder if it were used as it is.
        groups->addGroup(3, text("../skin"));
        groups->setParentPart(3, 1);
        groups->setBoundaryFlag(3, 1);
        groups->setGroupProperty(3, text("type"), text("wall"));
        groups->addGroup(4, text("cut [FZ]"));
        groups->setParentPart(4, 1);
        groups->setBoundaryFlag(4, 0);
        groups->setGroupProperty(4, text("type"), text("FaceZone"));
    }

    static void addResult(DDPMetaData* metaData, std::int32_t kind, std::int32_t id, const char* name,
                          std::int32_t mapping, const char* key)
    {
        DDPResultInfo* const info = metaData->addResult(kind, id, text(name), mapping);
        info->setResultKey(text(key));
        info->setResultUnit(text("K"));
    }

    void fillBody(DDPNodeGroup* nodes, DDPElementGroup* elements)
    {
        if (m_folder == "bad-connectivity") {
            m_cells.connectivity.back() = static_cast<std::int32_t>(m_cells.points.size() / 3);
        }
        nodes->setNodes(m_cells.points.data(), m_cells.points.size() / 3);
        elements->setMixedElements(m_cells.types.data(), m_cells.types.size(), m_cells.connectivity.data(),
                                   m_cells.connectivity.size(), m_cells.ids.data());
        elements->setPolyhedra(m_cells.nodesPerPolyhedron.data(), m_cells.facesPerPolyhedron.data(), 1,
                               m_cells.nodesPerFace.data(), 6, m_cells.faceConnectivity.data(), 24);
        const std::vector<std::int32_t> partIds = {2, 2, 1, 1, 1};
        elements->setElementPartIds(partIds.data(), partIds.size());
    }

    /// A triangle and a pentagon; the pentagon comes as a polyhedron of one face.
    static void fillSkin(DDPNodeGroup* nodes, DDPElementGroup* elements)
    {
        const std::vector<double> points = {0, 0, 0, 1, 0, 0, 2, 1, 0, 1, 2, 0, 0, 1, 0};
        const std::vector<std::int32_t> types = {DDP_TRIANGLE, DDP_POLY};
        const std::vector<std::int32_t> connectivity = {0, 1, 4, 0, 1, 2, 3, 4};
        const std::vector<std::int32_t> ids = {0, 1};
        const unsigned char five = 5;
        const unsigned char one = 1;
        nodes->setNodes(points.data(), 5);
        elements->setMixedElements(types.data(), 2, connectivity.data(), connectivity.size(), ids.data());
        elements->setPolyhedra(&five, &one, 1, &five, 1, connectivity.data() + 3, 5);
    }

    static void fillNodeValues(DDPResultValueGroup* group, std::int32_t dimension, std::size_t nodeCount)
    {
        const std::vector<double> values(nodeCount * static_cast<std::size_t>(dimension), 0.1);
        group->setValues(values.data(), dimension, nodeCount);
    }

    std::string m_folder;
    ReferenceCells m_cells;
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
