#include "platform/linux/LateCredentialStore.h"

namespace velmora {

LateCredentialStore::LateCredentialStore(const std::filesystem::path& module)
    : module_(module, "velmoraMakeCredentialStore") {}

Credential LateCredentialStore::copyMatching(const CredentialKey& key) {
    CredentialStore* found = store();
    return found != nullptr ? found->copyMatching(key)
                            : Credential{.status = CredentialStatus::notAvailable, .secret = {}};
}

CredentialStatus LateCredentialStore::update(const CredentialKey& key, std::string_view secret) {
    CredentialStore* found = store();
    return found != nullptr ? found->update(key, secret) : CredentialStatus::notAvailable;
}

CredentialStatus LateCredentialStore::add(const CredentialKey& key, std::string_view secret) {
    CredentialStore* found = store();
    return found != nullptr ? found->add(key, secret) : CredentialStatus::notAvailable;
}

CredentialStatus LateCredentialStore::remove(const CredentialKey& key) {
    CredentialStore* found = store();
    return found != nullptr ? found->remove(key) : CredentialStatus::notAvailable;
}

CredentialStore* LateCredentialStore::store() {
    if (!store_) {
        if (auto made = module_.make<CredentialStore>()) {
            store_ = *std::move(made);
        }
    }
    return store_.get();
}

}  // namespace velmora
