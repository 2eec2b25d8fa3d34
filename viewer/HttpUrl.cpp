// SPDX-License-Identifier: MIT
#include "viewer/HttpUrl.h"

#include <curl/curl.h>
#include <memory>
#include <strings.h>

namespace viewer
{
namespace
{

bool StartsWith(const std::string& text, const char* start, size_t length)
{
    return strncasecmp(text.c_str(), start, length) == 0;
}

std::string PathOf(const std::string& url)
{
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parsed(curl_url(), curl_url_cleanup);
    char* path = nullptr;
    if (parsed == nullptr ||
        curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK ||
        curl_url_get(parsed.get(), CURLUPART_PATH, &path, CURLU_URLDECODE) != CURLUE_OK) {
        return "";
    }
    const std::unique_ptr<char, decltype(&curl_free)> owned(path, curl_free);
    return path;
}

} // namespace

bool IsHttpUrl(const std::string& location)
{
    return StartsWith(location, "http://", 7) || StartsWith(location, "https://", 8);
}

std::string FileNameInUrl(const std::string& url)
{
    const std::string path = PathOf(url);
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

} // namespace viewer
