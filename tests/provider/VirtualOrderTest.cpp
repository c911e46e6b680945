// SPDX-License-Identifier: MIT
// A host whose objects are bare tables of functions, in the order that hosts have in their own headers. It meets the
// library that ships without using the order of our header, so a row that is out of place calls a wrong function.
#include "provider/DataProviderInterface.h"
#include "provider/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>
#include <typeinfo>

#include <dlfcn.h>

namespace {

using Row = const void*;

/// The operations that the library has called. Groups are filled from several threads.
std::mutex calledMutex;
std::vector<std::string> called;
/// Version, factory and destroy function, as the library registered them.
std::array<void*, 3> registration;

void note(const char* operation)
{
    const std::lock_guard<std::mutex> lock(calledMutex);
    called.emplace_back(operation);
}

/// A table of virtual functions as the ABI lays it out: offset to the top, type, then the rows.
struct RawTable
{
    RawTable(const std::type_info& type, std::initializer_list<Row> rows) : words{nullptr, &type}
    {
        words.insert(words.end(), rows);
        object = words.data() + 2;
    }

    template <typename Class>
    Class* as()
    {
        return reinterpret_cast<Class*>(&object);
    }

    std::vector<Row> words;
    const Row* object; ///< the first word of the object, and the whole of it
};

template <typename Function>
Row row(Function function)
{
    return reinterpret_cast<Row>(function);
}

/// The row of an operation that the plug-in does not call.
const Row RESERVED = row(+[](void*) { note("a reserved row"); });

RawTable valueGroup(typeid(DDPResultValueGroup),
                    {RESERVED, RESERVED, row(+[](void*, const double*, std::int32_t dimension, std::uint64_t count) {
                         note(dimension == 1 && count >= 20 ? "setValues" : "setValues with wrong arguments");
                     })});
RawTable result(typeid(DDPResult), {RESERVED, RESERVED, row(+[](void*) -> void* {
                                        note("addValueGroup");
                                        return &valueGroup.object;
                                    })});
RawTable resultSpec(typeid(DDPResultSpec), {RESERVED, RESERVED, RESERVED, row(+[](void*) -> std::int32_t { return 1; }),
                                            row(+[](void*) -> std::int32_t { return 2; })});
RawTable nodeGroup(typeid(DDPNodeGroup),
                   {RESERVED, RESERVED, row(+[](void*, const double*, std::uint64_t) { note("setNodes"); }),
                    row(+[](void*, const std::int32_t*, std::uint64_t) { note("setNodeIds"); }),
                    row(+[](void*) -> std::int64_t { return 77; })});
RawTable elementGroup(typeid(DDPElementGroup),
                      {RESERVED, RESERVED,
                       row(+[](void*, std::int32_t, std::uint64_t, const std::int32_t*, std::uint64_t,
                               const std::int32_t*) { note("setUniformElements"); }),
                       row(+[](void*, const std::int32_t*, std::uint64_t, const std::int32_t*, std::uint64_t,
                               const std::int32_t*) { note("setMixedElements"); }),
                       row(+[](void*, const unsigned char*, const unsigned char*, std::uint64_t, const unsigned char*,
                               std::uint64_t, const std::int32_t*, std::uint64_t) { note("setPolyhedra"); }),
                       row(+[](void*, const std::int32_t*, std::uint64_t) { note("setElementPartIds"); })});
RawTable geometry(typeid(DDPGeometry), {RESERVED, RESERVED, row(+[](void*) -> void* {
                                            note("addNodeGroup");
                                            return &nodeGroup.object;
                                        }),
                                        row(+[](void*, std::int64_t nodeGroupId) -> void* {
                                            note(nodeGroupId == 77 ? "addElementGroup" : "a wrong node group");
                                            return &elementGroup.object;
                                        })});
RawTable geometrySpec(typeid(DDPGeometrySpec), {RESERVED, RESERVED, row(+[](void*) -> std::int64_t { return 0; })});
RawTable set(typeid(DDPSet), {RESERVED, RESERVED, RESERVED,
                              row(+[](void*, std::int32_t, std::uint64_t, const std::int32_t*, std::uint64_t count) {
                                  note(count == 20 ? "addSetItems" : "a wrong set");
                              })});
RawTable groupInfo(typeid(DDPElementGroupInfo),
                   {RESERVED, RESERVED, row(+[](void*, std::int32_t, const DDPString&) { note("addGroup"); }),
                    row(+[](void*, std::int32_t, std::int32_t) { note("setBoundaryFlag"); }),
                    row(+[](void*, std::int32_t, std::int32_t) { note("setParentPart"); }), RESERVED,
                    row(+[](void*, std::int32_t, const DDPString&, const DDPString&) { note("setGroupProperty"); })});
RawTable geometryInfo(typeid(DDPGeometryInfo),
                      {RESERVED, RESERVED, row(+[](void*, std::int32_t, const DDPString&) { note("addPart"); }),
                       RESERVED, row(+[](void*) -> void* { return &groupInfo.object; }),
                       row(+[](void*, std::int32_t) { note("setGeometryMode"); })});
RawTable resultInfo(typeid(DDPResultInfo),
                    {RESERVED, RESERVED, row(+[](void*, const DDPString&) { note("setResultKey"); }),
                     row(+[](void*, const DDPString&) { note("setResultUnit"); }),
                     row(+[](void*, std::int32_t) { note("setDisplacementFlag"); })});
RawTable metaData(typeid(DDPMetaData),
                  {RESERVED, RESERVED, row(+[](void*, const DDPString&, const DDPString&, std::int32_t, std::int32_t) {
                       note("setSimulationInfo");
                   }),
                   row(+[](void*) -> void* { return &geometryInfo.object; }),
                   row(+[](void*, std::int32_t, const DDPString&, double) { note("addState"); }), RESERVED, RESERVED,
                   row(+[](void*, std::int32_t, std::int32_t, const DDPString&, std::int32_t) -> void* {
                       note("addResult");
                       return &resultInfo.object;
                   })});
RawTable options(typeid(DDPInitOptions), {row(+[](void*, const DDPString&) -> bool { return true; }), RESERVED,
                                          row(+[](void*, const DDPString&) -> bool { return true; }),
                                          row(+[](void*, const DDPString&) -> const DDPString* {
                                              static const DDPString MAPPING("p=Pressure");
                                              return &MAPPING;
                                          })});
RawTable
    providerInfo(typeid(DDPDataProviderInfo),
                 {RESERVED, RESERVED, row(+[](void*, const DDPString&) { note("setProviderName"); }),
                  row(+[](void*, const DDPString&) { note("setProviderFileMask"); }), RESERVED,
                  row(+[](void*, const DDPString&, const DDPString&, bool) { note("addBoolOption"); }), RESERVED,
                  row(+[](void*, const DDPString&, const DDPString&, const DDPString&) { note("addStringOption"); })});
RawTable notifications(typeid(DDPChangeNotifications),
                       {RESERVED, RESERVED, RESERVED, RESERVED, RESERVED, RESERVED,
                        row(+[](void*, std::int32_t, const DDPString&, double) { note("updateState"); }),
                        row(+[](void*, std::int32_t, const DDPString&, double) { note("addNewState"); }),
                        row(+[](void*, std::int32_t) { note("removeState"); })});

/// Calls a row of the library's own table. A host's compiler would do the same with the number from its header.
template <typename Result, typename... Arguments>
__attribute__((no_sanitize("undefined"))) Result callRow(void* object, std::size_t number, Arguments... arguments)
{
    using Function = Result (*)(void*, Arguments...);
    const Row* const table = *static_cast<const Row**>(object);
    return reinterpret_cast<Function>(const_cast<void*>(table[number]))(object, arguments...);
}

/// Each operation once, in the order of its first call.
std::vector<std::string> takeCalled()
{
    std::vector<std::string> distinct;
    for (const std::string& operation : called) {
        if (std::ranges::count(distinct, operation) == 0) {
            distinct.push_back(operation);
        }
    }
    called.clear();
    return distinct;
}

std::int32_t onRegister(const char*, void* const* given)
{
    std::copy_n(given, registration.size(), registration.begin());
    return 1;
}

/// Rows of the factory: two destructors, getProviderInfo, isSupportedByProvider, createProviderInstance,
/// destroyProviderInstance. Rows of the provider: two destructors, init, close, getMetaData, getGeometry, getSet,
/// getResult, getRigidBodyTransformations, getElementVisibilityResult, pollForChanges, one further operation.
TEST(VirtualOrder, IsTheOneOfTheHostsTables)
{
    using Texts = std::vector<std::string>;
    void* const library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto entry = reinterpret_cast<void* (*)(void*)>(dlsym(library, "initializeDataProviderPlugin"));
    std::array<const void*, 4> record = {nullptr, row(onRegister), row(+[](std::int32_t, const char*) {}),
                                         row(+[](const char*, const char*) { note("setPluginInfo"); })};
    void* const exitFunction = entry(record.data());
    ASSERT_NE(exitFunction, nullptr);
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(registration[0]), 7);
    EXPECT_EQ(takeCalled(), Texts{"setPluginInfo"});

