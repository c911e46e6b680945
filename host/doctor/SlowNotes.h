// SPDX-License-Identifier: MIT
#pragma once

#include "doctor/CaseFolder.h"

#include <string>
#include <vector>

/// What will take a host long to read, each as one line with a figure.
///
/// Rates are those of docs/performance.md, of two cores; listings are measured.
std::vector<std::string> slowNotes(const CaseFolder& folder);
