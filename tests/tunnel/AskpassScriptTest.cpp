#include "base/Uuid.h"
#include "fakes/ResourceLimit.h"
#include "fakes/TemporaryDirectory.h"
#include "tunnel/AskpassScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <memory>
#include <regex>

namespace velmora {
namespace {

std::string outputOf(const std::filesystem::path& program) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(program.c_str(), "r"), ::pclose);
    std::string output;
    std::array<char, 256> buffer{};
    while (const auto count = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) {
        output.append(buffer.data(), count);
    }
    return output;
}

std::string leftBehind(const TemporaryDirectory& directory, const std::string& name, const std::string& content) {
    writeContent(directory / name, content);
    return name;
}

std::string scriptName() {
    return "velmora-askpass-" + Uuid::random().toString() + ".sh";
}

TEST(AskpassScript, HoldsTheEncodedPassword) {
    EXPECT_EQ(askpassScriptText("secret"), "#!/bin/sh\nprintf '%s' 'c2VjcmV0' | /usr/bin/base64 -d && printf '\\n'\n");
}

TEST(AskpassScript, PrintsAnyPasswordExactlyAndOneNewline) {
    const TemporaryDirectory directory;
    for (const std::string password :
         {"it's $HOME\nand `more`\\", "plain", "caf\xC3\xA9 \xF0\x9F\x94\x91", "-n", "%s\\n", " spaces "}) {
        const auto script = writeAskpassScript(directory.path(), password);
        ASSERT_TRUE(script);
        EXPECT_EQ(outputOf(script->path()), password + "\n");
    }
    const std::string longOne(100000, 'x');
    EXPECT_EQ(outputOf(writeAskpassScript(directory.path(), longOne)->path()), longOne + "\n");
}

TEST(AskpassScript, IsPrivateNamedAndGoneWithItsOwner) {
    const TemporaryDirectory directory;
    std::filesystem::path path;
    {
        const auto script = writeAskpassScript(directory.path(), "x");
        ASSERT_TRUE(script);
        path = script->path();
        EXPECT_EQ(modeOf(path), 0700);
        const std::regex pattern("velmora-askpass-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.sh");
        EXPECT_TRUE(std::regex_match(path.filename().string(), pattern)) << path;
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(AskpassScript, IsPrivateUnderAnyUmask) {
    const TemporaryDirectory directory;
    const auto previous = ::umask(0);
    const auto open = writeAskpassScript(directory.path(), "x");
    ::umask(0777);
    const auto closed = writeAskpassScript(directory.path(), "x");
    ::umask(previous);
    EXPECT_EQ(modeOf(open->path()), 0700);
    EXPECT_EQ(modeOf(closed->path()), 0700);
}

TEST(AskpassScript, ANewOneInThePlaceOfAnotherLeavesOne) {
    const TemporaryDirectory directory;
    auto script = writeAskpassScript(directory.path(), "a");
    const auto first = script->path();
    *script = *writeAskpassScript(directory.path(), "b");
    EXPECT_FALSE(std::filesystem::exists(first));
    EXPECT_TRUE(std::filesystem::exists(script->path()));
}

TEST(AskpassScript, WithoutAFolderThereIsNone) {
    const TemporaryDirectory directory;
    EXPECT_FALSE(writeAskpassScript(directory / "none", "x"));
}

TEST(AskpassScript, OnAFullDiskThereIsNoneAndNoPieceOfIt) {
    const TemporaryDirectory directory;
    ::signal(SIGXFSZ, SIG_IGN);
    {
        const ResourceLimit noMoreThan(RLIMIT_FSIZE, 10);
        EXPECT_FALSE(writeAskpassScript(directory.path(), "x"));
    }
    ::signal(SIGXFSZ, SIG_DFL);
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST(AbandonedAskpassScripts, AreRemovedAndLivingOnesStay) {
    const TemporaryDirectory directory;
    const auto living = writeAskpassScript(directory.path(), "x");
    const auto dead = directory / leftBehind(directory, scriptName(), "#!/bin/sh\n");
    removeAbandonedAskpassScripts(directory.path());
    EXPECT_TRUE(std::filesystem::exists(living->path()));
    EXPECT_FALSE(std::filesystem::exists(dead));
}

/// Another program of the same user may be making it: until it is locked it is empty.
TEST(AbandonedAskpassScripts, OneThatHoldsNothingYetStays) {
    const TemporaryDirectory directory;
    const auto script = directory / leftBehind(directory, scriptName(), "");
    removeAbandonedAskpassScripts(directory.path());
    EXPECT_TRUE(std::filesystem::exists(script));
}

TEST(AbandonedAskpassScripts, OtherFilesStay) {
    const TemporaryDirectory directory;
    for (const auto& name : {std::string("velmora-askpass-x.sh"), std::string("velmora-askpass-.sh"),
                             std::string("notes.sh"), scriptName() + ".bak"}) {
        leftBehind(directory, name, "content");
    }
    std::filesystem::create_directory(directory / scriptName());
    writeContent(directory / "target", "content");
    std::filesystem::create_symlink(directory / "target", directory / scriptName());
    removeAbandonedAskpassScripts(directory.path());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.path()), {}), 7);
    removeAbandonedAskpassScripts(directory / "none");
}

TEST(AbandonedAskpassScripts, OfAKilledProcessAreRemoved) {
    const TemporaryDirectory directory;
    const pid_t child = ::fork();
    if (child == 0) {
        const auto script = writeAskpassScript(directory.path(), "x");
        ::raise(SIGKILL);
    }
    ::waitpid(child, nullptr, 0);
    EXPECT_FALSE(std::filesystem::is_empty(directory.path()));
    removeAbandonedAskpassScripts(directory.path());
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

}  // namespace
}  // namespace velmora
