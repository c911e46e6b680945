// SPDX-License-Identifier: MIT
//
// A proxy of the real library: receives its deliveries in the host's own classes and passes them on with the one fault
// that FAULT in the environment names. So whatever a check finds is that fault.
#include "border/HostNotifications.h"
#include "border/HostResult.h"
#include "border/PluginLibrary.h"

#include <tbb/task_arena.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>

#include <unistd.h>

namespace {

std::unique_ptr<PluginLibrary> real;

bool fault(const char* name)
{
    const char* const wanted = std::getenv("FAULT");
    return wanted != nullptr && std::string(wanted) == name;
}

/// Counted per process: this library stays mapped when it is closed.
int loads = 0;
int openings = 0;
int calls = 0;

template <typename Call>
void onTwoThreads(Call call)
{
    std::thread first(call);
    std::thread second(call);
    first.join();
    second.join();
}

/// The faults are in the first cells of the case or in its first patch.
void damage(HostGeometry* geometry)
{
    HostElementGroup& cells = geometry->elementGroups[0];
    HostElementGroup& patch = geometry->elementGroups[1];
    if (fault("turned cell")) {
        std::swap_ranges(cells.connectivity.begin(), cells.connectivity.begin() + 4, cells.connectivity.begin() + 4);
    } else if (fault("torn cell")) {
        cells.connectivity[6] = cells.connectivity.back();
    } else if (fault("node out of range")) {
        cells.connectivity[0] = 1 << 30;
    } else if (fault("wrong element id")) {
        cells.ids[0] = 7;
    } else if (fault("part id of another group")) {
        patch.partIds[0] = 1;
    } else if (fault("lost patch face")) {
        patch.types.pop_back();
        patch.connectivity.resize(patch.connectivity.size() - 4);
    } else if (fault("lost polyhedron face")) {
        --cells.polyhedra.facesPerPolyhedron[0];
    } else if (fault("lost node of a face")) {
        cells.polyhedra.faceConnectivity.pop_back();
    } else if (fault("no cells")) {
        cells = HostElementGroup(cells.nodeGroupId);
    } else if (fault("flat triangle")) {
        HostElementGroup& surface = geometry->elementGroups.back();
        surface.connectivity[1] = surface.connectivity[0];
    } else if (fault("foreign polyhedron node")) {
        cells.polyhedra.faceConnectivity[0] = cells.polyhedra.faceConnectivity.back();
    }
}

void passOn(const HostNodeGroup& nodes, DDPNodeGroup* target)
{
    const auto setNodes = [&] { target->setNodes(nodes.coordinates.data(), nodes.nodeCount()); };
    fault("nodes set on two threads") ? onTwoThreads(setNodes) : setNodes();
    fault("nodes set twice") ? setNodes() : void();
    target->setNodeIds(nodes.ids.data(), nodes.ids.size());
}

void passOn(const HostElementGroup& elements, DDPElementGroup* target)
{
    const HostPolyhedra& tables = elements.polyhedra;
    target->setMixedElements(elements.types.data(), elements.types.size(), elements.connectivity.data(),
                             elements.connectivity.size(), elements.ids.data());
    target->setPolyhedra(tables.nodesPerPolyhedron.data(), tables.facesPerPolyhedron.data(),
                         tables.nodesPerPolyhedron.size(), tables.nodesPerFace.data(), tables.nodesPerFace.size(),
                         tables.faceConnectivity.data(), tables.faceConnectivity.size());
    if (!elements.partIds.empty()) {
        target->setElementPartIds(elements.partIds.data(), elements.types.size());
    }
}

void passOn(const HostValueGroup& group, double first, DDPResultValueGroup* target)
{
    std::vector<double> values = group.values;
    fault("no values") ? void(std::ranges::fill(values, UNDEFINED_VALUE)) : void();
    values[0] = first != 0 ? first : values[0];
    const std::int32_t dimension = fault("one component") ? 1 : group.dimension;
    const auto setFirst = [&](std::size_t items) { target->setValues(values.data(), dimension, items); };
    fault("values in pieces") ? setFirst(group.itemCount() / 2) : void();
    fault("values on two threads") ? onTwoThreads([&] { setFirst(group.itemCount()); }) : void();
    setFirst(fault("lost value") ? group.itemCount() - 1 : group.itemCount());
}

class FaultyProvider final : public DDPDataProvider
{
public:
    ~FaultyProvider() override
    {
        m_open&& fault("crash without close") ? std::abort() : real->factory().destroyProviderInstance(m_real);
    }

    std::int32_t init(const DDPString& key, const DDPInitOptions& options, DDPError* error) override
    {
        const std::string path = key.c_str();
        fault("prints") ? void(std::puts("hello")) : void();
        fault("writes into the case") ? void(std::ofstream(path.substr(0, path.rfind('/')) + "/log") << 1) : void();
        fault("writes into the working folder") ? void(std::ofstream("log") << 1) : void();
        fault("sets the locale") ? void(std::setlocale(LC_ALL, "C.UTF-8")) : void();
        fault("changes the folder") && chdir("/") != 0 ? std::abort() : void();
        fault("asks for another setting") ? void(options.hasOption(DDPString("MORE"))) : void();
        fault("reads a missing setting") ? void(options.boolOption(DDPString("FLAG"))) : void();
        fault("throws") ? throw std::runtime_error("thrown on purpose") : void();
        m_open = m_real->init(key, options, error) != 0;
        return m_open ? 1 : 0;
    }

    void close() override
    {
        m_open = false;
        m_real->close();
    }

