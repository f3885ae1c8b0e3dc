// The program as it is shipped, but for the port of its proxy script, which the environment names: many of them run
// side by side with each other and with the user's own.
#include "app/RunVelmora.h"

#include <cstdlib>

int main(int argc, char** argv) {
    velmora::ProgramOptions options;
    const char* port = std::getenv("VELMORA_TEST_PAC_PORT");
    options.pacPort = port != nullptr ? static_cast<std::uint16_t>(std::atoi(port)) : 0;
    return velmora::runVelmora(argc, argv, options);
}
