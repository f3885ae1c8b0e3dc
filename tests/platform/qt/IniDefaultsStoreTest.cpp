#include "fakes/TemporaryDirectory.h"
#include "platform/qt/IniDefaultsStore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace velmora {

namespace {

class IniDefaultsStoreTest : public ::testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<IniDefaultsStore> open() const { return std::make_unique<IniDefaultsStore>(file); }

    const TemporaryDirectory directory;
    const std::filesystem::path file = directory / "config/com.velmora.app.conf";
};

TEST_F(IniDefaultsStoreTest, ReadsWhatIsAbsentAsFalseAndEmptyAndCreatesNothing) {
    const auto store = open();
    EXPECT_FALSE(store->boolean("performanceMode"));
    EXPECT_EQ(store->string("globalProxyJump"), "");
    EXPECT_FALSE(store->contains("performanceMode"));
    EXPECT_FALSE(std::filesystem::exists(file.parent_path()));
}

TEST_F(IniDefaultsStoreTest, WhatIsSetIsOnDiskAtOnce) {
    const auto store = open();
    store->setBoolean("performanceMode", true);
    store->setString("globalProxyJump", "jump.example");
    EXPECT_EQ(contentOf(file), "[General]\nglobalProxyJump=jump.example\nperformanceMode=true\n");

    const auto other = open();
    EXPECT_TRUE(other->boolean("performanceMode"));
    EXPECT_EQ(other->string("globalProxyJump"), "jump.example");

    store->setBoolean("performanceMode", false);
    EXPECT_FALSE(open()->boolean("performanceMode"));
    EXPECT_TRUE(open()->contains("performanceMode"));
}

TEST_F(IniDefaultsStoreTest, KeepsEveryText) {
    // No two neighbours of one length: Qt reads a file again only when its size or its time has changed.
    const std::vector<std::string> texts{"",
                                         " leading and trailing ",
                                         "line\nline\r\nline\n",
                                         "a, b, c",
                                         "\"quoted\" 'too'",
                                         "100%",
                                         "%20 %n %s",
                                         "@starts",
                                         "@Invalid()",
                                         "@ByteArray(x)",
                                         "a=b;c#d",
                                         "back\\slash\\n",
                                         "tab\there",
                                         "ünïcødé 東京 🚇",
                                         "[General]",
                                         "\x7f\x01",
                                         "0",
                                         "true",
                                         ";comment",
                                         "\u2028 \u00a0",
                                         "\n\uFEFFfunction\n\xc3\xa9",
                                         "a\uFEFFb"};
    for (const std::string& text : texts) {
        open()->setString("proxyExceptions", text);
        const auto store = open();
        EXPECT_EQ(store->string("proxyExceptions"), text);
        EXPECT_TRUE(store->contains("proxyExceptions"));
    }
}

TEST_F(IniDefaultsStoreTest, KeepsAVeryLongText) {
    const std::string text(1 << 20, 'x');
    open()->setString("proxyExceptions", text);
    EXPECT_EQ(open()->string("proxyExceptions"), text);
}

TEST_F(IniDefaultsStoreTest, Forgets) {
    const auto store = open();
    store->setString("syncFolderPath", "/x");
    store->remove("syncFolderPath");
    store->remove("neverThere");
    EXPECT_FALSE(store->contains("syncFolderPath"));
    EXPECT_FALSE(open()->contains("syncFolderPath"));
}

TEST_F(IniDefaultsStoreTest, FileAndFolderAreTheUsersAlone) {
    const mode_t previous = ::umask(0);
    open()->setBoolean("performanceMode", true);
    EXPECT_EQ(::umask(previous), 0U);
    EXPECT_EQ(modeOf(file), 0600);
    EXPECT_EQ(modeOf(file.parent_path()), 0700);
    open()->setBoolean("performanceMode", false);
    EXPECT_EQ(modeOf(file), 0600);
}

TEST_F(IniDefaultsStoreTest, ReadsAListThatWasWrittenByHand) {
    std::filesystem::create_directories(file.parent_path());
    writeContent(file, "[General]\nglobalProxyJump=a.example, b.example\nperformanceMode=1\n");
    EXPECT_EQ(open()->string("globalProxyJump"), "a.example, b.example");
    EXPECT_TRUE(open()->boolean("performanceMode"));
}

TEST_F(IniDefaultsStoreTest, KeepsAListThatWasWrittenByHand) {
    std::filesystem::create_directories(file.parent_path());
    for (const std::string& separator : {std::string(), std::string(1, '\0'), std::string(", @")}) {
        writeContent(file, "[General]\nglobalProxyJump=a" + separator + "b, c\n");
        open()->setBoolean("performanceMode", true);
        EXPECT_EQ(open()->string("globalProxyJump"), "a" + separator + "b, c");
    }
}

