#pragma once

// Declarations of our own for the few things of AppKit that the adapters use, to compile them without a Mac.

#if defined(__arm64__)
typedef bool BOOL;
#define YES true
#else
typedef signed char BOOL;
#define YES ((BOOL)1)
#endif

typedef enum : long {
    NSApplicationActivationPolicyRegular = 0,
    NSApplicationActivationPolicyAccessory = 1,
    NSApplicationActivationPolicyProhibited = 2,
} NSApplicationActivationPolicy;

__attribute__((objc_root_class))
@interface NSApplication
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activateIgnoringOtherApps:(BOOL)flag;
@end

extern NSApplication* NSApp;
