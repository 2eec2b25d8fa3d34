// SPDX-License-Identifier: MIT
#include "toolbox/foundation/Foundation.h"

#include "tests/toolbox/FailingOperations.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;

const std::string kDocumentTypes = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
  <key>CFBundleName</key><string>Movie</string>
  <key>Empty</key><string></string>
  <key>Number</key><integer>7</integer>
  <key>CFBundleDocumentTypes</key>
  <array>
    <string>not a dictionary</string>
    <dict>
      <key>CFBundleTypeMIMETypes</key>
      <array><string>video/mpeg</string><string>audio/mpeg</string></array>
    </dict>
  </array>
</dict>
</plist>
)";

CFStringRef String(const char* text, CFStringEncoding encoding = kCFStringEncodingUTF8)
{
    return CFStringCreateWithCString(nullptr, text, encoding);
}

CFURLRef Url(const fs::path& path)
{
    const std::string bytes = path.string();
    return CFURLCreateFromFileSystemRepresentation(nullptr,
                                                   reinterpret_cast<const UInt8*>(bytes.data()),
                                                   static_cast<CFIndex>(bytes.size()), true);
}

// Every test releases what it made.
class Foundation : public testing::Test
{
protected:
    ~Foundation() override { EXPECT_EQ(before_, CountLiveObjects(kLiveFoundationObjects)); }

    CFComparisonResult Compare(const char* a, const char* b, CFStringCompareFlags flags = 0)
    {
        const CFStringRef first = String(a);
        const CFStringRef second = String(b);
        const CFComparisonResult result = CFStringCompare(first, second, flags);
        CFRelease(first);
        CFRelease(second);
        return result;
    }

private:
    SInt32 before_ = CountLiveObjects(kLiveFoundationObjects);
};

class Bundles : public Foundation
{
protected:
    Bundles()
    {
        std::string path = (fs::temp_directory_path() / "bundle-XXXXXX").string();
        folder_ = mkdtemp(path.data());
        fs::create_directory(folder_ / "Contents");
    }
    ~Bundles() override { fs::remove_all(folder_); }

    fs::path List() const { return folder_ / "Contents" / "Info.plist"; }

    CFBundleRef Bundle(const std::string& list)
    {
        std::ofstream(List(), std::ios::binary) << list;
        return Bundle();
    }

    CFBundleRef Bundle()
    {
        const CFURLRef url = Url(folder_);
        const CFBundleRef bundle = CFBundleCreate(nullptr, url);
        CFRelease(url);
        return bundle;
    }

    static CFTypeRef Value(CFBundleRef bundle, const char* key)
    {
        const CFStringRef name = String(key);
        const CFTypeRef value = CFBundleGetValueForInfoDictionaryKey(bundle, name);
        CFRelease(name);
        return value;
    }

    static std::string Text(CFTypeRef string)
    {
        char text[100] = "?";
        CFStringGetCString(static_cast<CFStringRef>(string), text, sizeof text,
                           kCFStringEncodingUTF8);
        return text;
    }

    fs::path folder_;
};

TEST_F(Foundation, AnAsciiStringTakesNoByteAbove127)
{
    EXPECT_EQ(nullptr, String("video/mp\xE9g", kCFStringEncodingASCII));
    const CFStringRef last = String("\x7F", kCFStringEncodingASCII);
    EXPECT_NE(nullptr, last);
    CFRelease(last);
}

TEST_F(Foundation, AnUnknownEncodingGivesNoString)
{
    EXPECT_EQ(nullptr, String("text", 12345));
}

TEST_F(Foundation, MalformedUtf8GivesNoString)
{
    for (const char* const text :
         {"\x80", "\xC3", "\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF0\x80\x80\x80",
          "\xF4\x90\x80\x80", "\xF9\x80\x80\x80", "\xFF"}) {
        EXPECT_EQ(nullptr, String(text)) << testing::PrintToString(text);
    }
}

TEST_F(Foundation, WellFormedUtf8GivesAString)
{
    for (const char* const text : {"", "\u00E9", "\uD7FF", "\uFFFD", "\U0001F3AC", "\U0010FFFF"}) {
        const CFStringRef string = String(text);
        EXPECT_NE(nullptr, string) << text;
        CFRelease(string);
    }
}

TEST_F(Foundation, StringsCompareByCode)
{
    EXPECT_EQ(kCFCompareEqualTo, Compare("mpg", "mpg"));
    EXPECT_EQ(kCFCompareLessThan, Compare("MPG", "mpg"));
    EXPECT_EQ(kCFCompareGreaterThan, Compare("mpg", "MPG"));
    EXPECT_EQ(kCFCompareLessThan, Compare("mp", "mpg"));
    EXPECT_EQ(kCFCompareLessThan, Compare("z", "\u00E9"));
}