TEST_F(IniDefaultsStoreTest, ALineThatCannotBeReadKeepsNothingFromBeingSaved) {
    std::filesystem::create_directories(file.parent_path());
    for (const std::string line : {"half a li", "=x", "[General", "\xFF"}) {
        writeContent(file, "[General]\nglobalProxyJump=a.example\n" + line + "\n[other]\nkept=1\n");
        open()->setString("syncFolderPath", "/x");
        const auto store = open();
        EXPECT_EQ(store->string("syncFolderPath"), "/x") << line;
        EXPECT_EQ(store->string("globalProxyJump"), "a.example") << line;
        EXPECT_TRUE(store->boolean("other/kept")) << line;
        store->remove("syncFolderPath");
        EXPECT_FALSE(open()->contains("syncFolderPath")) << line;
    }
}

/// A few bytes of an object make Qt ask for 48 GB.
TEST_F(IniDefaultsStoreTest, LeavesOutObjectsHoweverTheyAreWritten) {
    const std::string object = R"((\0\0\0\xbx1\x1))";
    const std::vector<std::string> ways{"@Variant",
                                        "\"@Variant",
                                        "@\"Var\"iant",
                                        "\\x40Variant",
                                        "\\100Variant",
                                        "@Var\\\niant",
                                        "@Var\\\r\niant",
                                        "@Var\\qiant",
                                        "a, @Variant",
                                        " \t@Variant",
                                        "@\\x56\\x61riant",
                                        "@\\x10056\\141riant",
                                        "@DateTime",
                                        "\\x@Variant",
                                        "a,\\x @Variant",
                                        "\xEF\xBB\xBF@Variant",
                                        ",\xEF\"\xBB\"\\q\xBF@Variant"};
    std::filesystem::create_directories(file.parent_path());
    for (const auto& way : ways) {
        writeContent(file, "[General]\nbefore=1\nobject=" + way + object + "\nafter=anna@example.com\n");
        const auto store = open();
        EXPECT_EQ(store->string("before"), "1") << way;
        EXPECT_FALSE(store->contains("object")) << way;
        EXPECT_EQ(store->string("after"), "anna@example.com") << way;
    }
}

TEST_F(IniDefaultsStoreTest, KeepsWhatStandsForHalfACharacter) {
    std::filesystem::create_directories(file.parent_path());
    writeContent(file, "[General]\nhalf=a\\xd83d!\n");
    const auto store = open();
    const auto read = store->string("half");
    store->setString("other", "b");
    EXPECT_EQ(open()->string("half"), read);
}

TEST_F(IniDefaultsStoreTest, KeepsATextThatReadsLikeAnObject) {
    for (const std::string text : {"@Variant(1)", "@@DateTime(1)", "see \"@Variant(1)\"", "@", "x@Variant(1)"}) {
        open()->setString("customPac", text);
        EXPECT_EQ(open()->string("customPac"), text);
    }
}

TEST_F(IniDefaultsStoreTest, ReadsAFileThatIsNoneAsEmpty) {
    std::filesystem::create_directories(file);
    EXPECT_FALSE(open()->contains("performanceMode"));
    open()->setBoolean("performanceMode", true);
}

TEST_F(IniDefaultsStoreTest, AFileThatCannotBeReadIsNotWrittenOver) {
    std::filesystem::create_directories(file.parent_path());
    writeContent(file, "[General]\nsyncFolderPath=/tunnels\n");
    constexpr std::uintmax_t tooLarge = (std::uintmax_t{64} << 20) + 1;
    std::filesystem::resize_file(file, tooLarge);
    const auto store = open();
    EXPECT_FALSE(store->contains("syncFolderPath"));
    store->setString("written", "now");
    EXPECT_EQ(store->string("written"), "now") << "it holds until the program ends";
    EXPECT_EQ(std::filesystem::file_size(file), tooLarge);
}

TEST_F(IniDefaultsStoreTest, LeavesWhatOthersWroteMeanwhile) {
    const auto store = open();
    store->setString("globalProxyJump", "one");
    open()->setString("syncFolderPath", "/two");
    store->setBoolean("performanceMode", true);
    EXPECT_EQ(open()->string("syncFolderPath"), "/two");
    EXPECT_EQ(open()->string("globalProxyJump"), "one");
}

TEST_F(IniDefaultsStoreTest, ALockThatACrashLeftBehindHoldsNothingUp) {
    open()->setString("globalProxyJump", "one");
    writeContent(file.string() + ".lock", "");
    const auto start = std::chrono::steady_clock::now();
    open()->setString("globalProxyJump", "two");
    EXPECT_EQ(open()->string("globalProxyJump"), "two");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << "Qt's own lock waits for 30";
}

TEST_F(IniDefaultsStoreTest, WhatCouldNotBeWrittenIsWrittenWithTheNextChange) {
    const auto store = open();
    writeContent(directory / "config", "in the way of the folder");
    store->setString("globalProxyJump", "one");
    EXPECT_EQ(store->string("globalProxyJump"), "one");
    std::filesystem::remove(directory / "config");
    store->setString("syncFolderPath", "/two");
    EXPECT_EQ(open()->string("globalProxyJump"), "one");
    EXPECT_EQ(open()->string("syncFolderPath"), "/two");
}

}  // namespace

}  // namespace velmora
