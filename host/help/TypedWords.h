// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

#include <map>
#include <string>
#include <vector>

/// What the words of a command line are, the last of which is still being typed. Nothing is checked: a line that is not
/// finished is wrong in many ways.
class TypedWords
{
public:
    /// @param program the tree of commands and options, which must outlive the object
    /// @param words   without the name of the program; at least one, which may be empty
    TypedWords(const CLI::App& program, const std::vector<std::string>& words);

    /// The command, or null before it.
    const CLI::App* command() const { return m_command; }

    /// The option whose value is being typed, or null.
    const CLI::Option* option() const { return m_option; }

    /// The argument that is being typed, or null; null also if the command takes no more arguments.
    const CLI::Option* argument() const;

    /// True if an option's name may be typed.
    bool mayBeOption() const { return !m_optionsEnded; }

    /// What is being typed: the last word, or the value in it.
    const std::string& typed() const { return m_typed; }

    /// What stands before the value in the last word, such as `--state=`.
    const std::string& lead() const { return m_lead; }

    /// The values of an option by its long name, in order; an empty text for each time that a flag was given.
    std::vector<std::string> valuesOf(const std::string& name) const;

    /// The finished arguments of the command.
    const std::vector<std::string>& arguments() const { return m_arguments; }

private:
    const CLI::Option* find(const std::string& name) const;
    void take(const std::string& word);
    void takeOption(const std::string& word);
    void setTyped(const std::string& word);

    const CLI::App& m_program;
    const CLI::App* m_command = nullptr;
    const CLI::Option* m_option = nullptr; ///< while words are taken, the one whose value is the next word
    bool m_optionsEnded = false;
    std::string m_typed;
    std::string m_lead;
    std::map<const CLI::Option*, std::vector<std::string>> m_values;
    std::vector<std::string> m_arguments;
};
