#include <vector>

#include "foundation/UUIDDefine.h"
#include "fuzz/FuzzInput.h"
#include "metadata/STMetadataSets.h"

namespace {

std::vector<_LocalTag> DictionaryTags() {
  std::vector<_LocalTag> tags;
  for (_LocalTag tag = 0; tag <= 0xFFFF; ++tag) {
    if (STMetadataSets::NameForTag(tag) != nullptr) tags.push_back(tag);
  }
  return tags;
}

}  // namespace

// A local set of any coding, and every tag of the dictionary on it.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<_LocalTag> tags = DictionaryTags();
  STMetadataSets set;
  static_cast<void>(ParseAs(set, data, size));
  static_cast<void>(set.Description());
  for (const _LocalTag tag : tags) {
    const OxSharedPtr<OxObject> value = set.ValueForTag(tag);
    if (value) static_cast<void>(value->Description());
  }
  static_cast<void>(set.ValueForUUID(FBC_UL_MER_BitRate, OxSharedPtr<PrimerPack>(new PrimerPack)));
  return 0;
}
