#include "FakeKeychain.h"

#include <Security/Security.h>

#include <memory>
#include <string>

namespace {

using velmora::fakeKeychain;

enum Kind : CFTypeID { text = 1, data, dictionary, boolean };

/// Every object of the fake frameworks.
struct Object {
    Kind kind;
    std::string bytes;
    std::map<std::string, std::string> entries;
    bool constant = false;
};

template <typename Ref>
Ref created(Kind kind, std::string bytes) {
    ++fakeKeychain().liveObjects;
    return reinterpret_cast<Ref>(new Object{.kind = kind, .bytes = std::move(bytes), .entries = {}});
}

/// Objects that are there for good.
const Object* constantObject(Kind kind, const char* bytes) {
    static std::map<std::string, std::unique_ptr<Object>> all;
    auto& object = all[bytes];
    object = std::make_unique<Object>(Object{.kind = kind, .bytes = bytes, .entries = {}, .constant = true});
    return object.get();
}

CFStringRef constantText(const char* bytes) {
    return reinterpret_cast<CFStringRef>(constantObject(text, bytes));
}

const Object& objectOf(const void* reference) {
    return *static_cast<const Object*>(reference);
}

using Item = std::pair<std::string, std::string>;

Item itemOf(CFDictionaryRef query) {
    fakeKeychain().lastQuery = objectOf(query).entries;
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
    if (!objectOf(object).constant) {
        --fakeKeychain().liveObjects;
        delete static_cast<const Object*>(object);
    }
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
                                    CFStringEncoding /*encoding*/, Boolean /*isExternalRepresentation*/) {
    return created<CFStringRef>(text, bytesOf(bytes, length));
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef /*allocator*/, CFIndex /*capacity*/,
                                                 const CFDictionaryKeyCallBacks* /*keyCallBacks*/,
                                                 const CFDictionaryValueCallBacks* /*valueCallBacks*/) {
    return created<CFMutableDictionaryRef>(dictionary, {});
}

void CFDictionarySetValue(CFMutableDictionaryRef target, const void* key, const void* value) {
    reinterpret_cast<Object*>(target)->entries[objectOf(key).bytes] = objectOf(value).bytes;
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
    item->second = objectOf(changes).entries.at("data");
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
