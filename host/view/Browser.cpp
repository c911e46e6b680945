// SPDX-License-Identifier: MIT
#include "view/Browser.h"

#include "border/HostError.h"
#include "border/TextForms.h"
#include "output/Interrupt.h"
#include "view/ScratchFolder.h"
#include "view/TemporaryFile.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// What the page logs at its end if its address ends in "#picture" (page/main.js).
constexpr const char* PICTURE_MODE = "#picture";
constexpr std::string_view DRAWN_MARK = "\"picture: drawn\"";
constexpr std::string_view FAILED_MARK = "\"picture: ";

// Far more than any page needs, so only a browser that hangs is ended.
constexpr std::chrono::seconds LONGEST_RUN(180);
constexpr std::chrono::milliseconds LOOK_INTERVAL(20);
// How long the desktop may look for a browser that it does not have.
constexpr std::chrono::seconds LONGEST_SEARCH(3);

[[noreturn]] void fail(const std::string& message)
{
    throw HostError(ExitCode::CannotWrite, message);
}

/// The program of this name in the folders of PATH; empty if there is none.
fs::path programInPath(const std::string& name)
{
    const char* const variable = std::getenv("PATH");
    std::string folders = variable == nullptr ? "" : variable;
    while (!folders.empty()) {
        const std::size_t colon = folders.find(':');
        fs::path candidate = fs::path(folders.substr(0, colon)) / name;
        std::error_code error;
        if (fs::is_regular_file(candidate, error) && access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
        folders = colon == std::string::npos ? "" : folders.substr(colon + 1);
    }
    return {};
}

fs::path chromiumProgram()
{
    for (const char* const name : {"chromium", "chromium-browser", "google-chrome", "google-chrome-stable"}) {
        if (fs::path found = programInPath(name); !found.empty()) {
            return found;
        }
    }
    return {};
}

/// The address of a file, with everything but plain characters as codes.
std::string addressOf(const fs::path& file)
{
    constexpr std::string_view PLAIN = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    std::string address = "file://";
    for (const char c : fs::absolute(file).string()) {
        if (PLAIN.find(c) != std::string_view::npos) {
            address += c;
        } else {
            address += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return address;
}

/// Texts in the form in which a program gets them.
std::vector<char*> pointersTo(const std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// Our environment, but with this folder for temporary files.
std::vector<std::string> environmentWith(const fs::path& temporaryFiles)
{
    constexpr std::string_view VARIABLE = "TMPDIR=";
    std::vector<std::string> entries = {std::string(VARIABLE) + temporaryFiles.string()};
    for (char** entry = environ; *entry != nullptr; ++entry) {
        if (!std::string_view(*entry).starts_with(VARIABLE)) {
            entries.emplace_back(*entry);
        }
    }
    return entries;
}

/// Starts a program that writes to a file and reads nothing.
pid_t start(const std::vector<std::string>& arguments, char** environment, const fs::path& output)
{
    const std::vector<char*> list = pointersTo(arguments);
    posix_spawn_file_actions_t actions = {};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    // Our signals are blocked in all threads, and the program must not inherit that.
    posix_spawnattr_t attributes = {};
    posix_spawnattr_init(&attributes);
    // A group of its own, so that its processes can be ended together.
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    sigset_t none = {};
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    pid_t process = -1;
    const int error = posix_spawn(&process, list[0], &actions, &attributes, list.data(), environment);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (error != 0) {
        fail(fmt::format("cannot start {}: {}", arguments.front(), std::strerror(error)));
    }
    return process;
}

/// A program that is ended with all its processes if it takes too long, or after an interrupt.
///
/// Make one before the folder that the program writes to: clean-ups run in the order of their making, and the folder
/// can be removed only when nobody writes to it.
class Program
{
public:
    Program()
        : m_onInterrupt([this] {
              // Stays locked until the process ends, so that nothing is started any more.
              m_mutex.lock();
              end();
          })
    {}

    /// Runs with the folder for its temporary files.
    /// @return false if it had to be ended
    bool run(const std::vector<std::string>& arguments, const fs::path& output, const fs::path& temporaryFiles)
    {
        const std::vector<std::string> environment = environmentWith(temporaryFiles);
        {
            const std::lock_guard lock(m_mutex);
            m_process = start(arguments, pointersTo(environment).data(), output);
        }
        const auto latest = std::chrono::steady_clock::now() + LONGEST_RUN;
        while (isRunning()) {
            if (std::chrono::steady_clock::now() > latest) {
                const std::lock_guard lock(m_mutex);
                end();
                return false;
            }
            std::this_thread::sleep_for(LOOK_INTERVAL);
        }
        return true;
    }

private:
    bool isRunning()
    {
        const std::lock_guard lock(m_mutex);
        if (waitpid(m_process, nullptr, WNOHANG) != 0) {
            m_process = 0;
        }
        return m_process != 0;
    }

    /// For a caller that has the lock.
    void end()
    {
        if (m_process != 0) {
            static_cast<void>(kill(-m_process, SIGKILL));
            static_cast<void>(waitpid(m_process, nullptr, 0));
            m_process = 0;
        }
    }

    std::mutex m_mutex;
    pid_t m_process = 0; ///< 0 if none runs
    OnInterrupt m_onInterrupt;
};

std::string textOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// The message with the last line that the browser wrote, which often tells why it gave up.
std::string withLastLine(const std::string& message, const std::string& log)
{
    constexpr std::size_t LONGEST = 200;
    const std::string text = withoutTrailingBlanks(log);
    const std::string line = text.substr(text.rfind('\n') + 1, LONGEST);
    return line.empty() ? message : fmt::format("{}; it wrote last: {}", message, line);
}

/// The page, or a copy of it in the folder if the browser would take the file for plain text. It looks only at the
/// name, and through links.
fs::path namedAsPage(const fs::path& page, const fs::path& folder)
{
    fs::path file = fs::canonical(page);
    const std::string extension = lowerCase(file.extension().string());
    if (extension == ".html" || extension == ".htm") {
        return file;
    }
    fs::path copy = folder / "page.html";
    fs::copy_file(file, copy);
    return copy;
}

/// Why there is no picture, from what the browser wrote.
std::string failureOf(const std::string& log)
{
    const std::size_t mark = log.find(FAILED_MARK);
    if (mark == std::string::npos || mark == log.find(DRAWN_MARK)) {
        return withLastLine("the browser does not draw the page", log);
    }
    const std::size_t first = mark + FAILED_MARK.size();
    return log.substr(first, log.find_first_of("\"\n", first) - first);
}

void move(const fs::path& from, const fs::path& to)
{
    std::error_code error;
    fs::rename(from, to, error);
    if (!error) {
        return;
    }
    // The temporary files may be on another file system.
    const TemporaryFile copy(to);
    fs::copy_file(from, copy.path(), error);
    if (error) {
        fail(fmt::format("cannot write {}: {}", to.string(), error.message()));
    }
    copy.moveToTarget();
}

} // namespace

bool hasChromium()
{
    return !chromiumProgram().empty();
}

void savePicture(const fs::path& page, const fs::path& picture)
{
    const fs::path program = chromiumProgram();
    if (program.empty()) {
        fail(NO_CHROMIUM);
    }
    Program browser;
    const ScratchFolder scratch;
    const fs::path drawn = scratch.path() / "picture.png";
    const fs::path log = scratch.path() / "log";
    std::vector<std::string> arguments = {
        program.string(), "--headless=new", "--hide-scrollbars", "--no-first-run", "--disable-background-networking",
        // No machine without a screen has a graphics card that it could count on.
        "--use-angle=swiftshader", "--enable-unsafe-swiftshader", "--enable-logging=stderr",
        "--user-data-dir=" + (scratch.path() / "profile").string(), "--window-size=1600,1000",
        // The browser's clock stops while the page works, so this is not how long it takes.
        "--virtual-time-budget=20000", "--screenshot=" + drawn.string()};
    if (geteuid() == 0) {
        arguments.emplace_back("--no-sandbox");
    }
    arguments.push_back(addressOf(namedAsPage(page, scratch.path())) + PICTURE_MODE);
    const bool ended = browser.run(arguments, log, scratch.path());
    const std::string told = textOf(log);
    if (!ended) {
        fail(withLastLine(fmt::format("{} did not draw the page in {} seconds", program.string(), LONGEST_RUN.count()),
                          told));
    }
    if (told.find(DRAWN_MARK) == std::string::npos || !fs::exists(drawn)) {
        fail(fmt::format("no picture of the page: {}", failureOf(told)));
    }
    move(drawn, picture);
}

bool openPage(const fs::path& page)
{
    const fs::path opener = programInPath("xdg-open");
    if (opener.empty()) {
        return false;
    }
    // It ends with a code that says whether there is a browser, or, without a desktop, becomes the browser.
    const pid_t process = start({opener.string(), fs::absolute(page).string()}, environ, "/dev/null");
    const auto latest = std::chrono::steady_clock::now() + LONGEST_SEARCH;
    int status = 0;
    while (waitpid(process, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > latest) {
            return true;
        }
        std::this_thread::sleep_for(LOOK_INTERVAL);
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
