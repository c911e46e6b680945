// SPDX-License-Identifier: MIT
//
// The binary interface between a post-processing host and a data-provider plug-in, version 7.0.
//
// A host includes only this header, which needs nothing but the C++ standard library. The host loads the plug-in, looks
// up `initializeDataProviderPlugin`, calls it once with a filled `DDPPluginInitRecord`, and gets a factory through
// `registerProviderFactory`. From then on both sides speak through the abstract classes below.
//
// Virtual order is the contract. Each class declares its operations in the order of the host's tables. A `reservedN`
// row is an operation of the host whose name and signature the plug-in does not know and never calls; it is there so
// that the rows after it keep their position. It must not be removed, moved or given a meaning. No host class has a
// virtual destructor here, because a destructor would take rows itself: objects are owned by the side that made them,
// and neither side deletes an object of the other through these classes.
//
// Threads. The host calls a provider from one thread at a time; that thread is the calling thread of the request. The
// plug-in makes all groups on the calling thread. Its workers, of which the calling thread may be one, call only the
// operations that set data: those of `DDPNodeGroup`, `DDPElementGroup` and `DDPResultValueGroup` marked "any thread",
// each group from one thread at a time. `pluginLogCallback` may be called from several threads at once. Everything else
// is called on the calling thread. No worker calls anything after the request has returned.
//
// Ids are 32-bit signed, counts 64-bit unsigned, coordinates and values 64-bit floating point. Pointers to arrays are
// valid only during the call: the host copies what it wants to keep.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <locale>
#include <sstream>
#include <string>

/// Major and minor number of this interface; the major number goes into the factory registration.
inline constexpr int DDP_API_VERSION_MAJOR = 7;
inline constexpr int DDP_API_VERSION_MINOR = 0;

/// An owning, zero-terminated character string.
///
/// The host reads the pointer directly, so the one pointer is the whole layout. It is never null in a constructed
/// object: an empty string holds one terminator. The array is made with `new[]` and freed with `delete[]`.
class DDPString
{
public:
    DDPString() : m_text(copyOf("")) {}

    /// Copies the characters as they are, without any conversion; null gives the empty string.
    explicit DDPString(const char* text) : m_text(copyOf(text)) {}

    DDPString(const DDPString& other) : m_text(copyOf(other.m_text)) {}

    ~DDPString() { delete[] m_text; }

    DDPString& operator=(const DDPString& other)
    {
        if (this != &other) {
            char* const fresh = copyOf(other.m_text);
            delete[] m_text;
            m_text = fresh;
        }
        return *this;
    }

    /// Converts Latin-1 to UTF-8: a byte below 0x80 is copied, any other becomes two bytes; null gives the empty
    /// string.
    ///
    /// The plug-in passes text that is UTF-8 already, so a name beyond ASCII that goes through here arrives encoded
    /// twice. Hosts rely on which names do and which are copied: Compatibility (docs/compatibility.md, "encoded
    /// twice").
    static DDPString fromChar(const char* text)
    {
        DDPString result;
        if (text == nullptr) {
            return result;
        }
        std::string utf8;
        utf8.reserve(std::strlen(text) * 2 + 1);
        for (; *text != '\0'; ++text) {
            const auto byte = static_cast<unsigned char>(*text);
            if (byte < 0x80) {
                utf8.push_back(*text);
            } else {
                utf8.push_back(static_cast<char>(0xC0 | (byte >> 6)));
                utf8.push_back(static_cast<char>(0x80 | (byte & 0x3F)));
            }
        }
        return DDPString(utf8.c_str());
    }

    /// The characters; valid as long as this object is unchanged.
    const char* c_str() const { return m_text; }

private:
    static char* copyOf(const char* text)
    {
        const std::size_t length = text == nullptr ? 0 : std::strlen(text);
        char* const copy = new char[length + 1];
        if (length != 0) {
            std::memcpy(copy, text, length);
        }
        copy[length] = '\0';
        return copy;
    }

    char* m_text;
};

