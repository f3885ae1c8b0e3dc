// Serves the fallback script with a limit on its descriptors, obeys one-letter commands, and prints a number for each:
//
//   serve_pac descriptors on|off     listens or not, and prints the port
//   h   hoards every descriptor that is left: how many
//   r   releases them: how many
//   s   starts a program with two pipes: 1 when that was possible
//   p   processor time used so far, in microseconds
//   w   how often it has woken up so far
#include "base/Pipe.h"
#include "pac/PacServer.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <thread>
#include <vector>

namespace {

std::vector<velmora::UniqueFd> hoard;

long hoardDescriptors() {
    for (;;) {
        velmora::UniqueFd descriptor(::open("/dev/null", O_RDONLY));
        if (!descriptor) {
            return static_cast<long>(hoard.size());
        }
        hoard.push_back(std::move(descriptor));
    }
}

long startProgram() {
    const auto input = velmora::makePipe();
    const auto output = velmora::makePipe();
    const pid_t process = input && output ? ::fork() : -1;
    if (process == 0) {
        ::execl("/bin/sh", "sh", "-c", "exit 7", nullptr);
        ::_exit(127);
    }
    int status = 0;
    return process > 0 && ::waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 7
               ? 1
               : 0;
}

long obey(char command) {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    switch (command) {
        case 'h':
            return hoardDescriptors();
        case 'r': {
            const auto count = static_cast<long>(hoard.size());
            hoard.clear();
            return count;
        }
        case 's':
            return startProgram();
        case 'p':
            return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1'000'000 + usage.ru_utime.tv_usec +
                   usage.ru_stime.tv_usec;
        default:
            return usage.ru_nvcsw;
    }
}

void print(long number) {
    std::printf("%ld\n", number);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    const auto descriptors = static_cast<rlim_t>(argc > 1 ? std::atol(argv[1]) : 64);
    const rlimit limit{descriptors, descriptors};
    ::setrlimit(RLIMIT_NOFILE, &limit);
    hoard.reserve(descriptors);

    // ThreadSanitizer starts its own thread, which wakes up, with our first one. It shall not depend on the server.
    std::thread([] {}).join();

    velmora::PacServer server(0);
    if (argc > 2 && std::string_view(argv[2]) == "on") {
        server.start();
    }
    print(server.listeningPort());
    char command = 0;
    while (::read(STDIN_FILENO, &command, 1) == 1) {
        print(obey(command));
    }
}
