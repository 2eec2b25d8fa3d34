// SPDX-License-Identifier: MIT
//
// Which documents a bundle declares in its information dictionary. Read anew for each question.
#include "src/plugin/VornPlugin.h"

namespace
{

// A string of ours for a scope; null if the text is not ASCII.
class OwnString
{
public:
    explicit OwnString(const char* text)
        : string(CFStringCreateWithCString(nullptr, text, kCFStringEncodingASCII))
    {
    }
    ~OwnString()
    {
        if (string)
            CFRelease(string);
    }
    OwnString(const OwnString&) = delete;
    OwnString& operator=(const OwnString&) = delete;
    CFStringRef Get() const { return string; }

private:
    CFStringRef string;
};

bool ArrayHolds(CFArrayRef strings, CFStringRef wanted)
{
    for (CFIndex index = 0; index < CFArrayGetCount(strings); ++index) {
        const CFTypeRef element = CFArrayGetValueAtIndex(strings, index);
        if (CFGetTypeID(element) != CFStringGetTypeID())
            continue;
        if (CFStringCompare(static_cast<CFStringRef>(element), wanted, kCFCompareCaseInsensitive) ==
            kCFCompareEqualTo)
            return true;
    }
    return false;
}

bool DocumentTypeHolds(CFTypeRef documentType, CFStringRef key, CFStringRef wanted)
{
    if (CFGetTypeID(documentType) != CFDictionaryGetTypeID())
        return false;
    const CFTypeRef strings = CFDictionaryGetValue(static_cast<CFDictionaryRef>(documentType), key);
    if (!strings || CFGetTypeID(strings) != CFArrayGetTypeID())
        return false;
    return ArrayHolds(static_cast<CFArrayRef>(strings), wanted);
}

Boolean BundleDeclares(CFBundleRef bundle, const char* keyText, const char* text)
{
    if (!bundle || !text)
        return false;
    const OwnString wanted(text);
    const OwnString key(keyText);
    const OwnString typesKey("CFBundleDocumentTypes");
    if (!wanted.Get() || !key.Get() || !typesKey.Get())
        return false;
    const CFTypeRef types = CFBundleGetValueForInfoDictionaryKey(bundle, typesKey.Get());
    if (!types || CFGetTypeID(types) != CFArrayGetTypeID())
        return false;
    const auto typesArray = static_cast<CFArrayRef>(types);
    for (CFIndex index = 0; index < CFArrayGetCount(typesArray); ++index)
        if (DocumentTypeHolds(CFArrayGetValueAtIndex(typesArray, index), key.Get(), wanted.Get()))
            return true;
    return false;
}

} // namespace

Boolean VornPlugin::CanHandleMimeType(const char* mimeTypeText)
{
    return BundleDeclares(bundle, "CFBundleTypeMIMETypes", mimeTypeText);
}

Boolean VornPlugin::CanHandleFileExtension(const char* extension)
{
    return BundleDeclares(bundle, "CFBundleTypeExtensions", extension);
}
