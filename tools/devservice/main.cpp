#include <CLI/CLI.hpp>
#include <arpa/inet.h>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <optional>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "tools/devservice/Code.h"
#include "tools/devservice/Fault.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/LineWriter.h"
#include "tools/devservice/RequestedFault.h"
#include "tools/devservice/Server.h"

namespace devservice {
namespace {

constexpr const char* noOutput = "could not write to standard output";

constexpr const char* footer = R"(
It prints each text message and each request. The page at / shows them in a browser, with what the
service knows of each mobile number, and has a button for each fault. GET /inspect tells scripts what
it knows of each number.

It is also an HTTP proxy for its own host, so that an application needs only a proxy setting:
http://127.0.0.1:8080. It refuses requests for other hosts.

It can run for any length of time: it keeps everything in memory, with a limit on each thing, and
listens on 127.0.0.1 only, unless --listen says otherwise. Programs on this machine can read every
code; that is its purpose. Sites open in a browser cannot: the page and /inspect answer only requests
for localhost, 127.0.0.1 or [::1] that no other site sent. Other machines can read codes only if they
send the text of --token. Codes are hard to guess: a code is invalid after 5 wrong tries, and after 50
in an hour a number cannot log in until that hour is over.
)";

/// Returns what --help says after the options.
std::string helpFooter() {
  std::string text(footer);
  text += "\nThe \"code\" of a reply:\n";
  for (const auto& [code, description] : codeTable()) {
    text.append("  ").append(std::to_string(static_cast<int>(code))).append("  ").append(description) += '\n';
  }
  text.append("\nFaults on demand: the mobile numbers ").append(faultNumberPrefix);
  text += "XYY.\nX is the call that the fault hits: 0 all";
  int digit = 0;
  for (const std::string_view name : callNames)
    text.append(", ").append(std::to_string(++digit)).append(" ").append(name);
  text +=
      ". YY is the fault.\n"
      "After 01 four more digits may follow, the delay in hundredths of a second, at most 6000:\n";
  for (const Fault& fault : faultTable()) {
    const std::string number = std::to_string(fault.number);
    text.append(number.size() < 2 ? "  0" : "  ").append(number).append("  ").append(fault.text) += '\n';
  }
  return text;
}

/// Returns what is wrong with the address, or an empty string.
std::string checkAddress(const std::string& text) {
  const bool isBracketed = text.starts_with('[') && text.ends_with(']');
  in6_addr bytes{};
  const bool isV6 =
      inet_pton(AF_INET6, isBracketed ? text.substr(1, text.size() - 2).c_str() : text.c_str(), &bytes) == 1;
  const bool isV4 = !isBracketed && inet_pton(AF_INET, text.c_str(), &bytes) == 1;
  return isV6 || isV4 ? "" : "not a numeric address: " + text;
}

/// Returns what is wrong with the token, or an empty string. Its characters have no special meaning in
/// a header field, a cookie, a form or a shell.
std::string checkToken(const std::string& text) {
  constexpr std::string_view characters =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-._~";
  const bool isGood =
      text.size() >= 16 && text.size() <= 200 && text.find_first_not_of(characters) == text.npos;
  return isGood ? "" : "16 to 200 letters, digits, '-', '.', '_' or '~'";
}

std::string checkCode(const std::string& text) {
  return isCode(text) ? "" : "not six digits: " + text;
}

std::string checkPictureText(const std::string& text) {
  return isPictureText(text) ? "" : "not four or five capital letters and digits: " + text;
}

/// Returns a line for each prediction.
std::string linesOf(const Predictions& predictions) {
  std::string lines;
  if (predictions.code) lines += "\nevery code is " + *predictions.code;
  if (predictions.pictureText) lines += "\nthe text of every picture is " + *predictions.pictureText;
  if (predictions.seed) lines += "\nrandom choices start from seed " + std::to_string(*predictions.seed);
  return lines;
}

void serve(std::uint16_t port, Reach reach, Predictions predictions, bool isQuiet) {
  std::signal(SIGPIPE, SIG_IGN);  // The service goes on if its output is no longer read.
  if (fcntl(STDOUT_FILENO, F_GETFD) < 0)
    throw std::runtime_error(noOutput);  // A socket would take its place.
  // Blocked before other threads start. They inherit the mask, so sigwait() below gets the signals. A blocked
  // signal is delivered even if the parent has it ignored, as a shell does for its background jobs.
  struct sigaction interruption {};
  sigaction(SIGINT, nullptr, &interruption);
  sigset_t signals;
  sigemptyset(&signals);
  if (interruption.sa_handler != SIG_IGN) sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);

