// SPDX-License-Identifier: MIT
// A host whose objects are bare tables of functions, in the order that hosts have in their own headers. It drives the
// library that ships without the order of our header, so that a row out of place calls a wrong function.
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>
#include <typeinfo>

#include <dlfcn.h>

namespace {

using Row = const void*;
using Id = std::int32_t;
using Count = std::uint64_t;

/// The operations that the library has called. Groups are filled from several threads.
std::mutex calledMutex;
Texts called;
/// Version, factory and destroy function, as the library registered them.
std::array<void*, 3> registration;

void note(const char* operation)
{
    const std::lock_guard<std::mutex> lock(calledMutex);
    called.emplace_back(operation);
}

template <typename Function>
Row row(Function function)
{
    return reinterpret_cast<Row>(+function);
}

/// A row that is not called, and rows of which only the call counts: the arguments are left where the caller put them.
const Row RESERVED = row([](void*) { note("a reserved row"); });
#define NOTED(operation) row([](void*) { note(#operation); })

/// An object as the ABI lays it out: a pointer to a table that has the offset to the top and the type in front.
struct RawObject
{
    RawObject(const std::type_info& type, std::initializer_list<Row> rows) : words{nullptr, &type}
    {
        words.insert(words.end(), rows);
        table = words.data() + 2;
    }

    std::vector<Row> words;
    const Row* table; ///< the object itself
};

RawObject valueGroup(typeid(DDPResultValueGroup),
                     {RESERVED, RESERVED, row([](void*, const double* values, Id dimension, Count count) {
                          const bool isSound = values != nullptr && dimension == 1 && count >= 20;
                          note(isSound ? "setValues" : "setValues of something else");
                      })});
RawObject result(typeid(DDPResult), {RESERVED, RESERVED, row([](void*) -> void* { return &valueGroup.table; })});
RawObject resultSpec(typeid(DDPResultSpec), {RESERVED, RESERVED, RESERVED, row([](void*) -> Id { return 1; }),
                                             row([](void*) -> Id { return 2; })});
RawObject nodeGroup(typeid(DDPNodeGroup), {RESERVED, RESERVED, NOTED(setNodes), NOTED(setNodeIds),
                                           row([](void*) -> std::int64_t { return 77; })});
RawObject elementGroup(typeid(DDPElementGroup), {RESERVED, RESERVED, NOTED(setUniformElements), NOTED(setMixedElements),
                                                 NOTED(setPolyhedra), NOTED(setElementPartIds)});
RawObject geometry(typeid(DDPGeometry), {RESERVED, RESERVED, row([](void*) -> void* { return &nodeGroup.table; }),
                                         row([](void*, std::int64_t nodeGroupId) -> void* {
                                             note(nodeGroupId == 77 ? "addElementGroup" : "a wrong node group");
                                             return &elementGroup.table;
                                         })});
RawObject geometrySpec(typeid(DDPGeometrySpec), {RESERVED, RESERVED, row([](void*) -> std::int64_t { return 0; })});
RawObject cellSet(typeid(DDPSet), {RESERVED, RESERVED, RESERVED, row([](void*, Id, Count, const Id*, Count count) {
                                       note(count == 20 ? "addSetItems" : "a wrong set");
                                   })});
RawObject groupInfo(typeid(DDPElementGroupInfo), {RESERVED, RESERVED, NOTED(addGroup), NOTED(setBoundaryFlag),
                                                  NOTED(setParentPart), RESERVED, NOTED(setGroupProperty)});
RawObject geometryInfo(typeid(DDPGeometryInfo),
                       {RESERVED, RESERVED, NOTED(addPart), RESERVED,
                        row([](void*) -> void* { return &groupInfo.table; }), NOTED(setGeometryMode)});
RawObject resultInfo(typeid(DDPResultInfo),
                     {RESERVED, RESERVED, NOTED(setResultKey), NOTED(setResultUnit), NOTED(setDisplacementFlag)});
RawObject metaData(typeid(DDPMetaData), {RESERVED, RESERVED, NOTED(setSimulationInfo),
                                         row([](void*) -> void* { return &geometryInfo.table; }), NOTED(addState),
                                         RESERVED, RESERVED, row([](void*) -> void* { return &resultInfo.table; })});
RawObject options(typeid(DDPInitOptions), {row([](void*, const DDPString*) -> bool { return true; }), RESERVED,
                                           row([](void*, const DDPString*) -> bool { return true; }),
                                           row([](void*, const DDPString*) -> const DDPString* {
                                               static const DDPString MAPPING("p=Pressure");
                                               return &MAPPING;
                                           })});
RawObject providerInfo(typeid(DDPDataProviderInfo),
                       {RESERVED, RESERVED, NOTED(setProviderName), NOTED(setProviderFileMask), RESERVED,
                        NOTED(addBoolOption), RESERVED, NOTED(addStringOption)});
RawObject notifications(typeid(DDPChangeNotifications), {RESERVED, RESERVED, RESERVED, RESERVED, RESERVED, RESERVED,
                                                         NOTED(updateState), NOTED(addState), NOTED(removeState)});

/// Calls a function by its address alone; a sanitizer would compare the type, which a bare table does not have.
template <typename Result, typename... Arguments>
__attribute__((no_sanitize("undefined"))) Result callFunction(Row function, Arguments... arguments)
{
    return reinterpret_cast<Result (*)(Arguments...)>(const_cast<void*>(function))(arguments...);
}

/// Calls a row of the library's own table, as a host's compiler does with the number from its own header.
template <typename Result, typename... Arguments>
Result callRow(void* object, std::size_t number, Arguments... arguments)
{
    return callFunction<Result>((*static_cast<const Row**>(object))[number], object, arguments...);
}

/// Each operation once, in alphabetical order.
std::string takeCalled()
{
    std::ranges::sort(called);
    called.erase(std::unique(called.begin(), called.end()), called.end());
    return joined(std::exchange(called, {}));
}

// Rows of the factory: two destructors, getProviderInfo, isSupportedByProvider, createProviderInstance,
// destroyProviderInstance. Rows of the provider: two destructors, init, close, getMetaData, getGeometry, getSet,
// getResult, getRigidBodyTransformations, getElementVisibilityResult, pollForChanges, one further operation.
TEST(VirtualOrder, IsTheOneOfTheHostsTables)
{
    void* const library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    std::array<Row, 4> record = {nullptr, row([](const char*, DDPFactoryRegistration* given) -> Id {
                                     std::copy_n(reinterpret_cast<void**>(given), 3, registration.begin());
                                     return 1;
                                 }),
                                 row([](Id, const char*) {}), row([](const char*, const char*) { note("info"); })};
    const Row exitFunction = callFunction<Row>(dlsym(library, "initializeDataProviderPlugin"), record.data());
    ASSERT_NE(exitFunction, nullptr);
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(registration[0]), 7);
    EXPECT_EQ(takeCalled(), "info");

