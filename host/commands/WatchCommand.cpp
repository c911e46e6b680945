// SPDX-License-Identifier: MIT
#include "border/EscapedText.h"
#include "border/HostLog.h"
#include "border/TextForms.h"
#include "commands/CaseReport.h"
#include "commands/Commands.h"
#include "commands/KnownTimes.h"
#include "output/Interrupt.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace {

using Json = nlohmann::ordered_json;

struct WatchOptions
{
    std::string casePath;
    double interval = 1.0;
    int count = 0; ///< 0 polls until interrupted
    bool raw = false;
};

/// The least seconds between two polls, lest an interval of 0 keep a core and the disk busy.
constexpr double LEAST_INTERVAL = 0.01;

/// The word for a notice, in text and JSON alike.
const char* eventName(HostNotice::Kind kind)
{
    switch (kind) {
    case HostNotice::Kind::Update:
        return "update";
    case HostNotice::Kind::Add:
        return "add";
    case HostNotice::Kind::Remove:
        return "remove";
    }
    return "";
}

/// The notice as the library gave it. As JSON each line is a document, since the output never ends and so could not
/// close a list.
std::string noticeLine(const HostNotice& notice, bool json)
{
    const bool removal = notice.kind == HostNotice::Kind::Remove;
    if (!json) {
        return removal ? fmt::format("remove position {}\n", notice.id)
                       : fmt::format("{} state {} time {} \"{}\"\n", eventName(notice.kind), notice.id,
                                     notice.referenceValue, escapedControls(notice.name));
    }
    Json line = {{"schema", "ddphost/1"}, {"event", eventName(notice.kind)}};
    if (removal) {
        line["position"] = notice.id;
    } else {
        line["stateId"] = notice.id;
        line["time"] = notice.referenceValue;
        line["name"] = notice.name;
    }
    return line.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string eventLines(const std::vector<HostNotice>& notices, bool raw, bool json, KnownTimes* times)
{
    std::string changes = times->apply(notices);
    if (!raw && !json) {
        return changes;
    }
    std::string lines;
    for (const HostNotice& notice : notices) {
        lines += noticeLine(notice, json);
    }
    return lines;
}

/// Waits before each poll, because the metadata have just given the current state of the case.
ExitCode runWatch(HostContext& context, const WatchOptions& options)
{
    const InterruptWait interrupt;
    const std::unique_ptr<OpenedCase> opened = context.open(options.casePath);
    // Assigns the ids that the notices refer to.
    const std::vector<HostState>& states = opened->metaData().states;
    KnownTimes times(states);
    const double interval = std::max(options.interval, LEAST_INTERVAL);
    if (!context.options.quiet) {
        tellUser(fmt::format("watching {} with {}, every {} s; Ctrl-C ends", options.casePath,
                             counted(states.size(), "time"), interval));
    }
    for (int polls = 0; options.count == 0 || polls < options.count; ++polls) {
        if (interrupt.waitFor(interval)) {
            interrupt.throwInterrupted();
        }
        HostNotifications notifications;
        opened->poll(&notifications);
        HostLog::get().showErrors();
        if (!notifications.notices.empty()) {
            writeToStdout(eventLines(notifications.notices, options.raw, context.options.json, &times));
        }
    }
    return ExitCode::Good;
}

} // namespace

void addWatchCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<WatchOptions>();
    CLI::App* const command = app->add_subcommand("watch", "Poll a case and show the times that are added and removed");
    addCaseArgument(command, &options->casePath);
    limitNumber(
        command->add_option("--interval", options->interval, "Seconds between polls, 1 by default")->type_name("S"), 0,
        86400);
    limitCount(command->add_option("--count", options->count, "Stop after N polls instead of polling until interrupted")
                   ->type_name("N"),
               1, std::numeric_limits<int>::max());
    command->add_flag("--raw", options->raw, "Show the library's notices instead of what has changed");
    addExtendedFlag(command, &context->options);
    command->callback([=] { context->command = [=] { return runWatch(*context, *options); }; });
}
