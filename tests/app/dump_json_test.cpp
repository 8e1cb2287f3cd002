#include "app/dump_json.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "support/json_reader.hpp"

namespace zb::test {
namespace {

TEST(JsonWriter, NumbersReadBackExactly) {
  EXPECT_EQ(JsonWriter::formatDouble(800), "800");
  EXPECT_EQ(JsonWriter::formatDouble(-0.5), "-0.5");
  EXPECT_EQ(JsonWriter::formatDouble(0.1), "0.10000000000000001");
  EXPECT_EQ(JsonWriter::formatDouble(static_cast<double>(0.6f)), "0.60000002384185791");
  EXPECT_EQ(JsonWriter::formatDouble(1e300), "1.0000000000000001e+300");
  for (double value : {1.0 / 3.0, 10.0 / 60.0, -123456.789, 5e-324, 1.7976931348623157e308}) {
    EXPECT_EQ(std::strtod(JsonWriter::formatDouble(value).c_str(), nullptr), value);
  }
}

TEST(JsonWriter, WritesNestedValuesWithCommasEscapesAndNullForNonFinite) {
  std::ostringstream out;
  JsonWriter json(out);
  json.beginObject();
  json.field("n", int64_t{-3});
  json.field("f", 0.5f);
  json.field("inf", std::numeric_limits<double>::infinity());
  json.field("s", "tab\there \"q\" back\\slash \x01 caf\xc3\xa9");
  json.field("p", Point{1, 2});
  json.field("r", Rect::make(1, 2, 3, 4));
  json.field("c", Color::rgba(0, 0.5, 1, 1));
  json.key("seg");
  json.segment({1, 2}, {3, 4});
  json.key("list");
  json.beginArray();
  json.beginObject();
  json.endObject();
  json.beginArray();
  json.endArray();
  json.value(true);
  json.null();
  json.endArray();
  json.endObject();

  EXPECT_EQ(out.str(),
            "{\"n\":-3,\"f\":0.5,\"inf\":null,\"s\":\"tab\\there \\\"q\\\" back\\\\slash \\u0001 caf\xc3\xa9\","
            "\"p\":[1,2],\"r\":[1,2,3,4],\"c\":[0,0.5,1,1],\"seg\":[1,2,3,4],\"list\":[{},[],true,null]}");
  std::string error;
  auto parsed = parseJson(out.str(), &error);
  ASSERT_TRUE(parsed) << error;
  EXPECT_EQ((*parsed)["s"].text, "tab\there \"q\" back\\slash \x01 caf\xc3\xa9");
}

TEST(JsonReader, RejectsWhatAStrictParserRejects) {
  for (const char* bad : {"{", "{\"a\":1,}", "[1,]", "{\"a\":01}", "{\"a\":.5}", "{\"a\":1}x", "{\"a\":\"\x01\"}",
                          "{\"a\":1,\"a\":2}", "{'a':1}", "[nan]", "{\"a\":-}"}) {
    EXPECT_FALSE(parseJson(bad)) << bad;
  }
  EXPECT_TRUE(parseJson(" {\"a\":[1.5e-3,-0,true,false,null,\"\\u00e9\"]}\n"));
}

}  // namespace
}  // namespace zb::test
