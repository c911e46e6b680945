// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

#include <map>
#include <set>

/// What a case holds and a host cannot be shown. Each kind is told once in the log, since a case may hold thousands.
class Omissions
{
public:
    /// Logs that files of this kind are not shown, unless it has been said before.
    ///
    /// @param kind    such as "surfaceScalarField"
    /// @param example the path of the first one
    /// @param reason  a whole sentence
    void tell(const dvn::Str& kind, const dvn::Str& example, const char* reason);
    /// The same for a field class; classes that are not field classes are passed over.
    void tellClass(const dvn::Str& className, const dvn::Str& example);
    /// Forgets what has been said, for a new case.
    /// @param casePath the case folder, which the log leaves out of paths
    void restart(const dvn::Str& casePath);

private:
    dvn::Str m_prefix;
    std::set<dvn::Str> m_told;
};

/// What the states of a case share in extended reading.
struct CaseNotes
{
    Omissions omissions;
    /// The name of the field that has an id, by the stem of the id. Names that differ only by case would have the same.
    std::map<dvn::Str, dvn::Str> idOwners;
};