/// The kinds of element that reach the host.
///
/// 17 is both the general face and the general cell; the group that has it decides which. Boundary, face zone and
/// surface groups use 3, 5 and 17, cell groups 8, 10, 12, 15 and 17.
///
/// Node order, drawn with y going away from the viewer, so every volume is positive:
///
///     hexahedron
///              7--------6
///             /|       /|       base 0 1 2 3, counter-clockwise seen from the top 4 5 6 7;
///            4--------5 |       4 is above 0, 5 above 1, and so on
///            | |      | |
///            | 3------|-2
///            |/       |/
///            0--------1
///
///     pentahedron (prism)
///                5
///               /|\             base 0 1 2, counter-clockwise seen from the top 3 4 5;
///              3---4            3 is above 0, 4 above 1, 5 above 2
///              | 2 |
///              |/ \|
///              0---1
///
///     pyramid
///                4
///              ./|\.            base 0 1 2 3, counter-clockwise seen from the apex 4
///             / 3-\-2
///            / /   \/
///           0------1
///
///     tetrahedron
///               0
///              /|\              apex 0; 1 2 3 run counter-clockwise seen from outside, which is from below here,
///             / | \             with 2 at the back
///            / .2. \            (edges 1-2 and 2-3 are hidden)
///           1-------3
///
///     quadrilateral, triangle
///           3------2        2
///           |      |       / \       in the order of the file, which for a face of the mesh is counter-clockwise
///           0------1      0---1      seen from outside the cell that owns it
///
/// A general face lists its nodes in the order of the file too. A general cell has two lists. Its connectivity holds
/// its distinct nodes, ascending. Its faces come through `DDPElementGroup::setPolyhedra`: each face runs
/// counter-clockwise seen from outside the cell, and the faces follow each other in the order of the file.
enum DDPElementType : std::int32_t
{
    DDP_TRIANGLE = 3,
    DDP_QUADRILATERAL = 5,
    DDP_TETRAHEDRON = 8,
    DDP_HEXAHEDRON = 10,
    DDP_PENTAHEDRON = 12,
    DDP_PYRAMID = 15,
    DDP_POLY = 17
};

/// Implemented by the host; the plug-in never calls it: failure shows only in return values and in the log.
class DDPError;
/// Appears in signatures only; the plug-in calls nothing on it.
class DDPTransformations;
/// Appears in signatures only; the plug-in calls nothing on it.
class DDPVisibilityResult;

/// Takes the description of a provider and its user settings. Called on the calling thread.
class DDPDataProviderInfo
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// The provider's display name.
    virtual void setProviderName(const DDPString& name) = 0;
    /// The mask of the files that it opens.
    virtual void setProviderFileMask(const DDPString& mask) = 0;
    virtual void reserved2() = 0;
    /// Declares a boolean user setting.
    virtual void addBoolOption(const DDPString& key, const DDPString& label, bool defaultValue) = 0;
    virtual void reserved3() = 0;
    /// Declares a text user setting.
    virtual void addStringOption(const DDPString& key, const DDPString& label, const DDPString& defaultValue) = 0;

protected:
    ~DDPDataProviderInfo() = default;
};

/// The settings that the user gave for one case. Its first row is an operation, not a reserved one. Called on the
/// calling thread, from `init` only.
class DDPInitOptions
{
public:
    /// True if the user gave this setting; the other operations are called only then.
    virtual bool hasOption(const DDPString& key) const = 0;
    virtual void reserved0() = 0;
    /// The value given for a boolean setting.
    virtual bool boolOption(const DDPString& key) const = 0;
    /// The value given for a text setting; owned by the host.
    virtual const DDPString* stringOption(const DDPString& key) const = 0;

protected:
    ~DDPInitOptions() = default;
};

/// Takes the descriptions of the groups that make up the geometry. Called on the calling thread.
class DDPElementGroupInfo
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// Declares a group; `name` is UTF-8.
    virtual void addGroup(std::int32_t groupId, const DDPString& name) = 0;
    /// 1 for a boundary patch, 0 for a cell zone, face zone or sampled surface.
    virtual void setBoundaryFlag(std::int32_t groupId, std::int32_t flag) = 0;
    /// Puts the group under its part.
    virtual void setParentPart(std::int32_t groupId, std::int32_t parentPartId) = 0;
    virtual void reserved2() = 0;
    /// One text property; the plug-in uses the key "type".
    virtual void setGroupProperty(std::int32_t groupId, const DDPString& key, const DDPString& value) = 0;

protected:
    ~DDPElementGroupInfo() = default;
};

