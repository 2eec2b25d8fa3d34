// SPDX-License-Identifier: MIT
#include "toolbox/foundation/PropertyList.h"

#include "toolbox/threads/Fiber.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <plist/plist.h>

namespace toolbox
{
namespace
{

constexpr size_t kMostBytes = size_t{256} * 1024;
// The library and the conversion go as deep as the list is nested, which takes a few bytes a level:
// more than the stack of whoever asks may hold.
constexpr size_t kStackPerByte = 256;

std::optional<std::string> ReadFile(const std::string& path)
{
    std::error_code unreadable;
    if (!std::filesystem::is_regular_file(path, unreadable)) {
        return std::nullopt;
    }
    const uintmax_t size = std::filesystem::file_size(path, unreadable);
    if (unreadable || size > kMostBytes) {
        return std::nullopt;
    }
    std::string bytes(size, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(file.gcount()));
    return file.bad() ? std::nullopt : std::optional(bytes);
}

using Nodes = std::unique_ptr<void, void (*)(plist_t)>;

Nodes Parse(const std::string& bytes)
{
    plist_t nodes = nullptr;
    const auto parse = bytes.starts_with("bplist") ? plist_from_bin : plist_from_xml;
    parse(bytes.data(), static_cast<uint32_t>(bytes.size()), &nodes);
    return {nodes, plist_free};
}

struct FreeWithLibc {
    void operator()(void* block) const { std::free(block); }
};

Owned Convert(plist_t node);

std::string TextOf(plist_t string)
{
    uint64_t length = 0;
    const char* const text = plist_get_string_ptr(string, &length);
    return {text, text != nullptr ? length : 0};
}

// The text of an item's key, taken through a list of its own: asked for a key with a zero in it the
// library ends the process. None if it is not that of the key, which then nobody can ask for.
std::optional<std::string> KeyOf(plist_t item)
{
    const plist_t key = plist_dict_item_get_key(item);
    char* bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(key, &bytes, &length);
    const std::unique_ptr<char, FreeWithLibc> list(bytes);
    const Nodes string = Parse(std::string(bytes, bytes != nullptr ? length : 0));
    const std::string text = string != nullptr ? TextOf(string.get()) : "";
    return plist_key_val_compare(key, text.c_str()) == 0 ? std::optional(text) : std::nullopt;
}

Owned ConvertArray(plist_t node)
{
    std::vector<Owned> values;
    plist_array_iter start = nullptr;
    plist_array_new_iter(node, &start);
    const std::unique_ptr<void, FreeWithLibc> iterator(start);
    for (;;) {
        plist_t item = nullptr;
        plist_array_next_item(node, iterator.get(), &item);
        if (item == nullptr) {
            return Owned(new ArrayObject(std::move(values)));
        }
        values.push_back(Convert(item));
    }
}

Owned ConvertDictionary(plist_t node)
{
    std::map<std::string, Owned> values;
    plist_dict_iter start = nullptr;
    plist_dict_new_iter(node, &start);
    const std::unique_ptr<void, FreeWithLibc> iterator(start);
    for (;;) {
        plist_t item = nullptr;
        plist_dict_next_item(node, iterator.get(), nullptr, &item);
        if (item == nullptr) {
            return Owned(new DictionaryObject(std::move(values)));
        }
        if (const std::optional<std::string> key = KeyOf(item))
            values.emplace(*key, Convert(item));
    }
}

Owned Convert(plist_t node)
{
    switch (plist_get_node_type(node)) {
    case PLIST_STRING:
        return Owned(new StringObject(TextOf(node)));
    case PLIST_ARRAY:
        return ConvertArray(node);
    case PLIST_DICT:
        return ConvertDictionary(node);
    default:
        return Owned(new PlainObject);
    }
}

} // namespace

Owned ReadPropertyList(const std::string& path)
{
    const std::optional<std::string> bytes = ReadFile(path);
    if (!bytes) {
        return nullptr;
    }
    Owned list;
    Fiber reading(
        [&] {
            const Nodes nodes = Parse(*bytes);
            list = nodes != nullptr ? Convert(nodes.get()) : nullptr;
        },
        bytes->size() * kStackPerByte);
    reading.Resume();
    return list;
}

} // namespace toolbox
