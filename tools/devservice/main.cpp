#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <optional>
#include <pthread.h>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "tools/devservice/Codes.h"
#include "tools/devservice/Faults.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Server.h"

namespace {

constexpr std::string_view usage = R"(Usage: orvane-devservice [--port N] [--quiet]
The identity service for development and tests, on 127.0.0.1.

  --port N   listen on port N, 8080 by default; 0 takes a free one
  --quiet    print nothing but the address
  --help     print this
  --version  print the version

The text messages are printed. The page at / shows them with what is known of each number, and has
buttons for faults; GET /inspect shows the same to scripts.

It is an HTTP proxy as well, for the service's own host alone, so that an application needs no more
than a proxy setting: http://127.0.0.1:8080. Requests for other hosts are refused.

It may be left running: what it keeps is limited, and it listens to this machine alone. Programs on
this machine may read every code; that is what it is for. Sites open in a browser may not: the page
and /inspect answer only requests for localhost, 127.0.0.1 or [::1] that no other origin sends. Nor
is a code to be guessed: five wrong tries end it, and after fifty in an hour a number has to wait.
)";

struct Options {
  std::uint16_t port = 8080;
  bool quiet = false;
  bool help = false;
  bool version = false;
};

/// Nothing when the arguments are not understood.
std::optional<Options> parse(std::span<char* const> arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "--quiet") {
      options.quiet = true;
    } else if (argument == "--help") {
      options.help = true;
    } else if (argument == "--version") {
      options.version = true;
    } else if (argument == "--port" && i + 1 < arguments.size()) {
      const std::string_view number = arguments[++i];
      const auto end = number.data() + number.size();
      const auto [stop, error] = std::from_chars(number.data(), end, options.port);
      if (error != std::errc{} || stop != end) return std::nullopt;
    } else {
      return std::nullopt;
    }
  }
  return options;
}

/// One write a line.
void printLine(std::string line) {
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

void printHelp() {
  std::string text(usage);
  text += "\nThe \"code\" of a reply:\n";
  for (const auto& [code, description] : devservice::codeTable()) {
    text.append("  ").append(std::to_string(static_cast<int>(code))).append("  ").append(description) += '\n';
  }
  text.append("\nFaults on demand: the mobile numbers ").append(devservice::faultNumberPrefix);
  text +=
      "XYY. X is the call that is hit: 0 all, 1 picture, 2 code,\n3 login, 4 submission. YY is the fault;\n"
      "01 may be followed by four digits, the delay in hundredths of a second:\n";
  for (const devservice::Fault& fault : devservice::faultTable()) {
    const std::string number = std::to_string(fault.number);
    text.append(number.size() < 2 ? "  0" : "  ").append(number).append("  ").append(fault.text) += '\n';
  }
  std::fputs(text.c_str(), stdout);
}

void serve(const Options& options) {
  std::signal(SIGPIPE, SIG_IGN);  // The service goes on when its output is no longer read.
  // Blocked before there are threads, so that all inherit it and the signals wait to be collected here.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);

  devservice::Environment environment;
  devservice::Server::Log log;
  if (!options.quiet) {
    environment.deliver = [](std::string_view mobile, std::string_view text) {
      printLine("text message to " + std::string(mobile) + ": " + std::string(text));
    };
    log = [](std::string_view line) { printLine(std::string(line)); };
  }
  devservice::IdentityService service(std::move(environment));
  const devservice::Server server(service, options.port, std::move(log));
  printLine("orvane-devservice listening on http://127.0.0.1:" + std::to_string(server.port()));
  int signal = 0;
  sigwait(&signals, &signal);
}

}  // namespace

int main(int argc, char** argv) {
  const auto options = parse(std::span(argv, static_cast<std::size_t>(argc)).subspan(1));
  if (!options) {
    std::fputs("orvane-devservice: wrong arguments; --help explains them\n", stderr);
    return 2;
  }
  try {
    if (options->help) {
      printHelp();
    } else if (options->version) {
      std::puts("orvane-devservice " DEVSERVICE_VERSION);
    } else {
      serve(*options);
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "orvane-devservice: %s\n", error.what());
    return 1;
  }
}
