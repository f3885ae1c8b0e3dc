#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

/// The numbers that the keychain answers with. Any other number is a failure too.
enum class CredentialStatus : std::int32_t {
    success = 0,
    notFound = -25300,
    duplicate = -25299,
    interactionNotAllowed = -25308,  ///< locked, and the user has not been able to unlock it yet
    notAvailable = -25291,           ///< no keychain, or it does not answer
};

/// Which item: there is at most one for a pair.
struct CredentialKey {
    std::string service;
    std::string account;
};

struct Credential {
    CredentialStatus status = CredentialStatus::notAvailable;
    std::string secret;  ///< bytes, any; only with success
};

/// The four calls of a keychain for generic passwords. No rule lives here. Main thread; each call is bounded in time.
class CredentialStore {
public:
    CredentialStore() = default;
    CredentialStore(const CredentialStore&) = delete;
    CredentialStore& operator=(const CredentialStore&) = delete;
    virtual ~CredentialStore() = default;

    virtual Credential copyMatching(const CredentialKey& key) = 0;
    virtual CredentialStatus update(const CredentialKey& key, std::string_view secret) = 0;
    virtual CredentialStatus add(const CredentialKey& key, std::string_view secret) = 0;
    virtual CredentialStatus remove(const CredentialKey& key) = 0;
};

}  // namespace velmora
