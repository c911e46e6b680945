// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

/// How a check ended.
enum class CheckVerdict
{
    Passed,
    Warned,     ///< the library did its part, but the case lacks something that its user should know of
    KnownLimit, ///< the library fails only where its documents say that it does
    Skipped,    ///< it could not run, which says nothing about the library
    Failed,     ///< it found something
    TimedOut,   ///< it took too long and was stopped
    Crashed     ///< its process ended without a result
};

/// The word for a verdict, in text and JSON alike.
const char* verdictName(CheckVerdict verdict);

/// What one sentence of a check says; the gravest decides the verdict.
enum class NoteKind
{
    Finding,    ///< the library is wrong
    KnownLimit, ///< it is wrong as documented
    Warning     ///< the case is
};

inline constexpr std::array<NoteKind, 3> NOTE_KINDS = {NoteKind::Finding, NoteKind::KnownLimit, NoteKind::Warning};

/// The key of the sentences of this kind in JSON.
const char* noteKey(NoteKind kind);

/// The result of one check.
struct CheckOutcome
{
    CheckVerdict verdict = CheckVerdict::Crashed;
    /// The sentences of each kind; kept even if the check crashed later.
    std::map<NoteKind, std::vector<std::string>> notes;
    std::string reason;   ///< why it was skipped, or how it crashed
    bool refused = false; ///< the library does not open the case; set only by the opening check
    int stopCode = 0;     ///< unless 0, no check can run, and the whole run ends with this code
    double seconds = 0;   ///< from the start of the process to its end

    /// True for every verdict that counts against the library.
    bool bad() const
    {
        return verdict == CheckVerdict::Failed || verdict == CheckVerdict::TimedOut || verdict == CheckVerdict::Crashed;
    }
};
