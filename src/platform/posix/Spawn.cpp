#include "platform/posix/Spawn.h"

#include <sys/wait.h>

#include <cerrno>

namespace velmora {

bool fillStringLists(const SpawnRequest& request, CStringList& arguments, CStringList& environment) {
    bool passable = arguments.add(request.program);
    for (const auto& argument : request.arguments) {
        passable = arguments.add(argument) && passable;
    }
    for (const auto& [name, value] : request.environment) {
        passable = environment.add(name + "=" + value) && passable;
    }
    return passable;
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
