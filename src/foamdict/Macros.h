// SPDX-License-Identifier: MIT
#pragma once

#include "foamdict/Dictionary.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace foamdict {

/// A block that is being read, and the one around it. The entries of a block become those of an entry of `outer` only
/// when it ends.
struct Scope
{
    Dictionary& entries;
    const Scope* outer = nullptr;
    bool keepsEqualNames = false; ///< true for a list of entries
    std::size_t depth = 0;
};

/// Finds what macros name, in the blocks that are being read.
///
/// - `name` is looked for in the own block, then outward;
/// - `a.b` is `b` in the block `a` of the own block, or the entry `a.b`;
/// - `..a` is `a` in the block around the own one, and each further dot goes out one more;
/// - `:a.b` starts at the outermost block; `/a/b`, `../a` and `a/b` are paths.
class MacroSearch
{
public:
    /// @return the entry; null if there is none
    const Entry* find(const Scope& scope, std::string_view name) { return findScoped(scope, name, false); }
    /// The same for a macro that is a statement of its own: it may name an entry through its pattern.
    const Entry* findStatement(const Scope& scope, std::string_view name) { return findScoped(scope, name, true); }

    /// Replaces the macros "$name" and "${name}" of a text, inner ones first.
    /// @return nothing if one of them does not name a single word, string or number
    std::optional<std::string> expand(const Scope& scope, std::string_view text);

    /// Counts work for which `limits::MACRO_STEPS` is the bound.
    void addSteps(std::size_t steps) { m_steps += steps; }
    /// True once the bound is reached; nothing is found any more then.
    bool isExhausted() const;

private:
    const Entry* findScoped(const Scope& scope, std::string_view name, bool usePatterns);
    const Entry* findIn(const Dictionary& entries, std::string_view name, bool usePatterns);
    const Entry* findDotted(const Dictionary& entries, std::string_view name, bool usePatterns);
    const Entry* findPath(const Scope& scope, std::string_view path);

    std::size_t m_steps = 0;
};

} // namespace foamdict
