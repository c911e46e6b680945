// SPDX-License-Identifier: MIT
#include "commands/CaseReport.h"

#include "border/EscapedText.h"
#include "border/HostLog.h"
#include "border/ShellWord.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

namespace {

bool hasEmptyPart(const HostMetaData& metaData, const HostGeometry& geometry)
{
    const std::vector<const HostGroup*> declared = metaData.geometryGroups();
    for (std::size_t i = 0; i < declared.size(); ++i) {
        const HostElementGroup& elements = geometry.elementGroups[i];
        if (declared[i]->kind() == HostGroupKind::Part &&
            (elements.elementCount() == 0 || geometry.nodesOf(elements)->nodeCount() == 0)) {
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<LoggedCause> unreadMeshes(OpenedCase& opened)
{
    const std::size_t before = HostLog::get().lines().size();
    const HostGeometry& geometry = opened.geometry();
    for (const std::string& limit : opened.limits()) {
        tellUser(limit);
    }
    if (!hasEmptyPart(opened.metaData(), geometry)) {
        return {};
    }
    std::vector<LoggedCause> unread;
    const std::vector<HostLogLine> lines = HostLog::get().lines();
    for (std::size_t i = before; i < lines.size(); ++i) {
        LoggedCause cause = loggedCause(lines[i].text);
        const bool isNew = std::ranges::find(unread, cause) == unread.end();
        if (lines[i].level == LOG_ERROR && isNew) {
            HostLog::get().markTold(lines[i].text);
            unread.push_back(std::move(cause));
        }
    }
    return unread;
}

void tellUser(const std::string& line)
{
    const std::string whole = "ddphost: " + escapedControls(line) + "\n";
    static_cast<void>(std::fwrite(whole.data(), 1, whole.size(), stderr));
}

void tellUnreadMeshes(const std::vector<LoggedCause>& unread)
{
    for (const LoggedCause& mesh : unread) {
        tellUser(fmt::format("mesh not read: {}{}{}", mesh.file, mesh.file.empty() ? "" : ": ", mesh.reason));
    }
}

std::string doctorHint(const std::string& casePath, const char* what)
{
    return fmt::format("'ddphost doctor {}' {}", shellWord(casePath), what);
}
