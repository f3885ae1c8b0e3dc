// Stands in for ssh where a test wants to see what ssh is given, or wants it to behave badly.
//
// What it does is told by its own environment:
//   FAKESSH_DUMP    a file that gets the arguments, the environment, the streams and the signal state, as lines
//   FAKESSH_SAY     bytes for standard error at once
//   FAKESSH_FLOOD   how many bytes of filler to write to standard error
//   FAKESSH_EXIT    ends at once with this status
//   FAKESSH_LAST    bytes for standard error when SIGTERM comes; then it ends with status 255
//   FAKESSH_IGNORE  ignores SIGTERM
//   FAKESSH_MISS    misses the first SIGTERM
//   FAKESSH_FLAP    a file: while it is there, ends by itself after up to eight seconds, in one way or another
//   FAKESSH_MUTE    closes standard error at once
//   FAKESSH_HEIR    leaves a process behind that keeps the pipes open; its pid goes to this file
// Without FAKESSH_EXIT it runs until it is told to end.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <thread>

extern char** environ;

namespace {

std::string setting(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string kindOf(int fd) {
    struct stat status {};
    if (::fstat(fd, &status) != 0) {
        return "closed";
    }
    return S_ISFIFO(status.st_mode) ? "pipe" : "other";
}

std::string openDescriptors() {
    std::string open;
    DIR* directory = ::opendir("/proc/self/fd");
    while (const auto* entry = ::readdir(directory)) {
        if (entry->d_name[0] != '.' && std::atoi(entry->d_name) != ::dirfd(directory)) {
            open += std::string(open.empty() ? "" : " ") + entry->d_name;
        }
    }
    ::closedir(directory);
    return open;
}

/// Standard input is open and empty: nothing to read, and no end.
std::string standardInput() {
    ::fcntl(STDIN_FILENO, F_SETFL, O_NONBLOCK);
    char byte = 0;
    const auto count = ::read(STDIN_FILENO, &byte, 1);
    return count < 0 && errno == EAGAIN ? "open" : "ended";
}

std::string signalState() {
    std::ifstream status("/proc/self/status");
    std::string state;
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("SigBlk") || line.starts_with("SigIgn")) {
            state += line + "\n";
        }
    }
    return state;
}

void dump(const std::string& path, int argc, char** argv) {
    const auto temporary = path + ".part";
    const auto descriptors = openDescriptors();
    {
        std::ofstream out(temporary);
        for (int i = 1; i < argc; ++i) {
            out << "argument " << argv[i] << "\n";
        }
        for (char** entry = environ; *entry != nullptr; ++entry) {
            out << "environment " << *entry << "\n";
        }
        out << "streams " << kindOf(0) << " " << kindOf(1) << " " << kindOf(2) << "\n";
        out << "descriptors " << descriptors << "\n";
        out << "input " << standardInput() << "\n";
        out << "session " << (::getsid(0) == ::getpid() ? "own" : "shared") << "\n";
        out << "pid " << ::getpid() << "\n" << signalState();
    }
    std::rename(temporary.c_str(), path.c_str());
}

void say(const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const auto count = ::write(STDERR_FILENO, text.data() + done, text.size() - done);
        if (count <= 0) {
            return;
        }
        done += static_cast<std::size_t>(count);
    }
}

void leaveHeir(const std::string& pidFile) {
    const pid_t heir = ::fork();
    if (heir == 0) {
        ::pause();
        ::_exit(0);
    }
    std::ofstream(pidFile) << heir << "\n";
}

std::string lastWords;

void endWithLastWords(int) {
    say(lastWords);
    ::_exit(255);
}

void missThisOne(int) {
    std::signal(SIGTERM, SIG_DFL);
}

/// A start in a bad moment: most work for a while, some end at once, some in an odd way.
void flap() {
    std::mt19937 random(std::random_device{}());
    const auto below = [&](unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random); };
    const unsigned milliseconds = below(5) == 0 ? below(3000) : 3000 + below(5000);
    if (below(10) == 0) {
        std::signal(SIGTERM, missThisOne);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    switch (below(5)) {
        case 0:
            ::close(STDERR_FILENO);
            break;
        case 1:
            ::kill(::getpid(), SIGKILL);
            break;
        case 2:
            say("debug1: " + std::string(100000, 'x') + "\n");
            break;
        default:
            say("Connection closed by remote host\n");
            break;
    }
    ::_exit(255);
}

}  // namespace

int main(int argc, char** argv) {
    lastWords = setting("FAKESSH_LAST");
    if (!lastWords.empty()) {
        std::signal(SIGTERM, endWithLastWords);
    }
    if (!setting("FAKESSH_IGNORE").empty()) {
        std::signal(SIGTERM, SIG_IGN);
    }
    if (!setting("FAKESSH_MISS").empty()) {
        std::signal(SIGTERM, missThisOne);
    }
    if (const auto path = setting("FAKESSH_DUMP"); !path.empty()) {
        dump(path, argc, argv);
    }
    if (const auto path = setting("FAKESSH_HEIR"); !path.empty()) {
        leaveHeir(path);
    }
    if (!setting("FAKESSH_MUTE").empty()) {
        ::close(STDERR_FILENO);
    }
    say(setting("FAKESSH_SAY"));
    if (const auto path = setting("FAKESSH_FLAP"); !path.empty() && ::access(path.c_str(), F_OK) == 0) {
        flap();
    }
    if (const auto flood = setting("FAKESSH_FLOOD"); !flood.empty()) {
        const std::string block(65536, 'x');
        for (auto left = std::stoull(flood); left > 0; left -= std::min<unsigned long long>(left, block.size())) {
            say(block.substr(0, std::min<unsigned long long>(left, block.size())));
        }
    }
    if (const auto status = setting("FAKESSH_EXIT"); !status.empty()) {
        return std::atoi(status.c_str());
    }
    for (;;) {
        ::pause();
    }
}
