#include <gtest/gtest.h>

#include <limits>
#include <thread>

#include "foundation/OxAutoLock.h"
#include "foundation/OxNumber.h"
#include "foundation/OxRecursiveLock.h"
#include "tests/support/Bytes.h"

namespace {

using namespace std::string_literals;

// Two bases that share one OxObject, which therefore lies somewhere else in the object than either of them.
class LockAndText : public OxLockAbstract, public OxStringMac {
 public:
  explicit LockAndText(int& deaths) : m_deaths(deaths) {}
  ~LockAndText() override { ++m_deaths; }
  using OxStringMac::operator=;

 private:
  int& m_deaths;
};

TEST(OxSharedPtrTest, TheLastPointerDeletesOnceWhateverBaseItPointsTo) {
  int deaths = 0;
  OxSharedPtr<LockAndText> lock(new LockAndText(deaths));
  OxSharedPtr<OxStringMac> crossCast = OxSharedPtr<OxLockAbstract>(lock);
  OxSharedPtr<OxObject> object = crossCast;
  EXPECT_FALSE(OxSharedPtr<OxStream>(object)) << "not what it is";
  lock.Reset();
  crossCast = OxSharedPtr<OxStringMac>(new OxStringMac);
  EXPECT_EQ(1, object->ReferenceCount());
  const OxSharedPtr<OxObject>& itself = object;
  object = itself;
  EXPECT_EQ(0, deaths);
  object = crossCast;
  EXPECT_EQ(1, deaths);
}

TEST(OxRecursiveLockTest, IsFreeForOthersOnlyAfterAsManyUnlocksAsLocks) {
  OxRecursiveLock lock;
  const auto isFreeForOthers = [&lock] {
    bool isTaken = false;
    std::thread([&] {
      isTaken = lock.TryLock() && lock.TryLock();
      for (int i = 0; isTaken && i < 2; ++i) lock.Unlock();
    }).join();
    return isTaken;
  };
  lock.Lock();
  {
    const OxAutoLock guard(&lock);
    EXPECT_TRUE(lock.TryLock());
  }
  EXPECT_FALSE(isFreeForOthers());
  lock.Unlock();
  EXPECT_FALSE(isFreeForOthers());
  lock.Unlock();
  EXPECT_TRUE(isFreeForOthers());
  lock.Lock();
  EXPECT_FALSE(isFreeForOthers()) << "taken back";
  lock.Unlock();
}

TEST(OxRecursiveLockTest, ThreadsTakeTurnsAndSeeWhatTheLastOneWrote) {
  OxRecursiveLock lock;
  int sum = 0;
  const auto add = [&] {
    for (int i = 0; i < 10'000; ++i) {
      const OxAutoLock outer(&lock), inner(&lock);
      ++sum;
    }
  };
  std::thread first(add), second(add);
  first.join();
  second.join();
  EXPECT_EQ(20'000, sum);
}

TEST(OxStringMacTest, TwoByteCharactersBecomeUTF8) {
  const auto decode = [](Bytes stored) {
    return Text(new OxStringMac(reinterpret_cast<const char*>(stored.Data()), static_cast<unsigned>(stored.Size()), 1));
  };
  EXPECT_EQ("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80", decode(Bytes().U16(0x7F).U16(0x80).U16(0x7FF).U16(0x800)));
  EXPECT_EQ("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", decode(Bytes().U32(0xD800DC00).U32(0xDBFFDFFF))) << "pairs";
  EXPECT_EQ("A\xEF\xBF\xBD", decode(Bytes().U16('A').U16(0xD83C))) << "a high surrogate at the end";
  EXPECT_EQ("\xEF\xBF\xBD!", decode(Bytes().U16(0xDFA5).U16('!'))) << "a low surrogate alone";
  EXPECT_EQ("\xEF\xBF\xBD\xF0\x9F\x8E\xA5", decode(Bytes().U16(0xD83C).U32(0xD83CDFA5))) << "one before a pair";
  EXPECT_EQ("A\0B\0"s, decode({0, 'A', 0, 0, 0, 'B', 0, 0})) << "zero characters stay";
  EXPECT_EQ("A", decode({0, 'A', 'B'})) << "half a character";
  EXPECT_EQ("/clips/\xE9\xFF.mxf", Text(new OxStringMac("/clips/\xE9\xFF.mxf", 0))) << "8-bit text is kept";
}

TEST(OxMemoryStreamTest, ReadsWhatItHoldsAndNeverFromAnotherPlace) {
  constexpr long long kMost = std::numeric_limits<long long>::max();
  const auto read = [](unsigned long long size, long long offset, int origin) {
    const auto stream = Bytes{'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'}.Stream();
    stream->Seek(4, kOxStreamSeekFromStart);
    unsigned char buffer[16] = {};
    const long long count = stream->Read(buffer, size, offset, origin);
    return std::string(buffer, buffer + count);
  };
  EXPECT_EQ("89", read(4, 8, 0)) << "over the end";
  EXPECT_EQ("23456789", read(~0ULL, 2, 0)) << "start plus size wraps";
  EXPECT_EQ("", read(4, -1, 0) + read(~0ULL, -kMost - 1, 0) + read(1, 10, 0)) << "before the start, at the end";
  EXPECT_EQ("56", read(2, 1, 1)) << "from the position, which is 4";
  EXPECT_EQ("", read(2, kMost, 1)) << "from the position, wrapping";
  EXPECT_EQ("789", read(9, -3, 2)) << "from the end";
  EXPECT_EQ("", read(4, 0, 3)) << "from nowhere";
}

}  // namespace
