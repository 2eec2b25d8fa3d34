// SPDX-License-Identifier: MIT
#include "viewer/HttpUrl.h"

#include <algorithm>
#include <cctype>
#include <strings.h>

namespace viewer
{
namespace
{

bool StartsWith(const std::string& text, const char* start, size_t length)
{
    return strncasecmp(text.c_str(), start, length) == 0;
}

// From the slash behind the server's name to before the query.
std::string PathOf(const std::string& url)
{
    const size_t scheme = url.find("://");
    const size_t server = scheme == std::string::npos ? 0 : scheme + 3;
    const size_t start = std::min(url.find_first_of("/?#", server), url.size());
    return url.substr(start, url.find_first_of("?#", start) - start);
}

bool IsEscape(const std::string& text, size_t at)
{
    return text[at] == '%' && at + 2 < text.size() &&
           std::isxdigit(static_cast<unsigned char>(text[at + 1])) != 0 &&
           std::isxdigit(static_cast<unsigned char>(text[at + 2])) != 0;
}

std::string Decode(const std::string& text)
{
    std::string decoded;
    for (size_t at = 0; at < text.size(); ++at) {
        if (IsEscape(text, at)) {
            decoded += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16));
            at += 2;
        } else {
            decoded += text[at];
        }
    }
    return decoded;
}

bool IsControl(char c)
{
    return std::iscntrl(static_cast<unsigned char>(c)) != 0;
}

} // namespace

bool IsHttpUrl(const std::string& location)
{
    return StartsWith(location, "http://", 7) || StartsWith(location, "https://", 8);
}

std::string FileNameInUrl(const std::string& url)
{
    const std::string path = Decode(PathOf(url));
    const std::string name = path.substr(path.rfind('/') + 1);
    return std::any_of(name.begin(), name.end(), IsControl) ? "" : name;
}

} // namespace viewer
