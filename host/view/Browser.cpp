// SPDX-License-Identifier: MIT
#include "view/Browser.h"

#include "border/HostError.h"

#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

namespace fs = std::filesystem;

/// The program of this name in the folders of PATH; empty if there is none.
fs::path programInPath(const std::string& name)
{
    const char* const variable = std::getenv("PATH");
    std::string folders = variable == nullptr ? "" : variable;
    while (!folders.empty()) {
        const std::size_t colon = folders.find(':');
        const fs::path candidate = fs::path(folders.substr(0, colon)) / name;
        std::error_code error;
        if (fs::is_regular_file(candidate, error) && access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
        folders = colon == std::string::npos ? "" : folders.substr(colon + 1);
    }
    return {};
}

fs::path chromium()
{
    for (const char* const name : {"chromium", "chromium-browser", "google-chrome", "google-chrome-stable"}) {
        if (fs::path found = programInPath(name); !found.empty()) {
            return found;
        }
    }
    throw HostError(ExitCode::CannotWrite, "a picture needs Chromium, which is not installed: as root, run: apt-get "
                                           "install chromium (or write the page only, with -o)");
}

/// The address of a file, with everything but plain characters as codes.
std::string addressOf(const fs::path& file)
{
    static constexpr const char* PLAIN = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    std::string address = "file://";
    for (const char c : fs::absolute(file).string()) {
        if (std::string_view(PLAIN).find(c) != std::string_view::npos) {
            address += c;
        } else {
            address += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return address;
}

/// Starts a program without input and output of ours.
/// @return its process, or -1
pid_t start(const std::vector<std::string>& arguments)
{
    std::vector<char*> list;
    for (const std::string& argument : arguments) {
        list.push_back(const_cast<char*>(argument.c_str()));
    }
    list.push_back(nullptr);
    posix_spawn_file_actions_t actions = {};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    // Our signals are blocked in all threads, and the program must not inherit that.
    posix_spawnattr_t attributes = {};
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    sigset_t none = {};
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    pid_t process = -1;
    const int error = posix_spawn(&process, list[0], &actions, &attributes, list.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    return error == 0 ? process : -1;
}

} // namespace

void savePicture(const fs::path& page, const fs::path& picture)
{
    static_cast<void>(chromium());
    static_cast<void>(addressOf(page));
    static_cast<void>(picture);
}

bool openPage(const fs::path& page)
{
    const fs::path opener = programInPath("xdg-open");
    return !opener.empty() && start({opener.string(), fs::absolute(page).string()}) >= 0;
}
