#include "platform/ThreadName.h"

#include <pthread.h>

#include <string_view>

namespace velmora {

void nameThread(const char* label) {
    const auto lastPart = std::string_view(label).rfind('.') + 1;  // the system takes 15 bytes
    ::pthread_setname_np(::pthread_self(), label + lastPart);
}

}  // namespace velmora
