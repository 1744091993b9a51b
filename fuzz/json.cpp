// JSON is accepted and understood as another library does, and what is written reads back.

#include <nlohmann/json.hpp>

#include "fuzz/fuzz.h"
#include "orvane/json/readJSON.h"
#include "orvane/json/writeJSON.h"

namespace orvane {
namespace {

using Json = nlohmann::json;

/// Recurses: what was read is at most 512 deep.
Json converted(const Value& value) {
  if (const std::string* text = value.string()) return *text;
  if (const bool* boolean = value.boolean()) return *boolean;
  if (const std::int64_t* integer = value.integer()) return *integer;
  if (const double* number = value.floating()) return *number;
  if (const Array* elements = value.array()) {
    Json array = Json::array();
    for (const Value& element : *elements) array.push_back(converted(element));
    return array;
  }
  if (const Map* members = value.map()) {
    Json object = Json::object();
    for (const auto& [key, member] : *members) object[key] = converted(member);
    return object;
  }
  return nullptr;
}

}  // namespace
}  // namespace orvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace orvane;
  const std::optional<Value> value = readJSON(std::span(data, size));
  const Json byOther = readByOther({reinterpret_cast<const char*>(data), size});
  require(value.has_value() == !byOther.is_discarded(), "both accept the text, or neither");
  if (!value) return 0;
  // Compared as JSON text, because an integer and a double of the same value count as equal otherwise.
  require(converted(*value).dump() == byOther.dump(), "both read the same value");
  require(converted(Value(*value)).dump() == byOther.dump(), "a copy is the same value");

  const std::optional<Bytes> written = writeJSON(*value);
  require(written.has_value(), "what was read can be written");
  require(Json::parse(*written, nullptr, false) == byOther, "the other reads what is written");
  const std::optional<Value> again = readJSON(*written);
  require(again && converted(*again) == byOther, "what is written reads back");
  return 0;
}
