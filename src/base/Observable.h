#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace velmora {

/// Keeps one registration at an Observable alive; ends it when destroyed. May outlive the observable.
class [[nodiscard]] Subscription final {
public:
    Subscription() = default;
    explicit Subscription(std::shared_ptr<void> registration) : registration_(std::move(registration)) {}
    void cancel() { registration_.reset(); }

private:
    std::shared_ptr<void> registration_;
};

/// A value that tells others when it changes. Everything happens on the calling thread, at once, undelayed.
///
/// `subscribe` hands a function the current value at once and then every new value before it is stored: a handler
/// takes the member that changes from its argument and everything else from where it is kept.
/// `observe` calls a function after each new value is stored: views read the value then.
/// Every assignment counts as a change, also of an equal value. Handlers may register, cancel and assign.
template <typename T>
class Observable final {
public:
    Observable() = default;
    explicit Observable(T initial) : value_(std::move(initial)) {}
    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;
    ~Observable() = default;

    [[nodiscard]] const T& get() const { return value_; }
    const T* operator->() const { return &value_; }
    const T& operator*() const { return value_; }

    void set(T newValue) {
        before_.call(newValue);
        value_ = std::move(newValue);
        after_.call();
    }

    /// Changes the value in place as one assignment. The copy that `subscribe` needs is made only if somebody did.
    template <typename Edit>
    void edit(Edit&& change) {
        if (!before_.empty()) {
            T copy = value_;
            std::forward<Edit>(change)(copy);
            set(std::move(copy));
            return;
        }
        std::forward<Edit>(change)(value_);
        after_.call();
    }

    Subscription subscribe(std::function<void(const T&)> handler) {
        handler(value_);
        return before_.add(std::move(handler));
    }

    Subscription observe(std::function<void()> handler) const { return after_.add(std::move(handler)); }

private:
    template <typename... Args>
    class Handlers final {
    public:
        using Handler = std::function<void(Args...)>;

        [[nodiscard]] bool empty() const {
            return std::all_of(slots_.begin(), slots_.end(), [](const auto& slot) { return slot.expired(); });
        }

        Subscription add(Handler handler) {
            std::erase_if(slots_, [](const auto& slot) { return slot.expired(); });
            auto slot = std::make_shared<Handler>(std::move(handler));
            slots_.push_back(slot);
            return Subscription(std::move(slot));
        }

        void call(Args... args) const {
            const auto current = slots_;  // a handler may add or cancel while we walk
            for (const auto& weak : current) {
                if (const auto slot = weak.lock()) {
                    (*slot)(args...);
                }
            }
        }

    private:
        std::vector<std::weak_ptr<Handler>> slots_;
    };

    T value_{};
    Handlers<const T&> before_;
    mutable Handlers<> after_;  ///< who looks on changes nothing
};

}  // namespace velmora
