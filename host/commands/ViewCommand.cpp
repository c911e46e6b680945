// SPDX-License-Identifier: MIT
#include "border/EscapedText.h"
#include "border/TextForms.h"
#include "commands/CaseReport.h"
#include "commands/Commands.h"
#include "commands/Selection.h"
#include "output/ByteText.h"
#include "output/Interrupt.h"
#include "output/ProgressBar.h"
#include "view/Browser.h"
#include "view/CasePage.h"
#include "view/ScratchFolder.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include <signal.h>

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr std::uint64_t MEGABYTE = 1000000;

struct ViewOptions
{
    std::string casePath;
    std::string page;
    std::string picture;
    std::string state = "all";
    std::string result;
    std::string part;
    int precision = static_cast<int>(PagePrecision::Floats32);
    std::int64_t limit = 64; ///< in megabytes
    bool opens = false;
    bool overwrite = false;
};

/// One run of the command.
class Viewer
{
public:
    Viewer(HostContext& context, const ViewOptions& options)
        : m_context(context), m_options(options), m_opened(context.open(options.casePath)),
          m_page(options.page.empty() ? fs::path(caseName() + ".html") : fs::path(options.page))
    {}

    ExitCode run()
    {
        // Without a handler a file that grows past the limit of the process ends it before anything can be told.
        static_cast<void>(signal(SIGXFSZ, SIG_IGN));
        const fs::path picture = m_options.picture.empty() ? fs::path() : choosePicture();
        PageContent content = select();
        const std::vector<LoggedCause> unread = unreadMeshes(*m_opened);
        noteWhatIsMissing(unread, &content);
        std::unique_ptr<ScratchFolder> scratch;
        if (!keepsPage()) {
            scratch = std::make_unique<ScratchFolder>();
            m_page = scratch->path() / "page.html";
        }
        writePage(content);
        if (!m_options.picture.empty()) {
            drawPicture(picture, content);
        }
        const ExitCode code = unread.empty() ? ExitCode::Good : ExitCode::Findings;
        interruptsEndWith(static_cast<int>(code));
        report(content);
        tellUnreadMeshes(unread);
        if (m_report.hasUndefined && !m_context.options.quiet) {
            tellUser("some values are undefined and show grey; " + doctorHint(m_options.casePath));
        }
        if (m_options.opens && !openPage(m_page)) {
            throw HostError(ExitCode::CannotWrite,
                            fmt::format("nothing opens pages here; open {} in a browser", m_page.string()));
        }
        return code;
    }

private:
    /// With --png alone the page is only a means.
    bool keepsPage() const { return !m_options.page.empty() || m_options.picture.empty() || m_options.opens; }

    /// The file for the picture.
    fs::path choosePicture() const
    {
        fs::path picture = outputTarget(m_options.picture, PICTURE_FORM, m_options.overwrite);
        if (keepsPage() && picture == outputTarget(m_page, PAGE_FORM, m_options.overwrite)) {
            throw HostError(ExitCode::Usage,
                            fmt::format("{} cannot be both the page and its picture", m_options.picture));
        }
        if (!hasChromium()) {
            throw HostError(ExitCode::CannotWrite, NO_CHROMIUM);
        }
        return picture;
    }

    /// The name of the case's folder.
    std::string caseName() const
    {
        const std::string name = OpenedCase::tokenFile(m_options.casePath).parent_path().filename().string();
        return name.empty() ? "case" : name;
    }

    PageContent select()
    {
        PageContent content;
        content.name = caseName();
        content.precision = static_cast<PagePrecision>(m_options.precision);
        content.mostBytes = static_cast<std::uint64_t>(m_options.limit) * MEGABYTE;
        content.groups = selectGroups(*m_opened, m_options.part);
        content.states = selectStates(*m_opened, m_options.state);
        std::ranges::stable_sort(content.states, {}, &HostState::referenceValue);
        for (const HostResultInfo* const info : selectResults(*m_opened, m_options.result)) {
            // Moved points are the shape of a state, not a result to colour it with.
            if (info->kind != KIND_DISPLACEMENT) {
                content.results.push_back(info);
            }
        }
        return content;
    }

    /// Notes for the page what the case has beyond its content.
    void noteWhatIsMissing(const std::vector<LoggedCause>& unread, PageContent* content) const
    {
        const HostMetaData& metaData = m_opened->metaData();
        const auto note = [&](std::size_t had, std::size_t shown, const char* noun) {
            if (shown < had) {
                content->leftOut.push_back(fmt::format("{} of {} {} not selected", had - shown, counted(had, noun),
                                                       had - shown == 1 ? "was" : "were"));
            }
        };
        const auto colours = static_cast<std::size_t>(std::ranges::count_if(
            metaData.results, [](const HostResultInfo& info) { return info.kind != KIND_DISPLACEMENT; }));
        note(metaData.geometryGroups().size(), content->groups.size(), "group");
        note(metaData.states.size(), content->states.size(), "state");
        note(colours, content->results.size(), "result");
        content->leftOut.insert(content->leftOut.end(), m_opened->limits().begin(), m_opened->limits().end());
        // Whoever gets the page need not know where the case is.
        const fs::path folder = OpenedCase::tokenFile(m_options.casePath).parent_path();
        for (const LoggedCause& mesh : unread) {
            const std::string file = fs::path(mesh.file).lexically_proximate(folder).string();
            content->leftOut.push_back(
                fmt::format("mesh not read: {}{}{}", file, file.empty() ? "" : ": ", mesh.reason));
        }
    }

