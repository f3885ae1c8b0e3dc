// What the other sources of this folder take for granted about macOS: numbers that are passed on or stored, and the
// signatures that they call. There is no code in here; it compiles, or says what is different.

#include "platform/CredentialStore.h"

#import <AppKit/AppKit.h>
#include <CoreFoundation/CoreFoundation.h>
#import <Security/Security.h>
#import <ServiceManagement/ServiceManagement.h>
#include <spawn.h>
#include <sys/event.h>
#include <sys/socket.h>
#include <unistd.h>

#include <type_traits>
#include <utility>

namespace velmora {

namespace {

// The statuses of the keychain go through CredentialStatus as they are.
static_assert(std::is_same_v<OSStatus, std::int32_t> && sizeof(CredentialStatus) == sizeof(OSStatus));
static_assert(static_cast<OSStatus>(CredentialStatus::success) == errSecSuccess);
static_assert(static_cast<OSStatus>(CredentialStatus::notFound) == errSecItemNotFound);
static_assert(static_cast<OSStatus>(CredentialStatus::duplicate) == errSecDuplicateItem);
static_assert(static_cast<OSStatus>(CredentialStatus::interactionNotAllowed) == errSecInteractionNotAllowed);
static_assert(static_cast<OSStatus>(CredentialStatus::notAvailable) == errSecNotAvailable);

template <auto function, typename Signature>
constexpr bool hasSignature = std::is_same_v<decltype(function), Signature*>;

static_assert(hasSignature<&SecItemCopyMatching, OSStatus(CFDictionaryRef, CFTypeRef*)>);
static_assert(hasSignature<&SecItemUpdate, OSStatus(CFDictionaryRef, CFDictionaryRef)>);
static_assert(hasSignature<&SecItemAdd, OSStatus(CFDictionaryRef, CFTypeRef*)>);
static_assert(hasSignature<&SecItemDelete, OSStatus(CFDictionaryRef)>);
static_assert(std::is_same_v<std::remove_cv_t<decltype(kSecClass)>, CFStringRef>);
static_assert(std::is_same_v<std::remove_cv_t<decltype(kSecClassGenericPassword)>, CFStringRef>);
static_assert(std::is_same_v<std::remove_cv_t<decltype(kSecValueData)>, CFStringRef>);
static_assert(std::is_same_v<std::remove_cv_t<decltype(kSecMatchLimitOne)>, CFStringRef>);

// Bytes and lengths are handed over without a loss.
static_assert(sizeof(UInt8) == 1 && std::is_unsigned_v<UInt8>);
static_assert(sizeof(CFIndex) == sizeof(std::size_t) && std::is_signed_v<CFIndex>);
static_assert(kCFStringEncodingUTF8 == 0x08000100);

// The Dock icon.
static_assert(NSApplicationActivationPolicyRegular == 0 && NSApplicationActivationPolicyAccessory == 1);
static_assert(sizeof(NSApplicationActivationPolicy) == sizeof(long));

// The login item. Its numbers are named here whatever the oldest system is.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wunguarded-availability"
static_assert(SMAppServiceStatusNotRegistered == 0 && SMAppServiceStatusEnabled == 1);
#pragma clang diagnostic pop

// A started program has none of our descriptors, a session of its own, and the signals as they are by default. The
// flags are different bits of a short.
constexpr int spawnFlags[] = {POSIX_SPAWN_CLOEXEC_DEFAULT, POSIX_SPAWN_SETSID, POSIX_SPAWN_SETSIGDEF,
                              POSIX_SPAWN_SETSIGMASK};
static_assert((spawnFlags[0] | spawnFlags[1] | spawnFlags[2] | spawnFlags[3]) ==
              spawnFlags[0] + spawnFlags[1] + spawnFlags[2] + spawnFlags[3]);
static_assert((spawnFlags[0] | spawnFlags[1] | spawnFlags[2] | spawnFlags[3]) <= 0x7fff);
static_assert(POSIX_SPAWN_CLOEXEC_DEFAULT == 0x4000 && POSIX_SPAWN_SETSID == 0x0400);

// The end of a process.
static_assert(EVFILT_PROC == -5 && EVFILT_USER == -10);
static_assert(NOTE_EXIT == 0x80000000U && NOTE_TRIGGER == 0x01000000U);
static_assert(sizeof(std::declval<struct kevent>().ident) == sizeof(void*));
static_assert(hasSignature<&kqueue, int()>);

// Sockets and folders.
static_assert(SO_NOSIGPIPE == 0x1022);
static_assert(_CS_DARWIN_USER_TEMP_DIR == 65537);

}  // namespace

}  // namespace velmora
