#pragma once

#include "platform/CredentialStore.h"
#include "platform/linux/UnlockPrompt.h"

#include <chrono>
#include <functional>
#include <memory>

namespace velmora {

/// Passwords in the desktop's keyring, over the Secret Service protocol.
///
/// An item is found by its attributes `service` and `account` alone, whoever wrote it. Nothing is sent before the first
/// call. A call ends within two seconds; after one that got no answer the next ones are given less, until one is
/// answered, so that a hanging keyring does not hold up a row of hosts. A locked keyring answers interactionNotAllowed
/// and the desktop asks the user to unlock it, for a later call. Main thread.
class SecretServiceStore final : public CredentialStore {
public:
    SecretServiceStore();
    ~SecretServiceStore() override;

    Credential copyMatching(const CredentialKey& key) override;
    CredentialStatus update(const CredentialKey& key, std::string_view secret) override;
    CredentialStatus add(const CredentialKey& key, std::string_view secret) override;
    CredentialStatus remove(const CredentialKey& key) override;

private:
    struct Call;
    struct Connection;
    using Operation = std::function<CredentialStatus(Call&)>;

    CredentialStatus run(const Operation& operation);
    CredentialStatus attempt(const Operation& operation, Call& call);
    CredentialStatus lockedAnswer(const CredentialKey& key);
    CredentialStatus nothingFound(Call& call, const CredentialKey& key);

    std::unique_ptr<Connection> connection_;
    UnlockPrompt prompt_;
    std::chrono::milliseconds patience_;
};

}  // namespace velmora
