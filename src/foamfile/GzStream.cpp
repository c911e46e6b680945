// SPDX-License-Identifier: MIT
#include "foamfile/GzStream.h"

#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"

#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Buffer of zlib for one stream. Larger ones gained nothing in measurements.
constexpr unsigned GZIP_BUFFER_SIZE = 65536;
/// One read asks for no more than this, because a read that meets damage loses what it had so far.
constexpr std::size_t READ_BLOCK = 262144;
constexpr std::size_t SKIP_BLOCK = 16384;
/// The highest ratio that deflate reaches, and room for what is not in proportion.
constexpr std::uint64_t INFLATE_RATIO = 1032;
constexpr std::uint64_t INFLATE_EXTRA = 65536;
/// Lists take several times the bytes that they are counted with at least, so a true count implies no more than this.
constexpr std::uint64_t USUAL_RATIO = 8;

/// A read from this size on is shared among the cores, if the file is not compressed.
constexpr std::size_t SHARED_READ = 4194304;
constexpr std::size_t SHARED_BLOCK = 1048576;

/// Opens what was found to be a regular file; -1 if it cannot be opened or was replaced by something else since, which
/// must not block.
///
/// @param[out] size of what was opened, which may have replaced another regular file
int openRegularFile(const std::string& path, std::uint64_t* size)
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat info = {};
    if (descriptor >= 0 && (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode))) {
        close(descriptor);
        return -1;
    }
    *size = static_cast<std::uint64_t>(info.st_size);
    if (descriptor >= 0 && info.st_size == 0) {
        // Such files may be made up by the system while they are read, without an end. They are taken as the empty ones
        // that they say they are.
        close(descriptor);
        return open("/dev/null", O_RDONLY | O_CLOEXEC);
    }
    return descriptor;
}

/// Reads a block from a place in a file, and tells how many bytes came.
std::size_t readBlock(int descriptor, char* target, std::size_t size, off_t place)
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t came = pread(descriptor, target + done, size - done, place + static_cast<off_t>(done));
        if (came > 0) {
            done += static_cast<std::size_t>(came);
        } else if (came == 0 || errno != EINTR) {
            break;
        }
    }
    return done;
}

} // namespace

void GzStream::Closer::operator()(gzFile_s* handle) const
{
    // A file that was only read has nothing to lose here.
    static_cast<void>(gzclose(handle));
}

GzStream::GzStream(Handle handle, int descriptor, dvn::Str path, std::uint64_t sizeOnDisk)
    : m_handle(std::move(handle)), m_descriptor(descriptor), m_path(std::move(path)), m_sizeOnDisk(sizeOnDisk)
{}

std::unique_ptr<GzStream> GzStream::open(const dvn::Str& path)
{
    if (!OFUtilities::isRegularFile(path)) {
        return nullptr;
    }
    std::uint64_t sizeOnDisk = 0;
    const int descriptor = openRegularFile(path.toUtf8(), &sizeOnDisk);
    // Owned at once, so that nothing stays open when memory runs out below.
    Handle handle(descriptor < 0 ? nullptr : gzdopen(descriptor, "rb"));
    if (handle == nullptr) {
        if (descriptor >= 0) {
            close(descriptor);
        }
        return nullptr;
    }
    gzbuffer(handle.get(), GZIP_BUFFER_SIZE);
    return std::unique_ptr<GzStream>(new GzStream(std::move(handle), descriptor, path, sizeOnDisk));
}

int GzStream::nextByte()
{
    const gzFile handle = m_handle.get();
    // The macro of zlib takes the byte from the buffer in place and calls only when that is empty.
    const int byte = gzgetc(handle);
    if (byte < 0) {
        noteEnd();
        return END_OF_DATA;
    }
    return byte;
}

void GzStream::unread(char byte)
{
    gzungetc(static_cast<unsigned char>(byte), m_handle.get());
}

bool GzStream::skipBehind(char sought)
{
    const gzFile handle = m_handle.get();
    const int target = static_cast<unsigned char>(sought);
    int byte = gzgetc(handle);
    while (byte >= 0 && byte != target) {
        byte = gzgetc(handle);
    }
    if (byte < 0) {
        noteEnd();
    }
    return byte >= 0;
}

