// SPDX-License-Identifier: MIT
#pragma once

#include "foamdict/CharSource.h"
#include "foamdict/Dictionary.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace foamdict {

/// Where a value holds a list with a count: "List<TYPE> COUNT (", or "COUNT (" alone.
struct ListPlace
{
    std::string_view type; ///< "scalar", "vector", "label", "bool", ...; empty if there is only a count
    std::size_t count;
    char bracket;                         ///< '(', or '{' before the one value of a list of equal values
    const std::vector<std::string>& path; ///< the keywords from the outermost to that of the entry
    /// The file that holds the list; its next character is the bracket. Not always that given to `parse`: an included
    /// file may hold the list.
    CharSource& chars;
};

/// What the reader of a dictionary needs from its caller, and tells it.
class Client
{
public:
    Client() = default;
    virtual ~Client() = default;
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// Called once the block FoamFile is complete: the next character of the file is the one after its "}".
    virtual void onHeader(const Dictionary& /*header*/) {}

    /// Called for a list that is not inside other brackets of the value.
    ///
    /// A client that reads the list itself takes it through its last bracket, the bracket of `place` included. It may
    /// leave out that last bracket, and take the ";" after it: the entry ends with the list either way.
    ///
    /// @return what the token of the list is to hold; nothing, without having taken a character, if the list is to be
    ///         read token by token
    virtual std::optional<std::size_t> readList(const ListPlace& /*place*/) { return std::nullopt; }

    /// Opens an included file; null if it cannot be opened. Only regular files should be.
    ///
    /// @param path of the file, relative only if that of the including file is
    virtual std::unique_ptr<CharSource> openInclude(const std::string& /*path*/) { return nullptr; }

    /// Tells a problem that does not end the reading: file, line and what it is. The same text comes only once.
    virtual void report(const std::string& /*problem*/) {}
};

/// What a file is relative to.
struct Place
{
    std::string file;       ///< its path; what it includes is relative to its folder
    std::string caseFolder; ///< stands for "$FOAM_CASE" and "<case>"; "<system>" and "<constant>" are in it
};

/// What was read of a file.
struct Content
{
    Dictionary header;  ///< the block FoamFile; empty if there is none
    Dictionary entries; ///< everything else; empty if the file is a list
    /// The entries of a file that is a list of them, "2 ( inlet { ... } outlet { ... } )", equal names not merged.
    std::optional<Dictionary> items;
    std::optional<std::size_t> statedCount; ///< the count before that list, whether or not it is right
    bool isComplete = true;                 ///< false if reading had to stop; what was read until then is there
    std::string problem;                    ///< why: file, line and reason
};

/// Reads a file in the grammar of OpenFOAM's dictionaries.
///
/// Macros and includes are replaced as they are met, so a macro finds what stands before it. `#if` and `#ifeq` are
/// evaluated; a condition that is not a plain word or number counts as false and is reported. Nothing is ever executed:
/// the value of `#calc`, `#eval` and `#codeStream` is an unresolved token. Environment variables are not looked up,
/// since they belong to the process that reads, not to the case.
///
/// Three forms that OpenFOAM refuses are read: a value whose ";" is missing before "}" or at the end of the file, words
/// that begin like a number ("2nd"), and names of blocks that have blanks ("left side { ... }").
Content parse(CharSource& chars, const Place& place, Client& client);

} // namespace foamdict
