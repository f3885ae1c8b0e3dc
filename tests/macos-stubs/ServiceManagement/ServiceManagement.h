// Declarations of our own for the few things of the framework that the adapters use, to compile against.
#pragma once

typedef signed char BOOL;
typedef enum { SMAppServiceStatusNotRegistered, SMAppServiceStatusEnabled } SMAppServiceStatus;

@class NSError;

__attribute__((availability(macos, introduced = 13.0))) __attribute__((objc_root_class))
@interface SMAppService
+ (SMAppService*)mainAppService;
- (BOOL)registerAndReturnError:(NSError**)error;
- (BOOL)unregisterAndReturnError:(NSError**)error;
@property(readonly) SMAppServiceStatus status;
@end
