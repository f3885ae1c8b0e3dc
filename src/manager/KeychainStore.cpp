#include "manager/KeychainStore.h"

#include "base/Text.h"
namespace velmora {
namespace {
CredentialKey keyOf(const Uuid& id) {
    return {"com.velmora.app", id.toString()};
}
}  // namespace
std::optional<std::string> KeychainStore::load(const Uuid& hostId) const {
    auto found = store_.copyMatching(keyOf(hostId));
    if (found.status != CredentialStatus::success || !isValidUtf8(found.secret)) {
        return std::nullopt;
    }
    return std::move(found.secret);
}
void KeychainStore::save(std::string_view password, const Uuid& hostId) {
    if (store_.update(keyOf(hostId), password) == CredentialStatus::notFound) {
        store_.add(keyOf(hostId), password);
    }
}
void KeychainStore::remove(const Uuid& hostId) {
    store_.remove(keyOf(hostId));
}
}  // namespace velmora
