#include "core/Match.h"

#include <cctype>
#include <new>
#include <vector>

#include "core/LogManager.h"

namespace vt {

namespace {

struct MatchEntries {
  std::vector<std::string> keys;
  std::vector<std::string> values;
  int count = 0;

  void reset() {
    keys.clear();
    values.clear();
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

// Splits at the separator, skipping empty pieces as strtok does.
std::vector<std::string> tokens(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  std::string::size_type start = 0;
  while (start < text.size()) {
    const std::string::size_type end = std::min(text.find(separator, start), text.size());
    if (end > start) pieces.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return pieces;
}

void parse(const std::string& text) {
  const LogManager& log_manager = LogManager::getInstance();
  MatchEntries& parsed = entries();
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
  for (const std::string& piece : tokens(compact, ',')) {
    log_manager.writeLog(25, "\titem number %d", parsed.count);
    log_manager.writeLog(28, "\tp_element is '%s' (%p)", piece.c_str(),
                         static_cast<const void*>(piece.c_str()));
    const std::vector<std::string> parts = tokens(piece, ':');
    if (parts.empty()) break;
    log_manager.writeLog(28, "\ttoken is '%s' (%p)", parts[0].c_str(),
                         static_cast<const void*>(parts[0].c_str()));
    log_manager.writeLog(25, "\tkey %s", parts[0].c_str());
    const std::string value = parts.size() > 1 ? parts[1] : "";
    log_manager.writeLog(25, "\tval %s", value.c_str());
    parsed.keys.push_back(parts[0]);
    parsed.values.push_back(value);
    parsed.count++;
  }
  log_manager.writeLog(25, "match(): parsed.");
  for (int i = 0; i < parsed.count; i++) {
    log_manager.writeLog(28, "\t%d  %s : %s", i, parsed.keys[i].c_str(), parsed.values[i].c_str());
  }
}

}  // namespace

std::string match(std::string text, std::string key) {
  const LogManager& log_manager = LogManager::getInstance();
  log_manager.writeLog(25, "match(\"%s\", \"%s\")", text.c_str(), key.c_str());
  if (!text.empty()) parse(text);
  const MatchEntries& parsed = entries();
  log_manager.writeLog(25, "match(): Looking for match '%s' among %d items.", key.c_str(),
                       parsed.count);
  for (int i = 0; i < parsed.count; i++) {
    log_manager.writeLog(28, "match(): %d: %s == %s?", i, parsed.keys[i].c_str(), key.c_str());
    if (parsed.keys[i] == key) return parsed.values[i];
  }
  return "";
}

}  // namespace vt