    void* const factory = registration[1];
    const DDPString path((dataCase("zones") / "case.foam").c_str());
    EXPECT_TRUE(callRow<bool>(factory, 2, &providerInfo.table));
    EXPECT_EQ(takeCalled(), "addBoolOption, addStringOption, setProviderFileMask, setProviderName");
    EXPECT_TRUE(callRow<bool>(factory, 3, &path));
    void* const provider = callRow<void*>(factory, 4);

    void* const none = nullptr;
    EXPECT_NE(callRow<Id>(provider, 2, &path, &options.table, none), 0);
    EXPECT_TRUE(callRow<bool>(provider, 4, &metaData.table));
    EXPECT_EQ(takeCalled(), "addGroup, addState, setBoundaryFlag, setGeometryMode, setGroupProperty, setParentPart, "
                            "setResultKey, setResultUnit, setSimulationInfo");
    EXPECT_TRUE(callRow<bool>(provider, 5, &geometrySpec.table, &geometry.table));
    EXPECT_EQ(takeCalled(), "addElementGroup, setElementPartIds, setMixedElements, setNodeIds, setNodes, setPolyhedra");
    EXPECT_TRUE(callRow<bool>(provider, 6, Id{1}, &cellSet.table));
    EXPECT_EQ(takeCalled(), "addSetItems");
    EXPECT_TRUE(callRow<bool>(provider, 7, &resultSpec.table, &result.table));
    EXPECT_EQ(takeCalled(), "setValues");
    EXPECT_FALSE(callRow<bool>(provider, 8, Count{0}, Id{0}, none));
    EXPECT_FALSE(callRow<bool>(provider, 9, Count{0}, Id{0}, none));
    callRow<void>(provider, 10, &notifications.table);
    EXPECT_EQ(callRow<std::int64_t>(provider, 11), 0);
    EXPECT_EQ(takeCalled(), "");
    callRow<void>(provider, 3);
    EXPECT_FALSE(callRow<bool>(provider, 6, Id{1}, &cellSet.table)) << "the case is still open";

    callRow<void>(factory, 5, provider);
    callFunction<void>(registration[2], factory);
    callFunction<void>(exitFunction);
    dlclose(library);
}

} // namespace
