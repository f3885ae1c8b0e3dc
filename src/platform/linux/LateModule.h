#pragma once

#include "base/Result.h"
#include "base/UniqueFd.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>

namespace velmora {

/// A library of the program's own, which is loaded when it is first needed, together with all that it links.
///
/// The file is opened at once and loaded from there later: when the program is replaced while it runs, it still gets
/// the library that it was built with. A library that was loaded stays to the end of the process. Any thread.
class LateModule final {
public:
    /// `factory` is a function without parameters that the library exports; it returns what was made.
    LateModule(std::filesystem::path file, const char* factory);

    /// Makes what the library is for. Fails with words for the user; the reason is in the log, once.
    template <typename Interface>
    Result<std::unique_ptr<Interface>, Error> make() {
        const auto function = find();
        if (!function) {
            return function.error();
        }
        return std::unique_ptr<Interface>(reinterpret_cast<Interface* (*)()>(*function)());
    }

private:
    Result<void*, Error> find();
    Result<void*, Error> load();

    std::filesystem::path file_;
    const char* factory_;
    UniqueFd fd_;
    int openError_ = 0;
    std::mutex mutex_;
    std::optional<Result<void*, Error>> found_;  // nothing before it is first asked for
};

}  // namespace velmora
