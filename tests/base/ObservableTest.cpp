#include "base/Observable.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace velmora {
namespace {

TEST(Observable, SubscriptionFiresAtOnceWithTheCurrentValue) {
    Observable<int> value(7);
    std::vector<int> seen;
    const auto subscription = value.subscribe([&](int current) { seen.push_back(current); });
    EXPECT_EQ(seen, std::vector<int>{7});
}

TEST(Observable, SubscriberHearsBeforeTheValueIsStoredAndViewsAfter) {
    Observable<int> value(1);
    std::vector<std::string> order;
    const auto subscription = value.subscribe(
        [&](int handed) { order.push_back(std::to_string(handed) + " stored " + std::to_string(value.get())); });
    const auto view = value.observe([&] { order.push_back("view " + std::to_string(value.get())); });
    value.set(2);
    value.edit([](int& v) { v = 3; });
    EXPECT_EQ(order, (std::vector<std::string>{"1 stored 1", "2 stored 1", "view 2", "3 stored 2", "view 3"}));
}

TEST(Observable, EveryAssignmentCountsAlsoOfAnEqualValue) {
    Observable<int> value(1);
    int calls = 0;
    const auto subscription = value.subscribe([&](int) { ++calls; });
    value.set(1);
    value.set(1);
    EXPECT_EQ(calls, 3);
}

TEST(Observable, EditingInPlaceTellsViews) {
    Observable<std::vector<int>> value;
    int calls = 0;
    const auto view = value.observe([&] { ++calls; });
    value.edit([](std::vector<int>& v) { v.push_back(4); });
    EXPECT_EQ(value.get(), std::vector<int>{4});
    EXPECT_EQ(calls, 1);
}

TEST(Observable, CancelledHandlersAreSilent) {
    Observable<int> value(0);
    int calls = 0;
    auto subscription = value.subscribe([&](int) { ++calls; });
    auto view = value.observe([&] { ++calls; });
    subscription.cancel();
    view = {};
    value.set(1);
    EXPECT_EQ(calls, 1);
}

TEST(Observable, HandlersMayCancelThemselvesAndRegisterOthers) {
    Observable<int> value(0);
    std::vector<std::string> seen;
    std::optional<Subscription> late;
    Subscription first = value.observe([&] {
        seen.emplace_back("first");
        late = value.observe([&] { seen.emplace_back("late"); });
        first.cancel();
    });
    value.set(1);
    value.set(2);
    EXPECT_EQ(seen, (std::vector<std::string>{"first", "late"}));
}

TEST(Observable, ASubscriptionMayOutliveTheValue) {
    Subscription subscription;
    {
        Observable<int> value(0);
        subscription = value.observe([] {});
    }
    subscription.cancel();
}

}  // namespace
}  // namespace velmora
