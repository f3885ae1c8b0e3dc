#include "fakes/FakeKeychain.h"
#include "manager/KeychainStore.h"
#include "platform/macos/KeychainCredentialStore.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

class KeychainCredentialStoreTest : public testing::Test {
protected:
    using Attributes = std::map<std::string, std::string>;

    KeychainCredentialStoreTest() { fakeKeychain() = {}; }
    ~KeychainCredentialStoreTest() override { EXPECT_EQ(fakeKeychain().liveObjects, 0); }

    [[nodiscard]] static Attributes base() {
        return {{"class", "generic password"}, {"service", "com.velmora.app"}, {"account", "account"}};
    }
    [[nodiscard]] static Attributes baseWith(const Attributes& more) {
        Attributes all = base();
        all.insert(more.begin(), more.end());
        return all;
    }

    const CredentialKey key{.service = "com.velmora.app", .account = "account"};
    KeychainCredentialStore store;
};

TEST_F(KeychainCredentialStoreTest, copyMatchingAsksForTheDataOfOneItem) {
    fakeKeychain().items[{"com.velmora.app", "account"}] = "secret";
    const Credential found = store.copyMatching(key);
    EXPECT_EQ(found.status, CredentialStatus::success);
    EXPECT_EQ(found.secret, "secret");
    EXPECT_EQ(fakeKeychain().lastQuery, baseWith({{"return data", "true"}, {"match limit", "one"}}));
}

TEST_F(KeychainCredentialStoreTest, anItemMayBeEmptyOrAnyBytes) {
    const std::string bytes("\0\xff\n", 3);
    for (const std::string& secret : {std::string(), bytes}) {
        EXPECT_EQ(store.add(key, secret), CredentialStatus::success);
        const Credential found = store.copyMatching(key);
        EXPECT_EQ(found.status, CredentialStatus::success);
        EXPECT_EQ(found.secret, secret);
        EXPECT_EQ(store.remove(key), CredentialStatus::success);
    }
}

TEST_F(KeychainCredentialStoreTest, aResultThatIsNoDataIsNoValue) {
    fakeKeychain().items[{"com.velmora.app", "account"}] = "secret";
    fakeKeychain().answersWithText = true;
    const Credential found = store.copyMatching(key);
    EXPECT_NE(found.status, CredentialStatus::success);
    EXPECT_EQ(found.secret, "");
}

TEST_F(KeychainCredentialStoreTest, updateChangesTheDataAloneAndDoesNotAdd) {
    EXPECT_EQ(store.update(key, "one"), CredentialStatus::notFound);
    EXPECT_TRUE(fakeKeychain().items.empty());
    EXPECT_EQ(store.add(key, "one"), CredentialStatus::success);
    EXPECT_EQ(store.update(key, "two"), CredentialStatus::success);
    EXPECT_EQ(fakeKeychain().lastQuery, base());
    EXPECT_EQ(fakeKeychain().lastChanges, (Attributes{{"data", "two"}}));
    EXPECT_EQ(store.copyMatching(key).secret, "two");
}

TEST_F(KeychainCredentialStoreTest, addSetsNoAttributeButServiceAccountAndData) {
    EXPECT_EQ(store.add(key, "one"), CredentialStatus::success);
    EXPECT_EQ(fakeKeychain().lastQuery, baseWith({{"data", "one"}}));
    EXPECT_EQ(store.add(key, "two"), CredentialStatus::duplicate);
    EXPECT_EQ(store.copyMatching(key).secret, "one");
}

TEST_F(KeychainCredentialStoreTest, removeNamesTheOneItem) {
    fakeKeychain().items[{"com.velmora.app", "other"}] = "other";
    EXPECT_EQ(store.remove(key), CredentialStatus::notFound);
    EXPECT_EQ(fakeKeychain().lastQuery, base());
    EXPECT_EQ(fakeKeychain().items.size(), 1U);
}

TEST_F(KeychainCredentialStoreTest, everyStatusNumberIsPassedOnAsItIs) {
    for (const int number : {-25308, -25291, -25293, -34018}) {
        fakeKeychain().refusal = number;
        const auto status = static_cast<CredentialStatus>(number);
        EXPECT_EQ(store.copyMatching(key).status, status);
        EXPECT_EQ(store.update(key, "secret"), status);
        EXPECT_EQ(store.add(key, "secret"), status);
        EXPECT_EQ(store.remove(key), status);
    }
}

TEST_F(KeychainCredentialStoreTest, passwordsOfHostsGoThroughIt) {
    KeychainStore passwords(store);
    const Uuid host = Uuid::random();
    passwords.save("first", host);
    passwords.save("second", host);
    EXPECT_EQ(passwords.load(host), "second");
    EXPECT_EQ(fakeKeychain().items.size(), 1U);
    passwords.remove(host);
    EXPECT_EQ(passwords.load(host), std::nullopt);
}

}  // namespace
}  // namespace velmora
