// SPDX-License-Identifier: MIT
#pragma once

#include "commands/HostContext.h"

// Each function declares one command: its options, its help, and the work that `HostContext::command` then is.

/// Shows what a case holds.
void addInfoCommand(CLI::App* app, HostContext* context);

/// Writes what the library delivers as VTK files.
void addExportCommand(CLI::App* app, HostContext* context);

/// Writes a case to try things with.
void addSampleCommand(CLI::App* app, HostContext* context);

/// Shows the range of each result.
void addStatsCommand(CLI::App* app, HostContext* context);

/// Shows the changes of the list of states as they happen.
void addWatchCommand(CLI::App* app, HostContext* context);

/// Measures what opening a case, its geometry and its results cost.
void addBenchCommand(CLI::App* app, HostContext* context);

/// Checks the library, without a case and with cases or samples.
void addCheckCommand(CLI::App* app, HostContext* context);