/// Takes the parts of a case. Called on the calling thread.
class DDPGeometryInfo
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// Declares a top-level part that has no cell zones; a part with zones is declared as a group instead.
    virtual void addPart(std::int32_t partId, const DDPString& name) = 0;
    virtual void reserved2() = 0;
    /// The object that takes group descriptions; owned by the host.
    virtual DDPElementGroupInfo* elementGroupInfo() = 0;
    /// Called once, first, with 0. Only the host knows what the number means.
    virtual void setGeometryMode(std::int32_t mode) = 0;

protected:
    ~DDPGeometryInfo() = default;
};

/// Takes the details of one declared result. Called on the calling thread.
class DDPResultInfo
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// The stable id string of the result.
    virtual void setResultKey(const DDPString& key) = 0;
    /// The unit as text.
    virtual void setResultUnit(const DDPString& unit) = 0;
    /// Called with 1, and only on the displacement result.
    virtual void setDisplacementFlag(std::int32_t flag) = 0;

protected:
    ~DDPResultInfo() = default;
};

/// Takes the description of a case: title, parts, states, results. Called on the calling thread.
class DDPMetaData
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// Title and description in UTF-8, then two mode codes whose meaning only the host knows.
    virtual void setSimulationInfo(const DDPString& title, const DDPString& description, std::int32_t mode,
                                   std::int32_t stateMode) = 0;
    /// The object that takes the parts; owned by the host.
    virtual DDPGeometryInfo* geometryInfo() = 0;
    /// Declares one state.
    virtual void addState(std::int32_t stateId, const DDPString& name, double referenceValue) = 0;
    virtual void reserved2() = 0;
    virtual void reserved3() = 0;
    /// Declares one result.
    ///
    /// @param kind    0 scalar, 1 vector, 2 displacement, 4 tensor
    /// @param mapping 0 values at nodes, 1 values at elements
    /// @return the object that takes key, unit and flag; owned by the host
    virtual DDPResultInfo* addResult(std::int32_t kind, std::int32_t resultId, const DDPString& name,
                                     std::int32_t mapping) = 0;

protected:
    ~DDPMetaData() = default;
};

/// The geometry that is asked for. Called on the calling thread.
class DDPGeometrySpec
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// Zero selects the single geometry of the case; anything else is refused.
    virtual std::int64_t geometrySelector() const = 0;

protected:
    ~DDPGeometrySpec() = default;
};

/// Takes the nodes of one group: one thread at a time per group.
class DDPNodeGroup
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// x, y, z of each node in turn: `3 * nodeCount` values. Any thread.
    virtual void setNodes(const double* coordinates, std::uint64_t nodeCount) = 0;
    /// The node ids, which count from 1 in a part and in a sampled surface, and from 0 in a boundary or face zone. Any
    /// thread.
    virtual void setNodeIds(const std::int32_t* ids, std::uint64_t count) = 0;
    /// The value to pass to `DDPGeometry::addElementGroup`. Calling thread.
    virtual std::int64_t nodeGroupId() const = 0;

protected:
    ~DDPNodeGroup() = default;
};

/// Takes the elements of one group: one thread at a time per group, any thread for all operations.
///
/// A group of cells or faces of a mesh gets `setMixedElements`, then `setPolyhedra` (a group of cells only if it has
/// general cells), then `setElementPartIds` (not the cells of a part without cell zones). A sampled surface gets
/// `setUniformElements` and then `setElementPartIds`. A group whose mesh cannot be read gets nothing.
///
/// Connectivity entries are 0-based positions in the node group that this group is bound to.
class DDPElementGroup
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// Elements that all have one type.
    virtual void setUniformElements(std::int32_t type, std::uint64_t elementCount, const std::int32_t* connectivity,
                                    std::uint64_t connectivityLength, const std::int32_t* elementIds) = 0;
    /// Elements of mixed type; `types` holds values of `DDPElementType`.
    ///
    /// A general element takes as many connectivity entries as its entry in the first array of `setPolyhedra`.
    virtual void setMixedElements(const std::int32_t* types, std::uint64_t elementCount,
                                  const std::int32_t* connectivity, std::uint64_t connectivityLength,
                                  const std::int32_t* elementIds) = 0;
    /// The general elements of the group in element order, packed as face tables without gaps.
    ///
    /// A cube with the nodes of the hexahedron drawn above, as the only element of its group, is
    ///
    ///     nodesPerPolyhedron   8
    ///     facesPerPolyhedron   6
    ///     nodesPerFace         4        4        4        4        4        4
    ///     faceConnectivity     0 3 2 1  4 5 6 7  0 1 5 4  1 2 6 5  2 3 7 6  3 0 4 7
    ///
    /// The first two arrays have one byte per polyhedron: the number of its distinct nodes and that of its faces.
    /// `nodesPerFace` has one byte per face, polyhedron after polyhedron, and `faceConnectivity` the nodes of all those
    /// faces. A general face is a polyhedron of one face. Counts above 255 do not fit and are cut to their low byte,
    /// and the polyhedron fills exactly the range that the cut counts give it.
    virtual void setPolyhedra(const unsigned char* nodesPerPolyhedron, const unsigned char* facesPerPolyhedron,
                              std::uint64_t polyhedronCount, const unsigned char* nodesPerFace, std::uint64_t faceCount,
                              const std::int32_t* faceConnectivity, std::uint64_t faceConnectivityLength) = 0;
    /// For each element the global part id of the group that it is shown in.
    virtual void setElementPartIds(const std::int32_t* partIds, std::uint64_t count) = 0;

