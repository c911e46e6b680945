// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostProviderInfo.h"

#include "DataProviderInterface.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// The loaded plug-in: its code, its registration and its factory.
///
/// Loading runs the complete start-up sequence of the interface: `dlopen`, the entry with a filled init record, the
/// registration and the factory's description of itself. The destructor reverses it: factory destroyed, exit function,
/// `dlclose`. Log lines go to `HostLog`. One thread uses an object.
class PluginLibrary
{
public:
    /// How the host answers a registration.
    enum class Registration
    {
        Accept,
        Refuse ///< for tests; the entry must then return null
    };

    /// The files that are looked for, in this order, if none is named.
    static std::vector<std::filesystem::path> searchedFiles();

    /// `given`, or if it is empty the environment variable DDP_PLUGIN; empty if neither names a file.
    static std::string namedFile(const std::string& given);

    /// The library's file: `namedFile` unless empty, else the first that exists next to the program, in the library
    /// folder of the same installation, or in the build tree.
    /// @throws HostError of `LibraryRefused` when there is none
    static std::filesystem::path locate(const std::string& given);

    /// @throws HostError of `LibraryRefused` when the file cannot be loaded, has no entry, registers nothing or has
    ///         another major version of the interface; of `Misbehaved` when the entry throws
    explicit PluginLibrary(const std::filesystem::path& file, Registration answer = Registration::Accept);
    ~PluginLibrary();

    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    /// The file as given.
    const std::filesystem::path& file() const { return m_file; }
    /// The name that the library registered its factory under, not its display name.
    const std::string& providerName() const { return m_providerName; }
    /// The major version that the registration states.
    std::int64_t apiVersion() const { return m_registration.apiVersion; }

    /// The entries of `setPluginInfo` in order of the calls.
    const std::vector<std::pair<std::string, std::string>>& pluginInfo() const { return m_pluginInfo; }

    /// False only for a refused registration, which leaves no factory behind.
    bool hasExitFunction() const { return m_exitFunction != nullptr; }

    /// The registered factory; not to be used after a refused registration.
    DDPDataProviderFactory& factory() const { return *m_registration.factory; }
    /// What the factory reported about its provider and settings when the library was loaded.
    const HostProviderInfo& providerInfo() const { return m_providerInfo; }

private:
    static std::int32_t onRegister(const char* providerName, DDPFactoryRegistration* registration);
    static void onPluginInfo(const char* key, const char* value);

    void load();
    void runEntry();
    void checkRegistration() const;
    void unload();

    std::filesystem::path m_file;
    Registration m_answer;
    void* m_handle = nullptr;
    DDPPluginExitFunction m_exitFunction = nullptr;
    bool m_registered = false;
    DDPFactoryRegistration m_registration = {};
    std::string m_providerName;
    std::vector<std::pair<std::string, std::string>> m_pluginInfo;
    HostProviderInfo m_providerInfo;
};
