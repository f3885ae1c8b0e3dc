#include "model/HostJson.h"

#include "base/Text.h"
#include "model/JsonDocument.h"

#include <boost/json/value.hpp>

#include <array>
#include <charconv>
#include <optional>
#include <span>

namespace velmora {

namespace {

namespace json = boost::json;

/// Where and why a value was refused; `place` grows from the inside out.
struct Refusal {
    std::string place;
    std::string reason;

    Refusal in(std::string_view outer) && {
        const bool needsDot = !place.empty() && place.front() != '[';
        place = std::string(outer) + (needsDot ? "." : "") + place;
        return std::move(*this);
    }
};

using Outcome = std::optional<Refusal>;

Refusal wrongType(std::string_view expected) {
    return {{}, "is not " + std::string(expected)};
}

std::string elementPlace(std::size_t index) {
    return "[" + std::to_string(index) + "]";
}

// ---- one reader a type of value ----

Outcome readValue(const json::value& value, std::string& out) {
    const auto text = stringFrom(value);
    if (!text) {
        return wrongType("a string");
    }
    out = *text;
    return {};
}

Outcome readValue(const json::value& value, bool& out) {
    const auto flag = booleanFrom(value);
    if (!flag) {
        return wrongType("a boolean");
    }
    out = *flag;
    return {};
}

Outcome readValue(const json::value& value, std::int64_t& out) {
    const auto integer = integerFrom(value);
    if (!integer) {
        return wrongType("an integer of 64 bits");
    }
    out = *integer;
    return {};
}

Outcome readValue(const json::value& value, Uuid& out) {
    const auto text = stringFrom(value);
    const auto id = text ? Uuid::parse(*text) : std::nullopt;
    if (!id) {
        return wrongType("an identifier");
    }
    out = *id;
    return {};
}

template <typename Enumeration>
Outcome readRawValue(const json::value& value, Enumeration& out,
                     std::optional<Enumeration> (*fromRawValue)(std::string_view)) {
    const auto text = stringFrom(value);
    const auto known = text ? fromRawValue(*text) : std::nullopt;
    if (!known) {
        return wrongType("one of the known values");
    }
    out = *known;
    return {};
}

Outcome readValue(const json::value& value, ForwardingType& out) {
    return readRawValue(value, out, forwardingTypeFrom);
}

Outcome readValue(const json::value& value, AuthMethod& out) {
    return readRawValue(value, out, authMethodFrom);
}

Outcome readValue(const json::value& value, ForwardingRule& rule);
Outcome readValue(const json::value& value, SSHHost& host);

template <typename Element>
Outcome readValue(const json::value& value, std::vector<Element>& out) {
    const auto* array = value.if_array();
    if (array == nullptr) {
        return wrongType("an array");
    }
    out.clear();
    out.reserve(array->size());
    for (std::size_t i = 0; i < array->size(); ++i) {
        if (auto refusal = readValue((*array)[i], out.emplace_back())) {
            return std::move(*refusal).in(elementPlace(i));
        }
    }
    return {};
}

// ---- one writer a type of value ----

constexpr bool needsEscape(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

void writeEscaped(std::string& out, char c) {
    static constexpr char digits[] = "0123456789abcdef";
    switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\b':
            out += "\\b";
            break;
        case '\f':
            out += "\\f";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            out += "\\u00";
            out += digits[static_cast<unsigned char>(c) >> 4];
            out += digits[static_cast<unsigned char>(c) & 0x0F];
    }
}

void writeValue(std::string& out, std::string_view text) {
    out += '"';
    std::size_t plain = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (needsEscape(text[i])) {
            out.append(text, plain, i - plain);
            writeEscaped(out, text[i]);
            plain = i + 1;
        }
    }
    out.append(text, plain);
    out += '"';
}

void writeValue(std::string& out, const std::string& text) {
    writeValue(out, std::string_view(text));
}

void writeValue(std::string& out, bool flag) {
    out += flag ? "true" : "false";
}

void writeValue(std::string& out, std::int64_t number) {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    out.append(digits.data(), end);
}

void writeValue(std::string& out, const Uuid& id) {
    writeValue(out, std::string_view(id.toString()));
}

void writeValue(std::string& out, ForwardingType type) {
    writeValue(out, rawValue(type));
}

void writeValue(std::string& out, AuthMethod method) {
    writeValue(out, rawValue(method));
}

void writeValue(std::string& out, const ForwardingRule& rule);
void writeValue(std::string& out, const SSHHost& host);

template <typename Element>
void writeValue(std::string& out, const std::vector<Element>& elements) {
    out += '[';
    bool first = true;
    for (const auto& element : elements) {
        if (!first) {
            out += ',';
        }
        first = false;
        writeValue(out, element);
    }
    out += ']';
}

// ---- records: one table each, in the order of the fields ----

template <typename Record>
struct Field {
    std::string_view key;
    Outcome (*read)(const json::value&, Record&);
    void (*write)(std::string&, const Record&);
};

template <auto Member, typename Record>
constexpr Field<Record> field(std::string_view key) {
    return {key, [](const json::value& value, Record& record) { return readValue(value, record.*Member); },
            [](std::string& out, const Record& record) { writeValue(out, record.*Member); }};
}

template <auto Member>
constexpr auto ruleField = field<Member, ForwardingRule>;

constexpr std::array ruleFields{
    ruleField<&ForwardingRule::id>("id"),
    ruleField<&ForwardingRule::type>("type"),
    ruleField<&ForwardingRule::bindAddress>("bindAddress"),
    ruleField<&ForwardingRule::bindPort>("bindPort"),
    ruleField<&ForwardingRule::targetAddress>("targetAddress"),
    ruleField<&ForwardingRule::targetPort>("targetPort"),
    ruleField<&ForwardingRule::enabled>("enabled"),
    ruleField<&ForwardingRule::pacPatterns>("pacPatterns"),
};

template <auto Member>
constexpr auto hostField = field<Member, SSHHost>;

constexpr std::array hostFields{
    hostField<&SSHHost::id>("id"),
    hostField<&SSHHost::name>("name"),
    hostField<&SSHHost::tags>("tags"),
    hostField<&SSHHost::hostname>("hostname"),
    hostField<&SSHHost::port>("port"),
    hostField<&SSHHost::username>("username"),
    hostField<&SSHHost::forwardingRules>("forwardingRules"),
    hostField<&SSHHost::noSessionRequest>("noSessionRequest"),
    hostField<&SSHHost::connectOnStartup>("connectOnStartup"),
    hostField<&SSHHost::useSSHConfigAlias>("useSSHConfigAlias"),
    hostField<&SSHHost::proxyJump>("proxyJump"),
    hostField<&SSHHost::authMethod>("authMethod"),
    hostField<&SSHHost::identityFile>("identityFile"),
    hostField<&SSHHost::serverAliveInterval>("serverAliveInterval"),
    hostField<&SSHHost::serverAliveCountMax>("serverAliveCountMax"),
    hostField<&SSHHost::compression>("compression"),
    hostField<&SSHHost::connectTimeout>("connectTimeout"),
    hostField<&SSHHost::strictHostKeyChecking>("strictHostKeyChecking"),
    hostField<&SSHHost::customOptions>("customOptions"),
};

/// Files that we wrote hold the keys in the table's order: the next expected one is looked at first.
template <typename Record>
const Field<Record>* findField(std::span<const Field<Record>> fields, std::string_view key, std::size_t& expected) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::size_t candidate = (expected + i) % fields.size();
        if (fields[candidate].key == key) {
            expected = candidate + 1;
            return &fields[candidate];
        }
    }
    return nullptr;
}

