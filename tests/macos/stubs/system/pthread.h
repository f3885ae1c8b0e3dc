#pragma once

// What macOS has beyond the header that stands in for its own.

#include_next <pthread.h>

extern "C" int pthread_cond_timedwait_relative_np(pthread_cond_t* condition, pthread_mutex_t* mutex,
                                                  const struct timespec* howLong);
