// SPDX-License-Identifier: MIT
#pragma once

#include "sample/SampleMesh.h"

// The fields of a sample case. Their values have as many digits as those of a solver, because long numbers take longer
// to read. In ascii a vector takes about 31 bytes and a scalar 8.
//
// All are linear along each axis. On a regular mesh the average at an inner node is then exact, and a reader that mixes
// up cells or nodes shows at once.

/// Temperature "T" of cells and "pointT" of points. Linear in space: the mean over the nodes of any box is the value at
/// its centre.
double sampleTemperature(const SamplePoint& place, double time);

/// Kinematic pressure "p" of cells, zero on three sides of a box and growing by orders of magnitude away from them.
double samplePressure(const SamplePoint& place, double time);

/// Velocity "U" of cells. Each component changes sign on three planes, so its values span many orders of magnitude.
SamplePoint sampleVelocity(const SamplePoint& place, double time);

/// The position of a point of a moving mesh at a time: the mesh is twisted about its z axis, more so at greater
/// heights.
SamplePoint movedPoint(const SamplePoint& place, double time);
