#include "core/Match.h"

#include <cctype>
#include <new>

#include "core/LogManager.h"

namespace vt {

namespace {

// Where a piece of a text begins and ends.
struct Span {
  std::string::size_type begin;
  std::string::size_type end;
};

struct Entry {
  Span key;
  Span value;
};

// A parsed text is kept as the text itself, blanks removed: entries are
// found again by walking it, so that parsing costs no more memory than the
// text whatever the number of entries.
struct MatchEntries {
  std::string compact;
  // Where parsing stopped: entries lie before it.
  std::string::size_type end = 0;
  int count = 0;

  void reset() {
    compact.clear();
    end = 0;
    count = 0;
  }
};

MatchEntries& entries() {
  static MatchEntries parsed;
  return parsed;
}

// Copies the text without its white space into result, whose room is
// reused unless far larger than needed.
void copyWithoutWhiteSpace(const std::string& text, std::string& result) {
  if (result.capacity() > 2 * text.size() + 4096) std::string().swap(result);
  result.clear();
  result.reserve(text.size());
  for (const char c : text) {
    if (!std::isspace(static_cast<unsigned char>(c))) result.push_back(c);
  }
}

// The next non-empty piece of text[position, end) between separators, as
// strtok finds it; position moves past it. False when none is left.
bool nextToken(const std::string& text, std::string::size_type end, char separator,
               std::string::size_type& position, Span& token) {
  while (position < end && text[position] == separator) position++;
  if (position >= end) return false;
  const std::string::size_type token_end = std::min(text.find(separator, position), end);
  token = {position, token_end};
  position = token_end;
  return true;
}

std::string pieceOf(const std::string& text, Span span) {
  return text.substr(span.begin, span.end - span.begin);
}

// The entry of the next comma-separated piece: its first colon-separated
// token is the key, the second (if any) the value. False when no piece is
// left or the piece holds no key, which ends the entries.
bool nextEntry(const std::string& text, std::string::size_type end,
               std::string::size_type& position, Entry& entry, Span& piece) {
  if (!nextToken(text, end, ',', position, piece)) return false;
  std::string::size_type inner = piece.begin;
  if (!nextToken(text, piece.end, ':', inner, entry.key)) return false;
  if (!nextToken(text, piece.end, ':', inner, entry.value)) entry.value = {0, 0};
  return true;
}

void logEntry(const LogManager& log_manager, const std::string& text, int number, Span piece,
              const Entry& entry) {
  const std::string piece_text = pieceOf(text, piece);
  const std::string key = pieceOf(text, entry.key);
  log_manager.writeLog(25, "\titem number %d", number);
  log_manager.writeLog(28, "\tp_element is '%s' (%p)", piece_text.c_str(),
                       static_cast<const void*>(piece_text.c_str()));
  log_manager.writeLog(28, "\ttoken is '%s' (%p)", key.c_str(),
                       static_cast<const void*>(key.c_str()));
  log_manager.writeLog(25, "\tkey %s", key.c_str());
  log_manager.writeLog(25, "\tval %s", pieceOf(text, entry.value).c_str());
}

void logEntries(const LogManager& log_manager, const MatchEntries& parsed) {
  std::string::size_type position = 0;
  Entry entry;
  Span piece;
  for (int i = 0; nextEntry(parsed.compact, parsed.end, position, entry, piece); i++) {
    log_manager.writeLog(28, "\t%d  %s : %s", i, pieceOf(parsed.compact, entry.key).c_str(),
                         pieceOf(parsed.compact, entry.value).c_str());
  }
}

void parse(const std::string& text, MatchEntries& parsed) {
  const LogManager& log_manager = LogManager::getInstance();
  const bool tracing = log_manager.getLogLevel() >= 25;
  parsed.reset();
  try {
    copyWithoutWhiteSpace(text, parsed.compact);
  } catch (const std::bad_alloc&) {
    log_manager.writeLog("match(): unable to allocate key array!");
    parsed.reset();
    return;
  }
  int commas = 0;
  for (const char c : parsed.compact) commas += (c == ',');
  log_manager.writeLog(25, "match(): number of elements allocated is %d", commas + 1);
  std::string::size_type position = 0;
  Entry entry;
  Span piece;
  while (nextEntry(parsed.compact, parsed.compact.size(), position, entry, piece)) {
    if (tracing) logEntry(log_manager, parsed.compact, parsed.count, piece, entry);
    parsed.end = position;
    parsed.count++;
  }
  log_manager.writeLog(25, "match(): parsed.");
  if (log_manager.getLogLevel() >= 28) logEntries(log_manager, parsed);
}

// The first entry with that key; false when there is none.
bool findEntry(const MatchEntries& parsed, const std::string& key, Entry& found) {
  const LogManager& log_manager = LogManager::getInstance();
  const bool tracing = log_manager.getLogLevel() >= 28;
  log_manager.writeLog(25, "match(): Looking for match '%s' among %d items.", key.c_str(),
                       parsed.count);
  std::string::size_type position = 0;
  Span piece;
  for (int i = 0; nextEntry(parsed.compact, parsed.end, position, found, piece); i++) {
    const Span span = found.key;
    if (tracing) {
      log_manager.writeLog(28, "match(): %d: %s == %s?", i, pieceOf(parsed.compact, span).c_str(),
                           key.c_str());
    }
    if (parsed.compact.compare(span.begin, span.end - span.begin, key) == 0) return true;
  }
  return false;
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

}  // namespace

std::string match(std::string text, std::string key) {
  const LogManager& log_manager = LogManager::getInstance();
  log_manager.writeLog(25, "match(\"%s\", \"%s\")", text.c_str(), key.c_str());
  if (!text.empty()) parse(text, entries());
  Entry found;
  if (!findEntry(entries(), key, found)) return "";
  return pieceOf(entries().compact, found.value);
}

std::string matchKeepingBlanks(const std::string& text, const std::string& key) {
  MatchEntries parsed;
  parse(text, parsed);
  Entry found;
  if (!findEntry(parsed, key, found) || found.value.end == found.value.begin) return "";
  // The value's first and last characters, found again in the text as given.
  const std::string::size_type begin = nonBlankIndex(text, found.value.begin);
  const std::string::size_type end = nonBlankIndex(text, found.value.end - 1) + 1;
  return text.substr(begin, end - begin);
}

std::vector<std::pair<std::string, std::string>> matchEntries(const std::string& text) {
  MatchEntries parsed;
  parse(text, parsed);
  std::vector<std::pair<std::string, std::string>> found;
  std::string::size_type position = 0;
  Entry entry;
  Span piece;
  while (nextEntry(parsed.compact, parsed.end, position, entry, piece)) {
    found.emplace_back(pieceOf(parsed.compact, entry.key), pieceOf(parsed.compact, entry.value));
  }
  return found;
}

}  // namespace vt
