#include "platform/ThreadName.h"

#include <pthread.h>

namespace velmora {

void nameThread(const char* label) {
    ::pthread_setname_np(label);
}

}  // namespace velmora
