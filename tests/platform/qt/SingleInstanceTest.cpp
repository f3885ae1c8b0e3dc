#include "EventLoop.h"
#include "fakes/TemporaryDirectory.h"
#include "platform/qt/SingleInstance.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <future>
#include <memory>

namespace velmora {

namespace {

using Role = SingleInstance::Role;

class SingleInstanceTest : public ::testing::Test {
protected:
    const TemporaryDirectory home;
    const std::filesystem::path directory = home / "share/Velmora";
};

TEST_F(SingleInstanceTest, TheFirstRunsAndTheLaterOneKnocks) {
    SingleInstance first(directory);
    int knocks = 0;
    first.onKnock([&] { ++knocks; });
    EXPECT_EQ(first.role(), Role::first);
    for (int expected = 1; expected <= 3; ++expected) {
        const SingleInstance later(directory);
        EXPECT_EQ(later.role(), Role::later);
        EXPECT_TRUE(runUntil([&] { return knocks == expected; }));
    }
    runFor(std::chrono::milliseconds(10));
    EXPECT_EQ(knocks, 3);
}

TEST_F(SingleInstanceTest, AKnockBeforeAnybodyListensIsKept) {
    SingleInstance first(directory);
    EXPECT_EQ(SingleInstance(directory).role(), Role::later);
    EXPECT_EQ(SingleInstance(directory).role(), Role::later);
    int knocks = 0;
    first.onKnock([&] { ++knocks; });
    EXPECT_TRUE(runUntil([&] { return knocks > 0; }));
    EXPECT_EQ(knocks, 1);
}

TEST_F(SingleInstanceTest, TheNextOneIsFirstAgain) {
    { const SingleInstance first(directory); }
    SingleInstance next(directory);
    EXPECT_EQ(next.role(), Role::first);
    int knocks = 0;
    next.onKnock([&] { ++knocks; });
    EXPECT_EQ(SingleInstance(directory).role(), Role::later);
    EXPECT_TRUE(runUntil([&] { return knocks == 1; }));
}

TEST_F(SingleInstanceTest, WhoComesWhileTheFirstIsAboutToEndTakesItsPlace) {
    auto first = std::make_unique<SingleInstance>(directory);
    first->onKnock([] {});
    first->stopListening();
    auto next = std::async(std::launch::async, [&] { return SingleInstance(directory).role(); });
    EXPECT_EQ(next.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    first.reset();
    EXPECT_EQ(next.get(), Role::first);
}

TEST_F(SingleInstanceTest, TwoDirectoriesAreTwoInstances) {
    const SingleInstance one(directory);
    const SingleInstance two(home / "other/Velmora");
    EXPECT_EQ(one.role(), Role::first);
    EXPECT_EQ(two.role(), Role::first);
}

TEST_F(SingleInstanceTest, WhatItMakesIsTheUsersAlone) {
    const mode_t previous = ::umask(0);
    const SingleInstance first(directory);
    ::umask(previous);
    EXPECT_EQ(modeOf(home / "share"), 0700);
    EXPECT_EQ(modeOf(directory), 0700);
    EXPECT_EQ(modeOf(directory / "instance.lock"), 0600);
    EXPECT_EQ(modeOf(directory / "instance.pipe"), 0600);
}

TEST_F(SingleInstanceTest, AFileInTheWayOfThePipeGoes) {
    std::filesystem::create_directories(directory);
    writeContent(directory / "instance.pipe", "something else");
    SingleInstance first(directory);
    int knocks = 0;
    first.onKnock([&] { ++knocks; });
    EXPECT_EQ(SingleInstance(directory).role(), Role::later);
    EXPECT_TRUE(runUntil([&] { return knocks == 1; }));
}

TEST_F(SingleInstanceTest, WithoutAPlaceForTheLockItRunsAllTheSame) {
    writeContent(home / "file", "");
    const SingleInstance one(home / "file/Velmora");
    EXPECT_EQ(one.role(), Role::first);
}

}  // namespace

}  // namespace velmora
