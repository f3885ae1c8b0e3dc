#include "KeyringPrompter.h"
#include "PrivateSession.h"
#include "manager/KeychainStore.h"
#include "platform/linux/SecretServiceCalls.h"
#include "platform/linux/SecretServiceStore.h"
#include "platform/linux/SignalContext.h"

#include <gtest/gtest.h>
#include <libsecret/secret.h>

#include <chrono>
#include <thread>
#include <vector>

namespace velmora {
namespace {

using namespace std::chrono_literals;

std::chrono::milliseconds timeOf(const auto& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

/// Another program's item under the same two attributes: it has a schema, and a third attribute.
void writeAsAnotherProgram(const CredentialKey& key, const std::string& secret) {
    const SecretSchema schema{.name = "org.example.Other",
                              .flags = SECRET_SCHEMA_NONE,
                              .attributes = {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                             {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                             {"writer", SECRET_SCHEMA_ATTRIBUTE_STRING}},
                              .reserved = 0,
                              .reserved1 = nullptr,
                              .reserved2 = nullptr,
                              .reserved3 = nullptr,
                              .reserved4 = nullptr,
                              .reserved5 = nullptr,
                              .reserved6 = nullptr,
                              .reserved7 = nullptr};
    SecretValue* value =
        secret_value_new(secret.data(), static_cast<gssize>(secret.size()), "application/octet-stream");
    const SignalContext signals;
    const SignalContext::Scope scope(signals);
    GLibError error;
    const GObjectPtr<SecretService> service = secretservice::open(nullptr, error);
    const secretservice::Attributes attributes(secret_attributes_build(
        &schema, "service", key.service.c_str(), "account", key.account.c_str(), "writer", "other", nullptr));
    EXPECT_TRUE(secret_service_store_sync(service.get(), &schema, attributes.get(), SECRET_COLLECTION_DEFAULT, "Other",
                                          value, nullptr, error.out()));
    secret_value_unref(value);
}

std::vector<std::string> labelsOf(const CredentialKey& key) {
    const SignalContext signals;
    const SignalContext::Scope scope(signals);
    GLibError error;
    const GObjectPtr<SecretService> service = secretservice::open(nullptr, error);
    const auto attributes = secretservice::attributesOf(key);
    GList* found =
        secret_service_search_sync(service.get(), nullptr, attributes.get(), SECRET_SEARCH_ALL, nullptr, nullptr);
    std::vector<std::string> labels;
    for (const GList* entry = found; entry != nullptr; entry = entry->next) {
        gchar* label = secret_item_get_label(SECRET_ITEM(entry->data));
        labels.emplace_back(label);
        g_free(label);
    }
    g_list_free_full(found, g_object_unref);
    return labels;
}

class SecretServiceStoreTest : public testing::Test {
protected:
    static CredentialKey keyOf(const Uuid& host) { return {.service = "com.velmora.app", .account = host.toString()}; }

    PrivateSession session;
    SecretServiceStore store;
    KeychainStore passwords{store};
    const Uuid host = Uuid::random();
    const CredentialKey key = keyOf(host);
};

/// With a keyring that is unlocked, as after a login.
class UnlockedKeyringTest : public SecretServiceStoreTest {
protected:
    UnlockedKeyringTest() { session.startKeyring(); }
};

TEST_F(UnlockedKeyringTest, hostThatNeverHadAPasswordLoadsNothingAndDeletesNothing) {
    EXPECT_EQ(passwords.load(host), std::nullopt);
    passwords.remove(host);
    EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::notFound);
    EXPECT_EQ(store.remove(key), CredentialStatus::notFound);
}

TEST_F(UnlockedKeyringTest, savingTheEmptyTextKeepsTheItemAndLoadsTheEmptyText) {
    passwords.save("secret", host);
    passwords.save("", host);
    EXPECT_EQ(passwords.load(host), "");
    EXPECT_EQ(labelsOf(key), std::vector<std::string>{"Velmora"});

    const Uuid unsaved = Uuid::random();
    passwords.save("", unsaved);
    EXPECT_EQ(passwords.load(unsaved), "");
}

TEST_F(UnlockedKeyringTest, savingTwiceReplacesTheOneItem) {
    passwords.save("first", host);
    passwords.save("second", host);
    EXPECT_EQ(passwords.load(host), "second");
    EXPECT_EQ(labelsOf(key), std::vector<std::string>{"Velmora"});
}

TEST_F(UnlockedKeyringTest, hostsKeepSeparatePasswordsAndANewIdDoesNotSeeTheOldOne) {
    const Uuid other = Uuid::random();
    passwords.save("one", host);
    EXPECT_EQ(passwords.load(other), std::nullopt);
    passwords.save("two", other);
    EXPECT_EQ(passwords.load(host), "one");
    EXPECT_EQ(passwords.load(other), "two");
    passwords.remove(host);
    EXPECT_EQ(passwords.load(host), std::nullopt);
    EXPECT_EQ(passwords.load(other), "two");
}

TEST_F(UnlockedKeyringTest, nonAsciiPasswordIsStoredAsUtf8AndComesBackUnchanged) {
    const std::string password = "pässwörd \xe5\xaf\x86\xe7\xa0\x81 \xf0\x9f\x94\x91";
    passwords.save(password, host);
    EXPECT_EQ(passwords.load(host), password);
    EXPECT_EQ(store.copyMatching(key).secret, password);
}

TEST_F(UnlockedKeyringTest, itemOfAnotherProgramThatIsNotUtf8LoadsAsNothing) {
    writeAsAnotherProgram(key, "\xff\xfe secret");
    EXPECT_EQ(store.copyMatching(key).secret, "\xff\xfe secret");
    EXPECT_EQ(passwords.load(host), std::nullopt);
}

TEST_F(UnlockedKeyringTest, itemOfAnotherProgramIsFoundByServiceAndAccountAloneAndUpdatedInPlace) {
    writeAsAnotherProgram(key, "theirs");
    EXPECT_EQ(passwords.load(host), "theirs");
    passwords.save("ours", host);
    EXPECT_EQ(passwords.load(host), "ours");
    EXPECT_EQ(labelsOf(key), std::vector<std::string>{"Other"});
}

TEST_F(UnlockedKeyringTest, anyBytesComeBackIntact) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes.push_back(static_cast<char>(byte));
    }
    EXPECT_EQ(store.add(key, bytes), CredentialStatus::success);
    EXPECT_EQ(store.copyMatching(key).secret, bytes);
}

TEST_F(UnlockedKeyringTest, updateDoesNotAddAndAddDoesNotReplace) {
    EXPECT_EQ(store.update(key, "one"), CredentialStatus::notFound);
    EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::notFound);
    EXPECT_EQ(store.add(key, "one"), CredentialStatus::success);
    EXPECT_EQ(store.add(key, "two"), CredentialStatus::duplicate);
    EXPECT_EQ(store.copyMatching(key).secret, "one");
    EXPECT_EQ(store.remove(key), CredentialStatus::success);
    EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::notFound);
}

