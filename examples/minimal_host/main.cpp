// SPDX-License-Identifier: MIT
//
// The minimum a host does: load the plug-in, take its factory, open a case and print what it holds.
//
//     minimal_host path/to/libOpenFoamPlugin.so path/to/case.foam
#include <DataProviderInterface.h>

#include <cstdio>
#include <dlfcn.h>

namespace {

/// The factory that the plug-in registers. The registration is copied, because it lives only during the call.
DDPFactoryRegistration registration = {};

std::int32_t registerFactory(const char* /*name*/, DDPFactoryRegistration* offered)
{
    registration = *offered;
    return offered->apiVersion == DDP_API_VERSION_MAJOR ? 1 : 0;
}

/// Shows errors only. Lines come from several threads at once.
void printErrors(std::int32_t level, const char* text)
{
    if (level == 1) {
        std::fprintf(stderr, "%s\n", text);
    }
}

void ignorePluginInfo(const char* /*key*/, const char* /*value*/) {}

/// Gives no settings, so the plug-in uses its defaults.
class NoOptions final : public DDPInitOptions
{
public:
    bool hasOption(const DDPString& /*key*/) const override { return false; }
    void reserved0() override {}
    bool boolOption(const DDPString& /*key*/) const override { return false; }
    const DDPString* stringOption(const DDPString& /*key*/) const override { return nullptr; }
};

class PrintingGroups final : public DDPElementGroupInfo
{
public:
    void reserved0() override {}
    void reserved1() override {}
    void addGroup(std::int32_t id, const DDPString& name) override
    {
        std::printf("  group %d: %s\n", id, name.c_str());
    }
    void setBoundaryFlag(std::int32_t /*id*/, std::int32_t /*flag*/) override {}
    void setParentPart(std::int32_t /*id*/, std::int32_t /*parent*/) override {}
    void reserved2() override {}
    void setGroupProperty(std::int32_t /*id*/, const DDPString& /*key*/, const DDPString& /*value*/) override {}
};

class PrintingGeometry final : public DDPGeometryInfo
{
public:
    void reserved0() override {}
    void reserved1() override {}
    void addPart(std::int32_t id, const DDPString& name) override { std::printf("part %d: %s\n", id, name.c_str()); }
    void reserved2() override {}
    DDPElementGroupInfo* elementGroupInfo() override { return &m_groups; }
    void setGeometryMode(std::int32_t /*mode*/) override {}

private:
    PrintingGroups m_groups;
};

class IgnoredResult final : public DDPResultInfo
{
public:
    void reserved0() override {}
    void reserved1() override {}
    void setResultKey(const DDPString& /*key*/) override {}
    void setResultUnit(const DDPString& /*unit*/) override {}
    void setDisplacementFlag(std::int32_t /*flag*/) override {}
};

class PrintingMetaData final : public DDPMetaData
{
public:
    void reserved0() override {}
    void reserved1() override {}
    void setSimulationInfo(const DDPString& title, const DDPString& /*description*/, std::int32_t /*mode*/,
                           std::int32_t /*stateMode*/) override
    {
        std::printf("case: %s\n", title.c_str());
    }
    DDPGeometryInfo* geometryInfo() override { return &m_geometry; }
    void addState(std::int32_t id, const DDPString& name, double /*value*/) override
    {
        std::printf("state %d: %s\n", id, name.c_str());
    }
    void reserved2() override {}
    void reserved3() override {}
    DDPResultInfo* addResult(std::int32_t /*kind*/, std::int32_t id, const DDPString& name,
                             std::int32_t /*mapping*/) override
    {
        std::printf("result %d: %s\n", id, name.c_str());
        return &m_result;
    }

private:
    PrintingGeometry m_geometry;
    IgnoredResult m_result;
};

bool printCase(DDPDataProviderFactory& factory, const DDPString& path)
{
    DDPDataProvider* const provider = factory.createProviderInstance();
    const bool opened = provider->init(path, NoOptions(), nullptr) != 0;
    if (opened) {
        PrintingMetaData metaData;
        provider->getMetaData(&metaData);
        provider->close();
    }
    factory.destroyProviderInstance(provider);
    return opened;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s PLUGIN CASE\n", argv[0]);
        return 2;
    }
    void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    void* const entry = library == nullptr ? nullptr : dlsym(library, "initializeDataProviderPlugin");
    if (entry == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 4;
    }
    DDPPluginInitRecord record = {nullptr, registerFactory, printErrors, ignorePluginInfo};
    const DDPPluginExitFunction exitPlugin = reinterpret_cast<DDPPluginInitFunction>(entry)(&record);
    if (exitPlugin == nullptr) {
        return 4;
    }
    const bool opened = printCase(*registration.factory, DDPString(argv[2]));
    registration.destroyFactory(registration.factory);
    exitPlugin();
    dlclose(library);
    return opened ? 0 : 3;
}
