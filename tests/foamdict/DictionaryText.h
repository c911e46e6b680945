// SPDX-License-Identifier: MIT
#pragma once

#include "foamdict/Parse.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// A dictionary as a text that can be read again: entries on one line with single blanks between their tokens. A list
/// that the client read is "<list N>".
std::string textOf(const foamdict::Dictionary& dictionary);
std::string textOf(const std::vector<foamdict::Token>& tokens);

/// A client with files of its own that keeps what it is told.
class TextClient : public foamdict::Client
{
public:
    void onHeader(const foamdict::Dictionary& header) override { headers.push_back(textOf(header)); }
    std::unique_ptr<foamdict::CharSource> openInclude(const std::string& path) override;
    void report(const std::string& problem) override { reports.push_back(problem); }

    std::map<std::string, std::string> files; ///< by path
    std::vector<std::string> headers;
    std::vector<std::string> opened; ///< every path that was asked for
    std::vector<std::string> reports;
};

/// Reads a text as the file "case/system/dict" of the case "case".
foamdict::Content parseText(std::string_view text, foamdict::Client& client);

/// What `parseText` reads: the entries of the file or, in brackets, those of its list; after them the problem, if any.
std::string reread(std::string_view text);

struct TextCase
{
    const char* text;
    const char* expected; ///< what `reread` must give
};
void expectRead(const std::vector<TextCase>& cases);
