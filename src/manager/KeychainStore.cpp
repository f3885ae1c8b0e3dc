#include "manager/KeychainStore.h"

#include "base/Text.h"

#include <utility>

namespace velmora {

namespace {

/// The same service for every host; the host's id alone ties it to its password.
CredentialKey keyOf(const Uuid& hostId) {
    return {.service = "com.velmora.app", .account = hostId.toString()};
}

}  // namespace

std::optional<std::string> KeychainStore::load(const Uuid& hostId) const {
    Credential found = store_.copyMatching(keyOf(hostId));
    if (found.status != CredentialStatus::success || !isValidUtf8(found.secret)) {
        return std::nullopt;
    }
    return std::move(found.secret);
}

void KeychainStore::save(std::string_view password, const Uuid& hostId) {
    const CredentialKey key = keyOf(hostId);
    if (store_.update(key, password) == CredentialStatus::notFound) {
        // Silent by design, like every other failure here: the caller treats it as a host without a password.
        static_cast<void>(store_.add(key, password));
    }
}

void KeychainStore::remove(const Uuid& hostId) {
    // Silent by design: a missing item is no error, and a keychain that refuses keeps its item.
    static_cast<void>(store_.remove(keyOf(hostId)));
}

}  // namespace velmora
