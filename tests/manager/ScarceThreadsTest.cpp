#include "fakes/FakeSystem.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <system_error>
#include <thread>

namespace velmora {
namespace {

/// While it lives, no thread can be started: each would need a stack for which there is no room.
class NoMoreThreads final {
public:
    NoMoreThreads() {
        ::pthread_getattr_default_np(&before_);
        pthread_attr_t endless;
        ::pthread_attr_init(&endless);
        ::pthread_attr_setstacksize(&endless, std::size_t{1} << 56);
        ::pthread_setattr_default_np(&endless);
        ::pthread_attr_destroy(&endless);
    }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;
    ~NoMoreThreads() {
        ::pthread_setattr_default_np(&before_);
        ::pthread_attr_destroy(&before_);
    }

private:
    pthread_attr_t before_{};
};

TEST(ScarceThreads, WithoutAThreadToBeHadTheManagerStartsAndAbandonedScriptsStay) {
    FakeSystem system;
    const auto script = system.runtime / ("velmora-askpass-" + Uuid::random().toString() + ".sh");
    writeContent(script, "#!/bin/sh\n");
    {
        const NoMoreThreads limit;
        ASSERT_THROW(std::thread([] {}).join(), std::system_error);
        EXPECT_NO_THROW(TunnelManager(system.platform()));
    }
    EXPECT_TRUE(std::filesystem::exists(script));
    EXPECT_NO_THROW(TunnelManager(system.platform()));
    EXPECT_FALSE(std::filesystem::exists(script)) << "the next start removes them";
}

}  // namespace
}  // namespace velmora
