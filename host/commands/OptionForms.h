// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
class Validator;
} // namespace CLI

/// Refuses an empty text, which scripts pass when a variable of theirs is not set.
CLI::Validator notEmpty();

/// Declares the argument for the case that a command opens.
void addCaseArgument(CLI::App* command, std::string* casePath);

/// Declares an option that selects something by a text, which must not be empty.
void addSelection(CLI::App* command, const std::string& name, std::string* text, const std::string& help);

/// Limits an option to whole numbers, which may also have the form 1e6.
void limitCount(CLI::Option* option, std::int64_t least, std::int64_t most);

/// Limits an option to finite numbers of this range.
void limitNumber(CLI::Option* option, double least, double most);

/// Limits an option to words and turns each into the number that the option's variable takes. Case does not matter. The
/// words, joined by "|", become the option's type.
void limitWords(CLI::Option* option, const std::map<std::string, int>& words);

/// The known word that a mistyped one was probably meant to be, or an empty text if none is close.
std::string nearestWord(const std::string& word, const std::vector<std::string>& known);
