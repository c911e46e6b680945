// SPDX-License-Identifier: MIT
#include "sweeps/FailingCalls.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

namespace {

/// No call fails while this is negative.
std::atomic<int> armedKind = -1;
std::atomic<std::size_t> callsLeft = 0;
std::atomic<bool> failed = false;

bool mustFail(FailingCall kind)
{
    if (armedKind.load() != static_cast<int>(kind) || callsLeft.fetch_sub(1) != 0) {
        return false;
    }
    failed = true;
    return true;
}

} // namespace

FailingCallScope::FailingCallScope(FailingCall kind, std::size_t which) : m_which(which)
{
    failed = false;
    callsLeft = which;
    armedKind = static_cast<int>(kind);
}

FailingCallScope::~FailingCallScope()
{
    armedKind = -1;
}

bool FailingCallScope::hasFailed() const
{
    return failed;
}

std::size_t FailingCallScope::callCount() const
{
    // Unsigned, so it is also right once calls beyond the failed one have wrapped the counter.
    return m_which - callsLeft.load();
}

#ifdef HAS_FAILING_ALLOCATIONS
namespace {

void* allocate(std::size_t size, std::size_t alignment)
{
    if (mustFail(FailingCall::Allocation)) {
        throw std::bad_alloc();
    }
    void* const memory = alignment == 0 ? std::malloc(size == 0 ? 1 : size)
                                        : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

} // namespace

void* operator new(std::size_t size)
{
    return allocate(size, 0);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return allocate(size, static_cast<std::size_t>(alignment));
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return mustFail(FailingCall::Allocation) ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept
{
    std::free(memory);
}
#endif

// The linker replaces the calls with these functions and prescribes their names.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

gzFile __real_gzdopen(int descriptor, const char* mode);
int __real_gzread(gzFile file, void* buffer, unsigned size);
char* __real_gzgets(gzFile file, char* buffer, int size);
int __real_gzgetc(gzFile file);
DIR* __real_opendir(const char* path);
dirent* __real_readdir(DIR* folder);
int __real_stat(const char* path, struct stat* status);
int __real_fstat(int descriptor, struct stat* status);
int __real_access(const char* path, int mode);

gzFile __wrap_gzdopen(int descriptor, const char* mode)
{
    return mustFail(FailingCall::GzOpen) ? nullptr : __real_gzdopen(descriptor, mode);
}

int __wrap_gzread(gzFile file, void* buffer, unsigned size)
{
    return mustFail(FailingCall::GzRead) ? -1 : __real_gzread(file, buffer, size);
}

char* __wrap_gzgets(gzFile file, char* buffer, int size)
{
    return mustFail(FailingCall::GzRead) ? nullptr : __real_gzgets(file, buffer, size);
}

int __wrap_gzgetc(gzFile file)
{
    return mustFail(FailingCall::GzRead) ? -1 : __real_gzgetc(file);
}

DIR* __wrap_opendir(const char* path)
{
    if (mustFail(FailingCall::OpenFolder)) {
        errno = EMFILE;
        return nullptr;
    }
    return __real_opendir(path);
}

dirent* __wrap_readdir(DIR* folder)
{
    if (mustFail(FailingCall::ReadFolder)) {
        errno = EIO;
        return nullptr;
    }
    return __real_readdir(folder);
}

int __wrap_stat(const char* path, struct stat* status)
{
    return mustFail(FailingCall::FileStatus) ? -1 : __real_stat(path, status);
}

int __wrap_fstat(int descriptor, struct stat* status)
{
    return mustFail(FailingCall::FileStatus) ? -1 : __real_fstat(descriptor, status);
}

int __wrap_access(const char* path, int mode)
{
    return mustFail(FailingCall::FileAccess) ? -1 : __real_access(path, mode);
}
}
// NOLINTEND(readability-identifier-naming)
