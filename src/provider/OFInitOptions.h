// SPDX-License-Identifier: MIT
#pragma once

#include "casemodel/ResultIdStrings.h" // OPENFOAM_IDSTRINGS_MAP, the fixed part of the settings
#include "interface/DataProviderInterface.h"

/// One boolean user setting: the key that the host passes, the label that it shows, and the default value. The texts
/// are copied unchanged.
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

// The settings that a host can pass. They are inline objects of the library, constructed when it is loaded and
// destroyed when it is unloaded. Nothing else that is constructed at load time uses them, so their order does not
// matter. A process without memory for these few bytes could not load the library either.
// NOLINTBEGIN(cert-err58-cpp)

/// Makes a group for each boundary patch and reads its values.
inline const OFInitOption OF_LOAD_BOUNDARY_PARTS("LOAD_BC_PARTS", "Load Boundary Parts", true);
/// Makes a group for each cell zone.
inline const OFInitOption OF_LOAD_CELL_ZONES("LOAD_CELL_ZONES", "Load Cell Zones", true);
/// Reads the mesh of `constant/polyMesh`, and results directly in the time folders.
inline const OFInitOption OF_LOAD_GLOBAL_MESH("LOAD_GLOBAL_MESH", "Load Global Mesh i.e from constant/polyMesh", true);
/// Reads the meshes of the regions, and results in their sub-folders of the time folders.
inline const OFInitOption OF_LOAD_LOCAL_MESHES("LOAD_LOCAL_MESHES",
                                               "Load Local Meshes i.e from constant/region*/polyMesh", true);
/// Makes a group for each face zone.
inline const OFInitOption OF_LOAD_FACE_ZONES("LOAD_FACE_ZONES", "Load Face Zones", false);
/// Adds to each result on cells a second one that is averaged to nodes.
inline const OFInitOption OF_NODE_AVG_RESULTS("NODE_AVG_RES", "Provide node average results", true);
/// Leaves out the patches between the parts of a decomposed case.
inline const OFInitOption OF_HIDE_PARALLEL_INTERFACES("HIDE_PARALLEL_INTERFACES",
                                                      "Hide Parallel Interfaces Between Processors", false);
/// Shown names of fields, as pairs NAME=SHOWN separated by semicolons.
inline const OFInitOptionString OF_RESULTS_NAMES_MAPPING("RESULTS_NAMES_MAPPING", "Result names mapping",
                                                         "U=Velocity;p=Pressure;rho=Density;T=Temperature;g=Gravity");
/// Reads a case as OpenFOAM itself would (docs/extended-reading.md). It is not among the settings that the factory
/// declares, since hosts store what they know about these; a host that does not know it can be given
/// `EXTENDED_READING_VARIABLE` in its environment.
inline const OFInitOption OF_EXTENDED_READING("EXTENDED_READING", "Extended Reading", false);
// NOLINTEND(cert-err58-cpp)

/// The environment variable that decides if a host does not pass `EXTENDED_READING`: 1, 0, true or false.
inline constexpr const char* EXTENDED_READING_VARIABLE = "OPENFOAM_PLUGIN_EXTENDED_READING";
