#include "update/SwapScript.h"

namespace velmora {

namespace {

constexpr std::string_view head =
    "#!/bin/sh\n"
    "# $1 = freshly unpacked bundle, $2 = installed bundle to replace\n"
    "while kill -0 ";

constexpr std::string_view tail = R"( 2>/dev/null; do sleep 0.2; done
/bin/rm -rf "$2.old"
/bin/mv "$2" "$2.old" || exit 1
if ! /bin/mv "$1" "$2"; then
    /bin/mv "$2.old" "$2"
    exit 1
fi
/bin/rm -rf "$2.old"
)";

}  // namespace

std::string swapScript(pid_t process, std::string_view relaunchLines) {
    std::string script(head);
    script += std::to_string(process);
    script += tail;
    script += relaunchLines;
    return script;
}

}  // namespace velmora
