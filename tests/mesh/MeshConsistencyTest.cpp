// SPDX-License-Identifier: MIT
#include "mesh/MeshConsistency.h"
#include "support/FoamText.h"

#include <gtest/gtest.h>

using foamtext::Faces;

namespace {

/// Two faces and an empty one between them, which makes the others be copied, with `slack` labels after the last.
FacesData facesWithSlack(std::size_t lastFaceSize, std::size_t slack)
{
    FacesData faces = foamtext::packed({{0, 1, 2}, {}, std::vector<int>(lastFaceSize, 3)});
    faces.nodes.resize(faces.nodes.size() + slack);
    return faces;
}

} // namespace

TEST(DroppingInconsistentFaces, LeavesSlackOut)
{
    FacesData faces = facesWithSlack(4, 5);
    dropInconsistentFaces(&faces, 4);
    EXPECT_EQ(foamtext::unpacked(faces), (Faces{{0, 1, 2}, {3, 3, 3, 3}}));
    EXPECT_EQ(faces.nodes.size(), 7U);
}

// The byte of the count has wrapped, so only the length of the list tells how many labels the face has.
TEST(DroppingInconsistentFaces, KeepsAllLabelsOfALargeLastFace)
{
    FacesData faces = facesWithSlack(300, 0);
    dropInconsistentFaces(&faces, 4);
    EXPECT_EQ(faces.nodeCounts, (std::vector<std::uint8_t>{3, 300 % 256}));
    EXPECT_EQ(faces.nodes.size(), 303U);
}

// A short file leaves such faces at its end: no count, and the offset 0.
TEST(DroppingInconsistentFaces, DropsAFaceThatWasNeverFilled)
{
    FacesData faces;
    faces.nodes.resize(256);
    faces.nodeCounts = {3, 0};
    faces.nodeOffsets = {-1, 0};
    dropInconsistentFaces(&faces, 4);
    EXPECT_EQ(faces.faceCount(), 0U);
}
