// SPDX-License-Identifier: MIT
#pragma once

#include "commands/HostContext.h"
#include "commands/OptionForms.h"

// Each function declares one command: its options, its help, and the function that goes into `HostContext::command`.

/// Shows what a case contains.
void addInfoCommand(CLI::App* app, HostContext* context);

/// Writes what the library delivers as VTK files.
void addExportCommand(CLI::App* app, HostContext* context);

/// Writes a sample case.
void addSampleCommand(CLI::App* app, HostContext* context);

/// Shows the range of each result.
void addStatsCommand(CLI::App* app, HostContext* context);

/// Writes a case as a page to look at in a browser.
void addViewCommand(CLI::App* app, HostContext* context);

/// Shows the changes of the list of states as they happen.
void addWatchCommand(CLI::App* app, HostContext* context);

/// Measures the cost of opening a case, of its geometry and of its results.
void addBenchCommand(CLI::App* app, HostContext* context);

/// Checks the library, both without a case and with cases or samples.
void addCheckCommand(CLI::App* app, HostContext* context);

/// Says what of a case a host will not show, and why; without a case, whether a host could load the library.
void addDoctorCommand(CLI::App* app, HostContext* context);

/// Writes the manual pages; hidden, since only the build needs it. Declared after all commands that have a page.
void addManualCommand(CLI::App* app, HostContext* context);
