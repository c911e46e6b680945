// SPDX-License-Identifier: MIT
#include "help/ManualPage.h"

#include "border/TextForms.h"
#include "help/HelpFormatter.h"
#include "help/HelpTexts.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace {

// Style checkers complain about longer lines of source.
constexpr std::size_t SOURCE_WIDTH = 76;

/// A text that reads in every output as it is written here: typesetters turn plain hyphens and quotes into others,
/// which cannot be copied to a shell.
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '\\':
            result += "\\e";
            break;
        case '-':
            result += "\\-";
            break;
        case '\'':
            result += "\\(aq";
            break;
        case '`':
            result += "\\(ga";
            break;
        case '^':
            result += "\\(ha";
            break;
        case '~':
            result += "\\(ti";
            break;
        default:
            result += c;
        }
    }
    return result;
}

/// Lines of text; a dot that would begin one is kept from being a request. Quotes never begin one, being escaped.
std::string textLines(const std::string& source)
{
    std::string result;
    for (const char c : wrapped(source, SOURCE_WIDTH)) {
        result += c == '.' && (result.empty() || result.back() == '\n') ? "\\&." : std::string(1, c);
    }
    return result;
}

std::string paragraph(const std::string& text)
{
    return textLines(escaped(text));
}

std::string bold(const std::string& text)
{
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(const std::string& text)
{
    return text.empty() ? text : "\\fI" + escaped(text) + "\\fR";
}

/// One item of a list: what it is called, already in roff, and its plain description.
std::string item(const std::string& term, const std::string& text)
{
    // A request takes the next line of source as the term, so it must not be wrapped.
    return ".TP\n" + term + "\n" + paragraph(text);
}

std::string listSection(const char* title, const std::vector<HelpEntry>& entries)
{
    std::string text = entries.empty() ? std::string() : fmt::format(".SH {}\n", title);
    for (const HelpEntry& entry : entries) {
        text += item(bold(entry.term), entry.text);
    }
    return text;
}

std::string exitCodeSection()
{
    std::string text = ".SH EXIT STATUS\n";
    for (const ExitCodeText& one : exitCodeTexts()) {
        text += item(bold(one.code), fmt::format("{}: {}", one.name, one.meaning));
    }
    return text;
}

/// The first sentence of the description, without the capital and the full stop of one.
std::string headline(const CLI::App& app)
{
    std::string text = app.get_description();
    text.resize(std::min({text.find_first_of(";\n"), text.find(". "), text.size()}));
    text.resize(text.size() - (text.ends_with('.') ? 1 : 0));
    return lowerCase(text.substr(0, 1)) + text.substr(std::min<std::size_t>(text.size(), 1));
}

std::string optionItem(const CLI::Option& option)
{
    std::string names;
    for (const std::string& name : option.get_snames()) {
        names += (names.empty() ? "" : ", ") + bold("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        names += (names.empty() ? "" : ", ") + bold("--" + name);
    }
    if (!option.get_type_name().empty()) {
        names += " " + italic(option.get_type_name());
    }
    std::string text = option.get_description();
    text += option.get_required() ? " (required)" : "";
    text += option.get_default_str().empty() ? "" : fmt::format(" (default: {})", option.get_default_str());
    return item(names, text);
}

std::string optionItems(const std::vector<const CLI::Option*>& options)
{
    std::string text;
    for (const CLI::Option* const option : options) {
        text += optionItem(*option);
    }
    return text;
}

std::vector<const CLI::Option*> positionals(const CLI::App& app)
{
    return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::string argumentSection(const CLI::App& app)
{
    std::string text;
    for (const CLI::Option* const argument : positionals(app)) {
        text += item(italic(argument->get_name(true)), argument->get_description());
    }
    return text.empty() ? text : ".SH ARGUMENTS\n" + text;
}

/// A heading for each group but the first, which is that of the command itself.
std::string optionSection(const CLI::App& app)
{
    std::string text = ".SH OPTIONS\n";
    for (const std::string& group : app.get_groups()) {
        const std::vector<const CLI::Option*> options = app.get_options(
            [&](const CLI::Option* option) { return option->nonpositional() && option->get_group() == group; });
        if (group.empty() || options.empty()) {
            continue;
        }
        text += (group == "Options" ? "" : fmt::format(".SS {}\n", group)) + optionItems(options);
    }
    if (app.get_parent() != nullptr) {
        text += fmt::format(".SS {}\n", GLOBAL_GROUP) + optionItems(globalOptions(*app.get_parent()));
    }
    return text;
}

std::string commandSection(const CLI::App& app)
{
    std::string text;
    for (const CLI::App* const command : shownCommands(app)) {
        text += item(bold(command->get_name()), command->get_description());
    }
    return text.empty() ? text : ".SH COMMANDS\n" + text;
}

std::string synopsis(const CLI::App& app)
{
    const bool isProgram = app.get_parent() == nullptr;
    std::string text = isProgram ? bold("ddphost") : bold("ddphost " + app.get_name());
    text += " [" + italic("OPTION") + "...]";
    for (const CLI::Option* const argument : positionals(app)) {
        const std::string usage = HelpFormatter().make_option_usage(argument);
        text += " " + italic(usage);
    }
    return text + (isProgram ? " " + italic("COMMAND") : "");
}

std::string descriptionSection(const CLI::App& app)
{
    std::string text = app.get_description();
    text += text.ends_with('.') ? "" : ".";
    return ".SH DESCRIPTION\n" + paragraph(text) +
           (app.get_footer().empty() ? "" : ".PP\n" + paragraph(app.get_footer()));
}

std::string seeAlsoSection(const CLI::App& app)
{
    const CLI::App& program = app.get_parent() == nullptr ? app : *app.get_parent();
    std::vector<const CLI::App*> others = shownCommands(program);
    others.insert(others.begin(), &program);
    std::string text;
    for (const CLI::App* const other : others) {
        if (other != &app) {
            text += (text.empty() ? "" : ", ") + bold(manualName(*other)) + "(1)";
        }
    }
    return ".SH SEE ALSO\n" + textLines(text);
}

} // namespace

std::string manualName(const CLI::App& app)
{
    return app.get_parent() == nullptr ? "ddphost" : "ddphost-" + app.get_name();
}

std::string manualPage(const CLI::App& app, const std::string& date)
{
    const std::string name = manualName(app);
    return fmt::format(".TH {} 1 \"{}\" \"ddphost {}\" \"User Commands\"\n", upperCase(name), date, DDPHOST_VERSION) +
           ".SH NAME\n" + textLines(escaped(name) + " \\- " + escaped(headline(app))) +
           fmt::format(".SH SYNOPSIS\n{}\n", synopsis(app)) + descriptionSection(app) + commandSection(app) +
           argumentSection(app) + optionSection(app) + exitCodeSection() +
           listSection("ENVIRONMENT", environmentTexts()) + listSection("FILES", fileTexts()) +
           listSection("EXAMPLES", exampleTexts(app.get_name())) + seeAlsoSection(app);
}
