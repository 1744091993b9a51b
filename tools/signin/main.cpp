#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Server.h"
#include "tools/signin/CountingSession.h"
#include "tools/signin/Options.h"
#include "tools/signin/Secrets.h"
#include "tools/signin/SignIn.h"
#include "tools/signin/Terminal.h"
#include "tools/signin/TracingSession.h"

namespace {

using namespace signin;

struct EmbeddedService {
  devservice::IdentityService service;
  devservice::Server server{service};
};

orvane::Reroute rerouteTo(const Address& address) {
  return {.host = std::string(orvane::serviceHost()), .toHost = address.host, .toPort = address.port};
}

void writeLine(std::string line) {
  line.push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stderr);
}

/// Puts the tool's own session under the library.
std::shared_ptr<CountingSession> installSession(const std::optional<orvane::Reroute>& reroute,
                                                std::shared_ptr<const Secrets> traceSecrets) {
  orvane::HostSessionConfiguration configuration;
  if (reroute) configuration.reroutes.push_back(*reroute);
  std::shared_ptr<orvane::URLSession> session =
      std::make_shared<orvane::HostSession>(std::move(configuration));
  if (traceSecrets) {
    session =
        std::make_shared<TracingSession>(std::move(session), reroute, std::move(traceSecrets), writeLine);
  }
  auto counting = std::make_shared<CountingSession>(std::move(session));
  orvane::installPlatform({.sharedSession = counting});
  return counting;
}

bool signIn(const Options& options) {
  const Answerer answerer = chooseAnswerer(options, inputIsTerminal());
  std::optional<EmbeddedService> embedded;
  if (options.embedsService()) embedded.emplace();

  std::optional<orvane::Reroute> reroute;
  if (embedded) reroute = rerouteTo({"127.0.0.1", embedded->server.port()});
  if (options.connect) reroute = rerouteTo(*options.connect);

  const auto secrets = std::make_shared<Secrets>();
  for (const auto& given : {options.mobile, options.clientId, options.captcha, options.code}) {
    if (given) secrets->add(*given);
  }
  const auto session = installSession(reroute, options.trace ? secrets : nullptr);
  if (options.clientId) orvane::OrvaneManager::shareManager().setAppClientId(*options.clientId);
  return SignIn(options, answerer, embedded ? &embedded->service : nullptr, *session, *secrets).run();
}

void printVersion() {
  print("orvane-signin " SIGNIN_VERSION "\n");
  print(reinterpret_cast<const char*>(OrvaneVersionString));
}

/// The exit status.
int run(std::span<const char* const> arguments) {
  const Options options = parseOptions(arguments);
  if (options.help) {
    print(helpText);
  } else if (options.version) {
    printVersion();
  } else {
    return signIn(options) ? 0 : 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  // A reader who goes away, like head, must not stop a sign-in between its calls.
  std::signal(SIGPIPE, SIG_IGN);
  int status = 1;
  try {
    status = run(std::span(argv, static_cast<std::size_t>(argc)).subspan(1));
  } catch (const UsageError& error) {
    complain(error.what());
    status = 2;
  } catch (const std::exception& error) {
    complain(error.what());
  }
  if (std::ferror(stdout)) complain("standard output could not be written");
  return status;
}
