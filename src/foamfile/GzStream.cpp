// SPDX-License-Identifier: MIT
#include "foamfile/GzStream.h"

#include "LibCore/Limits.h"
#include "LibCore/Parallel.h"
#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
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
/// Room before staged bytes for the rest of the text before them: a chunk of lines and some more.
constexpr std::size_t STAGING_ROOM = 294912;

/// A read of this size or more is shared among the cores, if the file is not compressed.
constexpr std::size_t SHARED_READ = 4194304;
constexpr std::size_t SHARED_BLOCK = 1048576;

/// Opens what was found to be a regular file a moment ago. Gives -1 if it cannot be opened or has been replaced by
/// something else, which must not block.
///
/// @param[out] size of what was opened, as another regular file may have replaced the first
int openRegularFile(const std::string& path, std::uint64_t* size)
{
    // guard: regular-descriptor
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat info = {};
    if (descriptor >= 0 && (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode))) {
        close(descriptor);
        return -1;
    }
    *size = static_cast<std::uint64_t>(info.st_size);
    // guard: generated-file
    if (descriptor >= 0 && info.st_size == 0) {
        // The system may generate such a file while it is read, without an end. It reads as the empty file that it says
        // it is.
        close(descriptor);
        return open("/dev/null", O_RDONLY | O_CLOEXEC);
    }
    return descriptor;
}

/// Reads a block from a place in a file, and returns how many bytes were read.
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
    // Owned at once, so that nothing stays open if memory runs out below.
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
    if (!stored().empty()) {
        return static_cast<unsigned char>(m_ahead.data()[m_next++]);
    }
    const gzFile handle = m_handle.get();
    // The macro of zlib takes the byte from its buffer in place and only calls a function when that is empty.
    const int byte = gzgetc(handle);
    if (byte < 0) {
        noteEnd();
        return END_OF_DATA;
    }
    return byte;
}

void GzStream::unread(char byte)
{
    if (m_next != 0) {
        m_ahead.data()[--m_next] = byte;
    } else {
        gzungetc(static_cast<unsigned char>(byte), m_handle.get());
    }
}

bool GzStream::skipPast(char sought)
{
    for (std::string_view text = stored(); !text.empty(); text = stored()) {
        const std::size_t place = text.find(sought);
        if (place != std::string_view::npos) {
            m_next += place + 1;
            return true;
        }
        m_next = m_end;
    }
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
    if (stored().empty()) {
        const int room = static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
        if (gzgets(m_handle.get(), buffer, room) == nullptr) {
            noteEnd();
            return false;
        }
        return true;
    }
    const std::size_t length = readToLineEnd(buffer, size - 1);
    buffer[length] = '\0';
    return true;
}

std::size_t GzStream::readToLineEnd(char* target, std::size_t room)
{
    std::size_t length = 0;
    for (std::string_view text = stored(); !text.empty() && length < room; text = stored()) {
        const std::size_t lineEnd = std::min(text.find('\n'), text.size() - 1) + 1;
        const std::size_t count = std::min(lineEnd, room - length);
        std::memcpy(target + length, text.data(), count);
        m_next += count;
        length += count;
        if (target[length - 1] == '\n') {
            return length;
        }
    }
    const gzFile handle = m_handle.get();
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
    std::size_t done = 0;
    for (std::string_view text = stored(); !text.empty() && done < size; text = stored()) {
        const std::size_t count = std::min(text.size(), size - done);
        std::memcpy(bytes + done, text.data(), count);
        m_next += count;
        done += count;
    }
    done += readStored(bytes + done, size - done);
    if (done < size) {
        noteEnd();
    }
    return done;
}

/// Reads what comes after the bytes in memory, and returns how many there were.
std::size_t GzStream::readStored(char* target, std::size_t size)
{
    std::size_t done = size < SHARED_READ ? 0 : readShared(target, size);
    while (done < size) {
        const std::size_t wanted = std::min(size - done, READ_BLOCK);
        const int came = gzread(m_handle.get(), target + done, static_cast<unsigned>(wanted));
        // guard: failed-read
        done += static_cast<std::size_t>(std::max(came, 0));
        if (came < static_cast<int>(wanted)) {
            break;
        }
    }
    return done;
}

