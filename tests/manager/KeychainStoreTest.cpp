#include "fakes/RecordingCredentialStore.h"
#include "manager/KeychainStore.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

constexpr auto anyOtherStatus = static_cast<CredentialStatus>(-34018);

constexpr CredentialStatus failures[] = {
    CredentialStatus::notFound,
    CredentialStatus::duplicate,
    CredentialStatus::interactionNotAllowed,
    CredentialStatus::notAvailable,
    anyOtherStatus,
};

class KeychainStoreTest : public testing::Test {
protected:
    using Call = RecordingCredentialStore::Call;

    [[nodiscard]] Call call(const char* name, const std::string& secret = {}) const {
        return {.name = name, .service = "com.velmora.app", .account = account, .secret = secret};
    }
    void store(const std::string& secret) { keychain.items[{"com.velmora.app", account}] = secret; }

    const std::string account = "0A1B2C3D-4E5F-4A6B-8C7D-9E0F1A2B3C4D";
    const Uuid host = *Uuid::parse("0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d");
    RecordingCredentialStore keychain;
    KeychainStore passwords{keychain};
};

TEST_F(KeychainStoreTest, loadAsksOnceForTheItemOfTheHost) {
    store("secret");
    EXPECT_EQ(passwords.load(host), "secret");
    EXPECT_EQ(keychain.calls, std::vector{call("copyMatching")});
}

TEST_F(KeychainStoreTest, loadYieldsTheEmptyTextOfAnEmptyItem) {
    store("");
    EXPECT_EQ(passwords.load(host), "");
}

TEST_F(KeychainStoreTest, loadYieldsNothingForAnyFailure) {
    store("secret");
    for (const CredentialStatus status : failures) {
        keychain.copyMatchingAnswer = status;
        EXPECT_EQ(passwords.load(host), std::nullopt) << static_cast<int>(status);
    }
}

TEST_F(KeychainStoreTest, loadYieldsNothingForBytesThatAreNotUtf8) {
    for (const char* bytes : {"\xff", "abc\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80"}) {
        store(bytes);
        EXPECT_EQ(passwords.load(host), std::nullopt) << testing::PrintToString(bytes);
    }
}

TEST_F(KeychainStoreTest, loadKeepsZeroBytesAndLineFeeds) {
    const std::string odd("a\0b\nc\n", 6);
    store(odd);
    EXPECT_EQ(passwords.load(host), odd);
}

TEST_F(KeychainStoreTest, saveUpdatesAnExistingItemAndDoesNothingElse) {
    store("old");
    passwords.save("new", host);
    EXPECT_EQ(keychain.calls, std::vector{call("update", "new")});
    EXPECT_EQ(passwords.load(host), "new");
}

TEST_F(KeychainStoreTest, saveAddsOnlyAfterAnUpdateFoundNoItem) {
    passwords.save("new", host);
    EXPECT_EQ(keychain.calls, (std::vector{call("update", "new"), call("add", "new")}));
    EXPECT_EQ(passwords.load(host), "new");
}

TEST_F(KeychainStoreTest, saveEndsAfterAnyOtherAnswerToTheUpdate) {
    for (const CredentialStatus status :
         {CredentialStatus::success, CredentialStatus::duplicate, CredentialStatus::interactionNotAllowed,
          CredentialStatus::notAvailable, anyOtherStatus}) {
        keychain.calls.clear();
        keychain.updateAnswer = status;
        passwords.save("new", host);
        EXPECT_EQ(keychain.calls, std::vector{call("update", "new")}) << static_cast<int>(status);
    }
    EXPECT_TRUE(keychain.items.empty());
}

TEST_F(KeychainStoreTest, saveTakesEveryAnswerToTheAddSilently) {
    for (const CredentialStatus status : failures) {
        keychain.calls.clear();
        keychain.addAnswer = status;
        passwords.save("new", host);
        EXPECT_EQ(keychain.calls, (std::vector{call("update", "new"), call("add", "new")})) << static_cast<int>(status);
    }
}

TEST_F(KeychainStoreTest, savePassesTheBytesOnAsTheyAre) {
    const std::string odd("p\xc3\xa4ss\0word", 10);
    passwords.save(odd, host);
    EXPECT_EQ(keychain.calls.back(), call("add", odd));
}

TEST_F(KeychainStoreTest, removeDeletesTheItemOfTheHostAlone) {
    store("secret");
    keychain.items[{"com.velmora.app", "other"}] = "other";
    passwords.remove(host);
    EXPECT_EQ(keychain.calls, std::vector{call("remove")});
    EXPECT_EQ(keychain.items, (RecordingCredentialStore::Items{{{"com.velmora.app", "other"}, "other"}}));
}

TEST_F(KeychainStoreTest, removeTakesEveryFailureSilently) {
    for (const CredentialStatus status : failures) {
        keychain.calls.clear();
        keychain.removeAnswer = status;
        passwords.remove(host);
        EXPECT_EQ(keychain.calls, std::vector{call("remove")}) << static_cast<int>(status);
    }
}

}  // namespace
}  // namespace velmora
