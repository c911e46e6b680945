// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

/// How far a host is from showing something.
enum class FindingKind
{
    Hidden,   ///< it does not show, in either way of reading
    Extended, ///< it shows only with extended reading, or only then as OpenFOAM has it
    Setting   ///< it shows with another setting
};

/// Where in a case something is.
struct FindingPlace
{
    std::string file;     ///< relative to the folder of the case
    std::size_t line = 0; ///< 1-based; 0 if there is none
};

/// Why something does not show, and what to do.
struct Cause
{
    std::string name;   ///< a short word for it that does not change, for scripts
    std::string reason; ///< a clause, without a full stop
    std::string cure;   ///< the same; empty if there is none
    FindingPlace place;
};

/// One array of values that a host does not get, or gets otherwise than OpenFOAM has it.
struct FindingArray
{
    std::string time;
    std::string part;
    std::string group; ///< the patch; empty for the values of the cells or nodes of the part
    std::string field;
    std::string plain;    ///< what plain reading gives
    std::string extended; ///< what extended reading gives
};

/// One thing of a case that a host will not show, or show otherwise; the same in many places is one finding.
struct Finding
{
    FindingKind kind = FindingKind::Hidden;
    Cause cause; ///< with the first place
    std::set<std::string> files;
    std::set<std::string> times;
    std::set<std::string> fields;
    std::set<std::string> groups;
    std::vector<FindingArray> arrays;
};

/// Collects findings in the order in which they come up.
class Findings
{
public:
    /// Adds a place to the finding of this kind, reason and cure, which is made if there is none.
    Finding& add(FindingKind kind, const Cause& cause);
    /// The same for an array of values.
    void add(FindingKind kind, const Cause& cause, const FindingArray& array);

    const std::vector<Finding>& all() const { return m_all; }
    bool empty() const { return m_all.empty(); }

private:
    std::vector<Finding> m_all;
};

/// A word for a kind, for JSON.
const char* wordOf(FindingKind kind);

/// "FILE:LINE" or "FILE".
std::string textOf(const FindingPlace& place);

/// Where a finding counts: "3 patches, 2 fields, 12 times"; empty if it is in one place.
std::string extentOf(const Finding& finding);
