// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// A patch of a `boundary` file.
struct CasePatch
{
    std::string name;
    std::string type;
    std::vector<std::string> groups; ///< those of its entry `inGroups` and those that its type puts it in
    std::int64_t faces = 0;
    std::size_t line = 0; ///< of its name in the file
};

/// A mesh of a case. Paths are relative to the folder of the case.
struct CaseMesh
{
    std::string part;      ///< the name that hosts are given: "default_region", a region, "processor0/fluid", ...
    std::string processor; ///< empty unless it is a piece
    std::string region;    ///< empty for the default region
    std::string folder;    ///< its `polyMesh` folder
    std::vector<CasePatch> patches;
    std::size_t cellZones = 0; ///< those that have cells
    std::size_t faceZones = 0;
    std::optional<std::size_t> cells; ///< from the note in the header of `owner`; else unknown
    /// A whole mesh beside its pieces, which is the same once more unless it has results of its own.
    bool isBesidePieces = false;
};

/// A time at which a case has something.
struct CaseTime
{
    double value = 0;
    std::string name; ///< of its folder
};

/// A folder of a sampled surface at one time.
struct CaseSurface
{
    std::string group; ///< the name of its group in extended reading, such as "cuts/plane[Surf]"
    std::string time;
    std::string folder;
    bool isDefaultFunction = false; ///< of "sampleSurface", the only function of plain reading
};

/// A place in the folder that could not be looked at.
struct UnreadablePlace
{
    std::string path;
    std::string reason;
};

/// What lies in the folder of a case, found without the library.
///
/// Listings are bounded, only regular files are opened, and links are followed to folders as OpenFOAM does.
class CaseFolder
{
public:
    /// Looks at the folder: its meshes, times and surfaces, but not at fields.
    explicit CaseFolder(std::filesystem::path root);

    const std::filesystem::path& root() const { return m_root; }
    const std::vector<CaseMesh>& meshes() const { return m_meshes; }
    /// All times of the case and its processors, the earliest first.
    const std::vector<CaseTime>& times() const { return m_times; }
    /// Those of each function with the earliest time first.
    const std::vector<CaseSurface>& surfaces() const { return m_surfaces; }
    const std::vector<std::string>& processors() const { return m_processors; }
    /// Folders of files in which all processors are written together.
    const std::vector<std::string>& collatedFolders() const { return m_collated; }
    /// Folders whose name begins like a number but is not one, such as "0.orig".
    const std::vector<std::string>& almostTimes() const { return m_almostTimes; }
    /// Files of surfaces in `postProcessing` that are in the format of another program.
    const std::vector<std::string>& foreignSurfaces() const { return m_foreignSurfaces; }
    const std::vector<UnreadablePlace>& unreadable() const { return m_unreadable; }

    /// The folders, of those that exist, in which a mesh may have fields at a time; the first one that has a field
    /// counts.
    std::vector<std::string> fieldFolders(const CaseMesh& mesh, const std::string& time) const;
    /// The names of the files in a folder, without a final ".gz"; those that were set aside do not count.
    std::set<std::string> filesIn(const std::string& folder) const;
    /// The sub-folders of a folder.
    std::vector<std::string> foldersIn(const std::string& folder) const;
    /// True for a regular file or its ".gz".
    bool hasFile(const std::string& path) const;
    bool hasFolder(const std::string& path) const;
    /// The bytes of a file, or of its ".gz"; 0 if there is none.
    std::uintmax_t sizeOf(const std::string& path) const;

private:
    struct Listing
    {
        std::vector<std::string> folders;
        std::vector<std::string> files;
    };

    const Listing& list(const std::string& folder) const;
    void findTimes();
    void findMeshes();
    void findPieces(const std::string& processor);
    void addMesh(CaseMesh mesh);
    void findSurfaces();
    void findSurfacesOf(const std::string& function);
    std::string firstMesh(const std::string& region) const;
    bool isWholeMesh(const std::string& folder) const;

    std::filesystem::path m_root;
    std::vector<CaseMesh> m_meshes;
    std::vector<CaseTime> m_times;
    std::vector<CaseSurface> m_surfaces;
    std::vector<std::string> m_processors;
    std::vector<std::string> m_collated;
    std::vector<std::string> m_almostTimes;
    std::vector<std::string> m_foreignSurfaces;
    mutable std::vector<UnreadablePlace> m_unreadable;
    mutable std::map<std::string, Listing> m_listings; ///< by folder, since each is looked at for every field
};

/// The number that the name of a time folder is; none for other names.
std::optional<double> timeOfName(std::string_view name);

/// True for a type of patch that leaves its condition no choice, such as "empty" or "cyclic".
bool isConstraintType(std::string_view type);
