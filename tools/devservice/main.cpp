#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <optional>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "tools/devservice/Code.h"
#include "tools/devservice/Demand.h"
#include "tools/devservice/Fault.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Server.h"

namespace {

constexpr const char* footer = R"(
The text messages are printed. The page at / shows them with what is known of each number, and has
buttons for faults; GET /inspect shows the same to scripts.

It is an HTTP proxy as well, for the service's own host alone, so that an application needs no more
than a proxy setting: http://127.0.0.1:8080. Requests for other hosts are refused.

It may be left running: what it keeps is limited, and it listens to this machine alone. Programs on
this machine may read every code; that is what it is for. Sites open in a browser may not: the page
and /inspect answer only requests for localhost, 127.0.0.1 or [::1] that no other origin sends. Nor
is a code to be guessed: five wrong tries end it, and after fifty in an hour a number has to wait.
)";

/// One write a line.
void printLine(std::string line) {
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

/// Returns what --help says after the options.
std::string helpFooter() {
  std::string text(footer);
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
  return text;
}

void serve(std::uint16_t port, bool isQuiet) {
  std::signal(SIGPIPE, SIG_IGN);  // The service goes on when its output is no longer read.
  // Blocked before there are threads, so that all inherit it and the signals wait to be collected here.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);

  devservice::Environment environment;
  devservice::Server::Log log;
  if (!isQuiet) {
    environment.deliver = [](std::string_view mobile, std::string_view text) {
      printLine("text message to " + std::string(mobile) + ": " + std::string(text));
    };
    log = [](std::string_view line) { printLine(std::string(line)); };
  }
  devservice::IdentityService service(std::move(environment));
  std::optional<devservice::Server> server;
  try {
    server.emplace(service, port, std::move(log));
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(std::string(error.what()) + "; --port 0 takes a free port");
  }
  printLine("orvane-devservice listening on http://127.0.0.1:" + std::to_string(server->port()));
  int signal = 0;
  sigwait(&signals, &signal);
}

}  // namespace

int main(int argc, char** argv) {
  std::uint16_t port = 8080;
  bool isQuiet = false;
  CLI::App app("The identity service for development and tests, on 127.0.0.1.\n", "orvane-devservice");
  app.get_formatter()->column_width(16);
  app.add_option("--port", port, "listen on port N, 8080 by default; 0 takes a free one")
      ->check(CLI::Range(0, 65535).description(""))
      ->type_name("N");
  app.add_flag("--quiet", isQuiet, "print nothing but the address")->disable_flag_override();
  app.set_version_flag("--version", "orvane-devservice " DEVSERVICE_VERSION, "print the version");
  app.set_help_flag("-h,--help", "print this");
  app.footer(helpFooter());
  try {
    app.parse(argc, argv);
    serve(port, isQuiet);
    return 0;
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // --help and --version.
    std::fprintf(stderr, "orvane-devservice: %s\n", error.what());
    return 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "orvane-devservice: %s\n", error.what());
    return 1;
  }
}
