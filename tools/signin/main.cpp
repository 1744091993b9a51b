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
#include "tools/signin/Interruption.h"
#include "tools/signin/Options.h"
#include "tools/signin/Report.h"
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

/// Puts the tool's own session under the library.
std::shared_ptr<CountingSession> installSession(const orvane::HostSessionConfiguration& configuration,
                                                std::shared_ptr<const Secrets> traceSecrets) {
  // Under the tracing, so that what is waited for is hidden before a reply is traced.
  auto counting =
      std::make_shared<CountingSession>(std::make_shared<orvane::HostSession>(configuration), hideWaiting);
  std::shared_ptr<orvane::URLSession> session = counting;
  if (traceSecrets) {
    session = std::make_shared<TracingSession>(counting, configuration, std::move(traceSecrets), writeError);
  }
  orvane::installPlatform({.sharedSession = std::move(session)});
  return counting;
}

Outcome signIn(const Options& options, Report& report) {
  const Answerer answerer = chooseAnswerer(options, inputIsTerminal());
  onInterruption([&report] {
    leaveTerminal();
    report.end({Outcome::interrupted});
  });
  if (options.json) report.open(answerer == Answerer::person);
  std::optional<EmbeddedService> embedded;
  if (options.embedsService()) embedded.emplace();

  orvane::HostSessionConfiguration configuration{.proxy = options.proxy.value_or("")};
  if (embedded) configuration.reroutes.push_back(rerouteTo({"127.0.0.1", embedded->server.port()}));
  if (options.connect) configuration.reroutes.push_back(rerouteTo(*options.connect));

  const auto secrets = std::make_shared<Secrets>();
  for (const auto& given : {options.mobile, options.clientId, options.captcha, options.code}) {
    if (given) secrets->add(*given);
  }
  const auto session = installSession(configuration, options.trace ? secrets : nullptr);
  if (options.clientId) orvane::OrvaneManager::shareManager().setAppClientId(*options.clientId);
  return SignIn(options, answerer, embedded ? &embedded->service : nullptr, *session, *secrets, report).run();
}

void printVersion() {
  print("orvane-signin " SIGNIN_VERSION "\n");
  print(reinterpret_cast<const char*>(OrvaneVersionString));
}

Outcome run(std::span<const char* const> arguments, Report& report) {
  const Options options = parseOptions(arguments);
  if (options.help) {
    print(helpText());
  } else if (options.version) {
    printVersion();
  } else {
    return signIn(options, report);
  }
  return Outcome::success;
}

}  // namespace

int main(int argc, char** argv) {
  // A reader who goes away, like head, must not stop a sign-in between its calls.
  std::signal(SIGPIPE, SIG_IGN);
  static Report& report = *new Report;
  const auto complainOf = [](Outcome outcome, const std::exception& error) {
    complain(error.what());
    report.end({.outcome = outcome, .message = error.what()});
    return outcome;
  };
  Outcome outcome{};
  try {
    outcome = run(std::span(argv, static_cast<std::size_t>(argc)).subspan(1), report);
  } catch (const UsageError& error) {
    outcome = complainOf(Outcome::usage, error);
  } catch (const std::exception& error) {
    outcome = complainOf(Outcome::fault, error);
  }
  if (std::ferror(stdout) || report.isBroken()) complain("standard output could not be written");
  return static_cast<int>(outcome);
}
