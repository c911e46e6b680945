// SPDX-License-Identifier: MIT
#include "foamfile/GzStream.h"

#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace {

/// Buffer of zlib for one stream. Larger ones gained nothing in measurements.
constexpr unsigned GZIP_BUFFER_SIZE = 65536;
/// One read asks for no more than this, because a read that meets damage loses what it had so far.
constexpr std::size_t READ_BLOCK = 262144;
constexpr std::size_t SKIP_BLOCK = 4096;
/// The highest ratio that deflate reaches, and room for what is not in proportion.
constexpr std::uint64_t INFLATE_RATIO = 1032;
constexpr std::uint64_t INFLATE_EXTRA = 65536;

} // namespace

void GzStream::Closer::operator()(gzFile_s* handle) const
{
    // A file that was only read has nothing to lose here.
    static_cast<void>(gzclose(handle));
}

GzStream::GzStream(Handle handle, dvn::Str path, std::uint64_t sizeOnDisk)
    : m_handle(std::move(handle)), m_path(std::move(path)), m_sizeOnDisk(sizeOnDisk)
{}

std::unique_ptr<GzStream> GzStream::open(const dvn::Str& path)
{
    std::uint64_t sizeOnDisk = 0;
    if (!OFUtilities::isRegularFile(path, &sizeOnDisk)) {
        return nullptr;
    }
    // Owned at once, so that nothing stays open when memory runs out below.
    Handle handle(gzopen(path.toUtf8().c_str(), "rb"));
    if (handle == nullptr) {
        return nullptr;
    }
    gzbuffer(handle.get(), GZIP_BUFFER_SIZE);
    return std::unique_ptr<GzStream>(new GzStream(std::move(handle), path, sizeOnDisk));
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
    std::size_t done = 0;
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
