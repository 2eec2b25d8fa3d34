// SPDX-License-Identifier: MIT
//
// Information dictionaries, beside what the library makes of them that reads them.
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/Require.h"
#include "tests/support/TestPlugin.h"
#include "toolbox/foundation/Foundation.h"
#include "toolbox/probe/Probe.h"

#include <plist/plist.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

namespace
{

// A bundle on disk whose dictionary is written over and over.
class Bundle
{
public:
    Bundle()
    {
        std::string path = (std::filesystem::temp_directory_path() / "fuzz-XXXXXX").string();
        Require(mkdtemp(path.data()) != nullptr, "there is a folder");
        folder_ = path;
        std::filesystem::create_directory(folder_ + "/Contents");
        file_ = open((folder_ + "/Contents/Info.plist").c_str(), O_WRONLY | O_CREAT, 0600);
        const auto* const bytes = reinterpret_cast<const UInt8*>(folder_.data());
        url_ = CFURLCreateFromFileSystemRepresentation(nullptr, bytes,
                                                       static_cast<CFIndex>(folder_.size()), true);
    }
    ~Bundle()
    {
        CFRelease(url_);
        close(file_);
        std::filesystem::remove_all(folder_);
    }
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    CFBundleRef Open(std::string_view dictionary) const
    {
        const auto size = static_cast<ssize_t>(dictionary.size());
        Require(pwrite(file_, dictionary.data(), dictionary.size(), 0) == size &&
                    ftruncate(file_, size) == 0,
                "the dictionary is written");
        return CFBundleCreate(nullptr, url_);
    }

private:
    std::string folder_;
    int file_ = -1;
    CFURLRef url_ = nullptr;
};

using Nodes = std::unique_ptr<void, void (*)(plist_t)>;

Nodes Parse(std::string_view text)
{
    plist_t nodes = nullptr;
    const auto parse = text.starts_with("bplist") ? plist_from_bin : plist_from_xml;
    parse(text.data(), static_cast<uint32_t>(text.size()), &nodes);
    return {nodes, plist_free};
}

bool IsSameIgnoringCase(std::string_view a, std::string_view b)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : int{c}; };
    return std::ranges::equal(a, b, {}, lower, lower);
}

// Calls `action` with the items of an array; with none of anything else.
template <class Action>
void ForEachItem(plist_t array, const Action& action)
{
    const bool isArray = array != nullptr && plist_get_node_type(array) == PLIST_ARRAY;
    for (uint32_t i = 0; isArray && i < plist_array_get_size(array); ++i)
        action(plist_array_get_item(array, i));
}

plist_t ItemOf(plist_t dictionary, const char* key)
{
    const bool isDictionary =
        dictionary != nullptr && plist_get_node_type(dictionary) == PLIST_DICT;
    return isDictionary ? plist_dict_get_item(dictionary, key) : nullptr;
}

bool Declares(plist_t root, const char* key, const std::string& wanted)
{
    bool isFound = false;
    ForEachItem(ItemOf(root, "CFBundleDocumentTypes"), [&](plist_t documentType) {
        ForEachItem(ItemOf(documentType, key), [&](plist_t item) {
            if (plist_get_node_type(item) != PLIST_STRING)
                return;
            uint64_t length = 0;
            const char* const text = plist_get_string_ptr(item, &length);
            isFound = isFound || (text != nullptr && IsSameIgnoringCase({text, length}, wanted));
        });
    });
    return isFound;
}

bool IsAscii(const std::string& text)
{
    return std::ranges::all_of(text, [](char c) { return static_cast<UInt8>(c) < 0x80; });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size)
{
    static const Bundle onDisk;
    const SInt32 alive = CountLiveObjects(kLiveFoundationObjects);
    const std::string_view dictionary(reinterpret_cast<const char*>(bytes), size);
    const Nodes nodes = Parse(dictionary);
    const CFBundleRef bundle = onDisk.Open(dictionary);
    const bool isDictionary = nodes != nullptr && plist_get_node_type(nodes.get()) == PLIST_DICT;
    Require((bundle != nullptr) == isDictionary, "a bundle has a dictionary");
    if (bundle != nullptr) {
        test::TestPlugin plugin(bundle);
        const std::string own(dictionary.substr(size / 2, 10)); // with luck one that is declared
        for (const std::string& text : {std::string("video/mpeg"), std::string("mpg"), own}) {
            const std::string wanted = text.c_str();
            Require((plugin.CanHandleMimeType(wanted.c_str()) != 0) ==
                        (IsAscii(wanted) && Declares(nodes.get(), "CFBundleTypeMIMETypes", wanted)),
                    "the types are those declared");
            Require(
                (plugin.CanHandleFileExtension(wanted.c_str()) != 0) ==
                    (IsAscii(wanted) && Declares(nodes.get(), "CFBundleTypeExtensions", wanted)),
                "so are the extensions");
        }
        CFRelease(bundle);
    }
    Require(CountLiveObjects(kLiveFoundationObjects) == alive, "nothing is left behind");
    return 0;
}

std::vector<FuzzInput> FuzzSeeds()
{
    const auto xml = [](const std::string& contents) {
        return R"(<?xml version="1.0"?><plist version="1.0">)" + contents + "</plist>";
    };
    const std::string types = "<dict><key>CFBundleDocumentTypes</key><array><dict>"
                              "<key>CFBundleTypeMIMETypes</key><array><string>video/mpeg</string>"
                              "<string>VIDEO/X-MPEG</string><integer>3</integer></array>"
                              "<key>CFBundleTypeExtensions</key><array><string>mpg</string></array>"
                              "</dict><string>no</string></array><key>a</key><true/></dict>";
    std::vector<FuzzInput> seeds;
    for (const std::string& list :
         {xml(types), xml("<array><real>1.5</real><date>2001-01-01T00:00:00Z</date></array>"),
          xml("<dict><key>CFBundleDocumentTypes</key><string>no&amp;</string></dict>"),
          xml("<dict><key>d</key><data>AAEC</data><key>e</key><array/></dict>")}) {
        seeds.emplace_back(list.begin(), list.end());
        char* binary = nullptr;
        uint32_t length = 0;
        plist_to_bin(Parse(list).get(), &binary, &length);
        seeds.emplace_back(binary, binary + length);
        std::free(binary);
    }
    return seeds;
}
