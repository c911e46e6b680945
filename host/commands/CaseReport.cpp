// SPDX-License-Identifier: MIT
#include "commands/CaseReport.h"

#include "border/EscapedText.h"
#include "border/HostLog.h"
#include "border/ShellWord.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

namespace {

/// What the library says, as information, of a list that breaks off; it goes on with what there is.
constexpr std::string_view SHORT_LIST = "List is shorter than its count";

/// False for surfaces, whose errors are told as they come.
bool isOfMesh(const LoggedCause& cause)
{
    return cause.file.empty() || cause.file.find("/polyMesh/") != std::string::npos;
}

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
    const bool hasEmpty = hasEmptyPart(opened.metaData(), geometry);
    std::vector<LoggedCause> unread;
    const std::vector<HostLogLine> lines = HostLog::get().lines();
    for (std::size_t i = before; i < lines.size(); ++i) {
        LoggedCause cause = loggedCause(lines[i].text);
        const bool isNew = std::ranges::find(unread, cause) == unread.end();
        const bool isError = lines[i].level == LOG_ERROR && hasEmpty && isOfMesh(cause);
        if (isNew && (isError || cause.reason.starts_with(SHORT_LIST))) {
            HostLog::get().markTold(lines[i].text);
            unread.push_back(std::move(cause));
        }
    }
    return unread;
}

nlohmann::ordered_json unreadDocument(const std::vector<LoggedCause>& unread)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const LoggedCause& mesh : unread) {
        list.push_back({{"file", mesh.file}, {"reason", mesh.reason}});
    }
    return list;
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

std::string doctorHint(const std::string& casePath)
{
    return "for more: ddphost doctor " + shellWord(casePath);
}
