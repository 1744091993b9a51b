#include "bench/Codec.h"

#include <algorithm>
#include <boost/json.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <simdjson.h>

#include "orvane/client/JudgedReply.h"
#include "orvane/json/readJSON.h"
#include "orvane/json/writeJSON.h"

namespace orvane::bench {
namespace {

/// Returns the integers of `elements` as bytes, or nothing if one is not a byte. `asInteger` returns an
/// element's integer, or a negative number if it is not an integer.
template <class Elements>
std::optional<Bytes> bytesOf(const Elements& elements, std::size_t size, auto asInteger) {
  Bytes bytes;
  bytes.reserve(size);
  for (const auto& element : elements) {
    const std::int64_t integer = asInteger(element);
    if (integer < 0 || integer > 255) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(integer));
  }
  return bytes;
}

std::string ownBody(const Fields& fields) {
  Map map;
  for (const auto& [key, value] : fields) map.emplace(key, value);
  const Bytes text = writeJSON(map).value();
  return {text.begin(), text.end()};
}

}  // namespace

Codec ownCodec() {
  return {"own reader", ownBody,
          [](const std::string& reply) { return judgePictureCode(readJSON(reply), nullptr).picture; },
          [](const std::string& text) -> std::optional<std::string> {
            JudgedReply judged = judgeLogin(readJSON(text), nullptr);
            return judged.error ? std::nullopt : std::move(judged.message);
          }};
}

Codec nlohmannCodec() {
  using nlohmann::json;
  return {"nlohmann",
          [](const Fields& fields) {
            json object = json::object();
            for (const auto& [key, value] : fields) object[key] = value;
            return object.dump();
          },
          [](const std::string& reply) -> std::optional<Bytes> {
            const json document = json::parse(reply);
            if (document.at("code").get<int>() != 0) return std::nullopt;
            const auto& data = document.at("data").get_ref<const json::array_t&>();
            return bytesOf(data, data.size(), [](const json& element) {
              return element.is_number_integer() ? element.get<std::int64_t>() : -1;
            });
          },
          [](const std::string& reply) -> std::optional<std::string> {
            const json document = json::parse(reply);
            if (document.at("code").get<int>() != 0) return std::nullopt;
            return document.at("msg").get<std::string>();
          }};
}

Codec boostCodec() {
  namespace json = boost::json;
  return {"Boost.JSON",
          [](const Fields& fields) {
            json::object object;
            for (const auto& [key, value] : fields) object[key] = value;
            return json::serialize(object);
          },
          [](const std::string& reply) -> std::optional<Bytes> {
            const json::value document = json::parse(reply);
            if (document.at("code").as_int64() != 0) return std::nullopt;
            const json::array& data = document.at("data").as_array();
            return bytesOf(data, data.size(), [](const json::value& element) {
              const std::int64_t* integer = element.if_int64();
              return integer ? *integer : -1;
            });
          },
          [](const std::string& reply) -> std::optional<std::string> {
            const json::value document = json::parse(reply);
            if (document.at("code").as_int64() != 0) return std::nullopt;
            return std::string(document.at("msg").as_string());
          }};
}

Codec rapidCodec() {
  namespace json = rapidjson;
  return {"RapidJSON", nullptr,
          [](const std::string& reply) -> std::optional<Bytes> {
            json::Document document;
            document.Parse(reply.data(), reply.size());
            if (document.HasParseError() || document["code"].GetInt() != 0) return std::nullopt;
            const auto data = document["data"].GetArray();
            return bytesOf(data, data.Size(), [](const json::Value& element) {
              return element.IsInt64() ? element.GetInt64() : -1;
            });
          },
          [](const std::string& reply) -> std::optional<std::string> {
            json::Document document;
            document.Parse(reply.data(), reply.size());
            if (document.HasParseError() || document["code"].GetInt() != 0) return std::nullopt;
            return document["msg"].GetString();
          }};
}

Codec simdCodec() {
  namespace json = simdjson::dom;
  const auto parser = std::make_shared<json::parser>();
  return {"simdjson", nullptr,
          [parser](const std::string& reply) -> std::optional<Bytes> {
            const json::element document = parser->parse(reply);
            if (document["code"].get_int64() != 0) return std::nullopt;
            const json::array data = document["data"].get_array();
            return bytesOf(data, data.size(), [](const json::element& element) {
              std::int64_t integer = 0;
              return element.get(integer) ? -1 : integer;
            });
          },
          [parser](const std::string& reply) -> std::optional<std::string> {
            const json::element document = parser->parse(reply);
            if (document["code"].get_int64() != 0) return std::nullopt;
            return std::string(document["msg"].get_string().value());
          }};
}

Codec simdOnDemandCodec() {
  namespace json = simdjson::ondemand;
  const auto parser = std::make_shared<json::parser>();
  return {"simdjson on demand", nullptr,
          [parser](const std::string& reply) -> std::optional<Bytes> {
            json::document document = parser->iterate(reply);
            if (document["code"].get_int64() != 0) return std::nullopt;
            Bytes bytes;
            for (auto element : document["data"].get_array()) {
              const std::int64_t integer = element.get_int64();
              if (integer < 0 || integer > 255) return std::nullopt;
              bytes.push_back(static_cast<std::uint8_t>(integer));
            }
            return bytes;
          },
          [parser](const std::string& reply) -> std::optional<std::string> {
            json::document document = parser->iterate(reply);
            if (document["code"].get_int64() != 0) return std::nullopt;
            return std::string(document["msg"].get_string().value());
          }};
}

}  // namespace orvane::bench
