#include <gtest/gtest.h>

#include "foundation/MDValue.h"
#include "tests/support/Bytes.h"

namespace {

TEST(MxfUUIDTest, OrderIsThatOfUnsignedBytesFromTheFirst) {
  const std::less<MxfUUID> isLess;
  EXPECT_TRUE(isLess(MxfUUID(0x7FFFFFFF, 0, 0, 0), MxfUUID(0x80000000, 0, 0, 0)));
  EXPECT_TRUE(isLess(MxfUUID(1, 0, 0, 0xFF), MxfUUID(1, 0, 1, 0)));
  EXPECT_FALSE(isLess(MxfUUID(1, 2, 3, 4), MxfUUID(1, 2, 3, 4)));
  EXPECT_EQ("Index range error", Thrown([] { return MxfUUID().ValueAtIndex(16); }));
}

TEST(UMIDTest, OnlyLengthsOfUMIDsAreTakenAndOthersChangeNothing) {
  const OxSharedPtr<UMID> umid(new UMID), extended(new UMID);
  EXPECT_EQ("Index range error", Thrown([&] { return umid->ValueAtIndex(0); }));
  EXPECT_EQ(kStatusOK, umid->SetData(Umid(7).Data(), 32));
  for (const int length : {-32, 0, 31, 33, 65, 32 + 256}) {
    EXPECT_EQ(kStatusNoInput, umid->SetData(Bytes().Fill(300).Data(), length)) << length;
  }
  EXPECT_EQ(7, umid->ValueAtIndex(31));
  EXPECT_EQ("Index range error", Thrown([&] { return umid->ValueAtIndex(32); }));
  EXPECT_EQ(kStatusOK, extended->SetData(Umid(7).Raw(Umid(7)).Data(), 64));
  EXPECT_FALSE(umid->isEqualToUMID(extended) || extended->isEqualToUMID(umid) || umid->isEqualToUMID({}));
}

TEST(ULKeyTest, ClassifiesALabelByItsBytes) {
  const auto expect = [](const char* name, unsigned long long high, unsigned long long low, unsigned int type) {
    const ULKey key(Label(high, low).Data());
    EXPECT_EQ(type, key.GetKeyType()) << name;
    EXPECT_EQ(type & 0xFF000000, key.GetKeyKind()) << name;
  };
  constexpr unsigned long long kSet = 0x060E2B3402530101, kPack = 0x060E2B3402050101, kElement = 0x060E2B3401020101;
  expect("no label", 0x060E2B3502050101, 0x0D01020101020400, 0);
  expect("unknown category", 0x060E2B3407050101, 0, 0x01000000);
  expect("sequence information", 0x060E2B340101010D, 0x0E15000000010000, 0x02000001);
  expect("picture of any version", kElement | 0xFF, 0x0D01030115010500, 0x03000001);
  expect("sound", kElement, 0x0D01030116020101, 0x03000002);
  expect("set of the highest coding", 0x060E2B34027B0101, 0x0D01010101012F00, 0x0801012F);
  expect("set above the highest coding", 0x060E2B3402830101, 0x0D01010101012F00, 0x01000000);
  expect("set of another structure", kSet, 0x0D01010102012F00, 0x08000000);
  expect("index segment", kSet, 0x0D01020101100100, 0x08000001);
  expect("set of the system item", 0x060E2B3402430101, 0x0D01030104010200, 0x08000002);
  expect("header partition of any status", kPack, 0x0D0102010102FFFF, 0x0A000001);
  expect("body partition", kPack, 0x0D01020101030100, 0x0A000002);
  expect("footer partition", kPack, 0x0D01020101040200, 0x0A000003);
  expect("partition of another structure", kPack, 0x0D01020102020400, 0x0A000000);
  expect("primer", kPack, 0x0D01020101050100, 0x0A000004);
  expect("primer of another version", kPack, 0x0D01020101050200, 0x0A000000);
  expect("random index", kPack, 0x0D010201011101FF, 0x0A000005);
  expect("system metadata", kPack, 0x0D01030104010100, 0x0A000006);
  expect("pack of no known registry", kPack, 0x0E01020101020400, 0x0A000000);
  expect("container", 0x060E2B3403020101, 0, 0x0C000000);
}

OxSharedPtr<MDValue> Value(unsigned int type, Bytes bytes, unsigned int size = 8) {
  return new MDValue(bytes.Data(), size, static_cast<_MDValueType>(type));
}

template <class... T>
std::string ConversionsTo(MDValue& value) {
  return ((Thrown([&] { return value.operator T(); }).empty() ? std::string("+") : std::string("-")) + ...);
}
std::string Conversions(MDValue& value) {
  return ConversionsTo<unsigned char, unsigned short, unsigned int, unsigned long long, signed char, short, int,
                       long long, _Timestamp, _Rational>(value);
}

TEST(MDValueTest, ConvertsToItsOwnTypeOnlyAndRepeatedly) {
  for (unsigned int type = 0; type <= 11; ++type) {
    std::string expected = "----------";
    if (type >= 1 && type <= 10) expected[type - 1] = '+';
    const auto value = Value(type, Bytes().Fill(8));
    EXPECT_EQ(expected, Conversions(*value)) << "type " << type;
    EXPECT_EQ(expected, Conversions(*value)) << "type " << type << " again";
  }
  EXPECT_EQ("MDValue Init Error", Thrown([] { return Value(3, {}, 4); }));
}

}  // namespace