TEST_F(Foundation, CaseCountsNotWhenItIsNotToCount)
{
    EXPECT_EQ(kCFCompareEqualTo, Compare("Video/MPEG", "video/mpeg", kCFCompareCaseInsensitive));
    EXPECT_EQ(kCFCompareLessThan, Compare("a", "B", kCFCompareCaseInsensitive));
    EXPECT_EQ(kCFCompareEqualTo, Compare("", "", kCFCompareCaseInsensitive));
    EXPECT_NE(kCFCompareEqualTo, Compare(".mpg", "mpg", kCFCompareCaseInsensitive));
}

TEST_F(Foundation, ACopiedStringMustFitTheBufferAndTheEncoding)
{
    const CFStringRef string = String("\u00E9tude");
    char text[8] = "";
    EXPECT_FALSE(CFStringGetCString(string, text, 6, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringGetCString(string, text, 8, kCFStringEncodingASCII));
    EXPECT_TRUE(CFStringGetCString(string, text, 7, kCFStringEncodingUTF8));
    EXPECT_STREQ("\u00E9tude", text);
    CFRelease(string);
}

TEST_F(Foundation, ARetainedObjectLivesUntilItsLastRelease)
{
    const SInt32 before = CountLiveObjects(kLiveFoundationObjects);
    const CFStringRef string = String("text");
    EXPECT_EQ(string, CFRetain(string));
    CFRelease(string);
    EXPECT_EQ(before + 1, CountLiveObjects(kLiveFoundationObjects));
    CFRelease(string);
    EXPECT_EQ(before, CountLiveObjects(kLiveFoundationObjects));
}

TEST_F(Foundation, NoMemoryForAStringIsNoString)
{
    const FailingOperations failing(-108);
    EXPECT_EQ(nullptr, String("text"));
}

TEST_F(Bundles, AnswerFromTheirInformationDictionary)
{
    const CFBundleRef bundle = Bundle(kDocumentTypes);
    ASSERT_NE(nullptr, bundle);
    EXPECT_EQ("Movie", Text(Value(bundle, "CFBundleName")));
    EXPECT_EQ("", Text(Value(bundle, "Empty")));
    EXPECT_EQ(nullptr, Value(bundle, "cfbundlename"));
    EXPECT_EQ(nullptr, Value(bundle, "Missing"));
    CFRelease(bundle);
}

TEST_F(Bundles, KeepTheKindsOfTheirValues)
{
    const CFBundleRef bundle = Bundle(kDocumentTypes);
    EXPECT_EQ(CFStringGetTypeID(), CFGetTypeID(Value(bundle, "CFBundleName")));
    EXPECT_EQ(CFArrayGetTypeID(), CFGetTypeID(Value(bundle, "CFBundleDocumentTypes")));
    for (const CFTypeID known :
         {CFStringGetTypeID(), CFArrayGetTypeID(), CFDictionaryGetTypeID()}) {
        EXPECT_NE(known, CFGetTypeID(Value(bundle, "Number")));
    }
    CFRelease(bundle);
}

TEST_F(Bundles, HoldArraysInTheOrderOfTheList)
{
    const CFBundleRef bundle = Bundle(kDocumentTypes);
    const auto types = static_cast<CFArrayRef>(Value(bundle, "CFBundleDocumentTypes"));
    ASSERT_EQ(2, CFArrayGetCount(types));
    EXPECT_EQ("not a dictionary", Text(CFArrayGetValueAtIndex(types, 0)));
    const auto type = static_cast<CFDictionaryRef>(CFArrayGetValueAtIndex(types, 1));
    ASSERT_EQ(CFDictionaryGetTypeID(), CFGetTypeID(type));
    const CFStringRef key = String("CFBundleTypeMIMETypes");
    const auto mimeTypes = static_cast<CFArrayRef>(CFDictionaryGetValue(type, key));
    CFRelease(key);
    ASSERT_EQ(2, CFArrayGetCount(mimeTypes));
    EXPECT_EQ("video/mpeg", Text(CFArrayGetValueAtIndex(mimeTypes, 0)));
    EXPECT_EQ("audio/mpeg", Text(CFArrayGetValueAtIndex(mimeTypes, 1)));
    EXPECT_EQ(nullptr, CFArrayGetValueAtIndex(mimeTypes, 2));
    EXPECT_EQ(nullptr, CFArrayGetValueAtIndex(mimeTypes, -1));
    CFRelease(bundle);
}

// A value of another kind than its reader takes it for.
TEST_F(Bundles, AStringReadAsAnArrayIsEmpty)
{
    const CFBundleRef bundle = Bundle(kDocumentTypes);
    EXPECT_EQ(0, CFArrayGetCount(static_cast<CFArrayRef>(Value(bundle, "CFBundleName"))));
    CFRelease(bundle);
}

// A binary list of one dictionary with the value "v" for a key: a marker and its bytes.
std::string BinaryList(const std::string& key)
{
    constexpr char kKeyAt = 11;
    const auto valueAt = static_cast<char>(kKeyAt + key.size());
    const auto offsetsAt = static_cast<char>(valueAt + 2);
    std::string list = "bplist00\xD1\x01\x02" + key + "\x51v";
    list += {8, kKeyAt, valueAt};     // where the dictionary, the key and the value are
    list += {0, 0, 0, 0, 0, 0, 1, 1}; // bytes of an offset and of a reference
    list += {0, 0, 0, 0, 0, 0, 0, 3}; // objects
    list += {0, 0, 0, 0, 0, 0, 0, 0}; // the first of which holds the others
    list += {0, 0, 0, 0, 0, 0, 0, offsetsAt};
    return list;
}

class BinaryLists : public Bundles
{
protected:
    void SetUp() override
    {
#ifdef VORN_STANDINS
        GTEST_SKIP() << "what stands in for libplist reads XML lists only";
#endif
    }
};

TEST_F(BinaryLists, AreReadToo)
{
    const CFBundleRef bundle = Bundle(BinaryList("\x51k"));
    ASSERT_NE(nullptr, bundle);
    EXPECT_EQ("v", Text(Value(bundle, "k")));
    CFRelease(bundle);
}

TEST_F(BinaryLists, AZeroInAKeyIsNoDanger)
{
    const CFBundleRef bundle = Bundle(BinaryList({'\x62', 0, 'k', 0, 0})); // 16 bits each
    EXPECT_NE(nullptr, bundle);
    CFRelease(bundle);
}

TEST_F(BinaryLists, AKeyOfMalformedTextIsNotTakenForAnother)
{
    const CFBundleRef bundle = Bundle(BinaryList("\x52k\xA2")); // no UTF-8
    ASSERT_NE(nullptr, bundle);
    EXPECT_EQ(nullptr, Value(bundle, "k"));
    CFRelease(bundle);
}

TEST_F(Bundles, WithoutAListAreNone)
{
    EXPECT_EQ(nullptr, Bundle());
    fs::create_directory(List());
    EXPECT_EQ(nullptr, Bundle());
    EXPECT_EQ(nullptr, CFBundleCreate(nullptr, nullptr));
}

TEST_F(Bundles, APipeInPlaceOfTheListHoldsNobodyUp)
{
    ASSERT_EQ(0, mkfifo(List().c_str(), 0600));
    EXPECT_EQ(nullptr, Bundle());
}

TEST_F(Bundles, WithAMalformedListAreNone)
{
    for (const std::string list :
         {"", "not a list", "<plist>", "<plist><dict><key>k</key></plist>", "bplist00", "bplist"}) {
        EXPECT_EQ(nullptr, Bundle(list)) << list;
    }
}

TEST_F(Bundles, WithAListThatIsNoDictionaryAreNone)
{
    EXPECT_EQ(nullptr, Bundle("<plist version=\"1.0\"><array><string>a</string></array></plist>"));
}

TEST_F(Bundles, ATooLongListIsNone)
{
    const std::string filler(256 * 1024, ' ');
    EXPECT_EQ(nullptr, Bundle(kDocumentTypes + filler));
}

TEST_F(Bundles, AListNestedAsDeepAsAFileCanNestIsNoDanger)
{
    const size_t depth = 15000;
    std::string list = "<plist version=\"1.0\"><dict><key>k</key>";
    for (size_t level = 0; level < depth; ++level) {
        list += "<array>";
    }
    for (size_t level = 0; level < depth; ++level) {
        list += "</array>";
    }
    const CFBundleRef bundle = Bundle(list + "</dict></plist>");
    ASSERT_NE(nullptr, bundle);
    CFRelease(bundle);
}

TEST_F(Bundles, NoDamageToTheirListIsADanger)
{
    std::mt19937 random(20030601);
    for (int round = 0; round < 500; ++round) {
        std::string list = kDocumentTypes.substr(0, random() % (kDocumentTypes.size() + 1));
        for (int damage = 0; damage < 3 && !list.empty(); ++damage) {
            list[random() % list.size()] = static_cast<char>(random());
        }
        const CFBundleRef bundle = Bundle(list);
        if (bundle != nullptr) {
            const CFTypeRef name = Value(bundle, "CFBundleName");
            EXPECT_TRUE(name == nullptr || CFGetTypeID(name) != 0);
            CFRelease(bundle);
        }
    }
    const CFBundleRef intact = Bundle(kDocumentTypes);
    ASSERT_NE(nullptr, intact);
    EXPECT_EQ("Movie", Text(Value(intact, "CFBundleName")));
    CFRelease(intact);
}

} // namespace
