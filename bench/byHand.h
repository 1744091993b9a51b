#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "orvane/orvane.h"

namespace orvane::bench {

// What a user would write without the library. All throw if a call fails or is refused.

/// Posts `body` and returns the reply's body, valid until the next post. Uses one connection to loopback,
/// which is kept alive. Sends the header fields of the service's calls, and offers compression.
using Post = std::function<const std::string&(std::string_view path, const std::string& body)>;

/// Posts by an easy handle of libcurl, which also keeps cookies.
Post curlEasy(std::uint16_t port);

/// Posts by cpp-httplib. Keeps no cookies, and reads no compressed reply.
Post httplib(std::uint16_t port);

/// Posts on a thread of its own, which hands each reply to the main queue: what an application does whose
/// main thread must not wait, and what the library does for it.
Post handedOver(Post post);

/// The body of the call for a code, by nlohmann.
std::string codeBody();

/// Returns the picture in a reply, by nlohmann.
Bytes readPicture(const std::string& reply);

/// Returns the message in a reply, by nlohmann.
std::string readMessage(const std::string& reply);

/// Makes the four calls of a sign-in, one after another. Returns the picture.
Bytes signIn(const Post& post);

/// Makes the call for a code.
void requestCode(const Post& post);

}  // namespace orvane::bench