bool GzStream::readLine(char* buffer, std::size_t size)
{
    const int room = static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
    if (gzgets(m_handle.get(), buffer, room) == nullptr) {
        noteEnd();
        return false;
    }
    return true;
}

std::size_t GzStream::readToLineEnd(char* target, std::size_t room)
{
    const gzFile handle = m_handle.get();
    std::size_t length = 0;
    while (length < room) {
        const int byte = gzgetc(handle);
        if (byte < 0) {
            noteEnd();
            break;
        }
        target[length++] = static_cast<char>(byte);
        if (byte == '\n') {
            break;
        }
    }
    return length;
}

std::size_t GzStream::read(void* target, std::size_t size)
{
    char* const bytes = static_cast<char*>(target);
    std::size_t done = size < SHARED_READ ? 0 : readShared(bytes, size);
    while (done < size) {
        const std::size_t wanted = std::min(size - done, READ_BLOCK);
        const int came = gzread(m_handle.get(), bytes + done, static_cast<unsigned>(wanted));
        done += static_cast<std::size_t>(std::max(came, 0));
        if (came < static_cast<int>(wanted)) {
            noteEnd();
            break;
        }
    }
    return done;
}

/// Reads a long piece of a file that is not compressed with all cores, as copies out of the system's cache take longer
/// than they need to with one. Tells how many bytes came; the usual way goes on behind them.
std::size_t GzStream::readShared(char* target, std::size_t size)
{
    const z_off_t position = gztell(m_handle.get());
    if (gzdirect(m_handle.get()) == 0 || position < 0 || tbb::this_task_arena::max_concurrency() < 2) {
        return 0;
    }
    std::vector<std::size_t> came((size + SHARED_BLOCK - 1) / SHARED_BLOCK);
    tbb::this_task_arena::isolate([&] {
        // Each task fills its own block and its own entry.
        tbb::parallel_for(std::size_t{0}, came.size(), [&](std::size_t i) {
            const std::size_t first = i * SHARED_BLOCK;
            came[i] = readBlock(m_descriptor, target + first, std::min(SHARED_BLOCK, size - first),
                                static_cast<off_t>(position) + static_cast<off_t>(first));
        });
    });
    std::size_t done = 0;
    for (const std::size_t bytes : came) {
        done += bytes;
        if (bytes < SHARED_BLOCK) {
            break;
        }
    }
    // If the stream cannot follow, it reads the same again from where it stands.
    return gzseek(m_handle.get(), position + static_cast<z_off_t>(done), SEEK_SET) < 0 ? 0 : done;
}

void GzStream::skip(std::uint64_t size)
{
    std::array<char, SKIP_BLOCK> scratch;
    while (size != 0) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, scratch.size()));
        if (read(scratch.data(), wanted) < wanted) {
            return;
        }
        size -= wanted;
    }
}

std::uint64_t GzStream::contentLimit() const
{
    return gzdirect(m_handle.get()) != 0 ? m_sizeOnDisk : m_sizeOnDisk * INFLATE_RATIO + INFLATE_EXTRA;
}

bool GzStream::canHold(std::uint64_t bytes)
{
    if (gzdirect(m_handle.get()) != 0 || bytes <= m_sizeOnDisk * USUAL_RATIO + INFLATE_EXTRA ||
        bytes > contentLimit()) {
        return bytes <= contentLimit();
    }
    if (!m_inflatedSize) {
        m_inflatedSize = inflatedSize();
    }
    return bytes <= *m_inflatedSize;
}

std::uint64_t GzStream::inflatedSize() const
{
    const std::unique_ptr<GzStream> other = open(m_path);
    if (other == nullptr) {
        return 0;
    }
    // The stream that reads the values will tell.
    other->m_damageTold = true;
    std::array<char, SKIP_BLOCK> scratch;
    std::uint64_t size = 0;
    for (std::size_t came = scratch.size(); came == scratch.size(); size += came) {
        came = other->read(scratch.data(), scratch.size());
    }
    return size;
}

void GzStream::noteEnd()
{
    int error = Z_OK;
    static_cast<void>(gzerror(m_handle.get(), &error));
    if (error < 0 && !m_damageTold) {
        m_damageTold = true;
        OFLogger::get().logInfo(
            "OFFile",
            dvn::Str("Compressed data is damaged or ends early, only what stands before it counts. File is %1")
                .arg(m_path));
    }
}