  LineWriter output(STDOUT_FILENO);
  Environment environment;
  Server::Log log;
  if (!isQuiet) {
    environment.deliver = [&output](std::string_view mobile, std::string_view text) {
      output.write("text message to " + std::string(mobile) + ": " + std::string(text));
    };
    log = [&output](std::string_view line) { output.write(std::string(line)); };
  }
  const std::string foretold = isQuiet ? "" : linesOf(predictions);
  IdentityService service(std::move(environment), std::move(predictions));
  std::optional<Server> server;
  try {
    server.emplace(service, port, std::move(log), ServerLimits(), std::move(reach));
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(std::string(error.what()) + "; --port 0 takes a free port");
  }
  std::string lines = "orvane-devservice listening on " + server->localURL();
  for (const std::string& url : server->foreignURLs()) lines += "\nfor other machines: " + url;
  if (!server->foreignURLs().empty()) {
    std::fputs("orvane-devservice: other machines can make calls: for networks that you trust, without TLS\n",
               stderr);
  }
  output.start(lines + foretold, [] { kill(getpid(), SIGTERM); });
  int signal = 0;
  sigwait(&signals, &signal);
  if (output.hasFailed()) throw std::runtime_error(noOutput);
}

}  // namespace
}  // namespace devservice

int main(int argc, char** argv) {
  std::uint16_t port = 8080;
  devservice::Reach reach;
  devservice::Predictions predictions;
  bool isQuiet = false;
  CLI::App app("The identity service for development and tests.\n", "orvane-devservice");
  app.get_formatter()->column_width(16);
  app.add_option("--port", port, "listen on port N, 0 to 65535; default 8080; 0 takes a free port")
      ->check(CLI::Range(0, 65535).description(""))
      ->type_name("N");
  app.add_option("--listen", reach.address,
                 "listen on an address of this machine, on all with 0.0.0.0 or [::]; default 127.0.0.1")
      ->check(CLI::Validator(devservice::checkAddress, ""))
      ->type_name("ADDRESS");
  app.add_option("--token", reach.token, "open the page and /inspect to other machines that send TEXT")
      ->check(CLI::Validator(devservice::checkToken, ""))
      ->type_name("TEXT");
  app.add_option("--code", predictions.code, "every code is DIGITS, six of them; random by default")
      ->check(CLI::Validator(devservice::checkCode, ""))
      ->type_name("DIGITS");
  app.add_option("--picture-text", predictions.pictureText,
                 "every picture says TEXT, 4 or 5 capital letters and digits; random by default")
      ->check(CLI::Validator(devservice::checkPictureText, ""))
      ->type_name("TEXT");
  app.add_option("--seed", predictions.seed, "make the same random choices for the same calls each time")
      ->check(CLI::Range(std::int64_t{0}, std::int64_t{0xffffffff}).description(""))
      ->type_name("N");
  app.add_flag("--quiet", isQuiet, "print only the addresses")->disable_flag_override();
  app.set_version_flag("--version", "orvane-devservice " DEVSERVICE_VERSION, "print the version");
  app.set_help_flag("-h,--help", "print this text");
  app.footer(devservice::helpFooter());
  try {
    app.parse(argc, argv);
    devservice::serve(port, std::move(reach), std::move(predictions), isQuiet);
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