std::string_view GzStream::stored()
{
    if (m_next == m_end) {
        // Even if nothing is staged, because bytes that are put back must then go to zlib.
        m_next = m_end = 0;
        if (m_stagedCount != 0) {
            appendStaged(0);
        }
    }
    return {m_ahead.data() + m_next, m_end - m_next};
}

/// Joins the `unread` last bytes of the text before and the staged bytes. If there is room in front of the staged
/// bytes, these stay in place and the few unread ones are copied there.
void GzStream::appendStaged(std::size_t unread)
{
    if (unread <= STAGING_ROOM) {
        const std::size_t first = STAGING_ROOM - unread;
        if (unread != 0) {
            std::memcpy(m_staged.data() + first, m_ahead.data() + m_next, unread);
        }
        std::swap(m_ahead, m_staged);
        m_next = first;
        m_end = STAGING_ROOM + m_stagedCount;
    } else {
        // Drops what has been taken, or the memory would grow with the file.
        std::memmove(m_ahead.data() + 1, m_ahead.data() + m_next, unread);
        m_next = 1;
        m_end = 1 + unread;
        m_ahead.grow(m_end + m_stagedCount + 1, m_end);
        std::memcpy(m_ahead.data() + m_end, m_staged.data() + STAGING_ROOM, m_stagedCount);
        m_end += m_stagedCount;
    }
    m_stagedCount = 0;
    m_ahead.data()[m_end] = '\0';
}

std::string_view GzStream::peek(std::size_t size)
{
    const std::size_t unread = stored().size();
    if (unread < size && m_stagedCount != 0) {
        appendStaged(unread);
    }
    if (m_end - m_next < size) {
        stage(size - (m_end - m_next));
        appendStaged(m_end - m_next);
    }
    return {m_ahead.data() + m_next, std::min(size, m_end - m_next)};
}

int GzStream::byteAhead(std::uint64_t distance)
{
    const std::size_t inMemory = stored().size();
    const z_off_t position = gztell(m_handle.get());
    if (distance >= inMemory && m_stagedCount == 0 && gzdirect(m_handle.get()) != 0 && position >= 0) {
        unsigned char byte = 0;
        const auto place = static_cast<off_t>(position) + static_cast<off_t>(distance - inMemory);
        return readBlock(m_descriptor, reinterpret_cast<char*>(&byte), 1, place) == 1 ? byte : END_OF_DATA;
    }
    // guard: byte-ahead
    if (!canHold(distance)) {
        return END_OF_DATA;
    }
    const std::string_view ahead = peek(static_cast<std::size_t>(distance) + 1);
    return distance < ahead.size() ? static_cast<unsigned char>(ahead[static_cast<std::size_t>(distance)])
                                   : END_OF_DATA;
}

void GzStream::stage(std::size_t size)
{
    if (m_stagedCount == 0) {
        m_staged.grow(STAGING_ROOM + size + 1, 0);
        m_stagedCount = readStored(m_staged.data() + STAGING_ROOM, size);
    }
}

/// Reads a long piece of an uncompressed file with all cores, because one core alone is slow to copy out of the
/// system's cache. Returns how many bytes were read; the caller reads the rest in the usual way.
std::size_t GzStream::readShared(char* target, std::size_t size)
{
    const z_off_t position = gztell(m_handle.get());
    if (gzdirect(m_handle.get()) == 0 || position < 0 || !dvf::hasSeveralThreads()) {
        return 0;
    }
    std::vector<std::size_t> came((size + SHARED_BLOCK - 1) / SHARED_BLOCK);
    dvf::isolated([&] {
        // Each task fills its own block and its own entry.
        dvf::forEachIndex(came.size(), [&](std::size_t i) {
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
    // If the stream cannot be advanced, it reads the same bytes again from where it is.
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
    return gzdirect(m_handle.get()) != 0 ? m_sizeOnDisk
                                         : m_sizeOnDisk * dvf::limits::INFLATE_RATIO + dvf::limits::INFLATE_EXTRA;
}

bool GzStream::canHold(std::uint64_t bytes)
{
    if (gzdirect(m_handle.get()) != 0 ||
        bytes <= m_sizeOnDisk * dvf::limits::USUAL_INFLATE_RATIO + dvf::limits::INFLATE_EXTRA ||
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
    // The stream that reads the values will report damage.
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
