#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace velmora {

/// Stands behind the stubbed functions of the frameworks: the items, and what the next calls answer. What would be a
/// crash or a silent mistake on a Mac (an object used after its end, a value of another kind) ends the program.
struct FakeKeychain {
    std::map<std::pair<std::string, std::string>, std::string> items;  ///< (service, account) to data
    std::map<std::string, std::string> lastQuery;                      ///< attribute to value, in the fake's own words
    std::map<std::string, std::string> lastChanges;                    ///< of the last update, in the same words
    std::int32_t refusal = 0;                                          ///< answered to every call unless it is 0
    bool answersWithText = false;                                      ///< a result that is no data object
    std::ptrdiff_t liveObjects = 0;                                    ///< created and not yet released
};

FakeKeychain& fakeKeychain();

}  // namespace velmora
