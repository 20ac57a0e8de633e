#include "clipinfo/Json.h"

#include "foundation/MDValue.h"
#include "foundation/OxMutableArray.h"
#include "foundation/OxNumber.h"
#include "foundation/OxStringMac.h"
#include "foundation/UMID.h"
#include "metadata/STMetadataSets.h"

namespace {

constexpr int kVersion = 1;  // of the documents' shape; raised when a member changes its meaning or goes

std::string DescriptionOf(const OxSharedPtr<OxObject>& value) { return value->Description()->UTF8String(); }

// Labels begin with 06.0E.2B.34 (SMPTE ST 298); other identifiers are UUIDs.
bool isSMPTELabel(const MxfUUID& value) {
  return value.ValueAtIndex(0) == 0x06 && value.ValueAtIndex(1) == 0x0E && value.ValueAtIndex(2) == 0x2B &&
         value.ValueAtIndex(3) == 0x34;
}

template <class T>
Json IntegerJson(const OxSharedPtr<OxObject>& value) {
  T number{};
  return GetValue(value, number) ? NumberJson(number) : Json();
}

Json ScalarJson(const OxSharedPtr<MDValue>& value) {
  _Rational rational{};
  _Timestamp date{};
  if (GetValue(value, rational)) return RationalJson(rational);
  if (GetValue(value, date)) return DateJson(date);
  for (const auto number : {IntegerJson<unsigned char>, IntegerJson<unsigned short>, IntegerJson<unsigned int>,
                            IntegerJson<unsigned long long>, IntegerJson<signed char>, IntegerJson<short>,
                            IntegerJson<int>, IntegerJson<long long>}) {
    Json json = number(value);
    if (!json.is_null()) return json;
  }
  return nullptr;
}

Json ArrayJson(const OxArray& values) {
  Json json = Json::array();
  for (unsigned long i = 0; i < values.Count(); ++i) json.push_back(ValueJson(values.ObjectAtIndex(i)));
  return json;
}

Json IntegersJson(const OxVector<int>& numbers) {
  Json json = Json::array();
  for (const int number : numbers) json.push_back(number);
  return json;
}

Json LayoutJson(const OxVector<tagRGBALayout>& layout) {
  Json json = Json::array();
  for (const tagRGBALayout& component : layout) {
    json.push_back({{"code", component.code}, {"depth", component.depth}});
  }
  return json;
}

int PrintDocument(std::ostream& out, std::ostream& fault, const std::string& path, const DescribeClip& describe,
                  int faultStatus) {
  Json clip = {{"path", path}};
  int status = kExitOK;
  const std::string reason = FaultOf([&] { status = describe(clip, path); });
  if (!reason.empty()) {
    PrintFault(fault, path, reason);
    clip = FailedClip(path, reason);
    status = faultStatus;
  }
  out << JsonText(clip, 2);
  return status;
}

}  // namespace

Json LabelJson(const OxSharedPtr<MxfUUID>& label) {
  if (!label) return nullptr;
  const char* const name = LabelName(*label);
  return {{"name", name != nullptr ? Json(name) : Json()}, {"hex", DescriptionOf(label)}};
}

Json RationalJson(const _Rational& value) {
  return {{"numerator", value.numerator}, {"denominator", value.denominator}};
}

Json DateJson(const _Timestamp& date) {
  if (!isDateSet(date)) return nullptr;
  std::string text = DateText(date);
  text[text.find(' ')] = 'T';
  return text;
}

Json TimecodeJson(long long frames, const Timebase& timebase) {
  const bool isCounted = timebase.base > 0;
  return {{"frames", NumberJson(frames)},
          {"text", isCounted ? Json(TimecodeText(frames, timebase)) : Json()},
          {"base", isCounted ? Json(timebase.base) : Json()},
          {"drop_frame", timebase.isDropFrame}};
}

Json ValueJson(const OxSharedPtr<OxObject>& value) {
  if (!value) return nullptr;
  if (const OxSharedPtr<OxStringMac> text = value) return text->UTF8String();
  if (const OxSharedPtr<MxfUUID> label = value; label && isSMPTELabel(*label)) return LabelJson(label);
  if (const OxSharedPtr<MDValue> scalar = value) return ScalarJson(scalar);
  if (const OxSharedPtr<OxNumber> number = value) return NumberJson(number->SInt64Value());
  if (const OxSharedPtr<OxArray> list = value) return ArrayJson(*list);
  if (const OxSharedPtr<OxVector<unsigned char>> bytes = value) return HexText(bytes->data(), bytes->size());
  if (const OxSharedPtr<OxVector<int>> numbers = value) return IntegersJson(*numbers);
  if (const OxSharedPtr<OxVector<tagRGBALayout>> layout = value) return LayoutJson(*layout);
  return DescriptionOf(value);  // identifiers: MxfUUID, UMID
}

int PrintDocuments(const ClipList& list, const char* command, const DescribeClip& describe, int faultStatus) {
  const auto task = [&](std::ostream& out, std::ostream& fault, const std::string& path) {
    return PrintDocument(out, fault, path, describe, faultStatus);
  };
  return ForEachClip(list, task, EnvelopeFrame(command));
}

Json FailedClip(const std::string& path, const std::string& reason) {
  return {{"path", path}, {"error", {{"message", reason}}}};
}

Frame EnvelopeFrame(const char* command) {
  return {"{\"format\": \"clipinfo-json\", \"version\": " + std::to_string(kVersion) + ", \"command\": \"" + command +
              "\", \"clips\": [\n",
          ",\n", "\n]}\n"};
}

std::string JsonText(const Json& document, int indent) {
  return document.dump(indent, ' ', false, Json::error_handler_t::replace);
}
