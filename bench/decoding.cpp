// What the library computes without a network: rows 1, 2 and 7.

#include <algorithm>
#include <cstdlib>
#include <curl/curl.h>
#include <iostream>
#include <string>

#include "bench/Codec.h"
#include "bench/Rounds.h"
#include "bench/ServiceReplies.h"
#include "bench/process.h"
#include "orvane/device/DeviceName.h"
#include "orvane/network/NetworkTool.h"

namespace orvane::bench {
namespace {

/// The library's first, then its peers, with the goal against each.
struct Reader {
  Codec codec;
  std::optional<double> pictureGoal;
  std::optional<double> messageGoal;
};

std::vector<Reader> makeReaders() {
  return {{ownCodec(), {}, {}},   {nlohmannCodec(), 12, 2}, {boostCodec(), 3, {}},
          {rapidCodec(), {}, {}}, {simdCodec(), {}, {}},    {simdOnDemandCodec(), {}, {}}};
}

[[noreturn]] void disagree(const std::string& name) {
  std::cerr << name << " reads something else\n";
  std::exit(1);
}

template <class Call>
Contestant contestant(const std::string& name, Call call) {
  const std::size_t times = timesForOneRound(call);
  return {name, [call, times]() mutable { return nanosecondsEach(times, call); }};
}

/// Results go here, so that no call can be left out as useless.
volatile std::size_t sink = 0;

/// Adds a reply with the room after it that simdjson needs. Without it simdjson makes a copy.
void add(std::string reply, std::vector<std::string>& replies) {
  replies.push_back(std::move(reply));
  replies.back().reserve(replies.back().size() + 256);
}

/// Lets the readers take turns at all replies, one after another.
template <class Read>
std::vector<Figures> readInTurns(const std::vector<Reader>& readers, const std::vector<std::string>& replies,
                                 Read read) {
  std::vector<Contestant> contestants;
  contestants.reserve(readers.size());
  for (const Reader& reader : readers) {
    contestants.push_back(contestant(reader.codec.name, [&, next = std::size_t{0}]() mutable {
      sink = read(reader.codec, replies[next++ % replies.size()]).value().size();
    }));
  }
  return takeTurns(contestants);
}

void comparePictures(const std::vector<Reader>& readers, std::size_t size) {
  const std::size_t count = std::min(pictureCount, 1'280'000 / size);
  std::vector<std::string> replies;
  for (std::size_t i = 0; i < count; ++i) {
    const Bytes picture = makePicture(size, i);
    add(pictureReply(picture), replies);
    for (const Reader& reader : readers) {
      if (reader.codec.picture(replies.back()) != picture) disagree(reader.codec.name);
    }
  }
  const auto read = [](const Codec& codec, const std::string& reply) { return codec.picture(reply); };
  const std::vector<Figures> figures = readInTurns(readers, replies, read);
  const Topic topic = {"1", "picture reply, " + std::to_string(size / 1000) + " KB"};
  for (std::size_t i = 1; i < readers.size(); ++i)
    compare(topic, figures[0], readers[i].codec.name, figures[i],
            {Goal::Form::multiple, readers[i].pictureGoal});
}

void compareMessages(const std::vector<Reader>& readers) {
  std::vector<std::string> replies;
  add(tinyReply(), replies);
  for (const Reader& reader : readers) {
    if (reader.codec.message(replies[0]) != "ok") disagree(reader.codec.name);
  }
  const auto read = [](const Codec& codec, const std::string& reply) { return codec.message(reply); };
  const std::vector<Figures> figures = readInTurns(readers, replies, read);
  for (std::size_t i = 1; i < readers.size(); ++i)
    compare({"2", "tiny reply"}, figures[0], readers[i].codec.name, figures[i],
            {Goal::Form::multiple, readers[i].messageGoal});
}

/// About 1 KB made of `piece` again and again.
std::string oneKilobyte(std::string_view piece) {
  std::string text;
  while (text.size() + piece.size() <= 1024) text.append(piece);
  return text;
}

void compareQueries(const std::string& what, std::string_view piece, std::optional<double> goal) {
  const std::string text = oneKilobyte(piece);
  const std::optional<Parameters> parameters = Parameters{{"text", text}};
  NetworkTool tool;
  CURL* const handle = curl_easy_init();
  const auto own = [&] { sink = tool.queryString(parameters).value().size(); };
  const auto curl = [&] {
    char* const escaped = curl_easy_escape(handle, text.data(), static_cast<int>(text.size()));
    sink = std::string("text=").append(escaped).size();
    curl_free(escaped);
  };
  const std::vector<Figures> figures = takeTurns({contestant("own", own), contestant("curl", curl)});
  compare({"7", "queryString, 1 KB of " + what}, figures[0], "curl_easy_escape", figures[1],
          {Goal::Form::multiple, goal});
  curl_easy_cleanup(handle);
}

/// Every identifier the library knows.
std::vector<std::string> knownMachines() {
  std::vector<std::string> machines;
  const auto addKnown = [&](const std::string& machine) {
    if (deviceNameForMachine(machine) != DeviceName::Unknown) machines.push_back(machine);
  };
  for (const char* kind : {"iPhone", "iPad", "iPod"}) {
    for (int major = 1; major < 20; ++major) {
      for (int minor = 1; minor < 20; ++minor)
        addKnown(std::string(kind).append(std::to_string(major)).append(",").append(std::to_string(minor)));
    }
  }
  addKnown("i386");
  addKnown("x86_64");
  return machines;
}

void measureModels() {
  const std::vector<std::string> machines = knownMachines();
  const auto all = [&] {
    for (const std::string& machine : machines) sink = hashValue(deviceNameForMachine(machine));
  };
  std::vector<Figures> figures = takeTurns({contestant("all", all)});
  for (double& figure : figures[0]) figure /= static_cast<double>(machines.size());
  state({"7", "deviceNameForMachine, mean of " + std::to_string(machines.size()) + " identifiers"},
        figures[0], 100);
}

}  // namespace
}  // namespace orvane::bench

int main() {
  using namespace orvane::bench;
  keepFreedMemory();
  const std::vector<Reader> readers = makeReaders();
  for (const std::size_t size : pictureSizes) comparePictures(readers, size);
  compareMessages(readers);
  compareQueries("ASCII", "Name 1: a-b_c.d~e / (f+g=h) & \"i\"? ", 1);
  compareQueries("ASCII and Chinese", "姓名 Name 1: 手机号码, 13800138000! ", {});
  measureModels();
}
