// SPDX-License-Identifier: MIT
#pragma once

#include "sample/FoamMeshFiles.h"
#include "sample/FoamOutput.h"
#include "sample/SampleMesh.h"

#include <string>

/// Writes the fields of one mesh at one time: T, U and p at cells, pointT at points.
///
/// The boundary entries are of several types, so that a reader meets entries with a list of values, with a uniform
/// value, with the value of the cell, and with none of these.
///
/// @param place the time folder, or the folder of a region or a processor in it
void writeFields(const FoamPlace& place, const SampleMesh& mesh, const SampleMeasures& measures, double time,
                 const FoamFormat& format);

/// Writes pointDisplacement: the distance of each point of a moving mesh from its position at time 0.
void writePointDisplacement(const FoamPlace& place, const SampleMesh& mesh, double time, const FoamFormat& format);
