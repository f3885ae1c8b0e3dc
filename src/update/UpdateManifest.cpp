#include "update/UpdateManifest.h"

#include "base/Localized.h"
#include "model/JsonDocument.h"

#include <boost/json/object.hpp>

namespace velmora {

namespace {

namespace json = boost::json;

/// Collects the first thing that is wrong.
class Reader final {
public:
    explicit Reader(const json::object& object) : object_(object) {}

    std::string required(std::string_view key) {
        const auto* value = object_.if_contains(key);
        if (value == nullptr || value->is_null()) {
            fail("“" + std::string(key) + "” is missing");
            return {};
        }
        return text(key, *value);
    }

    std::optional<std::string> optional(std::string_view key) {
        const auto* value = object_.if_contains(key);
        if (value == nullptr || value->is_null()) {
            return std::nullopt;
        }
        return text(key, *value);
    }

    [[nodiscard]] const std::optional<Error>& error() const { return error_; }

private:
    std::string text(std::string_view key, const json::value& value) {
        const auto text = stringFrom(value);
        if (!text) {
            fail("“" + std::string(key) + "” is not text");
            return {};
        }
        return std::string(*text);
    }

    void fail(const std::string& reason) {
        if (!error_) {
            error_ =
                Error{filled(localized("velmora::UpdateManifest", "The update feed cannot be read: %1."), {reason})};
        }
    }

    const json::object& object_;
    std::optional<Error> error_;
};

}  // namespace

Result<UpdateManifest, Error> decodeManifest(std::string_view text) {
    const auto document = JsonDocument::parse(text, text.size());
    if (!document) {
        return Error{localized("velmora::UpdateManifest", "The update feed cannot be read: it is not valid JSON.")};
    }
    const auto* object = document->root().if_object();
    if (object == nullptr) {
        return Error{localized("velmora::UpdateManifest", "The update feed cannot be read: it is not a JSON object.")};
    }

    Reader reader(*object);
    UpdateManifest manifest;
    manifest.version = reader.required("version");
    manifest.build = reader.optional("build");
    manifest.date = reader.optional("date");
    manifest.url = reader.required("url");
    manifest.sha256 = reader.optional("sha256");
    manifest.notes = reader.optional("notes");
    manifest.minimumSystemVersion = reader.optional("minimumSystemVersion");
    if (reader.error()) {
        return *reader.error();
    }
    return manifest;
}

}  // namespace velmora
