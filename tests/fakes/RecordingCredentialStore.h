#pragma once

#include "platform/CredentialStore.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora {

/// A keychain in memory that writes down what it was asked, and answers a call with a scripted status where one is set.
class RecordingCredentialStore final : public CredentialStore {
public:
    struct Call {
        std::string name;
        std::string service;
        std::string account;
        std::string secret;

        bool operator==(const Call&) const = default;
    };

    using Items = std::map<std::pair<std::string, std::string>, std::string>;  ///< (service, account) to secret

    std::vector<Call> calls;
    Items items;
    std::optional<CredentialStatus> copyMatchingAnswer;
    std::optional<CredentialStatus> updateAnswer;
    std::optional<CredentialStatus> addAnswer;
    std::optional<CredentialStatus> removeAnswer;
    std::function<void()> onRemove = [] {};  ///< looks around when an item is about to go

    Credential copyMatching(const CredentialKey& key) override {
        record("copyMatching", key, {});
        const auto item = items.find({key.service, key.account});
        const bool found = item != items.end();
        // Also with a scripted failure the bytes are handed out: nobody may look at them then.
        return {.status = copyMatchingAnswer.value_or(found ? CredentialStatus::success : CredentialStatus::notFound),
                .secret = found ? item->second : std::string()};
    }

    CredentialStatus update(const CredentialKey& key, std::string_view secret) override {
        record("update", key, secret);
        if (updateAnswer) {
            return *updateAnswer;
        }
        const auto item = items.find({key.service, key.account});
        if (item == items.end()) {
            return CredentialStatus::notFound;
        }
        item->second = secret;
        return CredentialStatus::success;
    }

    CredentialStatus add(const CredentialKey& key, std::string_view secret) override {
        record("add", key, secret);
        if (addAnswer) {
            return *addAnswer;
        }
        const bool added = items.emplace(std::pair(key.service, key.account), secret).second;
        return added ? CredentialStatus::success : CredentialStatus::duplicate;
    }

    CredentialStatus remove(const CredentialKey& key) override {
        record("remove", key, {});
        onRemove();
        if (removeAnswer) {
            return *removeAnswer;
        }
        return items.erase({key.service, key.account}) > 0 ? CredentialStatus::success : CredentialStatus::notFound;
    }

private:
    void record(const char* name, const CredentialKey& key, std::string_view secret) {
        calls.push_back({.name = name, .service = key.service, .account = key.account, .secret = std::string(secret)});
    }
};

}  // namespace velmora
