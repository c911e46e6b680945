// SPDX-License-Identifier: MIT
#pragma once

/// Makes a crash of the process end with the exit code for a misbehaving library and one line on stderr.
///
/// Covers the fatal signals and an uncaught exception on a worker thread. A signal that already has a handler keeps it:
/// that of a sanitizer reports more than ours. Call once, at the start of a program; unit tests do not need it.
void installCrashHandler();
