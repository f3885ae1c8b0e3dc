#pragma once

// What macOS has beyond the header that stands in for its own, and what it has otherwise.

#define pthread_setname_np pthread_setname_np_elsewhere
#include_next <pthread.h>
#undef pthread_setname_np

extern "C" int pthread_setname_np(const char* name);
extern "C" int pthread_cond_timedwait_relative_np(pthread_cond_t* condition, pthread_mutex_t* mutex,
                                                  const struct timespec* howLong);
