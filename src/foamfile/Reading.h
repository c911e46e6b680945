// SPDX-License-Identifier: MIT
#pragma once

/// How much of what OpenFOAM writes is read.
///
/// `Plain` reads the forms of usual cases, with outcomes that hosts have come to rely on (docs/compatibility.md).
/// `Extended` reads a case as OpenFOAM itself would (docs/extended-reading.md). The user chooses once per case.
enum class Reading
{
    Plain,
    Extended
};
