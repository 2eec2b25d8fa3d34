// SPDX-License-Identifier: MIT
#include "toolbox/foundation/Foundation.h"

#include "toolbox/foundation/Objects.h"
#include "toolbox/foundation/PropertyList.h"
#include "toolbox/probe/Announce.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

using toolbox::Announce;
using toolbox::ArrayObject;
using toolbox::BundleObject;
using toolbox::DictionaryObject;
using toolbox::Object;
using toolbox::Owned;
using toolbox::StringObject;
using toolbox::UrlObject;

namespace
{

const Object* ObjectOf(const void* reference)
{
    return static_cast<const Object*>(reference);
}

template <class Wanted>
const Wanted* As(const void* reference)
{
    return toolbox::As<Wanted>(ObjectOf(reference));
}

// Makes an object for the caller to release; null without memory.
template <class Made, class... Arguments>
Object* Make(Arguments&&... arguments)
{
    try {
        return new Made(std::forward<Arguments>(arguments)...);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

bool IsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

size_t Utf8LengthFromFirstByte(unsigned char first)
{
    if (first < 0x80 || first >= 0xF8) {
        return first < 0x80 ? 1 : 0;
    }
    return first < 0xC0 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

// In so many bytes: not in more than it needs, no half of a pair, not past the last one.
bool IsCharacter(char32_t character, size_t length)
{
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    return character >= smallest[length] && character <= 0x10FFFF &&
           (character < 0xD800 || character > 0xDFFF);
}

// Bytes of the well-formed character that the text begins with, 0 if there is none.
size_t Utf8CharacterLength(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text[0]);
    const size_t length = Utf8LengthFromFirstByte(first);
    if (length == 0 || length > text.size()) {
        return 0;
    }
    char32_t character = length == 1 ? first : first & (0x7FU >> length);
    for (size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0) != 0x80) {
            return 0;
        }
        character = character << 6 | (byte & 0x3F);
    }
    return IsCharacter(character, length) ? length : 0;
}

bool IsUtf8(std::string_view text)
{
    while (!text.empty()) {
        const size_t length = Utf8CharacterLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

bool Fits(std::string_view text, CFStringEncoding encoding)
{
    switch (encoding) {
    case kCFStringEncodingASCII:
        return IsAscii(text);
    case kCFStringEncodingUTF8:
        return IsUtf8(text);
    default:
        return false;
    }
}

char WithoutCase(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string Folded(const std::string& text, CFStringCompareFlags flags)
{
    std::string folded = text;
    if ((flags & kCFCompareCaseInsensitive) != 0) {
        std::transform(folded.begin(), folded.end(), folded.begin(), WithoutCase);
    }
    return folded;
}

const Object* ValueFor(const DictionaryObject* dictionary, const StringObject* key)
{
    if (dictionary == nullptr || key == nullptr) {
        return nullptr;
    }
    const auto found = dictionary->values.find(key->text);
    return found != dictionary->values.end() ? found->second.get() : nullptr;
}

Object* MakeBundle(const UrlObject* url)
{
    if (url == nullptr) {
        return nullptr;
    }
    try {
        Owned info = toolbox::ReadPropertyList(url->path + "/Contents/Info.plist");
        const bool isDictionary = As<DictionaryObject>(info.get()) != nullptr;
        return isDictionary ? new BundleObject(std::move(info)) : nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace

CFTypeRef CFRetain(CFTypeRef object)
{
    Announce("CFRetain");
    if (object != nullptr) {
        ObjectOf(object)->Retain();
    }
    return object;
}

void CFRelease(CFTypeRef object)
{
    Announce("CFRelease");
    if (object != nullptr) {
        ObjectOf(object)->Release();
    }
}

CFTypeID CFGetTypeID(CFTypeRef object)
{
    Announce("CFGetTypeID");
    return object != nullptr ? ObjectOf(object)->Type() : CFTypeID{0};
}

CFTypeID CFStringGetTypeID(void)
{
    Announce("CFStringGetTypeID");
    return toolbox::kStringType;
}

CFTypeID CFArrayGetTypeID(void)
{
    Announce("CFArrayGetTypeID");
    return toolbox::kArrayType;
}

CFTypeID CFDictionaryGetTypeID(void)
{
    Announce("CFDictionaryGetTypeID");
    return toolbox::kDictionaryType;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef /*allocator*/, const char* text,
                                      CFStringEncoding encoding)
{
    if (Announce("CFStringCreateWithCString") != 0 || text == nullptr || !Fits(text, encoding)) {
        return nullptr;
    }
    return reinterpret_cast<CFStringRef>(Make<StringObject>(text));
}

CFComparisonResult CFStringCompare(CFStringRef a, CFStringRef b, CFStringCompareFlags flags)
{
    Announce("CFStringCompare");
    const StringObject* const first = As<StringObject>(a);
    const StringObject* const second = As<StringObject>(b);
    if (first == nullptr || second == nullptr) {
        return kCFCompareLessThan;
    }
    const int order = Folded(first->text, flags).compare(Folded(second->text, flags));
    return order < 0 ? kCFCompareLessThan : order > 0 ? kCFCompareGreaterThan : kCFCompareEqualTo;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding)
{
    const StringObject* const held = As<StringObject>(string);
    if (Announce("CFStringGetCString") != 0 || held == nullptr || buffer == nullptr) {
        return false;
    }
    const std::string& text = held->text;
    if (bufferSize <= 0 || text.size() >= static_cast<size_t>(bufferSize) ||
        !Fits(text, encoding)) {
        return false;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

CFIndex CFArrayGetCount(CFArrayRef array)
{
    Announce("CFArrayGetCount");
    const ArrayObject* const held = As<ArrayObject>(array);
    return held != nullptr ? static_cast<CFIndex>(held->values.size()) : 0;
}

CFTypeRef CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index)
{
    Announce("CFArrayGetValueAtIndex");
    const ArrayObject* const held = As<ArrayObject>(array);
    const bool inside =
        held != nullptr && index >= 0 && static_cast<size_t>(index) < held->values.size();
    return inside ? held->values[static_cast<size_t>(index)].get() : nullptr;
}

CFTypeRef CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key)
{
    if (Announce("CFDictionaryGetValue") != 0) {
        return nullptr;
    }
    return ValueFor(As<DictionaryObject>(dictionary), As<StringObject>(key));
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef /*allocator*/, const UInt8* bytes,
                                                 CFIndex length, Boolean /*isDirectory*/)
{
    if (Announce("CFURLCreateFromFileSystemRepresentation") != 0 || bytes == nullptr ||
        length <= 0) {
        return nullptr;
    }
    return reinterpret_cast<CFURLRef>(Make<UrlObject>(std::string(bytes, bytes + length)));
}

CFBundleRef CFBundleCreate(CFAllocatorRef /*allocator*/, CFURLRef url)
{
    if (Announce("CFBundleCreate") != 0) {
        return nullptr;
    }
    return reinterpret_cast<CFBundleRef>(MakeBundle(As<UrlObject>(url)));
}

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key)
{
    const BundleObject* const held = As<BundleObject>(bundle);
    if (Announce("CFBundleGetValueForInfoDictionaryKey") != 0 || held == nullptr) {
        return nullptr;
    }
    return ValueFor(As<DictionaryObject>(held->info.get()), As<StringObject>(key));
}
