#pragma once

#include "base/Uuid.h"
#include "platform/CredentialStore.h"

#include <optional>
#include <string>
#include <string_view>

namespace velmora {

/// The passwords of the hosts, one keychain item per host id. Failures are silent: a keychain that refuses is like a
/// host without a password.
class KeychainStore final {
public:
    explicit KeychainStore(CredentialStore& store) : store_(store) {}

    /// Nothing when there is none or when it is not UTF-8. May be empty.
    [[nodiscard]] std::optional<std::string> load(const Uuid& hostId) const;

    /// Creates or replaces. An existing item is updated, never deleted and made anew.
    void save(std::string_view password, const Uuid& hostId);

    void remove(const Uuid& hostId);

private:
    CredentialStore& store_;
};

}  // namespace velmora
