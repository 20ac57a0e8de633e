#ifndef CLIPPARSER_CLIPINFO_CHECKSUM_H
#define CLIPPARSER_CLIPINFO_CHECKSUM_H

#include <map>
#include <memory>
#include <string>

#include "foundation/ParseMetaData.h"

// A hash over bytes that come in pieces.
class Checksum {
 public:
  virtual ~Checksum() = default;
  Checksum() = default;
  Checksum(const Checksum&) = delete;
  Checksum& operator=(const Checksum&) = delete;

  virtual void Begin() = 0;
  virtual void Add(const unsigned char* bytes, std::size_t count) = 0;
  [[nodiscard]] virtual std::string End() = 0;  // lower-case hexadecimal

  // Over `length` bytes at an offset; empty when they cannot be read.
  [[nodiscard]] std::string Of(ParseMetaData& reader, unsigned long long offset, unsigned long long length);
};

enum class ChecksumKind { None, XXH3, MD5 };
// XXH3: the 64-bit form, as xxh64sum and its kin print it. Null for None.
[[nodiscard]] std::unique_ptr<Checksum> MakeChecksum(ChecksumKind kind);
// The kinds by the names that the command line knows.
[[nodiscard]] const std::map<std::string, ChecksumKind>& ChecksumNames();

#endif  // CLIPPARSER_CLIPINFO_CHECKSUM_H