    bool getMetaData(DDPMetaData* metaData) override
    {
        const DDPString name("Time 99.00000 #0");
        fault("crash in the description") ? std::abort() : void();
        fault("hang in the description") ? void(pause()) : void();
        fault("reserved row") ? metaData->reserved1() : void();
        fault("state before the title") ? metaData->addState(9, name, 99) : void();
        m_real->getMetaData(metaData);
        fault("state without id") ? metaData->addState(0, name, 99) : void();
        fault("result without kind") ? void(metaData->addResult(3, 99, name, 1)) : void();
        fault("descending group id") ? metaData->geometryInfo()->addPart(-1, name) : void();
        return true;
    }

    bool getGeometry(const DDPGeometrySpec& spec, DDPGeometry* geometry) override
    {
        fault("crash") ? std::abort() : void();
        fault("hang") ? void(pause()) : void();
        HostGeometry delivered;
        if (!m_real->getGeometry(spec, &delivered)) {
            return false;
        }
        damage(&delivered);
        for (std::size_t i = fault("lost group") ? 1 : 0; i < delivered.elementGroups.size(); ++i) {
            DDPNodeGroup* nodes = nullptr;
            const auto make = [&] { nodes = geometry->addNodeGroup(); };
            fault("group made on a worker") ? std::thread(make).join() : make();
            passOn(delivered.nodeGroups[i], nodes);
            passOn(delivered.elementGroups[i], geometry->addElementGroup(nodes->nodeGroupId()));
        }
        return true;
    }

    bool getSet(std::int32_t id, DDPSet* set) override
    {
        const std::int32_t cell = 1 << 30;
        fault("foreign cell in a set") ? set->addSetItems(0, 0, &cell, 1) : void();
        return fault("foreign cell in a set") || m_real->getSet(id, set);
    }

    bool getResult(const DDPResultSpec& spec, DDPResult* result) override
    {
        HostResult delivered;
        const bool good = m_real->getResult(spec, &delivered);
        const double first = fault("values of the opening")   ? m_number
                             : fault("values of the load")    ? loads
                             : fault("values of the call")    ? ++calls
                             : fault("values of the threads") ? tbb::this_task_arena::max_concurrency()
                                                              : 0;
        for (const HostValueGroup& group : delivered.groups) {
            DDPResultValueGroup* const target = result->addValueGroup();
            group.values.empty() ? void() : passOn(group, first, target);
        }
        fault("one value group more") ? void(result->addValueGroup()) : void();
        return good || fault("any result");
    }

    bool getRigidBodyTransformations(std::uint64_t, std::int32_t, DDPTransformations*) override { return false; }

    void pollForChanges(DDPChangeNotifications* notifications) override
    {
        HostNotifications delivered;
        m_real->pollForChanges(&delivered);
        if (fault("needless notice")) {
            notifications->updateState(7, DDPString("Time 0.00000 #0"), 0.0);
            notifications->addState(9, DDPString("Time 1.00000 #20"), 1.0);
            notifications->removeState(2);
        }
        for (const HostNotice& notice : delivered.notices) {
            const DDPString name(notice.name.c_str());
            if (notice.kind == HostNotice::Kind::Update && !fault("lost updates")) {
                notifications->updateState(notice.id, name, notice.referenceValue);
            } else if (notice.kind == HostNotice::Kind::Add && !fault("lost additions")) {
                notifications->addState(notice.id, name, notice.referenceValue);
            } else if (notice.kind == HostNotice::Kind::Remove && !fault("lost removals")) {
                notifications->removeState(notice.id);
            }
        }
    }

private:
    DDPDataProvider* m_real = real->factory().createProviderInstance();
    bool m_open = false;
    int m_number = ++openings;
};

struct FaultyFactory final : DDPDataProviderFactory
{
    bool getProviderInfo(DDPDataProviderInfo* info) override
    {
        const bool good = real->factory().getProviderInfo(info);
        fault("another provider's name") ? info->setProviderName(DDPString("x")) : void();
        fault("one setting more") ? info->addBoolOption(DDPString("X"), DDPString("x"), true) : void();
        return good;
    }
    bool isSupportedByProvider(const DDPString& path) override
    {
        return fault("every path") || real->factory().isSupportedByProvider(path);
    }
    DDPDataProvider* createProviderInstance() override { return new FaultyProvider; }
    void destroyProviderInstance(DDPDataProvider* provider) override { delete provider; }
};

void destroyFactory(DDPDataProviderFactory* factory)
{
    delete factory;
}

void onExit()
{
    real.reset();
}

} // namespace

extern "C" __attribute__((visibility("default"))) DDPPluginExitFunction
initializeDataProviderPlugin(DDPPluginInitRecord* record)
{
    real = std::make_unique<PluginLibrary>(REAL_PLUGIN);
    for (const auto& [key, value] : real->pluginInfo()) {
        record->setPluginInfo(key.c_str(), value.c_str());
    }
    ++loads > 1 && fault("another version when loaded again") ? record->setPluginInfo("x", "y") : void();
    for (const std::int32_t level : {1, 3, 4}) {
        fault("log lines") ? record->pluginLogCallback(level, "a line") : void();
    }
    const std::int64_t version = real->apiVersion() + (fault("another version of the interface") ? 1 : 0);
    DDPFactoryRegistration registration = {version, new FaultyFactory, destroyFactory};
    const bool taken = record->registerProviderFactory(real->providerName().c_str(), &registration) != 0;
    return taken || fault("no refusal") ? onExit : nullptr;
}

/// A symbol that no host uses. It is hidden if the library is linked like the real one.
extern "C" __attribute__((visibility("default"))) void needlessSymbol() {}
