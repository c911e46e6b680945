// SPDX-License-Identifier: MIT
#pragma once

#include "mesh/OFPolymesh.h"

/// A million hexahedra with three million faces, created on the first call.
const OFPolymesh& millionHexahedra();

/// A quarter of a million polyhedra of 14 faces, created on the first call.
const OFPolymesh& manyPolyhedra();
