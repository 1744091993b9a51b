// For any URL, verb, header fields and body, the bytes that curl sends are one request: a line for each
// field, no line that was not asked for, then the body.
//
// The input is strings, each ended by a backslash and a blank: verb, body, what follows "http://h", then
// names and values.

#include <algorithm>
#include <clocale>
#include <fuzzer/FuzzedDataProvider.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "adapters/host/HostTextRules.h"
#include "adapters/host/Transfer.h"
#include "fuzz/fuzz.h"

namespace orvane {
namespace {

/// A transfer, and in place of the server the other end of a local socket.
class Wire {
 public:
  Wire() : transfer_(context_) {
    std::setlocale(LC_CTYPE, "C.UTF-8");  // For hosts beyond ASCII.
    sockaddr_un address = {.sun_family = AF_UNIX, .sun_path = {}};
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address.sun_family;  // The system chooses a name, which begins with NUL.
    require(bind(listener_, generic, size) == 0 && listen(listener_, 1) == 0, "there is a listener");
    size = sizeof address;
    require(getsockname(listener_, generic, &size) == 0, "the listener has a name");
    const std::string name(address.sun_path + 1, size - offsetof(sockaddr_un, sun_path) - 1);
    curl_easy_setopt(transfer_.handle(), CURLOPT_ABSTRACT_UNIX_SOCKET, name.c_str());
  }

  /// Returns what curl sends, or an empty string if it refuses the URL.
  std::string send(const URLRequest& request) {
    constexpr std::string_view reply = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
    context_.now = Clock::now();
    transfer_.prepare({request, nullptr, Clock::time_point::max()});
    curl_multi_add_handle(multi_, transfer_.handle());
    int server = -1;
    for (int running = 1; running > 0;) {
      curl_multi_perform(multi_, &running);
      if (server >= 0) continue;
      server = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK);
      if (server >= 0) require(write(server, reply.data(), reply.size()) > 0, "there is a reply");
    }
    int left = 0;
    const CURLcode result = curl_multi_info_read(multi_, &left)->data.result;
    curl_multi_remove_handle(multi_, transfer_.handle());
    require(result == (server < 0 ? CURLE_URL_MALFORMAT : CURLE_OK), "curl refuses the URL, or sends all");
    require(accept(listener_, nullptr, nullptr) < 0, "there is one connection");

    std::string sent;
    char part[4096];
    for (ssize_t size = 0; (size = read(server, part, sizeof part)) > 0;)
      sent.append(part, static_cast<std::size_t>(size));
    if (server >= 0) close(server);
    return sent;
  }

 private:
  TransferContext context_;
  Transfer transfer_;
  CURLM* multi_ = curl_multi_init();
  int listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
};

std::string trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\v\f";
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return std::string(text.substr(0, text.find_last_not_of(blanks) + 1));
}

void checkHead(std::string_view head, const URLRequest& request) {
  constexpr std::string_view lineEnders("\0\r\n", 3);
  std::vector<std::string> transports = {"Host",           "User-Agent",   "Accept",       "Accept-Encoding",
                                         "Content-Length", "Content-Type", "Authorization"};
  std::vector<std::string> wanted;
  for (const HeaderField& field : request.headers()) {
    const bool isCookie = equalIgnoringCase(field.name, "Cookie");  // Spelled by curl.
    wanted.push_back((isCookie ? "Cookie" : field.name) + ":" + trimmed(field.value));
    std::erase_if(transports, [&](const std::string& name) { return equalIgnoringCase(name, field.name); });
  }
  for (bool isFirst = true; !head.empty(); isFirst = false) {
    const std::string_view line = head.substr(0, head.find("\r\n"));
    head.remove_prefix(line.size() + 2);
    require(line.find_first_of(lineEnders) == line.npos, "no line holds what ends another's");
    if (isFirst) {
      require(line.starts_with(request.method() + " ") && line.ends_with(" HTTP/1.1"),
              "the first line is the request's");
      require(std::count(line.begin(), line.end(), ' ') == 2, "the first line has three words");
      continue;
    }
    const std::string name(line.substr(0, line.find(':')));
    const std::string field = name + ":" + trimmed(line.substr(name.size() + 1));
    require(std::erase(wanted, field) + std::erase(transports, name) == 1, "each line is one that is due");
  }
  require(wanted.empty(), "all fields are sent");
}

}  // namespace
}  // namespace orvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace orvane;
  FuzzedDataProvider input(data, size);
  const std::string method = input.ConsumeRandomLengthString();
  const std::string body = input.ConsumeRandomLengthString();
  URLRequest request("http://h" + input.ConsumeRandomLengthString());
  if (!HostTextRules().isURL(request.url())) return 0;
  request.setMethod(method);
  if (!body.empty()) request.setBody(Bytes(body.begin(), body.end()));
  while (input.remaining_bytes() > 0) {
    const std::string name = input.ConsumeRandomLengthString();
    request.addValue(input.ConsumeRandomLengthString(), name);
  }

  static auto* const wire = new Wire;
  const std::string sent = wire->send(request);
  if (sent.empty()) return 0;
  const std::size_t headEnd = sent.find("\r\n\r\n");
  require(headEnd != sent.npos, "the head has an end");
  checkHead(std::string_view(sent).substr(0, headEnd + 2), request);
  require(sent.substr(headEnd + 4) == (request.method() == "HEAD" ? "" : body),
          "the body follows, and nothing else");
  return 0;
}