TEST_F(UnlockedKeyringTest, hangingKeyringEndsTheCallInBoundedTimeAndIsFoundAgainLater) {
    passwords.save("secret", host);
    session.freezeKeyring();
    Credential answer;
    const auto first = timeOf([&] { answer = store.copyMatching(key); });
    EXPECT_EQ(answer.status, CredentialStatus::notAvailable);
    EXPECT_GE(first, 1900ms);
    EXPECT_LE(first, 3000ms);
    // The next ones do not hold the program up as long.
    CredentialStatus status{};
    const auto second = timeOf([&] { status = store.update(key, "other"); });
    EXPECT_EQ(status, CredentialStatus::notAvailable);
    EXPECT_LE(second, 1500ms);
    RecordProperty("first_ms", static_cast<int>(first.count()));
    RecordProperty("second_ms", static_cast<int>(second.count()));
    session.thawKeyring();
    passwords.save("third", host);
    EXPECT_EQ(passwords.load(host), "third");
}

TEST_F(UnlockedKeyringTest, keyringThatCameBackIsFoundAtTheNextCall) {
    passwords.save("secret", host);
    session.stopKeyring();
    session.startKeyring();
    EXPECT_EQ(passwords.load(host), "secret");
    session.stopKeyring();
    EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::notAvailable);
    session.startKeyring();
    passwords.save("other", host);
    EXPECT_EQ(passwords.load(host), "other");
}

TEST_F(UnlockedKeyringTest, busThatGoesAwayDoesNotEndTheProgram) {
    passwords.save("secret", host);
    session.stopKeyring();
    session.stopBus();
    EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::notAvailable);
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
    EXPECT_EQ(store.update(key, "other"), CredentialStatus::notAvailable);
}

/// With the dialog for the password of the keyring, which nobody answers.
class LockedKeyringTest : public UnlockedKeyringTest {
protected:
    LockedKeyringTest() {
        passwords.save("secret", host);
        session.lockKeyring();
    }

    KeyringPrompter prompter{session.busAddress()};
};

TEST_F(LockedKeyringTest, lockedItemCountsAsNoValueAndIsAskedForOnceWithoutWaiting) {
    const auto time = timeOf([&] { EXPECT_EQ(passwords.load(host), std::nullopt); });
    EXPECT_LE(time, 1500ms);
    ASSERT_TRUE(prompter.waitUntilAsked(1));
    EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::interactionNotAllowed);
    EXPECT_EQ(store.update(key, "other"), CredentialStatus::interactionNotAllowed);
    EXPECT_EQ(store.remove(key), CredentialStatus::interactionNotAllowed);
    EXPECT_EQ(store.copyMatching(keyOf(Uuid::random())).status, CredentialStatus::interactionNotAllowed);
    EXPECT_EQ(prompter.timesAsked(), 1U);
    EXPECT_TRUE(session.keyringIsAlive());
}

