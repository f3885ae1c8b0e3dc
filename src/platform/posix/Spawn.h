#pragma once

#include "base/Result.h"
#include "base/UniqueFd.h"
#include "platform/ProcessLauncher.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace velmora {

enum class WhenParentDies { keepRunning, terminate };

struct SpawnRequest {
    const std::string& program;                 ///< absolute path
    const std::vector<std::string>& arguments;  ///< without the program's own name
    const Environment& environment;
    int standardInput = -1;
    int standardOutput = -1;
    int standardError = -1;
    /// `terminate` only from the main thread: the system means the thread that started the process. Where the system
    /// knows no such thing it is the same as `keepRunning`.
    WhenParentDies whenParentDies = WhenParentDies::keepRunning;
};

struct SpawnedProcess {
    pid_t pid = -1;
    UniqueFd exitDescriptor;  ///< becomes readable when the process has ended; it is still to be waited for
};

/// Starts a program in a session of its own, with no descriptor but the three, default signal handling and nothing
/// blocked. Comes back once the program runs, or with the system's description of why it does not. Any thread.
Result<SpawnedProcess, Error> spawn(const SpawnRequest& request);

/// The strings as the system wants them; a string that holds a zero byte cannot be passed on.
class CStringList final {
public:
    [[nodiscard]] bool add(const std::string& text) {
        strings_.push_back(text);
        return text.find('\0') == std::string::npos;
    }
    /// Valid until the next change.
    [[nodiscard]] char* const* data() {
        pointers_.clear();
        for (auto& text : strings_) {
            pointers_.push_back(text.data());
        }
        pointers_.push_back(nullptr);
        return pointers_.data();
    }

private:
    std::vector<std::string> strings_;
    std::vector<char*> pointers_;
};

/// Program name and arguments, and the environment as "name=value". False when one cannot be passed on.
[[nodiscard]] bool fillStringLists(const SpawnRequest& request, CStringList& arguments, CStringList& environment);

/// The exit status of a process that has ended, or the number of the signal that ended it. Waits for the process.
int reap(pid_t pid);

}  // namespace velmora
