// SPDX-License-Identifier: MIT
//
// One HTTP request and its answer, under way.
#pragma once

#include "toolbox/Types.h"
#include "viewer/FileDescriptor.h"

#include <array>
#include <curl/curl.h>
#include <functional>
#include <memory>
#include <string>

namespace viewer
{

struct HttpRequest {
    std::string url;
    SInt32 from = 0;     // the first byte that is wanted
    std::string ifRange; // what the resource's validator must be for that, empty if unknown
};

// What the header of an answer says.
struct HttpAnswer {
    long status = 0;
    std::string type;         // of the content, as it is declared
    std::string entityTag;    // empty: none that is strong
    std::string lastModified; // empty: none
    SInt64 length = -1;       // of this body
    SInt64 rangeStart = -1;   // where in the resource a part begins
    SInt64 total = -1;        // the resource's length, told with a part
};

// Nothing here waits. Redirections are followed, from http and https to the same.
class HttpTransfer
{
public:
    enum class Taking { kTaken, kLater, kRefused };
    // What becomes of the next bytes of the body. May not throw.
    using Taker = std::function<Taking(const char* bytes, size_t count)>;

    // Throws SourceFailure.
    HttpTransfer(const HttpRequest& request, Taker taker);
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    // Does what can be done now. Answers whether there was anything.
    bool Work();
    // A taker that said kLater gets those bytes now.
    void GoOn();
    bool IsEnded() const { return ended_; }
    // Of a transfer that has ended: CURLE_OK, or what went wrong and the same in words.
    CURLcode Result() const { return result_; }
    std::string Problem() const;
    // There is input on it when Work has something to do; every second there is some.
    int Descriptor() const { return events_.Get(); }
    // The header of the last answer. To be asked for when it is complete.
    HttpAnswer Answer() const;
    // Grows with everything that comes.
    SInt64 Activity() const { return activity_; }

private:
    struct ReleaseEasy {
        void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
    };
    struct ReleaseMulti {
        void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
    };
    struct ReleaseList {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    static size_t TakeHeader(char* bytes, size_t size, size_t count, void* self);
    static size_t TakeBody(char* bytes, size_t size, size_t count, void* self);
    static int WatchSocket(CURL*, curl_socket_t socket, int what, void* self, void*);
    static int SetTimer(CURLM*, long milliseconds, void* self);

    void Prepare(const HttpRequest& request);
    void PrepareCallbacks();
    std::string Header(const char* name) const;
    void LookForEnd();

    Taker taker_;
    FileDescriptor events_;
    FileDescriptor timer_;
    std::array<char, CURL_ERROR_SIZE> problem_{};
    std::unique_ptr<curl_slist, ReleaseList> headers_;
    std::unique_ptr<CURLM, ReleaseMulti> multi_;
    std::unique_ptr<CURL, ReleaseEasy> easy_;
    SInt64 activity_ = 0;
    bool ended_ = false;
    CURLcode result_ = CURLE_OK;
};

} // namespace viewer
