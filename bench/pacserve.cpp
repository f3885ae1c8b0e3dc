// Serves a PAC file until its standard input closes, and prints the port.
//
//   pacserve [port] [file]
#include "pac/PacServer.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

int main(int argc, char** argv) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);

    velmora::PacServer server(static_cast<std::uint16_t>(argc > 1 ? std::atoi(argv[1]) : 0));
    if (argc > 2) {
        std::ifstream file(argv[2], std::ios::binary);
        server.setContent(std::string(std::istreambuf_iterator<char>(file), {}));
    }
    server.start();
    std::printf("%d\n", server.listeningPort());
    std::fflush(stdout);
    char byte = 0;
    while (::read(STDIN_FILENO, &byte, 1) > 0) {
    }
}
