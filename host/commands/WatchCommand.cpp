// SPDX-License-Identifier: MIT
#include "commands/Commands.h"
#include "output/Interrupt.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace {

struct WatchOptions
{
    std::string casePath;
    double interval = 1.0;
    int count = 0; ///< 0 polls until interrupted
};

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

/// One line per notice. As JSON each line is a separate document, since the output never ends and so could not close a
/// list.
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

/// Waits before each poll, because the metadata have just given the current state of the case.
ExitCode runWatch(HostContext& context, const WatchOptions& options)
{
    const InterruptWait interrupt;
    const std::unique_ptr<OpenedCase> opened = context.open(options.casePath);
    // Assigns the ids that the notices refer to.
    opened->metaData();
    for (int polls = 0; options.count == 0 || polls < options.count; ++polls) {
        if (interrupt.waitFor(options.interval)) {
            interrupt.throwInterrupted();
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
    CLI::App* const command =
        app->add_subcommand("watch", "Poll a case and show states that are added, changed or removed");
    command->add_option("CASE", options->casePath, "A case folder or the path to its case.foam")->required();
    command->add_option("--interval", options->interval, "Seconds between polls, 1 by default")
        ->type_name("S")
        ->check(CLI::Range(0.0, 86400.0).description(""));
    command->add_option("--count", options->count, "Stop after N polls instead of polling until interrupted")
        ->type_name("N")
        ->check(CLI::PositiveNumber.description(""));
    addExtendedFlag(command, &context->options);
    command->callback([=] { context->command = [=] { return runWatch(*context, *options); }; });
}
