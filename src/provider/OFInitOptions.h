// SPDX-License-Identifier: MIT
#pragma once

#include "casemodel/ResultIdStrings.h" // OPENFOAM_IDSTRINGS_MAP, the fixed part of the settings
#include "interface/DataProviderInterface.h"

/// One boolean user setting: the key that the host passes, the label that it shows, and the value if it passes none.
/// The texts are copied as they are.
struct OFInitOption
{
    OFInitOption(const char* keyText, const char* labelText, bool value)
        : key(keyText), label(labelText), defaultValue(value)
    {}

    DDPString key;
    DDPString label;
    bool defaultValue;
};

/// The same for a text.
struct OFInitOptionString
{
    OFInitOptionString(const char* keyText, const char* labelText, const char* value)
        : key(keyText), label(labelText), defaultValue(value)
    {}

    DDPString key;
    DDPString label;
    DDPString defaultValue;
};

// The settings that a host can pass. They are inline objects of the library, made when it is loaded and gone when it is
// unloaded; nothing else that is made at load time uses them, so their order of construction does not matter. A process
// without room for these few bytes has none for the library either.
// NOLINTBEGIN(cert-err58-cpp)

/// Makes a group of each boundary patch and reads its values.
inline const OFInitOption OF_LOAD_BOUNDARY_PARTS("LOAD_BC_PARTS", "Load Boundary Parts", true);
/// Makes a group of each cell zone.
inline const OFInitOption OF_LOAD_CELL_ZONES("LOAD_CELL_ZONES", "Load Cell Zones", true);
/// Takes the mesh of `constant/polyMesh`, and results that lie directly in the time folders.
inline const OFInitOption OF_LOAD_GLOBAL_MESH("LOAD_GLOBAL_MESH", "Load Global Mesh i.e from constant/polyMesh", true);
/// Takes the meshes of the regions, and results in their sub-folders of the time folders.
inline const OFInitOption OF_LOAD_LOCAL_MESHES("LOAD_LOCAL_MESHES",
                                               "Load Local Meshes i.e from constant/region*/polyMesh", true);
/// Makes a group of each face zone.
inline const OFInitOption OF_LOAD_FACE_ZONES("LOAD_FACE_ZONES", "Load Face Zones", false);
/// Gives each result on cells a twin that is averaged to nodes.
inline const OFInitOption OF_NODE_AVG_RESULTS("NODE_AVG_RES", "Provide node average results", true);
/// Leaves out the patches between the pieces of a decomposed case.
inline const OFInitOption OF_HIDE_PARALLEL_INTERFACES("HIDE_PARALLEL_INTERFACES",
                                                      "Hide Parallel Interfaces Between Processors", false);
/// Shown names of fields, as pairs NAME=SHOWN separated by semicolons.
inline const OFInitOptionString OF_RESULTS_NAMES_MAPPING("RESULTS_NAMES_MAPPING", "Result names mapping",
                                                         "U=Velocity;p=Pressure;rho=Density;T=Temperature;g=Gravity");
// NOLINTEND(cert-err58-cpp)
