#include "tools/devservice/machineAddresses.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace devservice {
namespace {

/// Returns the address as text, or an empty string for one that is of no use to other machines.
std::string textOf(const sockaddr* address, bool withIPv6) {
  char text[INET6_ADDRSTRLEN] = "";
  if (address->sa_family == AF_INET) {
    const in_addr& v4 = reinterpret_cast<const sockaddr_in*>(address)->sin_addr;
    const bool isLinkLocal = (ntohl(v4.s_addr) >> 16) == 0xa9fe;  // 169.254.0.0/16
    return isLinkLocal || !inet_ntop(AF_INET, &v4, text, sizeof text) ? "" : text;
  }
  if (address->sa_family != AF_INET6 || !withIPv6) return "";
  const in6_addr& v6 = reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr;
  if (IN6_IS_ADDR_LINKLOCAL(&v6) || !inet_ntop(AF_INET6, &v6, text, sizeof text)) return "";
  return "[" + std::string(text) + "]";
}

}  // namespace

std::vector<std::string> machineAddresses(bool withIPv6) {
  ifaddrs* first = nullptr;
  if (getifaddrs(&first) != 0) return {};
  const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owner(first, freeifaddrs);
  std::vector<std::string> addresses;
  for (const ifaddrs* entry = first; entry; entry = entry->ifa_next) {
    const bool isUsable =
        entry->ifa_addr && (entry->ifa_flags & IFF_UP) && !(entry->ifa_flags & IFF_LOOPBACK);
    std::string text = isUsable ? textOf(entry->ifa_addr, withIPv6) : "";
    if (!text.empty()) addresses.push_back(std::move(text));
  }
  return addresses;
}

}  // namespace devservice
