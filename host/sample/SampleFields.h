// SPDX-License-Identifier: MIT
#pragma once

#include "sample/SampleMesh.h"

// The fields of a sample case. All are linear in space: a cell's average is then the value at its centre, averages at
// inner nodes of a regular mesh are exact, and a reader that mixes up cells or nodes shows at once.

/// Temperature "T" of cells and "pointT" of points.
double sampleTemperature(const SamplePoint& place, double time);

/// Velocity "U" of cells: a turn about the z axis that grows with time, and a steady rise.
SamplePoint sampleVelocity(const SamplePoint& place, double time);

/// Where a point of a moving mesh is at a time: the mesh is twisted about its z axis, the more the higher a point lies.
SamplePoint movedPoint(const SamplePoint& place, double time);
