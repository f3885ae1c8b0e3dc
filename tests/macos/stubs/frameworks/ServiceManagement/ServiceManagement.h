#pragma once

// Declarations of our own for the few things of ServiceManagement that the adapters use, to compile them without a Mac.

#if defined(__arm64__)
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif

typedef enum : long {
    SMAppServiceStatusNotRegistered = 0,
    SMAppServiceStatusEnabled = 1,
    SMAppServiceStatusRequiresApproval = 2,
    SMAppServiceStatusNotFound = 3,
} SMAppServiceStatus;

@class NSError;

__attribute__((availability(macos, introduced = 13.0))) __attribute__((objc_root_class))
@interface SMAppService
@property(class, readonly) SMAppService* mainAppService;
@property(readonly) SMAppServiceStatus status;
- (BOOL)registerAndReturnError:(NSError**)error;
- (BOOL)unregisterAndReturnError:(NSError**)error;
@end
