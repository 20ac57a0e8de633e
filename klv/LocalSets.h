#ifndef CLIPPARSER_KLV_LOCALSETS_H
#define CLIPPARSER_KLV_LOCALSETS_H

#include <vector>

#include "foundation/OxLockAbstract.h"
#include "foundation/OxMemoryStream.h"
#include "klv/KLVPacket.h"

// A local tag: 16 bits in header metadata, carried as 32 because local sets may be coded with wider ones.
using _LocalTag = unsigned int;

// Where an item of a local set lies.
struct LocalSetTagData {
  unsigned int offset;  // of the item's value, from the first byte of the set's value
  unsigned int length;  // of the item's value, in bytes
};

// A packet whose value is a run of items: tag, length, value (SMPTE ST 336, local sets). The import copies the value
// into memory and walks it once; items are then read from the copy. How tags and lengths are coded stands in byte 5 of
// the key:
//
//   bits 3-4  tag     0: 1 byte    1: BER object identifier    2: 2 bytes    3: 4 bytes
//   bits 5-6  length  0: BER       1: 1 byte                   2: 2 bytes    3: 4 bytes
//
// Threads: a set hands out one reader to all its callers. A caller holds the set as a lock (Lock, Unlock, or an
// OxAutoLock on it) from GetParserForTag to its last read. Imports are not synchronised.
class CLIPPARSER_EXPORT LocalSets : public KLVPacket, public OxLockAbstract {
 public:
  // Throw "LocalSets Init Error" (const char*) when the set's reader cannot be made.
  LocalSets();
  explicit LocalSets(OxSharedPtr<KLVPacket> packet);
  ~LocalSets() override;

  // Makes a new reader and empties the set.
  void init();

  // Any local set.
  bool isImportable() override;
  using KLVPacket::Import;
  // Replaces what was there. After a failure the set is empty, unless no stream was given.
  //   kStatusOK          every item is in the map
  //   kStatusNoInput     no stream given; nothing changed
  //   kStatusNoCopy      the value does not lie wholly in the stream, or memory is short
  //   kStatusUnreadable  as Parse says
  unsigned int Import(OxSharedPtr<OxStream> stream, long long offset) override;
  // Walks the items of the value; a step of Import.
  //   kStatusOK          every item is in the map
  //   kStatusUnreadable  no or an empty value, an unreadable tag or length, a tag that occurs twice, or an item that
  //                      runs past the end; the map is empty and the reader without a stream
  unsigned int Parse();

  // The codings that the key asks for: tag 1 BER object identifier, 2 one byte, 3 two bytes, 4 four bytes; length
  // 1 BER, 2 one byte, 3 two bytes, 4 four bytes.
  [[nodiscard]] unsigned int TagType() const;
  [[nodiscard]] unsigned int LengthType() const;
  // Read a tag or length at the reader's position with the coding found by the last Parse. False for a null output,
  // without a value or before any Parse, or when nothing can be read there; the output is then 0.
  [[nodiscard]] bool ReadTag(unsigned int* tag);
  [[nodiscard]] bool ReadLength(unsigned int* length);

  // The set's reader, standing at the first byte of the item's value; empty when the set has no such item. It is one
  // and the same reader each time: hold the set's lock while reading.
  [[nodiscard]] OxSharedPtr<ParseMetaData> GetParserForTag(_LocalTag tag);
  // The item's length in bytes; 0 when the set has no such item.
  [[nodiscard]] unsigned int LengthForTag(_LocalTag tag) const;

  // Lock and unlock the set's reader.
  void Lock() override;
  void Unlock() override;

  // One line for each item in ascending tag order, between braces: tag = bytes.
  OxSharedPtr<OxStringMac> Description() override;

 protected:
  // The item's place, or null when the set has no such item.
  [[nodiscard]] const LocalSetTagData* FindItem(_LocalTag tag) const;
  // The imported value, for readers of a caller's own, which need no lock; empty when there is none.
  [[nodiscard]] const OxSharedPtr<OxMemoryStream>& Value() const { return m_value; }

 private:
  // 12 bytes, so that the map of a set of many tiny items stays within a few times its bytes in the file.
  struct Item {
    _LocalTag tag;
    LocalSetTagData data;
  };

  bool ReadItems(ParseMetaData& reader, unsigned long long size);
  bool SortItems();
  [[nodiscard]] bool isWellFormed(const OxSharedPtr<OxStream>& stream, long long offset);
  bool ReadTag(ParseMetaData& reader, unsigned int* tag) const;
  bool ReadLength(ParseMetaData& reader, unsigned int* length) const;
  void Empty();

  OxSharedPtr<OxMemoryStream> m_value;
  OxSharedPtr<ParseMetaData> m_reader;
  unsigned int m_tagType = 0;  // 0: not known yet
  unsigned int m_lengthType = 0;
  std::vector<Item> m_items;  // ascending by tag, each tag once
};

#endif  // CLIPPARSER_KLV_LOCALSETS_H