protected:
    ~DDPElementGroup() = default;
};

/// Makes the groups of a geometry. Called on the calling thread, before any worker starts.
class DDPGeometry
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// Makes a node group; owned by the host.
    virtual DDPNodeGroup* addNodeGroup() = 0;
    /// Makes an element group bound to a node group; owned by the host.
    virtual DDPElementGroup* addElementGroup(std::int64_t nodeGroupId) = 0;

protected:
    ~DDPGeometry() = default;
};

/// The result and state that are asked for. Called on the calling thread.
class DDPResultSpec
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    virtual void reserved2() = 0;
    /// The result asked for.
    virtual std::int32_t resultId() const = 0;
    /// The state asked for.
    virtual std::int32_t stateId() const = 0;

protected:
    ~DDPResultSpec() = default;
};

/// Takes the values of one group: one thread at a time per group. A later call replaces an earlier one.
class DDPResultValueGroup
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// `dimension` values per item, `dimension * itemCount` in all; a missing value is the largest finite double. Any
    /// thread.
    virtual void setValues(const double* values, std::int32_t dimension, std::uint64_t itemCount) = 0;

protected:
    ~DDPResultValueGroup() = default;
};

/// Makes the value groups of a result, in the order of the geometry's groups but with none for a face zone. Called on
/// the calling thread, before any worker starts.
class DDPResult
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    /// Makes the next value group; owned by the host.
    virtual DDPResultValueGroup* addValueGroup() = 0;

protected:
    ~DDPResult() = default;
};

/// Takes the items of a set. Called on the calling thread.
class DDPSet
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    virtual void reserved2() = 0;
    /// The set's cells within one part: the first argument is always 0, ids are 0-based cell labels.
    virtual void addSetItems(std::int32_t kind, std::uint64_t partIndex, const std::int32_t* ids,
                             std::uint64_t count) = 0;

protected:
    ~DDPSet() = default;
};

/// Takes the changes of the list of states. Called on the calling thread.
class DDPChangeNotifications
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    virtual void reserved2() = 0;
    virtual void reserved3() = 0;
    virtual void reserved4() = 0;
    virtual void reserved5() = 0;
    /// The state with this id now has this name and value.
    virtual void updateState(std::int32_t stateId, const DDPString& name, double referenceValue) = 0;
    /// A new state.
    virtual void addState(std::int32_t stateId, const DDPString& name, double referenceValue) = 0;
    /// The state at this list position is gone. Positions run from the number of states left, and are not state ids:
    /// Compatibility (docs/compatibility.md, "remove one more position").
    virtual void removeState(std::int32_t position) = 0;

protected:
    ~DDPChangeNotifications() = default;
};

