#include "tests/support/AskEverything.h"

#include <map>

#include "tests/support/TestClip.h"

namespace {

using Answers = std::map<About, unsigned long long>;

Answers AnswersOf(TestClip& clip) {
  Answers answers;
  EXPECT_EQ(kStatusOK, clip.Open());
  AskEverything(*clip.operator->(), [&](const About& about, unsigned long long number) { answers[about] = number; });
  return answers;
}

TEST(AskEverythingTest, AsksEveryKindOfQueryAndFindsEachAnswerOfAWholeClip) {
  TestClip clip(SmallClip()), again(SmallClip());
  const Answers answers = AnswersOf(clip);
  EXPECT_EQ(answers, AnswersOf(again));
  EXPECT_GT(answers.size(), 5000u);
  for (unsigned unit = 0; unit < clip.truth.units; ++unit) {
    EXPECT_EQ(clip.truth.ElementAt(unit, 1).offset, answers.at({"GetEssenceOffset", unit, 1}));
  }
  EXPECT_EQ(kNoAnswer, answers.at({"GetFlagsAtIndex", clip.truth.units}));
}

TEST(AskEverythingTest, SeesADamagedAnswer) {
  TestClip clip(SmallClip()), damaged(SmallClip());
  const Answers answers = AnswersOf(clip);
  damaged.Patch(damaged.truth.ElementAt(12, 1).valueOffset, 0x55AA55AA, 4);
  Answers changed = AnswersOf(damaged);
  EXPECT_NE(answers, changed);
  changed[{"ReadEssenceData", 12, 1}] = answers.at({"ReadEssenceData", 12, 1});
  EXPECT_EQ(answers, changed);
}

}  // namespace
