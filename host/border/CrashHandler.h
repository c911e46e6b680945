// SPDX-License-Identifier: MIT
#pragma once

/// Makes a crash of the process end with the exit code for a misbehaving library and one line on stderr.
///
/// Covers the fatal signals and an uncaught exception on a worker thread. A signal that has a handler already keeps it:
/// that of a sanitizer tells more than ours. Call once, at the start of a program; tests of the classes do without.
void installCrashHandler();