template <typename Record>
Outcome readRecord(const json::value& value, Record& record, std::span<const Field<Record>> fields) {
    const auto* object = value.if_object();
    if (object == nullptr) {
        return wrongType("an object");
    }
    std::size_t expected = 0;
    for (const auto& member : *object) {
        const std::string_view key(member.key().data(), member.key().size());
        const auto* known = findField(fields, key, expected);
        if (known == nullptr || member.value().is_null()) {
            continue;
        }
        if (auto refusal = known->read(member.value(), record)) {
            return std::move(*refusal).in(key);
        }
    }
    return {};
}

template <typename Record>
void writeRecord(std::string& out, const Record& record, std::span<const Field<Record>> fields) {
    char separator = '{';
    for (const auto& field : fields) {
        out += separator;
        out += '"';
        out += field.key;
        out += "\":";
        field.write(out, record);
        separator = ',';
    }
    out += '}';
}

/// Earlier versions kept the patterns on one line with commas between them.
std::string migratedPatterns(std::string patterns) {
    if (patterns.find(',') == std::string::npos || patterns.find('\n') != std::string::npos) {
        return patterns;
    }
    std::string lines;
    for (const auto piece : split(patterns, ',')) {
        const auto pattern = trimWhitespace(piece);
        if (pattern.empty()) {
            continue;
        }
        if (!lines.empty()) {
            lines += '\n';
        }
        lines += pattern;
    }
    return lines;
}

Outcome readValue(const json::value& value, ForwardingRule& rule) {
    auto refusal = readRecord<ForwardingRule>(value, rule, ruleFields);
    if (!refusal) {
        rule.pacPatterns = migratedPatterns(std::move(rule.pacPatterns));
    }
    return refusal;
}

void writeValue(std::string& out, const ForwardingRule& rule) {
    writeRecord<ForwardingRule>(out, rule, ruleFields);
}

Outcome readValue(const json::value& value, SSHHost& host) {
    return readRecord<SSHHost>(value, host, hostFields);
}

void writeValue(std::string& out, const SSHHost& host) {
    writeRecord<SSHHost>(out, host, hostFields);
}

std::size_t estimatedSize(const std::vector<SSHHost>& hosts) {
    constexpr std::size_t keysAndNumbersOfHost = 640;
    constexpr std::size_t keysAndNumbersOfRule = 256;
    std::size_t size = 2;
    for (const auto& host : hosts) {
        size += keysAndNumbersOfHost + keysAndNumbersOfRule * host.forwardingRules.size();
    }
    return size;
}

}  // namespace

Result<std::vector<SSHHost>, Error> decodeHosts(std::string_view text) {
    const auto document = JsonDocument::parse(text, maximumHostListSize);
    if (!document) {
        return document.error();
    }
    std::vector<SSHHost> hosts;
    if (auto refusal = readValue(document->root(), hosts)) {
        return Error{(refusal->place.empty() ? "the list" : refusal->place) + " " + refusal->reason};
    }
    return hosts;
}

Result<std::string, Error> encodeHosts(const std::vector<SSHHost>& hosts) {
    std::string out;
    out.reserve(estimatedSize(hosts));
    writeValue(out, hosts);
    if (!isValidUtf8(out)) {
        return Error{"a text is not valid UTF-8"};
    }
    return out;
}

}  // namespace velmora
