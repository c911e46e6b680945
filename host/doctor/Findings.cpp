// SPDX-License-Identifier: MIT
#include "doctor/Findings.h"

#include <fmt/format.h>

#include <algorithm>

Finding& Findings::add(FindingKind kind, const Cause& cause)
{
    auto found = std::ranges::find_if(m_all, [&](const Finding& finding) {
        return finding.kind == kind && finding.cause.reason == cause.reason && finding.cause.cure == cause.cure;
    });
    if (found == m_all.end()) {
        m_all.push_back({kind, cause, {}, {}, {}, {}, {}});
        found = m_all.end() - 1;
    }
    if (!cause.place.file.empty()) {
        found->files.insert(cause.place.file);
    }
    return *found;
}

void Findings::add(FindingKind kind, const Cause& cause, const FindingArray& array)
{
    Finding& finding = add(kind, cause);
    finding.times.insert(array.time);
    finding.fields.insert(array.field);
    finding.groups.insert(array.part + "/" + array.group);
    finding.arrays.push_back(array);
}

const char* wordOf(FindingKind kind)
{
    switch (kind) {
    case FindingKind::Hidden:
        return "hidden";
    case FindingKind::Extended:
        return "extended";
    case FindingKind::Setting:
        return "setting";
    }
    return "";
}

std::string textOf(const FindingPlace& place)
{
    return place.line == 0 ? place.file : fmt::format("{}:{}", place.file, place.line);
}

std::string extentOf(const Finding& finding)
{
    std::string text;
    const auto add = [&](std::size_t count, const char* many) {
        if (count > 1) {
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, many);
        }
    };
    add(finding.fields.size(), "fields");
    add(finding.groups.size(), "parts or patches");
    add(finding.times.size(), "times");
    if (text.empty()) {
        add(finding.files.size(), "files");
    }
    return text;
}
