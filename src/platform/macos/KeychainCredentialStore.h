#pragma once

#include "platform/CredentialStore.h"

namespace velmora {

/// Passwords in the login keychain, as generic password items with a service and an account and nothing else set.
/// A call may take as long as the system asks the user for permission. Main thread.
class KeychainCredentialStore final : public CredentialStore {
public:
    Credential copyMatching(const CredentialKey& key) override;
    CredentialStatus update(const CredentialKey& key, std::string_view secret) override;
    CredentialStatus add(const CredentialKey& key, std::string_view secret) override;
    CredentialStatus remove(const CredentialKey& key) override;
};

}  // namespace velmora
