// SPDX-License-Identifier: MIT
#include "doctor/SlowNotes.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <system_error>

#include <sys/vfs.h>

namespace {

constexpr double MEGABYTE = 1e6;
/// Below this a request takes less than a second whatever its form.
constexpr std::uintmax_t LARGE_BYTES = 100'000'000;
constexpr std::uintmax_t LARGE_GZIP_BYTES = 30'000'000;
/// 1,000 folders of 10 fields take 0.20 s to open and describe.
constexpr double SECONDS_PER_FIELD_FILE = 0.20 / 10'000;
constexpr double SLOW_SECONDS = 1.0;
constexpr double SLOW_LISTING_SECONDS = 0.1;

bool isGzip(const CaseFolder& folder, const std::string& path)
{
    std::error_code error;
    return !std::filesystem::is_regular_file(folder.root() / path, error);
}

/// The sizes of the files of all meshes, by whether they are compressed or ascii.
struct MeshBytes
{
    std::uintmax_t gzip = 0;
    std::uintmax_t plain = 0;
};

MeshBytes meshBytes(const CaseFolder& folder)
{
    MeshBytes bytes;
    for (const CaseMesh& mesh : folder.meshes()) {
        for (const char* const name : {"points", "faces", "owner", "neighbour"}) {
            const std::string path = mesh.folder + "/" + name;
            (isGzip(folder, path) ? bytes.gzip : bytes.plain) += folder.sizeOf(path);
        }
    }
    return bytes;
}

/// A kind of file system that is on another machine; null for local ones.
const char* remoteFileSystem(const std::filesystem::path& path)
{
    struct statfs info = {};
    if (statfs(path.c_str(), &info) != 0) {
        return nullptr;
    }
    switch (static_cast<unsigned long>(info.f_type)) {
    case 0x6969:
        return "NFS";
    case 0x517B:
    case 0xFF534D42:
    case 0xFE534D42:
        return "SMB";
    case 0x65735546:
        return "FUSE";
    case 0x0BD00BD0:
        return "Lustre";
    default:
        return nullptr;
    }
}

double listingSeconds(const std::filesystem::path& path)
{
    const auto start = std::chrono::steady_clock::now();
    std::error_code error;
    std::filesystem::directory_iterator entry(path, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        entry.increment(error);
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

std::vector<std::string> slowNotes(const CaseFolder& folder)
{
    std::vector<std::string> notes;
    const MeshBytes bytes = meshBytes(folder);
    if (bytes.gzip > LARGE_GZIP_BYTES) {
        notes.push_back(
            fmt::format("{:.0f} MB of compressed mesh files: one thread inflates each, and a mesh takes 1.7 "
                        "times as long as plain ascii",
                        static_cast<double>(bytes.gzip) / MEGABYTE));
    }
    if (bytes.plain > LARGE_BYTES) {
        notes.push_back(fmt::format("{:.0f} MB of mesh files: ascii takes 1.4 s for each 1000 MB on two cores, and "
                                    "binary half of that for the same mesh",
                                    static_cast<double>(bytes.plain) / MEGABYTE));
    }
    std::size_t files = 0;
    if (!folder.times().empty() && !folder.meshes().empty()) {
        for (const std::string& place : folder.fieldFolders(folder.meshes().front(), folder.times().back().name)) {
            files = std::max(files, folder.filesIn(place).size());
        }
    }
    const double seconds = static_cast<double>(files * folder.times().size()) * SECONDS_PER_FIELD_FILE;
    if (seconds > SLOW_SECONDS) {
        notes.push_back(fmt::format("{} times of {} files: about {:.0f} s to open, 20 us for each file",
                                    folder.times().size(), files, seconds));
    }
    const double listing = listingSeconds(folder.root());
    if (const char* const kind = remoteFileSystem(folder.root())) {
        notes.push_back(fmt::format("the case is on {}: listing its folder took {:.1f} ms", kind, listing * 1e3));
    } else if (listing > SLOW_LISTING_SECONDS) {
        notes.push_back(fmt::format("listing the folder of the case took {:.1f} s", listing));
    }
    return notes;
}
