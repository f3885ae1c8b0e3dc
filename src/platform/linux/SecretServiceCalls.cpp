#include "platform/linux/SecretServiceCalls.h"

namespace velmora::secretservice {

Attributes attributesOf(const CredentialKey& key) {
    Attributes attributes(g_hash_table_new_full(g_str_hash, g_str_equal, nullptr, g_free));
    const auto insert = [&attributes](const char* name, const std::string& value) {
        // The table hands out its keys as they were given, and nobody writes to them.
        g_hash_table_insert(attributes.get(), const_cast<char*>(name), g_strdup(value.c_str()));
    };
    insert("service", key.service);
    insert("account", key.account);
    return attributes;
}

GObjectPtr<SecretService> open(GCancellable* cancellable, GLibError& error) {
    const GObjectPtr<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, error.out()));
    if (!bus) {
        return nullptr;
    }
    // Otherwise GLib ends the whole program when the bus goes away; the tunnels have no reason to end with it.
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    return GObjectPtr<SecretService>(
        secret_service_open_sync(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION, cancellable, error.out()));
}

GObjectPtr<SecretItem> findItem(SecretService* service, const CredentialKey& key, SecretSearchFlags flags,
                                GCancellable* cancellable, GLibError& error) {
    const Attributes attributes = attributesOf(key);
    // Without SECRET_SEARCH_ALL there is at most one.
    GList* found = secret_service_search_sync(service, nullptr, attributes.get(), flags, cancellable, error.out());
    GObjectPtr<SecretItem> item(found == nullptr ? nullptr : SECRET_ITEM(g_object_ref(found->data)));
    g_list_free_full(found, g_object_unref);
    return item;
}

GObjectPtr<SecretCollection> defaultCollection(SecretService* service, GCancellable* cancellable, GLibError& error) {
    return GObjectPtr<SecretCollection>(secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, cancellable, error.out()));
}

}  // namespace velmora::secretservice