    void* const factory = registration[1];
    const DDPString path((dataCase("zones") / "case.foam").c_str());
    EXPECT_TRUE(callRow<bool>(factory, 2, &providerInfo.object));
    EXPECT_EQ(takeCalled(), (Texts{"setProviderName", "setProviderFileMask", "addBoolOption", "addStringOption"}));
    EXPECT_TRUE(callRow<bool>(factory, 3, &path));
    void* const provider = callRow<void*>(factory, 4);

    EXPECT_NE(callRow<std::int32_t>(provider, 2, &path, &options.object, static_cast<void*>(nullptr)), 0);
    EXPECT_TRUE(callRow<bool>(provider, 4, &metaData.object));
    EXPECT_EQ(takeCalled(),
              (Texts{"setSimulationInfo", "setGeometryMode", "addGroup", "setParentPart", "setBoundaryFlag",
                     "setGroupProperty", "addState", "addResult", "setResultKey", "setResultUnit"}));
    EXPECT_TRUE(callRow<bool>(provider, 5, &geometrySpec.object, &geometry.object));
    Texts geometryCalls = takeCalled();
    std::ranges::sort(geometryCalls);
    EXPECT_EQ(geometryCalls, (Texts{"addElementGroup", "addNodeGroup", "setElementPartIds", "setMixedElements",
                                    "setNodeIds", "setNodes", "setPolyhedra"}));
    EXPECT_TRUE(callRow<bool>(provider, 6, std::int32_t{1}, &set.object));
    EXPECT_EQ(takeCalled(), Texts{"addSetItems"});
    EXPECT_TRUE(callRow<bool>(provider, 7, &resultSpec.object, &result.object));
    EXPECT_EQ(takeCalled(), (Texts{"addValueGroup", "setValues"}));
    EXPECT_FALSE(callRow<bool>(provider, 8, std::uint64_t{0}, std::int32_t{0}, static_cast<void*>(nullptr)));
    EXPECT_FALSE(callRow<bool>(provider, 9, std::uint64_t{0}, std::int32_t{0}, static_cast<void*>(nullptr)));
    callRow<void>(provider, 10, &notifications.object);
    EXPECT_EQ(callRow<std::int64_t>(provider, 11), 0);
    EXPECT_EQ(takeCalled(), Texts{});
    callRow<void>(provider, 3);
    EXPECT_FALSE(callRow<bool>(provider, 6, std::int32_t{1}, &set.object)) << "the case is still open";

    callRow<void>(factory, 5, provider);
    reinterpret_cast<void (*)(void*)>(registration[2])(factory);
    reinterpret_cast<void (*)()>(exitFunction)();
    dlclose(library);
}

} // namespace
