// SPDX-License-Identifier: MIT
#include "viewer/ObjectLocation.h"

#include "viewer/HttpUrl.h"
#include "viewer/Options.h"

#include <cctype>
#include <filesystem>
#include <strings.h>

namespace viewer
{
namespace
{

// The length of "scheme://" in front of what it names, 0 if there is none.
size_t SchemeLength(const std::string& name)
{
    size_t length = 0;
    while (length < name.size() && std::isalnum(static_cast<unsigned char>(name[length])) != 0) {
        ++length;
    }
    return length > 0 && name.compare(length, 3, "://") == 0 ? length + 3 : 0;
}

int HexDigit(char digit)
{
    const auto lower = static_cast<char>(std::tolower(static_cast<unsigned char>(digit)));
    if (lower >= '0' && lower <= '9') {
        return lower - '0';
    }
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string DecodePercents(const std::string& text)
{
    std::string decoded;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isCode = text[i] == '%' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 &&
                            HexDigit(text[i + 2]) >= 0;
        decoded += isCode ? static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]))
                          : text[i];
        i += isCode ? 2 : 0;
    }
    return decoded;
}

std::string PathOfFileUrl(const std::string& url, size_t schemeLength)
{
    const size_t path = url.find('/', schemeLength);
    const std::string host = url.substr(schemeLength, path - schemeLength);
    if (path == std::string::npos ||
        (!host.empty() && strcasecmp(host.c_str(), "localhost") != 0)) {
        throw UsageError("'" + url + "' names no file of this machine");
    }
    return DecodePercents(url.substr(path));
}

void RequireHost(const std::string& url, size_t schemeLength)
{
    if (url.find_first_of("/?#", schemeLength) == schemeLength || url.size() == schemeLength) {
        throw UsageError("'" + url + "' names no server");
    }
}

} // namespace

std::string LocateObject(const std::string& name)
{
    if (name.empty()) {
        throw UsageError("an empty name is no object");
    }
    const size_t schemeLength = SchemeLength(name);
    if (schemeLength == 0) {
        return name;
    }
    if (IsHttpUrl(name)) {
        RequireHost(name, schemeLength);
        return name;
    }
    if (strncasecmp(name.c_str(), "file:", 5) == 0) {
        return PathOfFileUrl(name, schemeLength);
    }
    std::error_code ignored;
    if (!std::filesystem::exists(name, ignored)) {
        throw UsageError("'" + name + "': only http, https and file URLs can be opened");
    }
    return name;
}

} // namespace viewer
