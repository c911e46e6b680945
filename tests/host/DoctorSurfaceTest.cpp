// SPDX-License-Identifier: MIT
// What "ddphost doctor" says of sampled surfaces.
#include "host/DoctorCase.h"

namespace {

using namespace doctor;

// Two triangles of four points in the plane z = 0.
const std::string TRIANGLES = "2\n(\n3(0 1 2)\n3(0 2 3)\n)\n";
const std::string ON_POINTS = "4\n(\n1\n2\n3\n4\n)\n";

/// So many points, of which the last ones are equal.
std::string manyPoints(int count)
{
    std::string text = std::to_string(count) + "\n(\n(0 0 0)\n(1 0 0)\n(1 1 0)\n";
    for (int i = 3; i < count; ++i) {
        text += "(0 1 0)\n";
    }
    return text + ")\n";
}

std::string folderOf(const std::string& time, const std::string& function = "sampleSurface")
{
    return "postProcessing/" + function + "/" + time + "/cut";
}

Seed surface(const std::string& time, const std::string& points, const std::string& faces, const std::string& values,
             const std::string& function = "sampleSurface")
{
    return all({written(folderOf(time, function) + "/points", points),
                written(folderOf(time, function) + "/faces", faces),
                written(folderOf(time, function) + "/faceCentres", "2\n(\n(0 0 0)\n(1 1 0)\n)\n"),
                written(folderOf(time, function) + "/scalarField/T", values)});
}

const std::string POINTS = manyPoints(4);

/// The surface as it is first, and in another form at the time 1.
Seed surfaceLater(const std::string& points, const std::string& faces, const std::string& values)
{
    return all({surface("0.5", POINTS, TRIANGLES, ON_POINTS), surface("1", points, faces, values)});
}

Seed surfaceAlways(const std::string& points, const std::string& faces, const std::string& values,
                   const std::string& function = "sampleSurface")
{
    return all({surface("0.5", points, faces, values, function), surface("1", points, faces, values, function)});
}

const std::vector<Fault> SURFACE_FAULTS = {
    {"sound", surfaceAlways(POINTS, TRIANGLES, ON_POINTS), ""},
    {"another function", surfaceAlways(POINTS, TRIANGLES, ON_POINTS, "cuts"),
     "extended surface-function postProcessing/cuts/0.5/cut"},
    {"faces of four points", surfaceAlways(POINTS, "1\n(\n4(0 1 2 3)\n)\n", ON_POINTS),
     "extended surface-polygons postProcessing/sampleSurface/0.5/cut"},
    {"values of faces", surfaceAlways(POINTS, TRIANGLES, "2\n(\n1\n2\n)\n"),
     "extended surface-faces postProcessing/sampleSurface/0.5/cut/scalarField/T"},
    {"equal values", surfaceAlways(manyPoints(40), TRIANGLES, "40{2}\n"),
     "extended surface-equal-items postProcessing/sampleSurface/0.5/cut/scalarField/T"},
    {"as many faces as points", surfaceAlways(POINTS, "4\n(\n3(0 1 2)\n3(0 2 3)\n3(0 1 3)\n3(1 2 3)\n)\n", ON_POINTS),
     "hidden surface-either postProcessing/sampleSurface/0.5/cut/scalarField/T"},
    {"values of another number", surfaceLater(POINTS, TRIANGLES, "3\n(\n1\n2\n3\n)\n"),
     "hidden surface-length postProcessing/sampleSurface/1/cut/scalarField/T"},
    {"no values", surfaceLater(POINTS, TRIANGLES, "0\n()\n"),
     "hidden surface-empty postProcessing/sampleSurface/1/cut/scalarField/T"},
    {"other points later", surfaceLater(manyPoints(5), TRIANGLES, "5\n(\n1\n2\n3\n4\n5\n)\n"),
     "hidden surface-changes postProcessing/sampleSurface/1/cut/scalarField/T"},
    {"label of no point", surfaceAlways(POINTS, "2\n(\n3(0 1 2)\n3(0 2 9)\n)\n", ON_POINTS),
     "hidden surface-faces-lost postProcessing/sampleSurface/0.5/cut/faces"},
    {"points cut off", surfaceAlways("4\n(\n(0 0 0)\n(1 0 0)\n(1 1 0)\n", TRIANGLES, ON_POINTS),
     "hidden surface-list postProcessing/sampleSurface/0.5/cut/points"},
    {"time of no folder",
     all({surfaceAlways(POINTS, TRIANGLES, ON_POINTS), surface("0.7", POINTS, TRIANGLES, ON_POINTS)}),
     "hidden surface-time postProcessing/sampleSurface/0.7/cut"},
    {"format of another program", written("postProcessing/cuts/1/cut.vtk", ""),
     "hidden surface-format postProcessing/cuts/1/cut.vtk"},
};

} // namespace

TEST(DoctorOfSurfaces, FindsEachFaultOnce)
{
    expectFindings(SURFACE_FAULTS);
}
