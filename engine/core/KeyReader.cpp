#include "core/KeyReader.h"

#include "core/LogManager.h"
#include "core/Match.h"

namespace vt {

namespace {

const int TRACE_LEVEL = 20;

const std::string& nameOr(const std::string& name, const std::string& key) {
  return name.empty() ? key : name;
}

}  // namespace

bool KeyReader::parse(const std::string& text) const {
  if (text.empty()) return false;
  match(text, "");
  return true;
}

std::string KeyReader::checkedText(const std::string& key, ValueKind kind) const {
  const std::string text = match("", key);
  if (!text.empty()) checkSavedValue(caller, key, text, kind);
  return text;
}

bool KeyReader::readInt(const std::string& key, int& value, const std::string& name) const {
  const std::string text = checkedText(key, ValueKind::INT);
  if (text.empty()) return false;
  value = vt::readInt(text);
  LogManager::getInstance().writeLog(TRACE_LEVEL, "%s: %s is %d", caller, nameOr(name, key).c_str(),
                                     value);
  return true;
}

bool KeyReader::readFloat(const std::string& key, float& value, const std::string& name) const {
  const std::string text = checkedText(key, ValueKind::FLOAT);
  if (text.empty()) return false;
  value = vt::readFloat(text);
  LogManager::getInstance().writeLog(TRACE_LEVEL, "%s: %s is %.2f", caller,
                                     nameOr(name, key).c_str(), static_cast<double>(value));
  return true;
}

bool KeyReader::readFlag(const std::string& key, bool& value, const std::string& name) const {
  const std::string text = checkedText(key, ValueKind::FLAG);
  if (text.empty()) return false;
  value = readBool(text);
  LogManager::getInstance().writeLog(TRACE_LEVEL, "%s: %s is %s", caller, nameOr(name, key).c_str(),
                                     toString(value).c_str());
  return true;
}

bool KeyReader::readText(const std::string& key, std::string& value, bool quoted) const {
  const std::string text = match("", key);
  if (text.empty()) return false;
  value = text;
  LogManager::getInstance().writeLog(TRACE_LEVEL, quoted ? "%s: %s is '%s'" : "%s: %s is %s",
                                     caller, key.c_str(), value.c_str());
  return true;
}

}  // namespace vt
