// SPDX-License-Identifier: MIT
#include "commands/OptionForms.h"

#include "border/TextForms.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <optional>
#include <string_view>

namespace {

/// How many characters have to be changed, added or removed to make one word of the other.
std::size_t editDistance(std::string_view from, std::string_view to)
{
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t k = 0; k < to.size(); ++k) {
            const std::size_t replaced = diagonal + (from[i] == to[k] ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({replaced, row[k] + 1, row[k + 1] + 1});
        }
    }
    return row.back();
}

/// A whole number in digits or as 1e6; none if the text is anything else or beyond what a double counts exactly.
std::optional<std::int64_t> countFromText(const std::string& text)
{
    constexpr double MOST_EXACT = 9007199254740992.0;
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isWhole = error == std::errc() && end == text.data() + text.size() && std::trunc(value) == value;
    return isWhole && std::abs(value) <= MOST_EXACT ? std::optional(static_cast<std::int64_t>(value)) : std::nullopt;
}

} // namespace

std::string nearestWord(const std::string& word, const std::vector<std::string>& known)
{
    std::string best;
    std::size_t least = std::max<std::size_t>(word.size() / 2, 1) + 1;
    for (const std::string& candidate : known) {
        if (const std::size_t distance = editDistance(lowerCase(word), candidate); distance < least) {
            least = distance;
            best = candidate;
        }
    }
    return best;
}

CLI::Validator notEmpty()
{
    return CLI::Validator([](const std::string& text) { return text.empty() ? "must not be empty" : std::string(); },
                          "");
}

void addCaseArgument(CLI::App* command, std::string* casePath)
{
    command->add_option("CASE", *casePath, "A case folder or a .foam file in it")->required()->check(notEmpty());
}

void addSelection(CLI::App* command, const std::string& name, std::string* text, const std::string& help)
{
    command->add_option(name, *text, help)->type_name("TEXT")->check(notEmpty());
}

void limitCount(CLI::Option* option, std::int64_t least, std::int64_t most)
{
    const auto convert = [=](std::string& text) {
        const std::optional<std::int64_t> count = countFromText(text);
        if (!count || *count < least || *count > most) {
            return fmt::format("'{}' is not a whole number from {} to {}", text, least, most);
        }
        text = std::to_string(*count);
        return std::string();
    };
    option->transform(CLI::Validator(convert, ""));
}

void limitNumber(CLI::Option* option, double least, double most)
{
    const auto check = [=](const std::string& text) {
        double value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        const bool isNumber = error == std::errc() && end == text.data() + text.size();
        // False for NaN too.
        return isNumber && value >= least && value <= most
                   ? std::string()
                   : fmt::format("'{}' is not a number from {} to {}", text, least, most);
    };
    option->check(CLI::Validator(check, ""));
}

void limitWords(CLI::Option* option, const std::map<std::string, int>& words)
{
    std::vector<std::string> known;
    known.reserve(words.size());
    for (const auto& [word, number] : words) {
        known.push_back(word);
    }
    // Help and completion take the words from here.
    option->type_name(fmt::format("{}", fmt::join(known, "|")));
    const auto convert = [words, known](std::string& text) {
        const auto found = words.find(lowerCase(text));
        if (found != words.end()) {
            text = std::to_string(found->second);
            return std::string();
        }
        const std::string meant = nearestWord(text, known);
        return fmt::format("'{}' is not one of {}{}", text, fmt::join(known, ", "),
                           meant.empty() ? "" : fmt::format("; did you mean '{}'?", meant));
    };
    option->transform(CLI::Validator(convert, ""));
}
