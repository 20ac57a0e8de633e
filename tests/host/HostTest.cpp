#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "stream/MXFStream.h"
#include "tests/support/ClipWriter.h"

// What only shows across the edge of the shared library: run-time types, exceptions, and objects of the host inside
// the library.

TEST(HostTest, ExceptionsOfTheLibraryAreCaughtAsCStrings) {
  EXPECT_THROW(MXFStream(OxSharedPtr<OxStringMac>()), const char*);
  EXPECT_THROW(static_cast<void>(MxfUUID().ValueAtIndex(16)), const char*);
  unsigned char bytes[] = {1, 2};
  MDValue value(bytes, 2, MDValueType_UInt16);
  EXPECT_THROW(static_cast<void>(static_cast<unsigned int>(value)), const char*);
}

TEST(HostTest, ValuesOfTheLibraryAreToldApartByTheirRunTimeType) {
  const std::string path = testing::TempDir() + "host_test.mxf";
  clipwriter::ClipOptions options;
  options.picture = clipwriter::PictureSet::RGBA;
  clipwriter::WriteClipFile(options, path);
  MXFStream clip(OxSharedPtr<OxStringMac>(new OxStringMac(path.c_str(), kOxStringCharCode8Bit)));
  std::remove(path.c_str());
  ASSERT_EQ(kStatusOK, clip.Parse());
  const OxSharedPtr<HeaderMetadata> header = clip.GetHeaderMetadata();
  const OxSharedPtr<OxObject> pattern = header->PrefaceInfoForTag(0x3B09);
  EXPECT_TRUE(OxSharedPtr<MxfUUID>(pattern));
  EXPECT_FALSE(OxSharedPtr<UMID>(pattern));
  EXPECT_TRUE(OxSharedPtr<OxArray>(header->PrefaceInfoForTag(0x3B06)));
  EXPECT_TRUE(OxSharedPtr<MDValue>(header->PrefaceInfoForTag(0x3B05)));
  const OxSharedPtr<STTrack> picture = header->TrackForIndex(1, 0);
  ASSERT_TRUE(picture);
  EXPECT_TRUE(OxSharedPtr<OxVector<tagRGBALayout>>(picture->ValueForTag(0x3401, 0)));
}

// A stream of the host's, read by the library.
class OneByteStream : public OxStream {
 public:
  OneByteStream() { SetLength(1); }
  long long Read(unsigned char* buffer, unsigned long long, long long, OxStream_Seek_Origin) override {
    *buffer = 0x2A;
    return 1;
  }
};

TEST(HostTest, StreamsOfAHostAreRead) {
  ParseMetaData reader{OxSharedPtr<OxStream>(new OneByteStream)};
  unsigned char byte = 0;
  EXPECT_TRUE(reader.GetUInt8(&byte));
  EXPECT_EQ(0x2A, byte);
}
