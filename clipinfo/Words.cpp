#include "clipinfo/Words.h"

#include "clipinfo/Text.h"

namespace {

std::string ListText(const Json& values) {
  std::string text;
  for (const Json& value : values) text += (text.empty() ? "" : ", ") + Word(value);
  return text.empty() ? "none" : text;
}

}  // namespace

std::string Word(const Json& value) {
  if (value.is_null()) return kNotPresent;
  if (value.is_string()) return Escaped(value.get_ref<const std::string&>());
  if (value.is_array()) return ListText(value);
  if (!value.is_object()) return value.dump();
  if (value.contains("numerator")) return RationalText({value["numerator"], value["denominator"]});
  if (value.contains("frames")) return Word(value["text"].is_null() ? value["frames"] : value["text"]);
  if (value.contains("hex") && value["name"].is_null()) return Word(value["hex"]);
  return value.contains("name") ? Word(value["name"]) : value.dump();
}

std::string Counted(unsigned long count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}
