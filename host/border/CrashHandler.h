// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Makes a crash of the process end with the exit code for a misbehaving library and one line on stderr.
///
/// Covers the fatal signals and an uncaught exception on a worker thread. A signal that already has a handler keeps it:
/// that of a sanitizer reports more than ours. Call once, at the start of a program; unit tests do not need it.
void installCrashHandler();

/// Makes a crash write this text to stdout too, so that a run that owes a document still writes one; empty for none.
/// At most one thread may call it at a time.
void setCrashDocument(const std::string& text);
