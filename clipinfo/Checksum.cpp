#include "clipinfo/Checksum.h"

#include <openssl/evp.h>
#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>

namespace {

constexpr unsigned long long kChunk = 1 << 18;

std::string Hexadecimal(const unsigned char* bytes, std::size_t count) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

class XXH3Checksum : public Checksum {
 public:
  void Begin() override { XXH3_64bits_reset(m_state.get()); }
  void Add(const unsigned char* bytes, std::size_t count) override { XXH3_64bits_update(m_state.get(), bytes, count); }
  std::string End() override {
    XXH64_canonical_t canonical{};
    XXH64_canonicalFromHash(&canonical, XXH3_64bits_digest(m_state.get()));
    return Hexadecimal(canonical.digest, sizeof canonical.digest);
  }

 private:
  struct Free {
    void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
  };
  std::unique_ptr<XXH3_state_t, Free> m_state{XXH3_createState()};
};

class MD5Checksum : public Checksum {
 public:
  void Begin() override { Check(EVP_DigestInit_ex(m_context.get(), EVP_md5(), nullptr)); }
  void Add(const unsigned char* bytes, std::size_t count) override {
    Check(EVP_DigestUpdate(m_context.get(), bytes, count));
  }
  std::string End() override {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int size = 0;
    Check(EVP_DigestFinal_ex(m_context.get(), digest.data(), &size));
    return Hexadecimal(digest.data(), size);
  }

 private:
  struct Free {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
  };
  // Systems that allow approved hashes only refuse MD5.
  static void Check(int result) {
    if (result != 1) throw std::runtime_error("MD5 is not available on this system");
  }
  std::unique_ptr<EVP_MD_CTX, Free> m_context{EVP_MD_CTX_new()};
};

}  // namespace

std::string Checksum::Of(ParseMetaData& reader, unsigned long long offset, unsigned long long length) {
  std::vector<unsigned char> bytes(static_cast<std::size_t>(std::min(length, kChunk)));
  if (!reader.SetOffset(static_cast<long long>(offset), kOxStreamSeekFromStart)) return {};
  Begin();
  while (length > 0) {
    const auto size = static_cast<unsigned int>(std::min<unsigned long long>(length, bytes.size()));
    if (!reader.GetBytes(bytes.data(), size)) return {};
    Add(bytes.data(), size);
    length -= size;
  }
  return End();
}

std::unique_ptr<Checksum> MakeChecksum(ChecksumKind kind) {
  if (kind == ChecksumKind::XXH3) return std::make_unique<XXH3Checksum>();
  if (kind == ChecksumKind::MD5) return std::make_unique<MD5Checksum>();
  return nullptr;
}

const std::map<std::string, ChecksumKind>& ChecksumNames() {
  static const std::map<std::string, ChecksumKind> names = {{"xxh3", ChecksumKind::XXH3}, {"md5", ChecksumKind::MD5}};
  return names;
}
