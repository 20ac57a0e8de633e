#include "fuzz/Fuzz.h"

namespace {

using R = ParseMetaData;

template <class Value>
bool GetValue(R& reader, bool (R::*read)(Value*)) {
  Value value{};
  return (reader.*read)(&value);
}
template <auto read>
bool Get(R& reader, Script&) {
  return GetValue(reader, read);
}
template <class Size>
Size Take(Script& script) {
  return static_cast<Size>(script.Number());
}
bool isMade(const OxSharedPtr<OxObject>& object) { return DigestOf(object) != kNoAnswer; }

constexpr bool (*kReads[])(R& reader, Script& script) = {
    Get<&R::GetUInt8>,
    Get<&R::GetUInt16>,
    Get<&R::GetUInt32>,
    Get<&R::GetUInt64>,
    Get<&R::GetInt8>,
    Get<&R::GetInt16>,
    Get<&R::GetInt32>,
    Get<&R::GetInt64>,
    Get<&R::GetBER>,
    Get<&R::GetOIDBER>,
    Get<&R::GetTimestamp>,
    Get<&R::GetRational>,
    [](R& r, Script&) { return isMade(r.GetUUID()); },
    [](R& r, Script&) { return isMade(r.GetUMID()); },
    [](R& r, Script&) { return isMade(r.GetUUIDArray()); },
    [](R& r, Script& s) { return isMade(r.GetEnum(Take<unsigned long long>(s))); },
    [](R& r, Script& s) { return isMade(r.GetUTF16String(Take<unsigned int>(s))); },
    [](R& r, Script& s) { return isMade(r.CopyMemoryStream(Take<unsigned long long>(s))); },
};

void Move(R& reader, Script& script, unsigned int how) {
  const long long offset = script.Number();
  KLVPacket packet;
  if (how % 2 == 0) static_cast<void>(reader.ReadKeyAndLength(&packet));
  if (how % 2 == 1) static_cast<void>(reader.SetOffset(how % 4 == 1 ? offset : ~offset, static_cast<int>(how / 4 % 4)));
}

}  // namespace

// The number of script bytes, the script, and what is read. A read that fails leaves the reader where it is; one that
// succeeds leaves it in the stream, but for an extended UMID, whose second half is passed over unread.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::size_t calls = size == 0 ? 0 : std::min<std::size_t>(data[0], size - 1);
  const OxSharedPtr<OxStream> stream = StreamOf(data + calls, size - calls);
  ParseMetaData reader(stream);
  for (Script script(data, calls); !script.isOver();) {
    const long long before = reader.offset();
    const unsigned int call = script.Byte();
    const bool isRead = call < 0xC0 && kReads[call % std::size(kReads)](reader, script);
    if (call >= 0xC0) Move(reader, script, call);
    const auto after = static_cast<unsigned long long>(reader.offset());
    if (call < 0xC0) MUST(reader.offset() == before || (isRead && after <= stream->Length() + UMID::kBasicSize));
    MUST(reader.RestLength() == (after <= stream->Length() ? stream->Length() - after : 0));
  }
  return 0;
}
