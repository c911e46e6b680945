// SPDX-License-Identifier: MIT
#include "border/HostProviderInfo.h"
#include "foamfile/OFLogger.h"
#include "provider/OpenFoamProviderFactory.h"
#include "provider/PluginRegistration.h"
#include "support/LogCapture.h"
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

// The callbacks of the init record carry no object, so they store what they receive here.
Texts heard;
DDPFactoryRegistration registration;

std::int32_t onRegister(const char* name, DDPFactoryRegistration* given)
{
    heard.push_back(std::string("register ") + name);
    registration = *given;
    return 1;
}

TEST(Registration, ReportsPluginInfoInAFixedOrder)
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

TEST(Factory, DeclaresTheSettingsInDisplayOrder)
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

TEST(Factory, RecognisesACaseOnlyByItsFileName)
{
    OpenFoamProviderFactory factory;
    for (const char* const path : {"C:\\cases\\run1\\CASE.FOAM", "/cases/run1/case.foam/", "case.foam"}) {
        EXPECT_TRUE(factory.isSupportedByProvider(DDPString(path))) << path;
    }
    for (const char* const path : {"", "///", "/a/case.foam.bak", "/a/mycase.foam", "/case.foam/x"}) {
        EXPECT_FALSE(factory.isSupportedByProvider(DDPString(path))) << path;
    }
}

TEST(CasePath, LosesItsFileName)
{
    const std::pair<const char*, const char*> cases[] = {
        {"/no/run/case.foam", "/no/run"}, {"C:\\no\\run\\case.foam", "C:/no/run"}, {"no/run//case.foam", "no/run"}};
    for (const auto& [key, folder] : cases) {
        const LogCapture log;
        EXPECT_EQ(OpenFoamProvider().init(DDPString(key), HostOptions(), nullptr), 0);
        EXPECT_EQ(joined(log.errors()),
                  "OFReader : Failed to open case " + std::string(folder) + " - file does not exist");
    }
    for (const char* const key : {"case.foam", "//", ""}) {
        EXPECT_EQ(OpenFoamProvider().init(DDPString(key), HostOptions(), nullptr), 0);
    }
}

TEST(Settings, AreReadInOrderAndLoggedIfGiven)
{
    HostOptions options = settings({{"LOAD_FACE_ZONES", true}, {"NODE_AVG_RES", false}});
    options.setString("RESULTS_NAMES_MAPPING", "secret=1");
    const LogCapture log;
    OpenFoamProvider().init(DDPString("case.foam"), options, nullptr);
    EXPECT_EQ(joined(options.askedKeys()), "LOAD_GLOBAL_MESH, LOAD_LOCAL_MESHES, LOAD_BC_PARTS, LOAD_CELL_ZONES, "
                                           "LOAD_FACE_ZONES, NODE_AVG_RES, HIDE_PARALLEL_INTERFACES, "
                                           "RESULTS_NAMES_MAPPING, EXTENDED_READING");
    const Texts lines = log.infos();
    ASSERT_EQ(lines.size(), 10U);
    EXPECT_EQ(lines[0], "OpenFoamProvider : init(key = 'case.foam')");
    EXPECT_EQ(joined({lines.begin() + 5, lines.end()}),
              "OpenFoamProvider : ** User settings **, OpenFoamProvider :  - LOAD_FACE_ZONES: ON, "
              "OpenFoamProvider :  - NODE_AVG_RES: OFF, OpenFoamProvider :  - RESULTS_NAMES_MAPPING: ENABLED, "
              "OpenFoamProvider :  ");
}

// Each switch has its own visible effect, so a setting passed to the wrong setter shows.
TEST(Settings, ReachTheReader)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    writeTwoCubes(folder, "constant/region/polyMesh");
    writePressure(folder, "0");
    const std::tuple<const char*, bool, const char*> switches[] = {
        {"LOAD_BC_PARTS", true, "22210 2"},     {"LOAD_BC_PARTS", false, "20010 2"},
        {"LOAD_CELL_ZONES", false, "22200 2"},  {"LOAD_FACE_ZONES", true, "22211 2"},
        {"LOAD_GLOBAL_MESH", false, "11100 0"}, {"LOAD_LOCAL_MESHES", false, "11110 2"},
        {"NODE_AVG_RES", false, "22210 1"}};
    for (const auto& [key, value, expected] : switches) {
        OpenCase openCase(folder.path(), settings({{key, value}}));
        std::string shape;
        for (const char* const type : {"", "patch", "wall", "CellZone", "FaceZone"}) {
            shape += std::to_string(std::ranges::count(openCase.metaData().groups, type, &HostGroup::type));
        }
        EXPECT_EQ(shape + " " + std::to_string(openCase.metaData().results.size()), expected) << key << value;
    }
}

} // namespace
