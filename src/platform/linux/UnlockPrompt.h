#pragma once

#include "platform/CredentialStore.h"

#include <atomic>
#include <memory>

namespace velmora {

/// Has the desktop ask the user to unlock the keyring, without anyone waiting for the answer.
///
/// The user is asked once for each time that the keyring is found locked: not again while the question is open, and not
/// again after it was dismissed, until the keyring has been seen unlocked. An open question is never withdrawn, neither
/// by a time limit nor by the end of this object: gnome-keyring does not survive that. It is waited for on a thread of
/// its own, which refers to nothing that others own.
class UnlockPrompt final {
public:
    UnlockPrompt() = default;
    UnlockPrompt(const UnlockPrompt&) = delete;
    UnlockPrompt& operator=(const UnlockPrompt&) = delete;
    ~UnlockPrompt() = default;

    /// Asks to unlock the item of the key or, when the keyring shows no such item, the default collection, which is
    /// made when there is none. Returns at once.
    void ask(const CredentialKey& key);

    /// The keyring is unlocked: when it is found locked again, the user may be asked again.
    void keyringIsUnlocked();

private:
    enum class State { unasked, open, answered };

    std::shared_ptr<std::atomic<State>> state_ = std::make_shared<std::atomic<State>>(State::unasked);
};

}  // namespace velmora
