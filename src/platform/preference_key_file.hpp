#pragma once
// The text of the preferences file: a GLib key file whose [preferences] group holds one typed value a
// line. Reading forgives what people type by hand; writing keeps every line and group the game does
// not know, so that a newer version's keys or a hand-written note survive an older version's save.
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "engine/preferences.hpp"

namespace zb {

using PreferenceMap = std::map<std::string, PreferenceValue, std::less<>>;

// The values the text holds; nothing when it is not a key file at all. A leading byte-order mark is
// skipped; a line of an unknown type, or whose value does not parse, is left out.
std::optional<PreferenceMap> parsePreferenceText(std::string_view text);

// The text to write: `previous` (the file as last read, or empty) with every key of `values` set and
// every key of `dropped` that is not in `values` removed. Everything else of `previous` stays.
std::string preferenceTextWith(std::string_view previous, const PreferenceMap& values,
                               const std::set<std::string, std::less<>>& dropped);

}  // namespace zb
