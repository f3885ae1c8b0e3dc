#include "base/Localized.h"

#include <QCoreApplication>

#include <cstddef>

namespace velmora {

std::string localized(const char* context, const char* text) {
    return QCoreApplication::translate(context, text).toStdString();
}

std::string localizedCount(const char* context, const char* text, const char* disambiguation, int count) {
    return QCoreApplication::translate(context, text, disambiguation, count).toStdString();
}

std::string filled(std::string_view text, std::initializer_list<std::string_view> arguments) {
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char next = text[index] == '%' && index + 1 < text.size() ? text[index + 1] : '\0';
        if (next >= '1' && next <= '9' && static_cast<std::size_t>(next - '1') < arguments.size()) {
            result += arguments.begin()[next - '1'];
            ++index;
        } else {
            result += text[index];
        }
    }
    return result;
}

}  // namespace velmora
