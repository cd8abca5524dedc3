#include "benchmarks/network/curl_post.h"

#include <curl/curl.h>

namespace bench {

namespace {

std::size_t append(char* bytes, std::size_t size, std::size_t count, void* text)
{
    static_cast<std::string*>(text)->append(bytes, size * count);
    return size * count;
}

} // namespace

CurlSessions::CurlSessions() : share_(curl_share_init())
{
    curl_share_setopt(static_cast<CURLSH*>(share_), CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

CurlSessions::~CurlSessions()
{
    curl_share_cleanup(static_cast<CURLSH*>(share_));
}

bool curlPost(const std::string& url, const std::string& body, const CurlSessions* sessions)
{
    std::string reply;
    CURL* handle = curl_easy_init();
    curl_slist* headers = curl_slist_append(nullptr, "Content-Type: application/json");
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body.c_str());
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 0L);
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 0L);
    curl_easy_setopt(handle, CURLOPT_SSL_SESSIONID_CACHE, sessions ? 1L : 0L);
    if (sessions)
        curl_easy_setopt(handle, CURLOPT_SHARE, static_cast<CURLSH*>(sessions->share()));
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &reply);
    const bool done = curl_easy_perform(handle) == CURLE_OK && !reply.empty();
    curl_slist_free_all(headers);
    curl_easy_cleanup(handle);
    return done;
}

} // namespace bench