TEST_F(LockedKeyringTest, nextAttemptAfterTheUnlockFindsThePassword) {
    EXPECT_EQ(passwords.load(host), std::nullopt);
    ASSERT_TRUE(prompter.waitUntilAsked(1));
    session.unlockKeyring();
    EXPECT_EQ(passwords.load(host), "secret");
}

TEST_F(LockedKeyringTest, newItemOfALockedKeyringIsAskedForToo) {
    const CredentialKey unknown = keyOf(Uuid::random());
    EXPECT_EQ(store.add(unknown, "new"), CredentialStatus::interactionNotAllowed);
    EXPECT_TRUE(prompter.waitUntilAsked(1));
    session.unlockKeyring();
    EXPECT_EQ(store.add(unknown, "new"), CredentialStatus::success);
}

TEST_F(LockedKeyringTest, deletingFromALockedKeyringAsksNothing) {
    EXPECT_EQ(store.remove(key), CredentialStatus::interactionNotAllowed);
    EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::interactionNotAllowed);
    ASSERT_TRUE(prompter.waitUntilAsked(1));
    EXPECT_EQ(prompter.timesAsked(), 1U);
}

TEST_F(LockedKeyringTest, dismissedQuestionIsNotAskedAgainUntilTheKeyringWasSeenUnlocked) {
    EXPECT_EQ(passwords.load(host), std::nullopt);
    ASSERT_TRUE(prompter.waitUntilAsked(1));
    prompter.dismiss();
    for (int attempt = 0; attempt < 100; ++attempt) {
        EXPECT_EQ(passwords.load(host), std::nullopt);
    }
    EXPECT_EQ(prompter.timesAsked(), 1U);
    EXPECT_TRUE(session.keyringIsAlive());

    session.unlockKeyring();
    EXPECT_EQ(passwords.load(host), "secret");
    session.lockKeyring();
    EXPECT_EQ(passwords.load(host), std::nullopt);
    EXPECT_TRUE(prompter.waitUntilAsked(2));
}

class FreshHomeTest : public SecretServiceStoreTest {
protected:
    FreshHomeTest() { session.startKeyring(PrivateSession::Keyring::locked); }

    KeyringPrompter prompter{session.busAddress()};
};

TEST_F(FreshHomeTest, withoutADefaultCollectionNothingIsFoundAndNobodyIsAsked) {
    EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::notFound);
    EXPECT_EQ(store.update(key, "secret"), CredentialStatus::notFound);
    EXPECT_EQ(store.remove(key), CredentialStatus::notFound);
    EXPECT_EQ(prompter.timesAsked(), 0U);
}

TEST_F(FreshHomeTest, nobodyIsAskedForTheSakeOfNoPassword) {
    passwords.save("", host);
    EXPECT_EQ(store.add(key, ""), CredentialStatus::interactionNotAllowed);
    EXPECT_EQ(passwords.load(host), std::nullopt);
    std::this_thread::sleep_for(200ms);  // time for a question that must not come
    EXPECT_EQ(prompter.timesAsked(), 0U);
}

TEST_F(FreshHomeTest, firstPasswordAsksForANewDefaultCollectionWithoutWaiting) {
    const auto time = timeOf([&] { passwords.save("secret", host); });
    EXPECT_LE(time, 1500ms);
    EXPECT_TRUE(prompter.waitUntilAsked(1));
    EXPECT_EQ(passwords.load(host), std::nullopt);
    EXPECT_EQ(prompter.timesAsked(), 1U);
}

TEST_F(SecretServiceStoreTest, absentKeyringFailsAtOnce) {
    const auto time = timeOf([&] {
        EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::notAvailable);
        EXPECT_EQ(store.update(key, "secret"), CredentialStatus::notAvailable);
        EXPECT_EQ(store.add(key, "secret"), CredentialStatus::notAvailable);
        EXPECT_EQ(store.remove(key), CredentialStatus::notAvailable);
    });
    EXPECT_LE(time, 1500ms);
    session.startKeyring();
    EXPECT_EQ(store.add(key, "secret"), CredentialStatus::success);
}

TEST(SecretServiceStoreWithoutABusTest, everyCallFailsAtOnce) {
    const PrivateSession session(PrivateSession::Bus::absent);
    SecretServiceStore store;
    const CredentialKey key{.service = "com.velmora.app", .account = "account"};
    const auto time = timeOf([&] {
        EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::notAvailable);
        EXPECT_EQ(store.update(key, "secret"), CredentialStatus::notAvailable);
        EXPECT_EQ(store.add(key, "secret"), CredentialStatus::notAvailable);
        EXPECT_EQ(store.remove(key), CredentialStatus::notAvailable);
    });
    EXPECT_LE(time, 1500ms);
}

}  // namespace
}  // namespace velmora
