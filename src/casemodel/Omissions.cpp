// SPDX-License-Identifier: MIT
#include "casemodel/Omissions.h"

#include "foamfile/OFLogger.h"

#include <string>

void Omissions::restart(const dvn::Str& casePath)
{
    m_told.clear();
    m_prefix = casePath + "/";
}

void Omissions::tell(const dvn::Str& kind, const dvn::Str& example, const char* reason)
{
    if (m_told.insert(kind).second) {
        const dvn::Str place = example.startsWith(m_prefix) && example.size() > m_prefix.size()
                                   ? dvn::Str(example.subStr(m_prefix.size(), example.size()))
                                   : example;
        OFLogger::get().logInfo(
            "OFReader",
            dvn::Str("Not shown: %1 (first found: %2). %3").arg(excerpt(kind.toUtf8())).arg(place).arg(reason));
    }
}

void Omissions::tellClass(const dvn::Str& className, const dvn::Str& example)
{
    const std::string name = className.toUtf8();
    if (name.find("Field") == std::string::npos || name.starts_with("uniformDimensioned")) {
        return;
    }
    if (name.starts_with("surface")) {
        tell(className, example, "Values on the faces between cells have no place in the host's model.");
    } else if (name.starts_with("area") || name.starts_with("edge")) {
        tell(className, example, "Finite-area meshes are not read.");
    } else {
        tell(className, example, "Fields of this class are not read.");
    }
}
