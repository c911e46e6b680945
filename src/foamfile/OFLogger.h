// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

#include <atomic>
#include <map>
#include <string>

/// The start of a text from a file, as a message shows it: at most 256 bytes, and none after the fourth percent sign.
/// Text that is filled into a message is searched for placeholders like the message itself, so texts could multiply.
dvn::Str excerpt(const std::string& text);

/// Forwards the plug-in's log lines to the one callback that the host provides.
///
/// There is no log file and no level filter here: the host decides what to do with a line. The operations take no lock
/// and run on many worker threads at once, so the callback must accept concurrent calls. Text handed to it is valid
/// only during the call.
class OFLogger
{
public:
    using Callback = void (*)(int level, const char* text);

    /// The one instance, created at the first call from any thread and destroyed at exit.
    static OFLogger& get();

    /// Installs the host's callback in place of an earlier one; null drops all lines. It is never cleared.
    void init(Callback callback);

    /// Level 1.
    /// @return always false, so that a reader can end with the value of its own report
    bool logError(const dvn::Str& group, const dvn::Str& message) const;
    /// Level 3. There is no level 2.
    void logInfo(const dvn::Str& group, const dvn::Str& message) const;
    /// Level 4.
    void logDebug(const dvn::Str& group, const dvn::Str& message) const;
    /// Level 4 as well. Compatibility (docs/compatibility.md, "log levels").
    void logDeveloper(const dvn::Str& group, const dvn::Str& message) const;

    /// Does nothing: callers mark where time goes, and a build for measurements can store it here.
    void track(const dvn::Str& label, double value);
    /// Does nothing, as nothing is tracked.
    void printTrackedData() const;

private:
    OFLogger() = default;
    void send(int level, const dvn::Str& group, const dvn::Str& message) const;

    /// Atomic, because a host may register the plug-in again while workers of another case log.
    std::atomic<Callback> m_callback{nullptr};
    std::map<dvn::Str, double> m_trackedData;
};
