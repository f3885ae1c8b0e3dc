#pragma once

// Declarations of our own for the kernel's queue of events, as its documentation has it: to compile without a Mac.

#include <stdint.h>
#include <time.h>

struct kevent {
    uintptr_t ident;
    int16_t filter;
    uint16_t flags;
    uint32_t fflags;
    intptr_t data;
    void* udata;
};

#define EV_SET(event, identifier, which, action, more, value, own)                                                  \
    ((event)->ident = (identifier), (event)->filter = (which), (event)->flags = (action), (event)->fflags = (more), \
     (event)->data = (value), (event)->udata = (own))

enum { EVFILT_READ = -1, EVFILT_WRITE = -2, EVFILT_PROC = -5, EVFILT_USER = -10 };
enum {
    EV_ADD = 0x0001,
    EV_DELETE = 0x0002,
    EV_ONESHOT = 0x0010,
    EV_CLEAR = 0x0020,
    EV_OOBAND = 0x2000,
    EV_ERROR = 0x4000,
    EV_EOF = 0x8000
};
#define EV_OOBAND EV_OOBAND
enum : uint32_t { NOTE_EXIT = 0x80000000U, NOTE_TRIGGER = 0x01000000U };

extern "C" {
int kqueue(void);
int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events, int eventCount,
           const struct timespec* timeout);
}
