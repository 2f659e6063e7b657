// The operators' list: made from the unit's own, changed by the user, chosen from by IMSI.
#include "stores/isp_list.h"

#include <gtest/gtest.h>

#include "tests/stores/stores_fixture.h"

namespace varkel::test {
namespace {

const std::string working = "NandFlash\\System\\Phone\\ISPDest.dat";
const std::string factory = "ResidentFlash2\\bin\\Gprs\\ISPDest.dat";

struct IspListTest : testing::Test, StoresInMemory {};

TEST_F(IspListTest, IsTheUnitsOwnUntilThereIsOneOfTheUsers) {
    EXPECT_TRUE(isps.Load().empty()) << "neither file";
    EXPECT_FALSE(isps.Find("460011234567890"));
    const std::string own = BytesOf(std::vector{Isp(1), Isp(2)}) + "tail";
    files.WriteWhole(factory, own);
    files.refuseToWrite = true;
    EXPECT_TRUE(isps.Load().empty()) << "the copy failed";
    files.refuseToWrite = false;
    EXPECT_EQ(isps.Load().size(), 2u);
    EXPECT_EQ(files.Content(working), own);

    EXPECT_EQ(isps.Delete(Isp(1), 0), StoreResult::Done);
    EXPECT_EQ(isps.Delete(Isp(1), 0), StoreResult::NotFound);
    EXPECT_EQ(isps.Delete(Isp(2), 1), StoreResult::Done) << "it has moved up";
    EXPECT_TRUE(isps.Load().empty()) << "an emptied list stays empty";
    EXPECT_EQ(isps.Add(Isp(7)), StoreResult::Done);
    EXPECT_EQ(files.Content(factory), own);

    ASSERT_TRUE(files.Rename(working, "gone"));
    EXPECT_EQ(isps.Change(Isp(2), 1, Isp(3)), StoreResult::Done) << "a change restores it first";
    EXPECT_EQ(files.Content(working), BytesOf(std::vector{Isp(1), Isp(3)}));
}

TEST_F(IspListTest, NeverGrowsIntoWhatWouldBeTakenForAForeignFile) {
    files.WriteWhole(working, std::string(StoreFile::largestFile / 768 * 768, 'x'));
    EXPECT_EQ(isps.Add(Isp(2)), StoreResult::VolumeFull);
    const auto list = isps.Load();
    ASSERT_EQ(list.size(), StoreFile::largestFile / 768);
    EXPECT_EQ(list[0].name.View(), std::string(128, 'x')) << "no NUL of its own";
}

}  // namespace
}  // namespace varkel::test