/// One open case; implemented by the plug-in. The destructor takes the first two rows of its table.
///
/// Calling order: `init`, `getMetaData`, then any of the others as the host wishes, last `close`. One thread calls at a
/// time, and a request returns only after all its workers are done.
class DDPDataProvider
{
public:
    virtual ~DDPDataProvider() = default;
    /// Opens the case of the given path; non-zero on success. `error` is not touched.
    virtual std::int32_t init(const DDPString& key, const DDPInitOptions& options, DDPError* error) = 0;
    /// Closes the case.
    virtual void close() = 0;
    /// Publishes the description of the case and settles the ids that all later calls use.
    virtual bool getMetaData(DDPMetaData* metaData) = 0;
    /// Delivers nodes and elements of every group.
    virtual bool getGeometry(const DDPGeometrySpec& spec, DDPGeometry* geometry) = 0;
    /// Delivers the cells of one cell zone.
    virtual bool getSet(std::int32_t setId, DDPSet* set) = 0;
    /// Delivers one result of one state.
    virtual bool getResult(const DDPResultSpec& spec, DDPResult* result) = 0;
    virtual bool getRigidBodyTransformations(std::uint64_t stateIndex, std::int32_t id,
                                             DDPTransformations* transformations) = 0;
    virtual bool getElementVisibilityResult(std::uint64_t /*stateIndex*/, std::int32_t /*id*/,
                                            DDPVisibilityResult* /*visibility*/)
    {
        return false;
    }
    /// Reports the states that appeared or vanished since the last poll.
    virtual void pollForChanges(DDPChangeNotifications* notifications) = 0;
    /// The last row; only the host knows what it is for.
    virtual std::int64_t reserved0() { return 0; }
};

/// A free function with the arguments of the operation above; nothing calls it.
inline bool getElementVisibilityResult(std::uint64_t /*stateIndex*/, std::int32_t /*id*/,
                                       DDPVisibilityResult* /*visibility*/)
{
    return false;
}

/// Makes providers; implemented by the plug-in. The destructor takes the first two rows of its table. One thread calls
/// at a time.
class DDPDataProviderFactory
{
public:
    virtual ~DDPDataProviderFactory() = default;
    /// Fills in the description and the user settings; always true.
    virtual bool getProviderInfo(DDPDataProviderInfo* info) = 0;
    /// True if the file name of the path is one that the provider opens; the file system is not asked.
    virtual bool isSupportedByProvider(const DDPString& path) = 0;
    /// A new provider, owned by the host until it hands it to `destroyProviderInstance`.
    virtual DDPDataProvider* createProviderInstance() = 0;
    /// Destroys a provider; null is ignored.
    virtual void destroyProviderInstance(DDPDataProvider* provider) = 0;
};

/// Destroys a factory; null is ignored.
using DDPFactoryDestroyFunction = void (*)(DDPDataProviderFactory* factory);

/// What a plug-in registers. It lives only during the call, so the host copies it.
struct DDPFactoryRegistration
{
    std::int64_t apiVersion;
    DDPDataProviderFactory* factory;
    DDPFactoryDestroyFunction destroyFactory;
};

/// What the host passes to `initializeDataProviderPlugin`. All but the log callback is called on the calling thread.
struct DDPPluginInitRecord
{
    /// For the host's use; a plug-in does not read it.
    void* hostData;
    /// Registers a factory under a provider name; zero means refused.
    std::int32_t (*registerProviderFactory)(const char* providerName, DDPFactoryRegistration* registration);
    /// Takes every log line: level 1 error, 3 info, 4 debug. Calls may come from several threads at once.
    void (*pluginLogCallback)(std::int32_t level, const char* text);
    /// Stores one descriptive entry about the plug-in.
    void (*setPluginInfo)(const char* key, const char* value);
};

/// The function to call before the library is unloaded.
using DDPPluginExitFunction = void (*)();
/// The type of `initializeDataProviderPlugin`. It returns the exit function, or null if the host refused the
/// registration.
using DDPPluginInitFunction = DDPPluginExitFunction (*)(DDPPluginInitRecord* record);

/// Static helpers of the interface.
class DDPUtils
{
public:
    /// The compiler that builds the including file: "clang 14.0.6, C++: 202002 (v:20), C++11 Standard library support".
    /// Compilers other than clang give "NA".
    static std::string compilerInfoString()
    {
        std::string text = "NA";
#ifdef __clang__
        text = "clang " + toStdString<int>(__clang_major__) + "." + toStdString<int>(__clang_minor__) + "." +
               toStdString<int>(__clang_patchlevel__);
        const auto languageLevel = static_cast<int>(__cplusplus);
        const int languageYear = languageLevel / 100 % 100;
        text += ", C++: " + toStdString<int>(languageLevel) + " (v:" + toStdString<int>(languageYear) + ")";
        text += ", C++11 Standard library support";
#endif
        return text;
    }

    /// Decimal digits of a number, the same whatever locale the host has set.
    template <typename T>
    static std::string toStdString(const T& value)
    {
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        stream << value;
        return stream.str();
    }
};
