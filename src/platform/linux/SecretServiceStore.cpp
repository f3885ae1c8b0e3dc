#include "platform/linux/SecretServiceStore.h"

#include "platform/linux/CallDeadline.h"
#include "platform/linux/SecretServiceCalls.h"
#include "platform/linux/SignalContext.h"

#include <string>
#include <utility>

namespace velmora {

namespace {

using namespace std::chrono_literals;

constexpr auto usualPatience = 2s;
constexpr auto patienceAfterSilence = 500ms;

struct SecretValueUnref {
    void operator()(SecretValue* value) const { secret_value_unref(value); }
};
using SecretValuePtr = std::unique_ptr<SecretValue, SecretValueUnref>;

SecretValuePtr secretValue(std::string_view secret) {
    return SecretValuePtr(secret_value_new(secret.data(), static_cast<gssize>(secret.size()), "text/plain"));
}

std::string bytesOf(SecretValue* value) {
    gsize length = 0;
    const char* bytes = secret_value_get(value, &length);
    return length == 0 ? std::string() : std::string(bytes, length);
}

}  // namespace

/// What one call works with.
struct SecretServiceStore::Call {
    SecretService* service = nullptr;
    GCancellable* cancellable = nullptr;
    GLibError error;
};

struct SecretServiceStore::Connection {
    SignalContext signals;
    GObjectPtr<SecretService> service;
};

SecretServiceStore::SecretServiceStore() : patience_(usualPatience) {}

SecretServiceStore::~SecretServiceStore() = default;

Credential SecretServiceStore::copyMatching(const CredentialKey& key) {
    Credential found;
    found.status = run([&](Call& call) {
        const GObjectPtr<SecretItem> item =
            secretservice::findItem(call.service, key, SECRET_SEARCH_NONE, call.cancellable, call.error);
        if (call.error) {
            return CredentialStatus::notAvailable;
        }
        if (!item) {
            return nothingFound(call, key);
        }
        if (secret_item_get_locked(item.get()) != FALSE) {
            return lockedAnswer(key);
        }
        prompt_.keyringIsUnlocked();
        // Not left to the search, which would keep quiet about a failure of this step.
        secret_item_load_secret_sync(item.get(), call.cancellable, call.error.out());
        const SecretValuePtr value(secret_item_get_secret(item.get()));
        if (!value) {
            return CredentialStatus::notAvailable;
        }
        found.secret = bytesOf(value.get());
        return CredentialStatus::success;
    });
    return found;
}

CredentialStatus SecretServiceStore::update(const CredentialKey& key, std::string_view secret) {
    return run([&](Call& call) {
        const GObjectPtr<SecretItem> item =
            secretservice::findItem(call.service, key, SECRET_SEARCH_NONE, call.cancellable, call.error);
        if (!item) {
            return CredentialStatus::notFound;
        }
        if (secret_item_get_locked(item.get()) != FALSE) {
            return lockedAnswer(key);
        }
        prompt_.keyringIsUnlocked();
        const SecretValuePtr value = secretValue(secret);
        secret_item_set_secret_sync(item.get(), value.get(), call.cancellable, call.error.out());
        return CredentialStatus::success;
    });
}

CredentialStatus SecretServiceStore::add(const CredentialKey& key, std::string_view secret) {
    return run([&](Call& call) {
        if (secretservice::findItem(call.service, key, SECRET_SEARCH_NONE, call.cancellable, call.error)) {
            return CredentialStatus::duplicate;
        }
        if (call.error) {
            return CredentialStatus::notAvailable;
        }
        const GObjectPtr<SecretCollection> collection =
            secretservice::defaultCollection(call.service, call.cancellable, call.error);
        if (call.error) {
            return CredentialStatus::notAvailable;
        }
        if (!collection || secret_collection_get_locked(collection.get()) != FALSE) {
            // Saving a host without a password is no reason to ask for that of a keyring.
            return secret.empty() ? CredentialStatus::interactionNotAllowed : lockedAnswer(key);
        }
        prompt_.keyringIsUnlocked();
        const secretservice::Attributes attributes = secretservice::attributesOf(key);
        const SecretValuePtr value = secretValue(secret);
        const GObjectPtr<SecretItem> item(secret_item_create_sync(collection.get(), nullptr, attributes.get(),
                                                                  "Velmora", value.get(), SECRET_ITEM_CREATE_NONE,
                                                                  call.cancellable, call.error.out()));
        return item ? CredentialStatus::success : CredentialStatus::notAvailable;
    });
}

CredentialStatus SecretServiceStore::remove(const CredentialKey& key) {
    return run([&](Call& call) {
        const GObjectPtr<SecretItem> item =
            secretservice::findItem(call.service, key, SECRET_SEARCH_NONE, call.cancellable, call.error);
        if (!item) {
            return CredentialStatus::notFound;
        }
        if (secret_item_get_locked(item.get()) != FALSE) {
            // Nobody tries to delete a second time, so there is nothing to unlock it for.
            return CredentialStatus::interactionNotAllowed;
        }
        prompt_.keyringIsUnlocked();
        secret_item_delete_sync(item.get(), call.cancellable, call.error.out());
        return CredentialStatus::success;
    });
}

/// Runs the operation within the time allowed. When it fails on a connection that has been idle, it is tried once more
/// on a new one: a keyring that went away and came back knows nothing of our old session.
CredentialStatus SecretServiceStore::run(const Operation& operation) {
    if (!connection_) {
        connection_ = std::make_unique<Connection>();
    }
    const SignalContext::Scope scope(connection_->signals);
    connection_->signals.dispatchPending();

    const CallDeadline deadline(patience_);
    const bool reused = connection_->service != nullptr;
    Call call{.service = nullptr, .cancellable = deadline.cancellable(), .error = {}};
    CredentialStatus status = attempt(operation, call);
    if (call.error && reused && !deadline.isPast()) {
        status = attempt(operation, call);
    }
    patience_ = call.error && deadline.isPast() ? patienceAfterSilence : usualPatience;
    return status;
}

/// One try, with a new connection when there is none. An error takes the connection down.
CredentialStatus SecretServiceStore::attempt(const Operation& operation, Call& call) {
    GObjectPtr<SecretService>& service = connection_->service;
    if (!service) {
        service = secretservice::open(call.cancellable, call.error);
        if (!service) {
            return CredentialStatus::notAvailable;
        }
    }
    call.service = service.get();
    const CredentialStatus status = operation(call);
    if (!call.error) {
        return status;
    }
    service.reset();
    return call.error.matches(SECRET_ERROR, SECRET_ERROR_IS_LOCKED) ? CredentialStatus::interactionNotAllowed
                                                                    : CredentialStatus::notAvailable;
}

CredentialStatus SecretServiceStore::lockedAnswer(const CredentialKey& key) {
    prompt_.ask(key);
    return CredentialStatus::interactionNotAllowed;
}

/// Some keyrings show no items while they are locked, so that an item that is not there may be there after all.
CredentialStatus SecretServiceStore::nothingFound(Call& call, const CredentialKey& key) {
    const GObjectPtr<SecretCollection> collection =
        secretservice::defaultCollection(call.service, call.cancellable, call.error);
    if (!collection) {
        return CredentialStatus::notFound;
    }
    if (secret_collection_get_locked(collection.get()) != FALSE) {
        return lockedAnswer(key);
    }
    prompt_.keyringIsUnlocked();
    return CredentialStatus::notFound;
}

}  // namespace velmora
