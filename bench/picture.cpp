// Reading a picture: from the bytes of a reply in memory to those of the picture. Nothing is sent.

#include <memory>
#include <simdjson.h>
#include <stdexcept>

#include "bench/Rounds.h"
#include "bench/Service.h"
#include "bench/byHand.h"
#include "orvane/orvane.h"

namespace orvane::bench {
namespace {

/// Keeps the handler of each task until a reply is delivered to it.
class WaitingSession final : public URLSession {
 public:
  void startDataTask(URLRequest, DataTaskHandler handler) override {
    handlers_.push_back(std::move(handler));
  }
  void cancelAllOperations() override {}

  /// Calls the handlers, each with one of `replies`.
  void deliver(const std::vector<std::string>& replies) {
    for (std::size_t i = 0; i < replies.size(); ++i) {
      const std::span bytes(reinterpret_cast<const std::uint8_t*>(replies[i].data()), replies[i].size());
      const std::shared_ptr<const void> owner(std::shared_ptr<const void>(), bytes.data());
      handlers_[i]({.body = Body(bytes, owner), .response = HTTPResponse{200}, .error = nullptr});
    }
    handlers_.clear();
  }

 private:
  std::vector<DataTaskHandler> handlers_;
};

/// Runs all work at once, so that handing over is not measured as reading.
class ImmediateQueue final : public DispatchQueue {
 public:
  void async(Work work) override { work(); }
};

/// Reads as the documentation of simdjson advises: each reply has room after it, and the parser is kept.
Bytes readOnDemand(simdjson::ondemand::parser& parser, const simdjson::padded_string& reply) {
  simdjson::ondemand::document document = parser.iterate(reply);
  if (document["code"].get_int64() != 0) throw std::runtime_error("refused");
  Bytes picture;
  for (auto element : document["data"].get_array()) {
    const std::int64_t value = element.get_int64();
    if (value < 0 || value > 255) throw std::runtime_error("not a byte");
    picture.push_back(static_cast<std::uint8_t>(value));
  }
  return picture;
}

void comparePictures(WaitingSession& session, std::size_t size) {
  const std::vector<Bytes> pictures = makePictures(size);
  std::vector<std::string> replies;
  std::vector<simdjson::padded_string> paddedReplies;
  for (const Bytes& picture : pictures) {
    replies.push_back(pictureReply(picture));
    paddedReplies.emplace_back(replies.back());
  }
  simdjson::ondemand::parser parser;
  for (std::size_t i = 0; i < pictures.size(); ++i) {
    if (readPicture(replies[i]) != pictures[i] || readOnDemand(parser, paddedReplies[i]) != pictures[i])
      throw std::runtime_error("a peer reads something else");
  }

  constexpr int passes = 8;  // Over all replies in each round.
  const auto library = [&] {
    Cost mean;
    for (int pass = 0; pass < passes; ++pass) {
      for (const Bytes& expected : pictures) {
        OrvaneManager::shareManager().requestPictureCode(
            mobile, [&](const std::optional<Bytes>& picture, const ErrorPtr&) {
              if (picture->back() != expected.back()) throw std::runtime_error("another picture");
            });
      }
      // Making the requests is not measured as reading.
      const Cost cost = costOf(1, replies.size(), [&] { session.deliver(replies); });
      mean.wall += cost.wall / passes;
    }
    return mean;
  };
  volatile std::size_t sink = 0;  // Takes the results, so that no reading can be left out as useless.
  const auto nlohmann = [&] {
    for (const std::string& reply : replies) sink = readPicture(reply).size();
  };
  const auto onDemand = [&] {
    for (const auto& reply : paddedReplies) sink = readOnDemand(parser, reply).size();
  };
  const std::vector<Costs> costs =
      takeTurns({library, [&] { return costOf(passes, replies.size(), nlohmann); },
                 [&] { return costOf(passes, replies.size(), onDemand); }});
  printRows("reading a picture of " + std::to_string(size / 1000) + " KB", costs[0].wall,
            {{"nlohmann", costs[1].wall, {Goal::Ratio::speedup, 12}},
             {"simdjson on demand", costs[2].wall, {Goal::Ratio::speedup, 3.3}}});
}

}  // namespace
}  // namespace orvane::bench

int main() {
  using namespace orvane::bench;
  const auto session = std::make_shared<WaitingSession>();
  orvane::installPlatform({.sharedSession = session, .mainQueue = std::make_shared<ImmediateQueue>()});
  for (const std::size_t size : {2'000U, 20'000U, 100'000U}) comparePictures(*session, size);
}
