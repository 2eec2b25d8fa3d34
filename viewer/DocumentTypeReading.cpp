// SPDX-License-Identifier: MIT
#include "viewer/DocumentTypeReading.h"

#include <array>
#include <memory>

namespace viewer
{
namespace
{

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

// A string to look something up with.
class Key
{
public:
    explicit Key(const char* text)
        : string_(CFStringCreateWithCString(nullptr, text, kCFStringEncodingASCII))
    {
    }
    CFStringRef Get() const { return static_cast<CFStringRef>(string_.get()); }

private:
    std::unique_ptr<const void, Release> string_;
};

std::string TextOf(CFTypeRef value)
{
    std::array<char, 256> buffer{};
    if (value == nullptr || CFGetTypeID(value) != CFStringGetTypeID() ||
        CFStringGetCString(static_cast<CFStringRef>(value), buffer.data(), buffer.size(),
                           kCFStringEncodingUTF8) == 0) {
        return {};
    }
    return buffer.data();
}

CFArrayRef ArrayOf(CFTypeRef value)
{
    const bool isArray = value != nullptr && CFGetTypeID(value) == CFArrayGetTypeID();
    return isArray ? static_cast<CFArrayRef>(value) : nullptr;
}

CFTypeRef ValueOf(CFDictionaryRef dictionary, const char* key)
{
    return CFDictionaryGetValue(dictionary, Key(key).Get());
}

std::vector<std::string> TextsOf(CFDictionaryRef dictionary, const char* key)
{
    std::vector<std::string> texts;
    const CFArrayRef array = ArrayOf(ValueOf(dictionary, key));
    for (CFIndex i = 0; array != nullptr && i < CFArrayGetCount(array); ++i) {
        std::string text = TextOf(CFArrayGetValueAtIndex(array, i));
        if (!text.empty()) {
            texts.push_back(std::move(text));
        }
    }
    return texts;
}

DocumentType ReadDocumentType(CFDictionaryRef dictionary)
{
    return {TextOf(ValueOf(dictionary, "CFBundleTypeName")),
            TextsOf(dictionary, "CFBundleTypeMIMETypes"),
            TextsOf(dictionary, "CFBundleTypeExtensions"),
            TextsOf(dictionary, "CFBundleTypeOSTypes")};
}

} // namespace

std::vector<DocumentType> ReadDocumentTypes(CFBundleRef bundle)
{
    std::vector<DocumentType> types;
    const CFArrayRef array =
        ArrayOf(CFBundleGetValueForInfoDictionaryKey(bundle, Key("CFBundleDocumentTypes").Get()));
    for (CFIndex i = 0; array != nullptr && i < CFArrayGetCount(array); ++i) {
        const CFTypeRef element = CFArrayGetValueAtIndex(array, i);
        if (CFGetTypeID(element) == CFDictionaryGetTypeID()) {
            types.push_back(ReadDocumentType(static_cast<CFDictionaryRef>(element)));
        }
    }
    return types;
}

} // namespace viewer
