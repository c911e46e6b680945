// SPDX-License-Identifier: MIT
#pragma once

#include "border/LoggedCause.h"
#include "border/OpenedCase.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The kind of a field, as far as the name of its result depends on it.
enum class FieldPlace
{
    Cells,
    Points,
    CellAverage, ///< the average at nodes that the library makes of a field on cells
    SurfacePoints,
    SurfaceFaces,
    MovedPoints
};

/// What the library delivers of one array.
enum class ArrayStatus
{
    NoCase,    ///< the case is refused
    NoTime,    ///< the case has no state of that time
    NoField,   ///< it has no result of that name
    NoGroup,   ///< it has no such part, patch or surface
    Failed,    ///< the request for the values failed
    Undefined, ///< all values are undefined, or there are none
    Some,      ///< some values are undefined
    All
};

/// True if the array is there, whole.
inline bool isShown(ArrayStatus status)
{
    return status == ArrayStatus::All;
}

/// A result of one state that the library handed out.
struct DeliveredResult
{
    std::unique_ptr<HostResult> values;
    ArrayStatus missing = ArrayStatus::NoCase; ///< why there are no values
};

/// A case as the library delivers it in one way of reading.
///
/// Names are those of the files: results are asked for without the mapping of names. A refusal is kept as text, and
/// whatever is asked of a refused case is not there.
class Delivery
{
public:
    /// Opens the case; the library must outlive the object.
    Delivery(PluginLibrary& library, const std::string& casePath, HostOptions options);

    bool isOpen() const { return m_refusal.empty(); }
    /// Why the library does not open the case; empty if it does.
    const std::string& refusal() const { return m_refusal; }

    /// The errors that the library logged while it read descriptions and meshes, each once.
    const std::vector<LoggedCause>& errors() const { return m_errors; }
    /// What of the geometry the interface cannot hold; empty for a refused case.
    std::vector<std::string> limits() const;

    /// The number of the group of a part, or of a patch, zone or surface of it, in the order of the geometry. A surface
    /// has no part.
    std::optional<std::size_t> group(const std::string& part, const std::string& name) const;
    /// The number of zones of cells, or of faces, of a part.
    std::size_t zoneCount(const std::string& part, HostGroupKind kind) const;
    /// The unit of a field on cells; empty if there is no such result.
    std::string unitOf(const std::string& field, FieldPlace place) const;
    const HostElementGroup* elements(std::size_t number) const;
    const HostNodeGroup* nodes(std::size_t number) const;

    /// True if there is a state of this time.
    bool hasTime(double time) const { return m_stateOfTime.contains(time); }

    /// Asks for the values of a field.
    DeliveredResult result(const std::string& field, FieldPlace place, double time);
    /// The values of a group in a result; null if there are none.
    const HostValueGroup* valuesOf(const DeliveredResult& delivered, std::optional<std::size_t> number);
    /// How much of the values of a group is there.
    ArrayStatus statusOf(const DeliveredResult& delivered, std::optional<std::size_t> number);

private:
    using GroupName = std::pair<std::string, std::string>;

    void keepErrors(std::size_t linesBefore);
    void index();

    HostOptions m_options;
    std::string m_refusal;
    std::vector<LoggedCause> m_errors;
    std::unique_ptr<OpenedCase> m_opened;
    std::map<GroupName, std::size_t> m_groups;
    std::map<std::pair<std::string, HostGroupKind>, std::size_t> m_zones; ///< by part
    std::map<std::string, const HostResultInfo*> m_results;
    std::map<double, std::int32_t> m_stateOfTime;
};
