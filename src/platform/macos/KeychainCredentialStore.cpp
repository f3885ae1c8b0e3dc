#include "platform/macos/KeychainCredentialStore.h"

#include "platform/macos/CFPtr.h"

#include <Security/Security.h>

namespace velmora {

namespace {

using Dictionary = CFPtr<CFMutableDictionaryRef>;

Dictionary emptyDictionary() {
    return Dictionary(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                                &kCFTypeDictionaryValueCallBacks));
}

void setText(const Dictionary& dictionary, CFStringRef attribute, std::string_view text) {
    const CFPtr<CFStringRef> value(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
    CFDictionarySetValue(dictionary.get(), attribute, value.get());
}

void setSecret(const Dictionary& dictionary, std::string_view secret) {
    const CFPtr<CFDataRef> value(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(secret.data()),
                                              static_cast<CFIndex>(secret.size())));
    CFDictionarySetValue(dictionary.get(), kSecValueData, value.get());
}

Dictionary queryFor(const CredentialKey& key) {
    Dictionary query = emptyDictionary();
    CFDictionarySetValue(query.get(), kSecClass, kSecClassGenericPassword);
    setText(query, kSecAttrService, key.service);
    setText(query, kSecAttrAccount, key.account);
    return query;
}

std::string bytesOf(CFDataRef data) {
    const auto length = static_cast<std::size_t>(CFDataGetLength(data));
    return length == 0 ? std::string() : std::string(reinterpret_cast<const char*>(CFDataGetBytePtr(data)), length);
}

}  // namespace

Credential KeychainCredentialStore::copyMatching(const CredentialKey& key) {
    const Dictionary query = queryFor(key);
    CFDictionarySetValue(query.get(), kSecReturnData, kCFBooleanTrue);
    CFDictionarySetValue(query.get(), kSecMatchLimit, kSecMatchLimitOne);
    CFTypeRef result = nullptr;
    const OSStatus status = SecItemCopyMatching(query.get(), &result);
    const CFPtr<CFTypeRef> owner(result);
    if (status != errSecSuccess) {
        return {.status = static_cast<CredentialStatus>(status), .secret = {}};
    }
    if (result == nullptr || CFGetTypeID(result) != CFDataGetTypeID()) {
        return {.status = CredentialStatus::notAvailable, .secret = {}};
    }
    return {.status = CredentialStatus::success, .secret = bytesOf(static_cast<CFDataRef>(result))};
}

CredentialStatus KeychainCredentialStore::update(const CredentialKey& key, std::string_view secret) {
    const Dictionary changes = emptyDictionary();
    setSecret(changes, secret);
    return static_cast<CredentialStatus>(SecItemUpdate(queryFor(key).get(), changes.get()));
}

CredentialStatus KeychainCredentialStore::add(const CredentialKey& key, std::string_view secret) {
    const Dictionary attributes = queryFor(key);
    setSecret(attributes, secret);
    return static_cast<CredentialStatus>(SecItemAdd(attributes.get(), nullptr));
}

CredentialStatus KeychainCredentialStore::remove(const CredentialKey& key) {
    return static_cast<CredentialStatus>(SecItemDelete(queryFor(key).get()));
}

}  // namespace velmora
