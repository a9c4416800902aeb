// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Caller.h"

#include <arpa/inet.h>

#include <array>

#include "base/Text.h"

namespace korvane::sandbox {
namespace {

/// "[::1]:80" is "::1", "localhost:80" is "localhost" (RFC 9110, 7.2).
std::string withoutPort(std::string_view host) {
    if (host.starts_with('[')) return std::string{host.substr(1, host.find(']') - 1)};
    return std::string{host.substr(0, host.find(':'))};
}

bool isAddress(const std::string& host) {
    std::array<unsigned char, 16> bytes;
    return ::inet_pton(AF_INET, host.c_str(), bytes.data()) == 1 ||
           ::inet_pton(AF_INET6, host.c_str(), bytes.data()) == 1;
}

}  // namespace

std::string refusalOf(const HttpRequest& request, const std::string& ownHost, const std::string& token) {
    const std::string host = withoutPort(request.host);
    const bool isOurs = request.host.empty() || isAddress(host) || equalIgnoringCase(host, "localhost") ||
                        equalIgnoringCase(host, ownHost);
    if (!isOurs) return "this service is not at " + host;
    if (request.origin.empty()) return {};
    const std::size_t scheme = request.origin.find("://");
    const bool isOwnPage =
        scheme != std::string::npos &&
        equalIgnoringCase(std::string_view(request.origin).substr(scheme + 3), request.host);
    if (!isOwnPage) return "a page of " + request.origin + " may not ask this service";
    if (request.method != "GET" && request.token != token)
        return "the page is not this service's: load it again";
    return {};
}

}  // namespace korvane::sandbox
