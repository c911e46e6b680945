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

// The callbacks of the init record do not carry an object. They run only inside the entry, on the thread that calls it.
thread_local PluginLibrary* loadingLibrary = nullptr;

/// Directs the callbacks to one library for the duration of a scope, even if the entry throws.
class LoadingScope
{
public:
    explicit LoadingScope(PluginLibrary* library) { loadingLibrary = library; }
    ~LoadingScope() { loadingLibrary = nullptr; }
    LoadingScope(const LoadingScope&) = delete;
    LoadingScope& operator=(const LoadingScope&) = delete;
};

/// The folder of this program, however it was called; empty if the system does not know.
std::filesystem::path programFolder()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

/// Waits until the worker threads that the library's loops started have ended.
///
/// They still run code of the library and of its dependencies, which must not be unloaded under them. This also makes
/// the host itself depend on TBB, so that the workers' own code stays loaded.
void joinWorkers()
{
    tbb::task_scheduler_handle workers{tbb::attach{}};
    // False if someone else in the process still uses them; then they are not ours to end.
    (void)tbb::finalize(workers, std::nothrow);
}

[[noreturn]] void refuse(const std::string& message)
{
    throw HostError(ExitCode::LibraryRefused, message);
}

} // namespace

std::vector<std::filesystem::path> PluginLibrary::searchedFiles()
{
    std::vector<std::filesystem::path> files;
    for (const char* const place : {".", DDPHOST_LIBRARY_FOLDER, "../src"}) {
        files.push_back((programFolder() / place / LIBRARY_NAME).lexically_normal());
    }
    return files;
}

std::string PluginLibrary::namedFile(const std::string& given)
{
    const char* const variable = std::getenv("DDP_PLUGIN");
    return given.empty() && variable != nullptr ? variable : given;
}

std::filesystem::path PluginLibrary::locate(const std::string& given)
{
    if (const std::string named = namedFile(given); !named.empty()) {
        return named;
    }
    for (const std::filesystem::path& candidate : searchedFiles()) {
        std::error_code error;
        if (std::filesystem::exists(candidate, error)) {
            return candidate;
        }
    }
    refuse(fmt::format("no {} next to the program; name it with --plugin or DDP_PLUGIN", LIBRARY_NAME));
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
    // For a name without a slash the loader would search its own folders.
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
        refuse(fmt::format("the library uses version {} of the interface, this host version {}",
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
    // The operation tables of another version differ, so no operation of that factory may be called.
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
