#ifndef CLIPPARSER_KLV_SYSTEMMETADATAPACK_H
#define CLIPPARSER_KLV_SYSTEMMETADATAPACK_H

#include <array>

#include "klv/KLVPacket.h"

// The pack that opens the system item of each content package (SMPTE ST 385). Not synchronised.
//
// Value, big-endian:
//    0   1  system item bitmap          23   1  creation date/time stamp type
//    1   1  content package rate        24  16  creation date/time stamp (ST 326)
//    2   1  content package type        40   1  user date/time stamp type
//    3   2  channel handle              41  16  user date/time stamp
//    5   2  continuity count
//    7  16  universal label
//
// The names UnibersalLabel and UserDataType are spelled so.
class CLIPPARSER_EXPORT SystemMetadataPack : public KLVPacket {
 public:
  // Bytes of a date.
  static constexpr unsigned int kDateSize = 16;
  // Byte places in the value that camera queries read without importing the pack.
  static constexpr long long kCreationDateOffset = 24;
  static constexpr long long kUserDateOffset = 41;

  // Empty until Import; with key and offsets of a packet that was read generically, if one is given.
  SystemMetadataPack();
  explicit SystemMetadataPack(OxSharedPtr<KLVPacket> packet);
  ~SystemMetadataPack() override;

  // Zeroes every field but the universal label.
  void init();

  // The fields as stored; 0 before an import.
  [[nodiscard]] unsigned char SystemItemBitmap() const { return m_systemItemBitmap; }
  [[nodiscard]] unsigned char ContentPackageRate() const { return m_contentPackageRate; }
  [[nodiscard]] unsigned char ContentPackageType() const { return m_contentPackageType; }
  [[nodiscard]] unsigned short ChannelHandle() const { return m_channelHandle; }
  [[nodiscard]] unsigned short ContinuityCount() const { return m_continuityCount; }
  // Empty before a successful read.
  [[nodiscard]] OxSharedPtr<MxfUUID> UnibersalLabel() const { return m_universalLabel; }
  // 0x81 or 0x82; any other type is kept as 0, with the 16 bytes of its date.
  [[nodiscard]] unsigned int CreationDateType() const { return m_creationDateType; }
  [[nodiscard]] unsigned int UserDataType() const { return m_userDateType; }
  // The 16 bytes of the date: as a pointer that is valid as long as the pack, or copied to `date`, which must have
  // room for 16 bytes (false, and nothing copied, when it is null).
  [[nodiscard]] unsigned char* CreationDate() { return m_creationDate.data(); }
  [[nodiscard]] unsigned char* UserDate() { return m_userDate.data(); }
  bool CreationDate(unsigned char* date) const;
  bool UserDate(unsigned char* date) const;

  bool isImportable() override;
  using KLVPacket::Import;
  //   kStatusOK          all fields hold the file's values
  //   kStatusNoInput     no stream given; nothing changed
  //   kStatusUnreadable  the offset cannot be reached or the stream ends before the value does; fields read before
  //                      that keep their new values, a number that was cut is 0, a label empty, a date as it was
  unsigned int Import(OxSharedPtr<OxStream> stream, long long offset) override;

 private:
  using Date = std::array<unsigned char, kDateSize>;

  template <class Reader>
  bool ReadFields(Reader& reader);
  template <class Reader>
  bool ReadHead(Reader& reader);
  template <class Reader>
  static bool ReadDate(Reader& reader, unsigned int& type, Date& date);

  unsigned char m_systemItemBitmap = 0;
  unsigned char m_contentPackageRate = 0;
  unsigned char m_contentPackageType = 0;
  unsigned short m_channelHandle = 0;
  unsigned short m_continuityCount = 0;
  OxSharedPtr<MxfUUID> m_universalLabel;
  unsigned int m_creationDateType = 0;
  Date m_creationDate{};
  unsigned int m_userDateType = 0;
  Date m_userDate{};
};

#endif  // CLIPPARSER_KLV_SYSTEMMETADATAPACK_H
