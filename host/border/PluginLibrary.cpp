// SPDX-License-Identifier: MIT
#include "border/PluginLibrary.h"

#include "border/HostLog.h"

#include <fmt/format.h>
#include <tbb/global_control.h>

#include <cstdlib>
#include <new>
#include <system_error>

#include <dlfcn.h>

namespace {

constexpr const char* LIBRARY_NAME = "libOpenFoamPlugin.so";
constexpr const char* ENTRY_NAME = "initializeDataProviderPlugin";

// The callbacks of the init record carry no object. They run inside the entry alone, on the thread that calls it.
thread_local PluginLibrary* loadingLibrary = nullptr;

/// Directs the callbacks to one library for the length of a scope, also when the entry throws.
class LoadingScope
{
public:
    explicit LoadingScope(PluginLibrary* library) { loadingLibrary = library; }
    ~LoadingScope() { loadingLibrary = nullptr; }
    LoadingScope(const LoadingScope&) = delete;
    LoadingScope& operator=(const LoadingScope&) = delete;
};

/// Where this program lies, whatever name it was called by and from whichever folder; empty if the system does not
/// tell.
std::filesystem::path programFolder()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

/// Waits until the worker threads that the library's loops left behind have ended.
///
/// They still run code of the library and of what it brought along, which must not go from under them. This also makes
/// the host itself need TBB, so that the workers' own code stays.
void joinWorkers()
{
    tbb::task_scheduler_handle workers{tbb::attach{}};
    // False if someone else in the process still uses them; then they are none of ours to end.
    (void)tbb::finalize(workers, std::nothrow);
}

[[noreturn]] void refuse(const std::string& message)
{
    throw HostError(ExitCode::LibraryRefused, message);
}

} // namespace

std::filesystem::path PluginLibrary::locate(const std::string& given)
{
    if (!given.empty()) {
        return given;
    }
    if (const char* const fromEnvironment = std::getenv("DDP_PLUGIN"); fromEnvironment != nullptr) {
        return fromEnvironment;
    }
    const std::filesystem::path folder = programFolder();
    for (const char* const place : {".", DDPHOST_LIBRARY_FOLDER, "../src"}) {
        std::filesystem::path candidate = (folder / place / LIBRARY_NAME).lexically_normal();
        std::error_code error;
        if (std::filesystem::exists(candidate, error)) {
            return candidate;
        }
    }
    refuse(fmt::format("no {} beside the program; name it with --plugin or DDP_PLUGIN", LIBRARY_NAME));
}

PluginLibrary::PluginLibrary(const std::filesystem::path& file, Registration answer) : m_file(file), m_answer(answer)
{
    try {
        load();
    } catch (...) {
        unload();
        throw;
    }
}

PluginLibrary::~PluginLibrary()
{
    unload();
}

void PluginLibrary::load()
{
    // A name without a slash would make the loader search its own folders instead of the one that was meant.
    const std::string path = std::filesystem::absolute(m_file).string();
    m_handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_handle == nullptr) {
        refuse(fmt::format("cannot load the library: {}", dlerror()));
    }
    runEntry();
    if (m_answer == Registration::Refuse) {
        return;
    }
    checkRegistration();
    callLibrary("getProviderInfo", [this] { return m_registration.factory->getProviderInfo(&m_providerInfo); });
}

void PluginLibrary::runEntry()
{
    const auto entry = reinterpret_cast<DDPPluginInitFunction>(dlsym(m_handle, ENTRY_NAME));
    if (entry == nullptr) {
        refuse(fmt::format("{} has no entry '{}'", m_file.string(), ENTRY_NAME));
    }
    DDPPluginInitRecord record = {nullptr, onRegister, HostLog::receive, onPluginInfo};
    const LoadingScope scope(this);
    m_exitFunction = callLibrary(ENTRY_NAME, [&] { return entry(&record); });
}

void PluginLibrary::checkRegistration() const
{
    if (m_registration.apiVersion != DDP_API_VERSION_MAJOR && m_registration.apiVersion != 0) {
        refuse(fmt::format("the library speaks version {} of the interface, this host version {}",
                           m_registration.apiVersion, DDP_API_VERSION_MAJOR));
    }
    if (!m_registered || m_exitFunction == nullptr) {
        refuse(fmt::format("{} registers no provider", m_file.string()));
    }
}

void PluginLibrary::unload()
{
    if (m_handle == nullptr) {
        return;
    }
    if (m_registered && m_registration.destroyFactory != nullptr) {
        m_registration.destroyFactory(m_registration.factory);
    }
    if (m_exitFunction != nullptr) {
        m_exitFunction();
    }
    joinWorkers();
    dlclose(m_handle);
    m_handle = nullptr;
}

std::int32_t PluginLibrary::onRegister(const char* providerName, DDPFactoryRegistration* registration)
{
    PluginLibrary* const library = loadingLibrary;
    if (library == nullptr || providerName == nullptr || registration == nullptr || registration->factory == nullptr) {
        BorderFaults::get().add("a registration without name or factory, or outside the entry");
        return 0;
    }
    library->m_providerName = providerName;
    library->m_registration = *registration;
    // A factory of another version has other tables, so not one row of it may be called.
    library->m_registered =
        library->m_answer == Registration::Accept && registration->apiVersion == DDP_API_VERSION_MAJOR;
    return library->m_registered ? 1 : 0;
}

void PluginLibrary::onPluginInfo(const char* key, const char* value)
{
    if (loadingLibrary == nullptr || key == nullptr || value == nullptr) {
        BorderFaults::get().add("a plug-in info without key or value, or outside the entry");
        return;
    }
    loadingLibrary->m_pluginInfo.emplace_back(key, value);
}
