#pragma once

#include "platform/CredentialStore.h"
#include "platform/linux/LateModule.h"

namespace velmora {

/// A store in a library that is loaded with the first call. Without the library there is no keychain.
class LateCredentialStore final : public CredentialStore {
public:
    explicit LateCredentialStore(const std::filesystem::path& module);

    Credential copyMatching(const CredentialKey& key) override;
    CredentialStatus update(const CredentialKey& key, std::string_view secret) override;
    CredentialStatus add(const CredentialKey& key, std::string_view secret) override;
    CredentialStatus remove(const CredentialKey& key) override;

private:
    CredentialStore* store();  // null without the library

    LateModule module_;
    std::unique_ptr<CredentialStore> store_;
};

}  // namespace velmora
