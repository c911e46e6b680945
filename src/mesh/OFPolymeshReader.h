// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/Reading.h"
#include "mesh/OFPolymesh.h"

#include <vector>

/// Reads the four list files of a `polyMesh` folder.
class OFPolymeshReader
{
public:
    explicit OFPolymeshReader(Reading reading = Reading::Plain) : m_reading(reading) {}

    /// Reads the mesh of a folder into an empty mesh; always true.
    ///
    /// A file that cannot be read leaves a line in the log, and its list keeps what was read so far. Hosts get as much
    /// of such a mesh as there is, so check the lists, not the result.
    ///
    /// In extended reading, owners without a note are whole, and their mesh has as many cells as its labels name.
    /// @throws std::out_of_range when a file's header lacks `object` or `class`, in plain reading
    bool read(const dvn::Str& folder, OFPolymesh* mesh);

    /// Reads the four files at the same time; always true.
    bool readPolymeshPar(const dvn::Str& folder, OFPolymesh* mesh);
    /// Reads the four files one after the other and stops at the first failure; unlike the other form, it checks the
    /// mesh.
    /// @return false if a file cannot be read or there is not one owner per face; the mesh's cell count is then unset
    bool readPolymeshSeq(const dvn::Str& folder, OFPolymesh* mesh);

    bool readPoints(const dvn::Str& folder, std::vector<double>* points);
    bool readNeighbors(const dvn::Str& folder, std::vector<int>* neighbors);
    bool readFaces(const dvn::Str& folder, FacesData* faces);
    /// Keeps the cell count of the file's header, which decides that of the mesh.
    bool readOwners(const dvn::Str& folder, std::vector<int>* owners);

    /// The folder last given to `read`.
    dvn::Str polyMeshFolder() const { return m_polyMeshFolder; }

private:
    void setCellCount(OFPolymesh* mesh) const;

    Reading m_reading;
    dvn::Str m_polyMeshFolder;
    int m_cellCount = 0;
};

/// Task of the parallel read: one file into its own target.
class OFPolymeshReadFunctor
{
public:
    enum Kind : int
    {
        POINTS = 1,
        NEIGHBORS = 2,
        FACES = 3,
        OWNERS = 4
    };

    OFPolymeshReader* reader;
    int kind; ///< a `Kind`; any other number does nothing
    dvn::Str folder;
    std::vector<double>* points;
    std::vector<int>* neighbors;
    FacesData* faces;
    std::vector<int>* owners;

    void operator()() const;

private:
    void readLabels(const dvn::Str& path, bool (OFPolymeshReader::*read)(const dvn::Str&, std::vector<int>*),
                    std::vector<int>* labels) const;
};
