#include "platform/posix/Spawn.h"

#include <sys/wait.h>

#include <cerrno>

namespace velmora {

SpawnStrings::SpawnStrings(const SpawnRequest& request) {
    arguments_.reserve(request.arguments.size() + 2);
    addArgument(request.program);
    for (const auto& argument : request.arguments) {
        addArgument(argument);
    }
    arguments_.push_back(nullptr);

    entries_.reserve(request.environment.size());
    environment_.reserve(request.environment.size() + 1);
    for (const auto& [name, value] : request.environment) {
        auto& entry = entries_.emplace_back(name + "=" + value);
        passable_ = passable_ && entry.find('\0') == std::string::npos;
        environment_.push_back(entry.data());
    }
    environment_.push_back(nullptr);
}

void SpawnStrings::addArgument(const std::string& text) {
    passable_ = passable_ && text.find('\0') == std::string::npos;
    arguments_.push_back(const_cast<char*>(text.c_str()));  // the system's signature; nobody writes
}

int reap(pid_t pid) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace velmora