    void writePage(const PageContent& content)
    {
        PageFile file(m_page, m_options.overwrite);
        ProgressBar progress(m_context.showsProgress(), "view", "results",
                             content.states.size() * content.results.size());
        m_report = writeCasePage(*m_opened, content, &file, [&] { progress.advance(); });
    }

    /// @throws HostError as `savePicture`, after the page has been told, which stays
    void drawPicture(const fs::path& picture, const PageContent& content) const
    {
        try {
            savePicture(m_page, picture);
        } catch (...) {
            if (!m_context.options.quiet) {
                tellPage(content);
            }
            throw;
        }
    }

    /// Tells what was written, once it is in place.
    void report(const PageContent& content) const
    {
        if (m_context.options.json) {
            writeDocument(makeDocument(content));
        }
        if (m_context.options.quiet) {
            return;
        }
        for (const std::string& line : m_report.leftOut) {
            // The others have a line of their own anyway.
            if (!line.starts_with("mesh not read") && !std::ranges::count(m_opened->limits(), line)) {
                tellUser("left out: " + line);
            }
        }
        tellPage(content);
        if (!m_options.picture.empty()) {
            tellWritten("wrote " + m_options.picture);
        }
    }

    void tellPage(const PageContent& content) const
    {
        if (keepsPage()) {
            tellWritten(fmt::format("wrote {}: {}, {}, {}, {}", m_page.string(),
                                    counted(content.states.size(), "state"), counted(content.results.size(), "result"),
                                    counted(m_report.groups.size(), "group"),
                                    byteText(static_cast<double>(m_report.byteCount))));
        }
    }

    static void tellWritten(const std::string& line)
    {
        static_cast<void>(std::fputs((escapedControls(line) + "\n").c_str(), stderr));
    }

    Json makeDocument(const PageContent& content) const
    {
        Json document = newDocument("view");
        document["page"] = keepsPage() ? Json(m_page.string()) : Json(nullptr);
        document["picture"] = m_options.picture.empty() ? Json(nullptr) : Json(m_options.picture);
        document["bytes"] = m_report.byteCount;
        document["states"] = Json::array();
        for (const HostState* const state : content.states) {
            document["states"].push_back({{"id", state->id}, {"name", state->name}, {"value", state->referenceValue}});
        }
        document["results"] = Json::array();
        for (const HostResultInfo* const info : content.results) {
            document["results"].push_back({{"id", info->id}, {"name", info->name}});
        }
        document["groups"] = Json::array();
        for (const ReportedGroup& group : m_report.groups) {
            document["groups"].push_back({{"id", group.id},
                                          {"name", group.name},
                                          {"kind", group.kind},
                                          {"elements", group.elementCount},
                                          {"faces", group.faceCount},
                                          {"points", group.pointCount}});
        }
        document["leftOut"] = m_report.leftOut;
        return document;
    }

    HostContext& m_context;
    const ViewOptions& m_options;
    std::unique_ptr<OpenedCase> m_opened;
    fs::path m_page;
    PageReport m_report;
};

} // namespace

void addViewCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<ViewOptions>();
    CLI::App* const command = app->add_subcommand("view", "Write the case as one page to look at in a browser");
    addCaseArgument(command, &options->casePath);
    command->add_option("-o,--output", options->page, "The page to write; the case's name with .html by default")
        ->type_name("FILE")
        ->check(notEmpty());
    command->add_option("--png", options->picture, "Draw the page with an installed Chromium and save the picture")
        ->type_name("FILE")
        ->check(notEmpty());
    command->add_flag("--open", options->opens, "Open the page in the browser of the desktop");
    addSelection(command, "--state,--states", &options->state,
                 std::string("Which states, all by default: ") + STATE_HELP);
    addSelection(command, "--result", &options->result, RESULT_HELP);
    addSelection(command, "--part", &options->part, GROUP_HELP);
    limitWords(command
                   ->add_option("--precision", options->precision,
                                "Keep coordinates and values in 32 bits, or in 16 bits as equal steps of their range")
                   ->type_name("BITS"),
               {{"16", static_cast<int>(PagePrecision::Steps16)}, {"32", static_cast<int>(PagePrecision::Floats32)}});
    CLI::Option* const limit =
        command->add_option("--limit", options->limit, "The greatest size of the page in MB, 64 by default")
            ->type_name("MB");
    limitCount(limit, 1, 100000);
    command->add_flag("--overwrite", options->overwrite,
                      "Also replace a file that is not a page of ddphost, or not a PNG picture");
    addPlainFlag(command, &context->options);
    command->callback([=] {
        context->command = [=] {
            context->loadFaceZones();
            return Viewer(*context, *options).run();
        };
    });
}
