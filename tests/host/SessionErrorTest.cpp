#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "adapters/host/SessionError.h"

namespace orvane {
namespace {

TEST(SessionError, SaysWhatThePageSays) {
  std::ifstream page(ERRORS_PAGE);
  std::vector<int> codes;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("| -1")) continue;
    codes.push_back(std::stoi(line.substr(2)));
    const std::string sentence = line.substr(line.find(" | ") + 3);
    const ErrorPtr error = makeSessionError(SessionErrorCode{codes.back()}, "u", "detail");
    EXPECT_EQ(*error->userInfo.at("NSLocalizedDescription").text(), sentence.substr(0, sentence.find(" |")));
    EXPECT_EQ(*error->userInfo.at("NSDebugDescription").text(), "detail");
  }
  EXPECT_EQ(codes.size(), 17U);
}

}  // namespace
}  // namespace orvane
