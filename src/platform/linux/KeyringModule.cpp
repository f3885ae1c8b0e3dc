// What the library keyring.so exports.
#include "platform/linux/SecretServiceStore.h"

extern "C" [[gnu::visibility("default")]] velmora::CredentialStore* velmoraMakeCredentialStore() {
    return new velmora::SecretServiceStore;
}
