#include "core/Match.h"

#include <cctype>
#include <new>
#include <vector>

#include "core/LogManager.h"

namespace vt {

namespace {

// Where a piece of a text begins and ends.
struct Span {
  std::string::size_type begin;
  std::string::size_type end;
};

struct MatchEntries {
  std::vector<std::string> keys;
  std::vector<std::string> values;
  // Where each value stands in the text that was parsed, blanks removed.
  std::vector<Span> value_spans;
  int count = 0;

  void reset() {
    keys.clear();
    values.clear();
    value_spans.clear();
    count = 0;
  }
};

MatchEntries& entries() {
  static MatchEntries parsed;
  return parsed;
}

std::string withoutWhiteSpace(const std::string& text) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (!std::isspace(static_cast<unsigned char>(c))) result.push_back(c);
  }
  return result;
}

// Splits text[span] at the separator, skipping empty pieces as strtok does.
std::vector<Span> tokens(const std::string& text, Span span, char separator) {
  std::vector<Span> pieces;
  std::string::size_type start = span.begin;
  while (start < span.end) {
    const std::string::size_type end = std::min(text.find(separator, start), span.end);
    if (end > start) pieces.push_back({start, end});
    start = end + 1;
  }
  return pieces;
}

std::string pieceOf(const std::string& text, Span span) {
  return text.substr(span.begin, span.end - span.begin);
}

// The index in text of its n-th character that is not white space.
std::string::size_type nonBlankIndex(const std::string& text, std::string::size_type n) {
  std::string::size_type index = 0;
  for (;; index++) {
    if (std::isspace(static_cast<unsigned char>(text[index]))) continue;
    if (n == 0) return index;
    n--;
  }
}

void parse(const std::string& text, MatchEntries& parsed) {
  const LogManager& log_manager = LogManager::getInstance();
  const std::string compact = withoutWhiteSpace(text);
  parsed.reset();
  int commas = 0;
  for (const char c : compact) commas += (c == ',');
  try {
    parsed.keys.reserve(commas + 1);
  } catch (const std::bad_alloc&) {
    log_manager.writeLog("match(): unable to allocate key array!");
    parsed.reset();
    return;
  }
  try {
    parsed.values.reserve(commas + 1);
  } catch (const std::bad_alloc&) {
    log_manager.writeLog("match(): unable to allocate val array!");
    parsed.reset();
    return;
  }
  log_manager.writeLog(25, "match(): number of elements allocated is %d", commas + 1);
  for (const Span piece_span : tokens(compact, {0, compact.size()}, ',')) {
    const std::string piece = pieceOf(compact, piece_span);
    log_manager.writeLog(25, "\titem number %d", parsed.count);
    log_manager.writeLog(28, "\tp_element is '%s' (%p)", piece.c_str(),
                         static_cast<const void*>(piece.c_str()));
    const std::vector<Span> parts = tokens(compact, piece_span, ':');
    if (parts.empty()) break;
    const std::string key = pieceOf(compact, parts[0]);
    log_manager.writeLog(28, "\ttoken is '%s' (%p)", key.c_str(),
                         static_cast<const void*>(key.c_str()));
    log_manager.writeLog(25, "\tkey %s", key.c_str());
    const Span value_span = parts.size() > 1 ? parts[1] : Span{0, 0};
    const std::string value = pieceOf(compact, value_span);
    log_manager.writeLog(25, "\tval %s", value.c_str());
    parsed.keys.push_back(key);
    parsed.values.push_back(value);
    parsed.value_spans.push_back(value_span);
    parsed.count++;
  }
  log_manager.writeLog(25, "match(): parsed.");
  for (int i = 0; i < parsed.count; i++) {
    log_manager.writeLog(28, "\t%d  %s : %s", i, parsed.keys[i].c_str(), parsed.values[i].c_str());
  }
}

// The index of the first entry with that key, or -1.
int findEntry(const MatchEntries& parsed, const std::string& key) {
  const LogManager& log_manager = LogManager::getInstance();
  log_manager.writeLog(25, "match(): Looking for match '%s' among %d items.", key.c_str(),
                       parsed.count);
  for (int i = 0; i < parsed.count; i++) {
    log_manager.writeLog(28, "match(): %d: %s == %s?", i, parsed.keys[i].c_str(), key.c_str());
    if (parsed.keys[i] == key) return i;
  }
  return -1;
}

}  // namespace

std::string match(std::string text, std::string key) {
  const LogManager& log_manager = LogManager::getInstance();
  log_manager.writeLog(25, "match(\"%s\", \"%s\")", text.c_str(), key.c_str());
  if (!text.empty()) parse(text, entries());
  const int found = findEntry(entries(), key);
  return found < 0 ? "" : entries().values[found];
}

std::string matchKeepingBlanks(const std::string& text, const std::string& key) {
  MatchEntries parsed;
  parse(text, parsed);
  const int found = findEntry(parsed, key);
  if (found < 0 || parsed.values[found].empty()) return "";
  // The value's first and last characters, found again in the text as given.
  const Span span = parsed.value_spans[found];
  const std::string::size_type begin = nonBlankIndex(text, span.begin);
  const std::string::size_type end = nonBlankIndex(text, span.end - 1) + 1;
  return text.substr(begin, end - begin);
}

}  // namespace vt
