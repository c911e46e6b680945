// SPDX-License-Identifier: MIT
#pragma once

/// Which forms of OpenFOAM's files are read.
enum class Reading
{
    /// Those that the solvers write by default. What else a file may hold has the outcome that hosts know.
    Plain,
    /// All that OpenFOAM reads: other widths of raw values, tensors, lists without the note of the solvers. Nothing
    /// that a file lacks is an exception.
    Extended
};
