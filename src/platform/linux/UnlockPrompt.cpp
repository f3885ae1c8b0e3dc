#include "platform/linux/UnlockPrompt.h"

#include "platform/linux/SecretServiceCalls.h"
#include "platform/linux/SignalContext.h"

#include <system_error>
#include <thread>

namespace velmora {

namespace {

enum class Answer { unlocked, dismissed, failed };

Answer unlockDefaultCollection(SecretService* service) {
    GLibError error;
    GObjectPtr<SecretCollection> collection = secretservice::defaultCollection(service, nullptr, error);
    if (!error && !collection) {
        // The desktop asks for the new collection's password. This is the name that libsecret gives it as well.
        collection.reset(secret_collection_create_sync(service, "Default keyring", SECRET_COLLECTION_DEFAULT,
                                                       SECRET_COLLECTION_CREATE_NONE, nullptr, error.out()));
        return collection ? Answer::unlocked : Answer::dismissed;
    }
    if (error) {
        return Answer::failed;
    }
    GList objects{.data = collection.get(), .next = nullptr, .prev = nullptr};
    const int unlocked = secret_service_unlock_sync(service, &objects, nullptr, nullptr, error.out());
    if (error) {
        return Answer::failed;
    }
    return unlocked > 0 ? Answer::unlocked : Answer::dismissed;
}

Answer unlock(const CredentialKey& key) {
    GLibError error;
    const GObjectPtr<SecretService> service = secretservice::open(nullptr, error);
    if (!service) {
        return Answer::failed;
    }
    const GObjectPtr<SecretItem> item =
        secretservice::findItem(service.get(), key, SECRET_SEARCH_UNLOCK, nullptr, error);
    if (error) {
        return Answer::failed;
    }
    if (!item) {
        return unlockDefaultCollection(service.get());
    }
    return secret_item_get_locked(item.get()) == FALSE ? Answer::unlocked : Answer::dismissed;
}

Answer unlockOnThisThread(const CredentialKey& key) {
    const SignalContext signals;
    const SignalContext::Scope scope(signals);
    return unlock(key);
}

}  // namespace

void UnlockPrompt::ask(const CredentialKey& key) {
    State expected = State::unasked;
    if (!state_->compare_exchange_strong(expected, State::open)) {
        return;
    }
    try {
        std::thread([state = state_, key] {
            const Answer answer = unlockOnThisThread(key);
            *state = answer == Answer::dismissed ? State::answered : State::unasked;
        }).detach();
    } catch (const std::system_error&) {
        *state_ = State::unasked;  // no thread to be had; the next call asks
    }
}

void UnlockPrompt::keyringIsUnlocked() {
    State expected = State::answered;
    state_->compare_exchange_strong(expected, State::unasked);
}

}  // namespace velmora
