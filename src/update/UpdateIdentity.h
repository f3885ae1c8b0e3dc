#pragma once

#include <string>

namespace velmora {

/// What this build trusts and where it looks, as the build was configured (VELMORA_UPDATE_HOST,
/// VELMORA_TEAM_IDENTIFIER, VELMORA_UPDATE_PUBLIC_KEY).
struct UpdateIdentity {
    std::string feedURL;         ///< where the feed is unless the user says otherwise
    std::string teamIdentifier;  ///< the developer's, ten characters
    std::string publicKey;       ///< OpenSSH, one line; empty when this build accepts no update (Linux)

    static UpdateIdentity ofThisBuild();
};

}  // namespace velmora
