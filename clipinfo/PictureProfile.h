#ifndef CLIPPARSER_CLIPINFO_PICTUREPROFILE_H
#define CLIPPARSER_CLIPINFO_PICTUREPROFILE_H

#include <map>
#include <optional>
#include <string>
#include <vector>

// Neighbouring pictures that a plot shows as one mark.
struct PictureBucket {
  unsigned long long first = 0;  // edit unit
  unsigned long long count = 0;
  unsigned long long bytes = 0;
  unsigned long long largest = 0;
  unsigned long long keyFrames = 0;
};

// The kinds of pictures as the flags of the index tell them (ST 381).
enum PictureKind : unsigned char { kIntraPicture, kPredictedPicture, kBidirectionalPicture, kPictureKinds };

// The sizes of a clip's pictures, as many buckets as fit a plot, and how they form groups. Of one size whatever the
// length of the clip: where the buckets run out, each takes twice as many pictures.
class PictureProfile {
 public:
  static constexpr std::size_t kMostBuckets = 600;

  struct KindTotal {
    unsigned long long count = 0;
    unsigned long long bytes = 0;
  };

  // The next picture: bytes, and the flags of its index entry if it has one.
  void Add(unsigned long long bytes, std::optional<unsigned char> flags);
  // After the last picture.
  void Finish() { CloseGroup(); }

  [[nodiscard]] const std::vector<PictureBucket>& Buckets() const { return m_buckets; }
  [[nodiscard]] unsigned long long BucketWidth() const { return m_width; }
  [[nodiscard]] unsigned long long Count() const { return m_count; }
  [[nodiscard]] unsigned long long Bytes() const { return m_bytes; }
  [[nodiscard]] unsigned long long Largest() const { return m_largest; }
  [[nodiscard]] const KindTotal& Total(PictureKind kind) const { return m_totals[kind]; }
  [[nodiscard]] bool hasKinds() const { return m_totals[kIntraPicture].count != 0; }
  // How many groups have so many pictures, and which orders of I, P and B there are; of each the first hundred.
  [[nodiscard]] const std::map<unsigned long long, unsigned long long>& GroupLengths() const { return m_lengths; }
  [[nodiscard]] const std::map<std::string, unsigned long long>& GroupPatterns() const { return m_patterns; }

 private:
  void AddToBucket(unsigned long long bytes, bool isKeyFrame);
  void HalveBuckets();
  void AddToGroup(unsigned long long bytes, unsigned char flags);
  void CloseGroup();

  std::vector<PictureBucket> m_buckets;
  unsigned long long m_width = 1;
  unsigned long long m_count = 0;
  unsigned long long m_bytes = 0;
  unsigned long long m_largest = 0;
  KindTotal m_totals[kPictureKinds];
  unsigned long long m_groupLength = 0;
  std::string m_pattern;
  std::map<unsigned long long, unsigned long long> m_lengths;
  std::map<std::string, unsigned long long> m_patterns;
};

#endif  // CLIPPARSER_CLIPINFO_PICTUREPROFILE_H
