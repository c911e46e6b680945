// SPDX-License-Identifier: MIT
#include "help/Completion.h"

#include "border/EscapedText.h"
#include "border/TextForms.h"
#include "commands/Selection.h"
#include "help/HelpFormatter.h"
#include "help/ShellLine.h"
#include "help/TypedWords.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr unsigned SECONDS_TO_LIVE = 1;

/// One way for a word to go on.
struct Candidate
{
    std::string text;
    std::string description;
};

void endProcess(int /*signal*/)
{
    _exit(0);
}

/// Limits the time, and drops all that the library, a crash or a sanitizer writes to stdout or stderr.
/// @return the descriptor of what was stdout, or -1
int keepQuiet()
{
    static_cast<void>(std::signal(SIGALRM, endProcess));
    alarm(SECONDS_TO_LIVE);
    const int output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    return output;
}

/// The path of a case as a shell would pass it; words are not expanded before they are complete.
std::string withHome(const std::string& path)
{
    const char* const home = std::getenv("HOME");
    return home != nullptr && path.starts_with("~/") ? home + path.substr(1) : path;
}

bool isWordOf(std::string_view word, std::initializer_list<std::string_view> words)
{
    return std::ranges::find(words, word) != words.end();
}

/// Finds and writes the candidates for one command line.
class Completer
{
public:
    Completer(const CLI::App& program, const TypedWords& typed, const ShellLine* shell, int output,
              HostContext* context)
        : m_program(program), m_typed(typed), m_shell(shell), m_output(output), m_context(*context)
    {}

    void run()
    {
        if (m_typed.option() != nullptr) {
            completeValue(*m_typed.option());
        } else if (m_typed.mayBeOption() && m_typed.typed().starts_with("-")) {
            completeOption();
        } else if (m_typed.command() == nullptr) {
            completeCommand();
        } else if (m_typed.argument() != nullptr) {
            completePath(m_typed.argument()->get_name(true));
        }
    }

private:
    void write(const std::vector<Candidate>& candidates) const
    {
        std::string text;
        for (const Candidate& candidate : candidates) {
            const std::string whole = m_typed.lead() + candidate.text;
            if (escapedControls(whole) == whole) {
                text += lineOf(whole, candidate.description);
            }
        }
        send(text);
    }

    void send(const std::string& text) const
    {
        // There is nobody to tell that a reader has gone.
        [[maybe_unused]] const ssize_t written = ::write(m_output, text.data(), text.size());
    }

    /// bash inserts what it gets; the other shells select and quote candidates themselves.
    std::string lineOf(const std::string& whole, const std::string& description) const
    {
        std::string text = whole;
        if (m_shell != nullptr) {
            if (!whole.starts_with(m_shell->words.back())) {
                return {};
            }
            text = quotedForShell(whole.substr(m_shell->kept), m_shell->quote);
        }
        return text + "\t" + escapedControls(description) + "\n";
    }

    /// Leaves the rest to the shell, which knows best how to complete paths.
    void completePath(const std::string& kind) const { send(kind == "DIR" ? "folders\n" : "files\n"); }

    void completeCommand() const
    {
        std::vector<Candidate> commands;
        for (const CLI::App* const command : shownCommands(m_program)) {
            commands.push_back({command->get_name(), command->get_description()});
        }
        write(commands);
    }

    void completeOption() const
    {
        std::vector<const CLI::Option*> options = globalOptions(m_program);
        const CLI::App& owner = m_typed.command() == nullptr ? m_program : *m_typed.command();
        for (const CLI::Option* const option : owner.get_options()) {
            if (option->nonpositional() && std::ranges::find(options, option) == options.end()) {
                options.push_back(option);
            }
        }
        std::vector<Candidate> names;
        for (const CLI::Option* const option : options) {
            for (const std::string& name : option->get_lnames()) {
                names.push_back({"--" + name, option->get_description()});
            }
        }
        write(names);
    }

    void completeValue(const CLI::Option& option)
    {
        const std::string& type = option.get_type_name();
        const std::string& name = option.get_lnames().empty() ? type : option.get_lnames().front();
        const bool hasWords = type.find('|') != std::string::npos;
        if (hasWords) {
            completeWord(type);
        }
        if (name == "state" && type != "N") {
            completeState(!hasWords);
        } else if (isWordOf(type, {"PATH", "FILE", "DIR"})) {
            completePath(type);
        } else if (name == "set") {
            completeSetting();
        } else if (name == "result") {
            completeResult();
        } else if (name == "part") {
            completePart();
        }
    }

