#include "update/UpdateIdentity.h"

namespace velmora {

UpdateIdentity UpdateIdentity::ofThisBuild() {
    return {.feedURL = std::string("https://") + VELMORA_UPDATE_HOST + "/velmora/appcast.json",
            .teamIdentifier = VELMORA_TEAM_IDENTIFIER,
            .publicKey = VELMORA_UPDATE_PUBLIC_KEY};
}

}  // namespace velmora
