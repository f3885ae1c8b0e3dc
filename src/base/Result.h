#pragma once

#include <string>
#include <utility>
#include <variant>

namespace velmora {

/// What went wrong, in words that can be shown or logged.
struct Error {
    std::string message;

    bool operator==(const Error&) const = default;
};

/// Either a value or the reason why there is none. The caller must look.
template <typename T, typename E = Error>
class [[nodiscard]] Result {
public:
    Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
    Result(E error) : content_(std::in_place_index<1>, std::move(error)) {}

    explicit operator bool() const { return content_.index() == 0; }

    /// Only when there is a value.
    T& value() & { return std::get<0>(content_); }
    const T& value() const& { return std::get<0>(content_); }
    T&& value() && { return std::get<0>(std::move(content_)); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T&& operator*() && { return std::move(*this).value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

    /// Only when there is no value.
    const E& error() const { return std::get<1>(content_); }

private:
    std::variant<T, E> content_;
};

/// The result of an operation that yields nothing but may fail.
template <typename E>
class [[nodiscard]] Result<void, E> {
public:
    Result() = default;
    Result(E error) : content_(std::move(error)) {}

    explicit operator bool() const { return content_.index() == 0; }
    const E& error() const { return std::get<1>(content_); }

private:
    std::variant<std::monostate, E> content_;
};

}  // namespace velmora
