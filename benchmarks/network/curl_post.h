#ifndef BENCHMARKS_NETWORK_CURL_POST_H
#define BENCHMARKS_NETWORK_CURL_POST_H

#include <string>

namespace bench {

/// The peer: one post with libcurl, a new handle and a new connection for each, no session reused,
/// no certificate verified, as the client does. False if no reply came.
bool curlPost(const std::string& url, const std::string& body);

} // namespace bench

#endif
