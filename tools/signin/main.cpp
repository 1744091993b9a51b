#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <pthread.h>
#include <span>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <utility>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Server.h"
#include "tools/signin/HarLog.h"
#include "tools/signin/InspectClient.h"
#include "tools/signin/ObservedSession.h"
#include "tools/signin/Options.h"
#include "tools/signin/Report.h"
#include "tools/signin/SignIn.h"
#include "tools/signin/Terminal.h"
#include "tools/support/Secrets.h"

namespace {

using namespace signin;

struct EmbeddedService {
  devservice::IdentityService service;
  devservice::Server server{service};
};

/// Prevents a core file, which would contain the codes. A limit of 1, unlike 0, also keeps Linux from passing
/// the core to a program.
void preventCoreFile() {
  rlimit limit{};
  getrlimit(RLIMIT_CORE, &limit);
  limit.rlim_cur = std::min<rlim_t>(1, limit.rlim_max);
  setrlimit(RLIMIT_CORE, &limit);
}

/// Calls `tidyUp` once when SIGINT, SIGTERM or SIGHUP arrives; the signal then ends the process. A second
/// signal ends it at once. Signals that the process was started to ignore stay ignored. To be called once,
/// before other threads start. `tidyUp` runs on a thread of its own, possibly while main() returns.
void onInterruption(std::function<void()> tidyUp) {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before = {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaddset(&signals, signal);
  }
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);  // Later threads inherit the mask.
  std::thread([signals, tidyUp = std::move(tidyUp)] {
    int signal = 0;
    if (sigwait(&signals, &signal) != 0) return;
    for (const int each : {SIGINT, SIGTERM, SIGHUP}) {
      if (sigismember(&signals, each) == 1) std::signal(each, SIG_DFL);
    }
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    tidyUp();
    raise(signal);
  }).detach();
}

/// Returns the configuration of a session whose requests reach the service at the address, or by the options.
orvane::HostSessionConfiguration routeTo(const std::optional<Address>& address, const Options& options) {
  orvane::HostSessionConfiguration configuration{.proxy = options.proxy.value_or("")};
  if (address) {
    configuration.reroutes.push_back(
        {.host = std::string(orvane::serviceHost()), .toHost = address->host, .toPort = address->port});
  }
  return configuration;
}

StepOutcome signIn(const Options& options, Report& report, std::FILE*& output) {
  const bool isInteractive = Terminal::inputIsTerminal() && !options.automatic;
  const bool lacksAnswers = !isInteractive && !options.missing().empty();
  const auto refuseToGuess = [&](const std::string& why) {
    throw UsageError(std::string(options.missing()) + ": missing, and " + why);
  };
  if (lacksAnswers && !options.embedsService() && options.service().empty())
    refuseToGuess("there is no development service to ask");
  onInterruption([&report] {
    Terminal::leave();
    report.end({StepOutcome::interrupted});
  });
  if (options.takesOutput()) output = Terminal::takeOutput(isInteractive);
  if (options.json) report.open(output);

  std::optional<EmbeddedService> embedded;
  if (options.embedsService()) embedded.emplace();
  const std::optional<Address> address =
      embedded ? Address{"127.0.0.1", embedded->server.port()} : options.connect;
  const auto secrets = std::make_shared<support::Secrets>(!options.unmasked);
  if (options.mobile) secrets->addNumber(*options.mobile);
  for (const auto& given : {options.clientId, options.captcha, options.code}) {
    if (given) secrets->add(*given);
  }
  const auto configuration = routeTo(address, options);
  const auto session = std::make_shared<ObservedSession>(
      configuration, options.trace ? std::make_shared<const Trace>(configuration, secrets) : nullptr,
      options.harFile ? std::make_shared<HarLog>(*options.harFile, secrets) : nullptr);
  orvane::installPlatform({.sharedSession = session});
  if (options.clientId) orvane::OrvaneManager::shareManager().setAppClientId(*options.clientId);

  std::optional<InspectClient> inspector;
  if (embedded || lacksAnswers) inspector.emplace(embedded ? address->authority() : options.service());
  if (lacksAnswers && !inspector->isThere())
    refuseToGuess("no development service answers at " + options.service());
  return SignIn({.options = options,
                 .isInteractive = isInteractive,
                 .inspector = inspector ? &*inspector : nullptr,
                 .session = *session,
                 .secrets = *secrets,
                 .report = report,
                 .pictureOutput = options.pictureFile == "-" ? output : nullptr})
      .run();
}

StepOutcome run(std::span<const char* const> arguments, Report& report, std::FILE*& output) {
  const Options options = parseOptions(arguments);
  if (!options.printed) return signIn(options, report, output);
  Terminal::print(*options.printed);
  return StepOutcome::success;
}

}  // namespace

int main(int argc, char** argv) {
  preventCoreFile();
  // A program that stops reading the output, such as head, must not stop a sign-in between its calls.
  std::signal(SIGPIPE, SIG_IGN);
  static Report& report = *new Report;
  std::FILE* output = stdout;
  const auto complainOf = [](StepOutcome outcome, const std::exception& error) {
    Terminal::complain(error.what());
    report.end({.outcome = outcome, .message = error.what()});
    return outcome;
  };
  StepOutcome outcome{};
  try {
    outcome = run(std::span(argv, static_cast<std::size_t>(argc)).subspan(1), report, output);
  } catch (const UsageError& error) {
    outcome = complainOf(StepOutcome::usage, error);
  } catch (const std::exception& error) {
    outcome = complainOf(StepOutcome::fault, error);
  }
  if (std::ferror(output)) {
    Terminal::complain("could not write to standard output");
    outcome = StepOutcome::fault;
  }
  return static_cast<int>(outcome);
}
