#pragma once

#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
#include <type_traits>

namespace velmora {

/// Input that nobody thought of. Each run has a new seed, which is printed; VELMORA_TEST_SEED brings one back.
class Generated final {
public:
    Generated() : seed_(chooseSeed()), random_(seed_) { std::cout << "VELMORA_TEST_SEED=" << seed_ << '\n'; }

    [[nodiscard]] unsigned seed() const { return seed_; }

    std::size_t below(std::size_t bound) { return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_); }

    template <typename Choices>
    const auto& oneOf(const Choices& choices) {
        return choices[below(std::size(choices))];
    }

    /// Up to so many of the pieces in a row.
    template <typename Pieces>
    auto textOf(const Pieces& pieces, std::size_t most) {
        auto text = std::remove_cvref_t<decltype(oneOf(pieces))>();
        for (auto left = below(most + 1); left > 0; --left) {
            text += oneOf(pieces);
        }
        return text;
    }

private:
    static unsigned chooseSeed() {
        const auto* chosen = std::getenv("VELMORA_TEST_SEED");
        return chosen != nullptr ? static_cast<unsigned>(std::strtoul(chosen, nullptr, 10)) : std::random_device{}();
    }

    unsigned seed_;
    std::mt19937 random_;
};

}  // namespace velmora