    /// A word in capitals stands for others.
    void completeWord(const std::string& words) const
    {
        std::vector<Candidate> candidates;
        for (const std::string& word : CLI::detail::split(words, '|')) {
            if (upperCase(word) != word || lowerCase(word) == word) {
                candidates.push_back({word, ""});
            }
        }
        write(candidates);
    }

    void completeSetting()
    {
        passOptions();
        std::vector<Candidate> settings;
        const std::string key = m_typed.typed().substr(0, m_typed.typed().find('='));
        const bool hasKey = key.size() != m_typed.typed().size();
        const auto add = [&](const std::string& name, const std::string& label, bool isBool) {
            if (!hasKey) {
                settings.push_back({name + "=", label});
            } else if (isBool && name == key) {
                settings.insert(settings.end(), {{key + "=on", ""}, {key + "=off", ""}});
            }
        };
        for (const HostSetting& setting : m_context.library().providerInfo().settings) {
            add(setting.key, setting.label, setting.isBool);
        }
        add(HostOptions::EXTENDED_READING, "Extended Reading", true);
        write(settings);
    }

    void completeResult()
    {
        const std::unique_ptr<OpenedCase> opened = openCase();
        std::vector<Candidate> fields;
        for (const HostResultInfo& result : opened->metaData().results) {
            // The name of a field selects its node average too.
            if (opened->metaData().sourceOfAverage(result) == nullptr) {
                fields.push_back({opened->names().fieldOf(result), result.name});
            }
        }
        write(fields);
    }

    void completePart()
    {
        const std::unique_ptr<OpenedCase> opened = openCase();
        const std::vector<const HostGroup*> groups = opened->metaData().geometryGroups();
        std::vector<Candidate> names;
        for (const HostGroup* const group : groups) {
            const HostGroup* const part = group->parentId ? opened->metaData().findGroup(*group->parentId) : nullptr;
            const bool isUnique = std::ranges::count(groups, group->name, &HostGroup::name) == 1;
            names.push_back(
                {isUnique || part == nullptr ? group->name : part->name + "/" + group->name, group->type()});
        }
        write(names);
    }

    /// Where several states may be given, separated by commas, the last one is being typed.
    void completeState(bool severalAllowed)
    {
        std::string before;
        if (severalAllowed) {
            before = m_typed.typed().substr(0, m_typed.typed().rfind(',') + 1);
            std::vector<Candidate> words;
            words.reserve(STATE_WORDS.size());
            for (const char* const word : STATE_WORDS) {
                words.push_back({before + word, ""});
            }
            // Before the case is opened, which may take too long.
            write(words);
        }
        const std::unique_ptr<OpenedCase> opened = openCase();
        std::vector<Candidate> states;
        for (const HostState& state : opened->metaData().states) {
            states.push_back({before + opened->names().timeTextOf(state), state.name});
        }
        write(states);
    }

    /// The first case of the line.
    /// @throws HostError if it has none yet or it cannot be opened
    std::unique_ptr<OpenedCase> openCase()
    {
        if (m_typed.command() == nullptr || m_typed.arguments().empty()) {
            throw HostError(ExitCode::Usage, "there is no case yet");
        }
        passOptions();
        if (m_typed.command()->get_option_no_throw("--plain") != nullptr) {
            m_context.options.extendedReading = m_typed.valuesOf("plain").empty() ? "on" : "off";
        } else if (!m_typed.valuesOf("extended").empty()) {
            m_context.options.extendedReading = "on";
        }
        return m_context.open(withHome(m_typed.arguments().front()));
    }

    /// What the line says about the library and its settings also holds for the candidates.
    void passOptions()
    {
        const std::vector<std::string> libraries = m_typed.valuesOf("plugin");
        m_context.options.plugin = libraries.empty() ? "" : withHome(libraries.back());
        m_context.options.settings = m_typed.valuesOf("set");
    }

    const CLI::App& m_program;
    const TypedWords& m_typed;
    const ShellLine* m_shell; ///< null if the shell quotes
    int m_output;             ///< descriptor for the candidates
    HostContext& m_context;
};

} // namespace

void complete(const CLI::App& program, const std::vector<std::string>& words, HostContext* context)
{
    const int output = keepQuiet();
    if (words.size() < 2) {
        return;
    }
    const bool isBash = words.front() == "--bash";
    const ShellLine line = splitShellLine(isBash ? words[1] : "", words.size() > 2 ? words[2] : "");
    const std::vector<std::string>& all = isBash ? line.words : words;
    if (all.size() < 2) {
        return;
    }
    try {
        const TypedWords typed(program, {all.begin() + 1, all.end()});
        Completer(program, typed, isBash ? &line : nullptr, output, context).run();
    } catch (const std::exception&) {
        // Without the library or the case there is nothing to offer.
    }
}
