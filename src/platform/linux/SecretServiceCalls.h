#pragma once

#include "platform/CredentialStore.h"
#include "platform/linux/GLibError.h"
#include "platform/linux/GObjectPtr.h"

#include <libsecret/secret.h>

#include <memory>

/// What the store and its unlock prompt both ask of the desktop's keyring. All block until the answer is there, the
/// cancellable is cancelled, or the call fails; a failure leaves an error. The cancellable may be null.
namespace velmora::secretservice {

struct AttributesUnref {
    void operator()(GHashTable* attributes) const { g_hash_table_unref(attributes); }
};
using Attributes = std::unique_ptr<GHashTable, AttributesUnref>;

/// What identifies an item: these two attributes and no schema.
Attributes attributesOf(const CredentialKey& key);

/// A connection of the caller's own, with a session for transporting secrets. Null with an error.
GObjectPtr<SecretService> open(GCancellable* cancellable, GLibError& error);

/// The item of the key, an unlocked one if there is a choice. Null when there is none, without an error.
GObjectPtr<SecretItem> findItem(SecretService* service, const CredentialKey& key, SecretSearchFlags flags,
                                GCancellable* cancellable, GLibError& error);

/// Where new items go. Null when the desktop has none yet, without an error.
GObjectPtr<SecretCollection> defaultCollection(SecretService* service, GCancellable* cancellable, GLibError& error);

}  // namespace velmora::secretservice
