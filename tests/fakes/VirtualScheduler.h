#pragma once

#include "platform/Scheduler.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace velmora {

/// A clock that only moves when a test says so. Posted tasks wait for `runPosted` or the next move.
class VirtualScheduler final : public Scheduler {
public:
    [[nodiscard]] std::chrono::system_clock::time_point now() const override { return epoch_ + elapsed_ + clockShift_; }

    [[nodiscard]] TimerHandle after(std::chrono::milliseconds delay, Task task) override {
        return add(delay, std::nullopt, std::move(task));
    }
    [[nodiscard]] TimerHandle every(std::chrono::milliseconds interval, Task task) override {
        return add(interval, interval, std::move(task));
    }
    void post(Task task) override { posted_.push_back(std::move(task)); }

    /// Lets time pass; runs what falls due, in order.
    void advance(std::chrono::milliseconds duration) {
        runPosted();
        const auto end = elapsed_ + duration;
        while (!due_->empty() && due_->begin()->first.first <= end) {
            auto node = due_->extract(due_->begin());
            elapsed_ = node.key().first;
            const auto task = node.mapped().task;
            if (node.mapped().interval) {
                node.key().first += *node.mapped().interval;
                due_->insert(std::move(node));
            }
            task();
            runPosted();
        }
        elapsed_ = end;
    }

    void runPosted() {
        while (!posted_.empty()) {
            const auto task = std::move(posted_.front());
            posted_.pop_front();
            task();
        }
    }

    /// Somebody sets the clock on the wall; delays do not care.
    void shiftClock(std::chrono::seconds by) { clockShift_ += by; }

    [[nodiscard]] std::size_t pendingTimers() const { return due_->size(); }

private:
    using Key = std::pair<std::chrono::milliseconds, std::uint64_t>;
    struct Entry {
        Task task;
        std::optional<std::chrono::milliseconds> interval;
    };
    using Due = std::map<Key, Entry>;

    class VirtualTimer final : public Timer {
    public:
        VirtualTimer(std::weak_ptr<Due> due, std::uint64_t number) : due_(std::move(due)), number_(number) {}
        VirtualTimer(const VirtualTimer&) = delete;
        VirtualTimer& operator=(const VirtualTimer&) = delete;
        ~VirtualTimer() override {
            if (const auto due = due_.lock()) {
                std::erase_if(*due, [&](const auto& entry) { return entry.first.second == number_; });
            }
        }

    private:
        std::weak_ptr<Due> due_;
        std::uint64_t number_;
    };

    TimerHandle add(std::chrono::milliseconds delay, std::optional<std::chrono::milliseconds> interval, Task task) {
        const auto number = next_++;
        due_->emplace(Key{elapsed_ + delay, number}, Entry{std::move(task), interval});
        return std::make_unique<VirtualTimer>(due_, number);
    }

    const std::chrono::system_clock::time_point epoch_ = std::chrono::sys_days{std::chrono::year{2026} / 3 / 14};
    std::chrono::milliseconds elapsed_{0};
    std::chrono::seconds clockShift_{0};
    std::shared_ptr<Due> due_ = std::make_shared<Due>();
    std::deque<Task> posted_;
    std::uint64_t next_ = 0;
};

}  // namespace velmora
