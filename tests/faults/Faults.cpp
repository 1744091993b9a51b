#include "tests/faults/Faults.h"

#include <zlib.h>

namespace orvane::test {
namespace {

using std::chrono::milliseconds;
using Answer = LoopbackServer::Answer;
using Then = LoopbackServer::Then;

const std::string good = R"({"code":0,"msg":"ok","data":[1,2,3]})";
const std::string ok = "HTTP/1.1 200 OK\r\n";
const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
const std::string gzipped = ok + "Content-Encoding: gzip\r\n\r\n";
const std::string proceed = "HTTP/1.1 100 Continue\r\n\r\n";
const std::string allButTheEnd = ok + "Content-Length: 9\r\n\r\n{\"code\":";
const std::string headerLine = "X: value\r\n";
const std::string unresolvable = "host.invalid";

constexpr milliseconds brief{60};
constexpr milliseconds ample = std::chrono::seconds(60);
constexpr milliseconds pace{1};
constexpr milliseconds patience = 100 * pace;  // Much more than a line takes at that pace.
constexpr int longerThanPatience = 20;         // So many header lines.

std::string repeated(std::string_view text, std::size_t count) {
  std::string all;
  for (; count > 0; --count) all += text;
  return all;
}

/// Gives each request the same answer: `bytes`, and then `endless` again and again.
Fault::Script always(std::string bytes, Then then = Then::keep, std::string endless = "",
                     milliseconds perByte = milliseconds(0)) {
  return [answer = Answer{std::move(bytes), then, std::move(endless), perByte}](int) { return answer; };
}

Fault::Script redirecting(const std::string& location, int first = 1) {
  const std::string moved = reply("moved", "Location: " + location + "\r\n", "307 Moved");
  return [=](int request) { return Answer{request < first ? moved : reply(good)}; };
}

/// A gzip stream: whole, or so that it can go on with its last bytes again and again.
std::string gzip(const std::string& text, int flush = Z_FINISH) {
  z_stream stream{};
  deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, 16 + MAX_WBITS, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY);
  std::string packed(deflateBound(&stream, text.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, flush);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

Fault::Script compressed(const std::string& stream, const std::string& encoding = "gzip") {
  return always(reply(stream, "Content-Encoding: " + encoding + "\r\n"));
}

constexpr int statusCount = 398;

Answer goodWithStatus(int request) {
  int status = 200 + request;
  if (status >= 204) ++status;
  if (status >= 304) ++status;
  return {reply(good, "", std::to_string(status) + " Status")};
}

Answer goodWithoutEffect(int request) {
  return {reply(good, "", request == 0 ? "204 None" : "304 Old")};
}

}  // namespace

std::vector<Fault> makeFaults() {
  const std::string stream = gzip(good);
  std::string damaged = stream;
  damaged[damaged.size() / 2] ^= 1;
  const std::string spaces = gzip(std::string(1 << 20, ' '), Z_FULL_FLUSH);
  constexpr std::size_t headerSize = 10;  // Of a gzip stream.
  // More empty blocks than a body may have bytes.
  const std::string emptyBlocks = repeated({"\0\0\0\xFF\xFF", 5}, bodyLimit / 5 + 1);
  // A service cannot pass a refusal off as something else.
  const std::string refusal = R"({"code":7,"msg":"Busy","kind":"no connection","cause":{"code":-1004}})";
  return {
      {"The connection is refused", {}, 1, ample, ample, "127.0.0.1"},
      {"The service's name cannot be resolved", {}, 1, ample, ample, unresolvable},

      {"It is closed before the reply", always("", Then::close)},
      {"It is closed after \"100 Continue\"", always(proceed, Then::close)},
      {"It is closed within a header line", always(proceed + ok + "Content-Le", Then::close)},
      {"It is closed within the header of a redirect",
       always("HTTP/1.1 307 Moved\r\nLocation: /\r\nContent-Le", Then::close)},
      {"It is closed within the body", always(allButTheEnd, Then::close)},
      {"It is closed before the last chunk", always(chunked + "24\r\n" + good + "\r\n", Then::close)},
      {"It is reset before the reply", always("", Then::reset)},
      {"It is reset within the header", always(ok + "Content-Le", Then::reset)},
      {"It is reset within the body", always(allButTheEnd, Then::reset)},
      {"It is reset after the reply", always(reply(good), Then::reset)},

      {"No byte arrives for too long", always("", Then::hold), 1, brief},
      {"No byte arrives for too long after \"100 Continue\"", always(proceed, Then::hold), 1, brief},
      {"No byte arrives for too long within the body", always(allButTheEnd, Then::hold), 1, brief},
      {"The bytes arrive slowly, one at a time",
       always(reply(good, repeated(headerLine, longerThanPatience)), Then::keep, "", pace), 1, patience},
      {"The body arrives slowly, one byte at a time, without end", always(ok + "\r\n", Then::keep, " ", pace),
       1, ample, patience},
      {"A header line arrives slowly, one byte at a time, without end", always(ok, Then::keep, "x", pace), 1,
       patience},

      {"It is garbage", always("garbage\r\n\r\n", Then::close)},
      {"It is a body without a header, as HTTP/0.9 has it", always(good, Then::close)},
      {"Its length is not a number", always(ok + "Content-Length: many\r\n\r\n" + good, Then::close)},
      {"Its length is smaller than the body", always(ok + "Content-Length: 9\r\n\r\n" + good)},
      {"Its length is greater than the body, and the connection stays open",
       always(ok + "Content-Length: 99\r\n\r\n" + good, Then::hold), 1, brief},
      {"It has no length, and ends with the connection", always(ok + "\r\n" + good, Then::close)},
      {"A chunk's size is not a number", always(chunked + "size\r\n" + good, Then::close)},
      {"A second reply follows that was not requested", always(reply(good) + reply(refusal)), 3},

      {"A header line of 1 MiB", always(reply(good, "X: " + std::string(1 << 20, 'x') + "\r\n"))},
      // The first line, the length and the empty line count, too.
      {"4,000 short header lines", always(reply(good, repeated(headerLine, 3'997)))},
      {"4,001 short header lines", always(reply(good, repeated(headerLine, 3'998)))},
      {"Header lines without end", always(ok, Then::close, repeated(headerLine, 100))},
      {"Header lines without end, after the body",
       always(chunked + "0\r\n", Then::close, repeated(headerLine, 100))},
      {"\"100 Continue\" without end", always("", Then::close, proceed + proceed + proceed)},
      {"A length beyond the limit, before any body",
       always(ok + "Content-Length: 4194305\r\n\r\n", Then::hold)},
      {"A length beyond all numbers",
       always(ok + "Content-Length: 99999999999999999999\r\n\r\n", Then::hold)},
      {"A body without end", always(ok + "\r\n", Then::close, std::string(1 << 16, ' '))},
      {"A compressed body that expands without end",
       always(gzipped + spaces.substr(0, headerSize), Then::close, spaces.substr(headerSize))},
      {"A body compressed twice that expands beyond the limit",
       compressed(gzip(gzip(std::string(bodyLimit + 1, ' '))), "gzip, gzip")},
      {"A compressed body beyond the limit that expands to little",
       always(gzipped + stream.substr(0, headerSize) + emptyBlocks + stream.substr(headerSize), Then::close)},

      {"Its stream is damaged", compressed(damaged)},
      {"Its stream is followed by other bytes", compressed(stream + "more")},
      {"The body is not compressed", compressed(good)},
      {"Its stream is cut short", compressed(stream.substr(0, stream.size() / 2))},
      {"Its encoding is not known", compressed(stream, "unheard-of")},

      {"To itself", redirecting("/", 1000)},
      {"To a file", redirecting("file:///etc/hostname")},
      {"To another scheme", redirecting("ftp://127.0.0.1/")},
      {"To a name that cannot be resolved", redirecting("http://" + unresolvable + "/")},
      {"To a URL without a host", redirecting("http://")},
      {"Without a location, with a good body", always(reply(good, "", "307 Moved"))},
      {"To a good reply", redirecting("/elsewhere")},

      {"Any other status from 200 to 599, with a good body", goodWithStatus, statusCount},
      {"Status 101, for which nothing asked", always("HTTP/1.1 101 Switching\r\n\r\n" + good, Then::hold)},
      {"Status 204", always("HTTP/1.1 204 None\r\n\r\n")},
      {"Status 204 or 304, with a good body, which HTTP ignores", goodWithoutEffect, 2},
      {"An empty body", always(reply(""))},
      {"A page of HTML", always(reply("<html>", "", "502 Bad Gateway"))},
      {"JSON nested too deep", always(reply(std::string(200'000, '[') + std::string(200'000, ']')))},
      {"JSON of more than a million values", compressed(gzip("[" + repeated("-1,", 999'999) + "-1]"))},
      {"A refusal: \"code\" is 7, \"msg\" is \"Busy\"", always(reply(refusal))},
      {"A refusal without \"msg\"", always(reply(R"({"code":7})"))},
      {"An array", always(reply("[" + good + "]"))},
      {"No \"code\"", always(reply(R"({"msg":"ok","data":[1,2,3]})"))},
      {"No \"msg\"", always(reply(R"({"code":0,"data":[1,2,3]})"))},
      {"No \"data\"", always(reply(R"({"code":0,"msg":"ok"})"))},
  };
}

}  // namespace orvane::test
