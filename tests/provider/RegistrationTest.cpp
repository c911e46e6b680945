// SPDX-License-Identifier: MIT
#include "border/HostProviderInfo.h"
#include "foamfile/OFLogger.h"
#include "provider/OpenFoamProviderFactory.h"
#include "provider/PluginRegistration.h"
#include "support/OpenCase.h"

#include <gtest/gtest.h>

namespace {

// The callbacks of the init record carry no object, so what they hear stands here.
Texts heard;
DDPFactoryRegistration registration;

std::int32_t onRegister(const char* name, DDPFactoryRegistration* given)
{
    heard.push_back(std::string("register ") + name);
    registration = *given;
    return 1;
}

TEST(Registration, TellsWhatThePluginIsInAFixedOrder)
{
    const DDPPluginInitRecord record = {
        nullptr, onRegister,
        [](std::int32_t level, const char* text) { heard.push_back(std::to_string(level) + " " + text); },
        [](const char* key, const char* value) { heard.push_back(std::string(key) + "=" + value); }};
    const DDPPluginExitFunction exitFunction = registerPlugin(record);
    OFLogger::get().init(nullptr);
    ASSERT_EQ(exitFunction, &pluginExitFunc);
    exitFunction();
    const std::string compiler = DDPUtils::compilerInfoString();
    EXPECT_EQ(heard,
              (Texts{"3 OpenFoamPlugin : initializeDataProviderPlugin", "3 OpenFoamPlugin :   version: 1.9.99",
                     "3 OpenFoamPlugin :   ddp api version: 7.0", "3 OpenFoamPlugin :   compiler info: " + compiler,
                     "name=OpenFoamPlugin", "version=1.9.99", "compiler=" + compiler, "register OpenFoamProvider"}));
    EXPECT_EQ(registration.apiVersion, 7);
    registration.destroyFactory(registration.factory);
    registration.destroyFactory(nullptr);
}

TEST(Factory, DeclaresTheSettingsInTheOrderThatHostsShow)
{
    HostProviderInfo info;
    EXPECT_TRUE(OpenFoamProviderFactory().getProviderInfo(&info));
    EXPECT_EQ(info.name + "|" + info.fileMask, "OpenFoam DataProvider Reader|case.foam");
    Texts declared;
    for (const HostSetting& setting : info.settings) {
        declared.push_back(setting.key + "|" + setting.label + "|" +
                           (setting.isBool ? (setting.boolDefault ? "on" : "off") : setting.stringDefault));
    }
    EXPECT_EQ(declared, (Texts{"LOAD_BC_PARTS|Load Boundary Parts|on", "LOAD_CELL_ZONES|Load Cell Zones|on",
                               "LOAD_FACE_ZONES|Load Face Zones|off",
                               "LOAD_GLOBAL_MESH|Load Global Mesh i.e from constant/polyMesh|on",
                               "LOAD_LOCAL_MESHES|Load Local Meshes i.e from constant/region*/polyMesh|on",
                               "NODE_AVG_RES|Provide node average results|on",
                               "HIDE_PARALLEL_INTERFACES|Hide Parallel Interfaces Between Processors|off",
                               "RESULTS_NAMES_MAPPING|Result names mapping|"
                               "U=Velocity;p=Pressure;rho=Density;T=Temperature;g=Gravity"}));
}

TEST(Factory, KnowsACaseByItsFileNameAlone)
{
    OpenFoamProviderFactory factory;
    for (const char* const path : {"C:\\cases\\run1\\CASE.FOAM", "/cases/run1/case.foam/", "case.foam"}) {
        EXPECT_TRUE(factory.isSupportedByProvider(DDPString(path))) << path;
    }
    for (const char* const path : {"", "///", "/a/case.foam.bak", "/a/mycase.foam", "/case.foam/x"}) {
        EXPECT_FALSE(factory.isSupportedByProvider(DDPString(path))) << path;
    }
}

} // namespace
