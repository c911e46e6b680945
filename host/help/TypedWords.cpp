// SPDX-License-Identifier: MIT
#include "help/TypedWords.h"

#include "help/HelpFormatter.h"

#include <algorithm>

namespace {

bool takesValue(const CLI::Option& option)
{
    return option.get_expected_min() > 0;
}

} // namespace

TypedWords::TypedWords(const CLI::App& program, const std::vector<std::string>& words) : m_program(program)
{
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        take(words[i]);
    }
    setTyped(words.back());
}

const CLI::Option* TypedWords::argument() const
{
    if (m_command == nullptr) {
        return nullptr;
    }
    const auto all = m_command->get_options([](const CLI::Option* option) { return option->get_positional(); });
    if (all.empty()) {
        return nullptr;
    }
    if (m_arguments.size() < all.size()) {
        return all[m_arguments.size()];
    }
    return all.back()->get_expected_max() > 1 ? all.back() : nullptr;
}

std::vector<std::string> TypedWords::valuesOf(const std::string& name) const
{
    const auto found = m_values.find(find("--" + name));
    return found == m_values.end() ? std::vector<std::string>() : found->second;
}

/// Options of the command come first; all that are declared for the program are also its own.
const CLI::Option* TypedWords::find(const std::string& name) const
{
    const CLI::Option* const own = m_command == nullptr ? nullptr : m_command->get_option_no_throw(name);
    return own != nullptr ? own : m_program.get_option_no_throw(name);
}

void TypedWords::take(const std::string& word)
{
    if (m_option != nullptr) {
        m_values[m_option].push_back(word);
        m_option = nullptr;
    } else if (!m_optionsEnded && word == "--") {
        m_optionsEnded = true;
    } else if (!m_optionsEnded && word.size() > 1 && word[0] == '-') {
        takeOption(word);
    } else if (m_command == nullptr) {
        const std::vector<const CLI::App*> commands = shownCommands(m_program);
        const auto named = std::ranges::find_if(commands, [&](const CLI::App* one) { return one->get_name() == word; });
        m_command = named == commands.end() ? nullptr : *named;
    } else {
        m_arguments.push_back(word);
    }
}

/// Takes `--name`, `--name=value`, `-n`, `-nvalue` or several flags such as `-vv`.
void TypedWords::takeOption(const std::string& word)
{
    const bool isLong = word[1] == '-';
    const std::size_t nameEnd = isLong ? std::min(word.find('='), word.size()) : 2;
    const CLI::Option* const option = find(word.substr(0, nameEnd));
    if (option == nullptr) {
        return;
    }
    if (!takesValue(*option)) {
        m_values[option].emplace_back();
    } else if (nameEnd == word.size()) {
        m_option = option;
    } else {
        m_values[option].push_back(word.substr(nameEnd + (isLong ? 1 : 0)));
    }
}

void TypedWords::setTyped(const std::string& word)
{
    m_typed = word;
    const std::size_t equals = word.find('=');
    if (m_option == nullptr && !m_optionsEnded && word.starts_with("--") && equals != std::string::npos) {
        m_option = find(word.substr(0, equals));
        m_lead = word.substr(0, equals + 1);
        m_typed = word.substr(equals + 1);
    }
}
