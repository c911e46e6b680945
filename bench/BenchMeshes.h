// SPDX-License-Identifier: MIT
#pragma once

#include "mesh/OFPolymesh.h"

/// A million hexahedra with three million faces, made at the first call.
const OFPolymesh& millionHexahedra();

/// A quarter of a million polyhedra of 14 faces, made at the first call.
const OFPolymesh& manyPolyhedra();
