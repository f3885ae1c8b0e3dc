#include "platform/linux/LateModule.h"

#include "base/Localized.h"

#include <QDebug>

#include <dlfcn.h>
#include <fcntl.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace velmora {

LateModule::LateModule(std::filesystem::path file, const char* factory)
    : file_(std::move(file)), factory_(factory), fd_(::open(file_.c_str(), O_RDONLY | O_CLOEXEC)) {
    openError_ = fd_ ? 0 : errno;
}

Result<void*, Error> LateModule::find() {
    const std::scoped_lock lock(mutex_);
    if (!found_) {
        found_ = load();
        if (!*found_) {
            qWarning("%s", found_->error().message.c_str());
        }
    }
    return *found_;
}

Result<void*, Error> LateModule::load() {
    const auto failure = [this](const std::string& reason) {
        return Error{filled(localized("velmora::LateModule", "A part of Velmora cannot be loaded: %1"),
                            {file_.string() + ": " + reason})};
    };
    if (!fd_) {
        return failure(std::generic_category().message(openError_));
    }
    const auto lastError = [] {
        const char* text = ::dlerror();
        return std::string(text != nullptr ? text : "unknown error");
    };
    void* library = ::dlopen(("/proc/self/fd/" + std::to_string(fd_.get())).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        return failure(lastError());
    }
    // The number is the library's name, by which the loader would find it again for another file that gets the number.
    static_cast<void>(fd_.release());
    void* function = ::dlsym(library, factory_);
    if (function == nullptr) {
        return failure(lastError());
    }
    return function;
}

}  // namespace velmora
