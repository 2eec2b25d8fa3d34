// SPDX-License-Identifier: MIT
//
// In place of the reader that stands on libplist: XML lists only, a binary one is none.
#include "toolbox/foundation/PropertyList.h"
#include "toolbox/threads/Fiber.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <utility>

namespace toolbox
{
namespace
{

constexpr size_t kMostBytes = size_t{256} * 1024;
constexpr size_t kStackPerByte = 256; // a list may be nested deeper than the asker's stack

struct Malformed {
};

// Goes through the text of an XML list; throws Malformed where it is none.
class Reader
{
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    Owned List()
    {
        Tag list = NextTag();
        if (list.name != "plist" || list.isEmpty) {
            throw Malformed{};
        }
        Owned value = Value(NextTag());
        Close("plist");
        return value;
    }

private:
    struct Tag {
        std::string_view name; // with its slash, if it is a closing one
        bool isEmpty = false;
    };

    std::string_view UpTo(std::string_view end)
    {
        const size_t length = rest_.find(end);
        if (length == std::string_view::npos) {
            throw Malformed{};
        }
        const std::string_view found = rest_.substr(0, length);
        rest_.remove_prefix(length + end.size());
        return found;
    }

    bool Skip(std::string_view start)
    {
        const bool isThere = rest_.starts_with(start);
        rest_.remove_prefix(isThere ? start.size() : 0);
        return isThere;
    }

    Tag NextTag()
    {
        for (;;) {
            if (UpTo("<").find_first_not_of(" \t\r\n") != std::string_view::npos) {
                throw Malformed{};
            }
            if (Skip("!--")) {
                UpTo("-->");
                continue;
            }
            std::string_view inside = UpTo(">");
            if (inside.starts_with('?') || inside.starts_with('!')) {
                continue;
            }
            const bool isEmpty = inside.ends_with('/');
            inside.remove_suffix(isEmpty ? 1 : 0);
            return {inside.substr(0, inside.find_first_of(" \t\r\n")), isEmpty};
        }
    }

    void Close(std::string_view name)
    {
        const Tag tag = NextTag();
        if (!tag.name.starts_with('/') || tag.name.substr(1) != name) {
            throw Malformed{};
        }
    }

    std::string Text(const Tag& tag)
    {
        if (tag.isEmpty) {
            return {};
        }
        const size_t length = rest_.find('<');
        const std::string_view escaped = rest_.substr(0, length);
        rest_.remove_prefix(escaped.size());
        Close(tag.name);
        return Unescaped(escaped);
    }

    static std::string Unescaped(std::string_view text)
    {
        std::string plain;
        while (!text.empty()) {
            size_t length = 1;
            char character = text.front();
            for (const std::string_view escape :
                 {"&&amp;", "<&lt;", ">&gt;", "\"&quot;", "'&apos;"}) {
                if (text.starts_with(escape.substr(1))) {
                    character = escape.front();
                    length = escape.size() - 1;
                }
            }
            plain += character;
            text.remove_prefix(length);
        }
        return plain;
    }

    Owned Value(const Tag& tag)
    {
        if (tag.name == "dict") {
            return Dictionary(tag);
        }
        if (tag.name == "array") {
            return Array(tag);
        }
        const std::string text = Text(tag);
        return tag.name == "string" ? Owned(new StringObject(text)) : Owned(new PlainObject);
    }

    Owned Array(const Tag& tag)
    {
        std::vector<Owned> values;
        for (std::optional<Tag> item = NextItem(tag); item; item = NextItem(tag)) {
            values.push_back(Value(*item));
        }
        return Owned(new ArrayObject(std::move(values)));
    }

    Owned Dictionary(const Tag& tag)
    {
        std::map<std::string, Owned> values;
        for (std::optional<Tag> key = NextItem(tag); key; key = NextItem(tag)) {
            if (key->name != "key") {
                throw Malformed{};
            }
            const std::string name = Text(*key);
            values.emplace(name, Value(NextTag()));
        }
        return Owned(new DictionaryObject(std::move(values)));
    }

    // None at the end of the container.
    std::optional<Tag> NextItem(const Tag& container)
    {
        if (container.isEmpty) {
            return std::nullopt;
        }
        const Tag tag = NextTag();
        if (!tag.name.starts_with('/')) {
            return tag;
        }
        if (tag.name.substr(1) != container.name) {
            throw Malformed{};
        }
        return std::nullopt;
    }

    std::string_view rest_;
};

std::string BytesOf(const std::string& path)
{
    std::error_code unreadable;
    if (!std::filesystem::is_regular_file(path, unreadable)) {
        throw Malformed{};
    }
    std::ifstream file(path, std::ios::binary);
    std::string bytes(kMostBytes + 1, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(file.gcount()));
    if (bytes.size() > kMostBytes) {
        throw Malformed{};
    }
    return bytes;
}

} // namespace

Owned ReadPropertyList(const std::string& path)
{
    Owned list;
    try {
        const std::string bytes = BytesOf(path);
        Fiber reading([&] { list = Reader(bytes).List(); }, bytes.size() * kStackPerByte);
        reading.Resume();
    } catch (const Malformed&) {
        return nullptr;
    }
    return list;
}

} // namespace toolbox
