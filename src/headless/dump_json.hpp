#pragma once
// A small streaming JSON writer for one-line objects: commas and escaping are its business, so the
// dump code only says which keys and values come in which order.
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "engine/color.hpp"
#include "engine/geometry.hpp"

namespace zb {

class JsonWriter {
 public:
  explicit JsonWriter(std::ostream& out) : out_(out) {}

  void beginObject();
  void endObject();
  void beginArray();
  void endArray();
  // The next value inside an object is stored under this key.
  void key(std::string_view name);

  void value(double number);  // 17 significant digits; null when not finite
  void value(float number) { value(static_cast<double>(number)); }
  void value(int64_t number);
  void value(int number) { value(static_cast<int64_t>(number)); }
  void value(uint64_t number);
  void value(bool flag);
  void value(std::string_view text);
  void value(const char* text) { value(std::string_view(text)); }
  void null();

  void value(Point p);                  // [x, y]
  void value(Size s);                   // [width, height]
  void value(const Rect& r);            // [x, y, width, height]
  void value(const Color& c);           // [r, g, b, a]
  void segment(Point from, Point to);   // [x1, y1, x2, y2]

  // Shorthand for key(name) followed by value(v).
  template <typename T>
  void field(std::string_view name, const T& v) {
    key(name);
    value(v);
  }

  // A double with 17 significant digits, locale-independent, so that every value reads back exactly.
  static std::string formatDouble(double number);
  static std::string escape(std::string_view text);

 private:
  void separate();
  void numbers(std::initializer_list<double> items);

  std::ostream& out_;
  // One entry per open container: whether it already holds an element.
  std::vector<bool> hasElement_;
  bool afterKey_ = false;
};

}  // namespace zb
