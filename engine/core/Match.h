#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vt {

// Looks up a key in a text of comma-separated key:value entries and returns
// its value, or "" when the key is absent or has no value. All white space is
// removed first. The parsed entries are kept: an empty text searches the
// entries of the last text given. Not re-entrant.
std::string match(std::string text, std::string key);

// The value that match finds for the key in the text, with the blanks inside
// it kept ("x y" stays "x y"; blanks at its ends are dropped). The entries
// kept for match are left as they were.
std::string matchKeepingBlanks(const std::string& text, const std::string& key);

// Every entry of the text as match finds them, in order, as key and value
// ("" for a key without one). The entries kept for match are left as they
// were.
std::vector<std::pair<std::string, std::string>> matchEntries(const std::string& text);

}  // namespace vt
