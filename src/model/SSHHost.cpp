#include "model/SSHHost.h"

namespace velmora {

std::string_view rawValue(AuthMethod method) {
    switch (method) {
        case AuthMethod::key:
            return "SSH Key";
        case AuthMethod::password:
            return "Password";
    }
    return {};
}

std::optional<AuthMethod> authMethodFrom(std::string_view text) {
    for (const auto method : allAuthMethods) {
        if (rawValue(method) == text) {
            return method;
        }
    }
    return std::nullopt;
}

}  // namespace velmora
