#include "FakeKeychain.h"

#include <Security/Security.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>

namespace {

using velmora::fakeKeychain;

enum Kind : CFTypeID { text = 1, data, dictionary, boolean };

struct Object;

/// A dictionary with the usual callbacks keeps its entries alive; one without leaves that to the caller.
struct Entries {
    bool retains = false;
    std::map<std::string, const Object*> byAttribute;
};

/// Every object of the fake frameworks.
struct Object {
    Kind kind;
    std::string bytes;
    Entries entries{};
    bool constant = false;
    mutable int references = 1;
};

std::set<const void*>& alive() {
    static std::set<const void*> all;
    return all;
}

template <typename Ref>
Ref created(Kind kind, std::string bytes) {
    auto* object = new Object{.kind = kind, .bytes = std::move(bytes)};
    alive().insert(object);
    fakeKeychain().liveObjects = static_cast<std::ptrdiff_t>(alive().size());
    return reinterpret_cast<Ref>(object);
}

/// Objects that are there for good.
const Object* constantObject(Kind kind, const char* bytes) {
    static std::map<std::string, std::unique_ptr<Object>> all;
    auto& object = all[bytes];
    object = std::make_unique<Object>(Object{.kind = kind, .bytes = bytes, .constant = true});
    return object.get();
}

CFStringRef constantText(const char* bytes) {
    return reinterpret_cast<CFStringRef>(constantObject(text, bytes));
}

[[noreturn]] void refuse(const char* reason) {
    std::fprintf(stderr, "FakeKeychain: %s\n", reason);
    std::abort();
}

/// A constant is told from an object that is gone by its address.
const Object& objectOf(const void* reference) {
    static const std::set<const void*> constants{kCFBooleanTrue,  kSecClass,       kSecClassGenericPassword,
                                                 kSecAttrService, kSecAttrAccount, kSecValueData,
                                                 kSecReturnData,  kSecMatchLimit,  kSecMatchLimitOne};
    if (!constants.contains(reference) && !alive().contains(reference)) {
        refuse("an object is used that is not there");
    }
    return *static_cast<const Object*>(reference);
}

/// The entries as text, and as the system wants them: anything else it does not understand.
std::map<std::string, std::string> read(CFDictionaryRef reference) {
    static const std::map<std::string, Kind> kinds{{"class", text}, {"service", text},     {"account", text},
                                                   {"data", data},  {"match limit", text}, {"return data", boolean}};
    std::map<std::string, std::string> result;
    for (const auto& [attribute, value] : objectOf(reference).entries.byAttribute) {
        const Object& object = objectOf(value);
        const auto kind = kinds.find(attribute);
        if (kind == kinds.end() || kind->second != object.kind) {
            refuse("an attribute has a value of another kind");
        }
        result[attribute] = object.bytes;
    }
    return result;
}

using Item = std::pair<std::string, std::string>;

Item itemOf(CFDictionaryRef query) {
    fakeKeychain().lastQuery = read(query);
    return {fakeKeychain().lastQuery["service"], fakeKeychain().lastQuery["account"]};
}

std::string bytesOf(const UInt8* bytes, CFIndex length) {
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

}  // namespace

namespace velmora {

FakeKeychain& fakeKeychain() {
    static FakeKeychain keychain;
    return keychain;
}

}  // namespace velmora

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue = reinterpret_cast<CFBooleanRef>(constantObject(boolean, "true"));
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};
const CFStringRef kSecClass = constantText("class");
const CFStringRef kSecClassGenericPassword = constantText("generic password");
const CFStringRef kSecAttrService = constantText("service");
const CFStringRef kSecAttrAccount = constantText("account");
const CFStringRef kSecValueData = constantText("data");
const CFStringRef kSecReturnData = constantText("return data");
const CFStringRef kSecMatchLimit = constantText("match limit");
const CFStringRef kSecMatchLimitOne = constantText("one");

void CFRelease(CFTypeRef object) {
    const Object& released = objectOf(object);
    if (released.constant || --released.references > 0) {
        return;
    }
    if (released.entries.retains) {
        for (const auto& [attribute, value] : released.entries.byAttribute) {
            CFRelease(value);
        }
    }
    alive().erase(object);
    fakeKeychain().liveObjects = static_cast<std::ptrdiff_t>(alive().size());
    delete &released;
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    return objectOf(object).kind;
}

CFDataRef CFDataCreate(CFAllocatorRef /*allocator*/, const UInt8* bytes, CFIndex length) {
    return created<CFDataRef>(data, bytesOf(bytes, length));
}

CFTypeID CFDataGetTypeID(void) {
    return data;
}

CFIndex CFDataGetLength(CFDataRef object) {
    return static_cast<CFIndex>(objectOf(object).bytes.size());
}

const UInt8* CFDataGetBytePtr(CFDataRef object) {
    return reinterpret_cast<const UInt8*>(objectOf(object).bytes.data());
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef /*allocator*/, const UInt8* bytes, CFIndex length,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    if (encoding != kCFStringEncodingUTF8 || isExternalRepresentation != 0) {
        refuse("a text is not read as UTF-8 without a mark in front");
    }
    return created<CFStringRef>(text, bytesOf(bytes, length));
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef /*allocator*/, CFIndex /*capacity*/,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks) {
        refuse("keys are compared by address");
    }
    const auto created = ::created<CFMutableDictionaryRef>(dictionary, {});
    reinterpret_cast<Object*>(created)->entries.retains = valueCallBacks == &kCFTypeDictionaryValueCallBacks;
    return created;
}

void CFDictionarySetValue(CFMutableDictionaryRef target, const void* key, const void* value) {
    auto& entries = reinterpret_cast<Object*>(target)->entries;
    const Object*& entry = entries.byAttribute[objectOf(key).bytes];
    if (entries.retains) {
        ++objectOf(value).references;
        if (entry != nullptr) {
            CFRelease(entry);
        }
    }
    entry = &objectOf(value);
}

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result) {
    const auto item = fakeKeychain().items.find(itemOf(query));
    if (fakeKeychain().refusal != 0) {
        return fakeKeychain().refusal;
    }
    if (item == fakeKeychain().items.end()) {
        return errSecItemNotFound;
    }
    *result = created<CFTypeRef>(fakeKeychain().answersWithText ? text : data, item->second);
    return errSecSuccess;
}

OSStatus SecItemUpdate(CFDictionaryRef query, CFDictionaryRef changes) {
    const auto item = fakeKeychain().items.find(itemOf(query));
    if (fakeKeychain().refusal != 0) {
        return fakeKeychain().refusal;
    }
    if (item == fakeKeychain().items.end()) {
        return errSecItemNotFound;
    }
    fakeKeychain().lastChanges = read(changes);
    item->second = fakeKeychain().lastChanges.at("data");
    return errSecSuccess;
}

OSStatus SecItemAdd(CFDictionaryRef attributes, CFTypeRef* /*result*/) {
    const Item item = itemOf(attributes);
    if (fakeKeychain().refusal != 0) {
        return fakeKeychain().refusal;
    }
    const bool added = fakeKeychain().items.emplace(item, fakeKeychain().lastQuery.at("data")).second;
    return added ? errSecSuccess : errSecDuplicateItem;
}

OSStatus SecItemDelete(CFDictionaryRef query) {
    const Item item = itemOf(query);
    if (fakeKeychain().refusal != 0) {
        return fakeKeychain().refusal;
    }
    return fakeKeychain().items.erase(item) > 0 ? errSecSuccess : errSecItemNotFound;
}

}  // extern "C"
