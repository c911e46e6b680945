// SPDX-License-Identifier: MIT
#include "commands/Commands.h"
#include "commands/InterruptWait.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace {

struct WatchOptions
{
    std::string casePath;
    double interval = 1.0;
    int count = 0; ///< 0 polls until the interrupt
};

/// The word for a notice, in text and document alike.
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

/// One line for one notice. As JSON each line is a document of its own, since the output has no end to close a list at.
std::string noticeLine(const HostNotice& notice, bool json)
{
    const bool removal = notice.kind == HostNotice::Kind::Remove;
    if (!json) {
        return removal ? fmt::format("remove position {}\n", notice.id)
                       : fmt::format("{} state {} time {} \"{}\"\n", eventName(notice.kind), notice.id,
                                     notice.referenceValue, notice.name);
    }
    nlohmann::ordered_json line = {{"schema", "ddphost/1"}, {"event", eventName(notice.kind)}};
    if (removal) {
        line["position"] = notice.id;
    } else {
        line["stateId"] = notice.id;
        line["time"] = notice.referenceValue;
        line["name"] = notice.name;
    }
    return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

/// Waits before each poll: the metadata have just told the present state of the case.
ExitCode runWatch(HostContext& context, const WatchOptions& options)
{
    const InterruptWait interrupt;
    const std::unique_ptr<OpenedCase> opened = context.open(options.casePath);
    // Settles the ids that the notices are about.
    opened->metaData();
    for (int polls = 0; options.count == 0 || polls < options.count; ++polls) {
        if (interrupt.waitFor(options.interval)) {
            break;
        }
        HostNotifications notifications;
        opened->poll(&notifications);
        for (const HostNotice& notice : notifications.notices) {
            writeToStdout(noticeLine(notice, context.options.json));
        }
    }
    return ExitCode::Good;
}

} // namespace

void addWatchCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<WatchOptions>();
    CLI::App* const command = app->add_subcommand("watch", "Poll a case and show states that come, change and go");
    command->add_option("CASE", options->casePath, "A case folder, or the path of its case.foam")->required();
    command->add_option("--interval", options->interval, "Seconds between polls, 1 by default")
        ->type_name("S")
        ->check(CLI::Range(0.0, 86400.0).description(""));
    command->add_option("--count", options->count, "End after so many polls, not with an interrupt only")
        ->type_name("N")
        ->check(CLI::PositiveNumber.description(""));
    command->callback([=] { context->command = [=] { return runWatch(*context, *options); }; });
}
