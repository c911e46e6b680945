// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "records/OFUnit.h"

#include <cstddef>
#include <map>
#include <string>

/// What kind of value a result holds.
enum OFResultType : int
{
    OFResultScalar = 0,
    OFResultVector = 1,
    OFResultTensor = 2,
    OFResultDisplacement = 3
};

/// Where the values of a result are.
enum OFResultMapping : int
{
    OFResultOnCell = 0,
    OFResultOnNode = 1,
    /// Per node, computed from a result on cells.
    OFResultNodeAverage = 2
};

/// Kind and place of the values of one field class.
struct OFResultTypeAndMapping
{
    OFResultType type;
    OFResultMapping mapping;
};

/// One result that a state offers, without its values. A plain value.
class OFResult
{
public:
    /// @param nativeName the field's own name, which is also the name of its file
    /// @param name       the shown name
    /// @param idString   the key that identifies the result across states
    OFResult(const dvn::Str& nativeName, const dvn::Str& name, const dvn::Str& idString, const OFUnit& unit,
             OFResultType type, OFResultMapping mapping);

    /// The id given to the host; -1 until the metadata is published.
    int id() const { return m_id; }
    void setId(int id) { m_id = id; }
    const dvn::Str& name() const { return m_name; }
    const dvn::Str& idString() const { return m_idString; }
    const dvn::Str& nativeName() const { return m_nativeName; }
    const OFUnit& unit() const { return m_unit; }
    OFResultType type() const { return m_type; }
    OFResultMapping mapping() const { return m_mapping; }

    /// The class of the field's file, such as "volScalarField"; empty if no class fits, as for a displacement.
    ///
    /// Compatibility (docs/compatibility.md, "class name of averages"): a node average has a text that no file has.
    dvn::Str className() const;
    /// Stored components: 1, 3 or, for a tensor, 6; -1 for anything else.
    int dimension() const;
    /// Components times nodes or elements, depending on the mapping; all bits set for a mapping that has neither.
    /// Meaningless if `dimension` is negative.
    std::size_t expectedValueCount(std::size_t nodeCount, std::size_t elementCount) const;

    /// The field classes that can be read. Built at the first call, from any thread, and kept.
    static const std::map<std::string, OFResultTypeAndMapping>& supportedResultClasses();

private:
    int m_id = -1;
    dvn::Str m_name;
    dvn::Str m_idString;
    dvn::Str m_nativeName;
    OFUnit m_unit;
    OFResultType m_type;
    OFResultMapping m_mapping;
};
