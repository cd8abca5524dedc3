#ifndef BENCHMARKS_NETWORK_CURL_POST_H
#define BENCHMARKS_NETWORK_CURL_POST_H

#include <string>

namespace bench {

/// TLS sessions that posts with libcurl hand on to each other.
class CurlSessions
{
public:
    CurlSessions();
    ~CurlSessions();
    CurlSessions(const CurlSessions&) = delete;
    CurlSessions& operator=(const CurlSessions&) = delete;

    void* share() const { return share_; }

private:
    void* share_;
};

/// The peer: one post with libcurl, a new handle and a new connection for each, no certificate
/// verified, as the client does. False if no reply came.
/// \param sessions null: none is resumed
bool curlPost(const std::string& url, const std::string& body,
              const CurlSessions* sessions = nullptr);

} // namespace bench

#endif
