#include <gtest/gtest.h>

#include "foundation/UUIDDefine.h"

namespace {

// Runs before main, in no known order among the static objects of this program.
const OxSharedPtr<MxfUUID> kTakenAtStart = FBC_UL_OperationalPattern_1a;
const OxSharedPtr<OxStringMac> kPrintedAtStart = FBC_UL_BodyPartition_Private_Camera_Metadata->Description();

}  // namespace

TEST(LabelCatalogue, ExistsBeforeTheStaticObjectsOfAHost) {
  ASSERT_TRUE(kTakenAtStart);
  EXPECT_EQ(*FBC_UL_OperationalPattern_1a, *kTakenAtStart);
  EXPECT_STREQ("06.0E.2B.34.01.01.01.0D.0E.15.00.01.00.01.00.00", kPrintedAtStart->UTF8String());
}
