// The operators' list: made from the unit's own, changed by the user, chosen from by IMSI.
#include "stores/isp_list.h"

#include <gtest/gtest.h>

#include "tests/stores/box_fixture.h"
#include "tests/support/memory_files.h"
#include "tests/support/virtual_runtime.h"

namespace varkel::test {
namespace {

const std::string working = "NandFlash\\System\\Phone\\ISPDest.dat";
const std::string factory = "ResidentFlash2\\bin\\Gprs\\ISPDest.dat";

struct IspListTest : testing::Test {
    VirtualRuntime runtime{1};
    MemoryFiles files;
    Log log{runtime, files};
    IspList isps{files, log};
};

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

TEST_F(IspListTest, AFileOf1000BytesIsOneRecord) {
    std::string file(1000, 'x');
    file.replace(128, 1, 1, '\0');
    files.WriteWhole(working, file);
    const auto list = isps.Load();
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].name.View(), std::string(128, 'x')) << "no NUL of its own";
    EXPECT_EQ(list[0].userName.View(), "");
}

TEST_F(IspListTest, AFullVolumeOrFileKeepsTheOldList) {
    ASSERT_EQ(isps.Add(Isp(1)), StoreResult::Done);
    files.freeBytes = (1 << 20) - 1;
    EXPECT_EQ(isps.Add(Isp(2)), StoreResult::VolumeFull);
    EXPECT_EQ(isps.Change(Isp(1), 0, Isp(2)), StoreResult::VolumeFull);
    files.freeBytes = (std::uint64_t{1} << 32) + 4096;
    EXPECT_EQ(isps.Add(Isp(2)), StoreResult::VolumeFull) << "only the low 32 bits count";
    EXPECT_EQ(files.Content(working), BytesOf(std::vector{Isp(1)}));

    files.freeBytes = 1 << 20;
    files.WriteWhole(working, std::string(StoreFile::largestFile / 768 * 768, 'x'));
    EXPECT_EQ(isps.Add(Isp(2)), StoreResult::VolumeFull) << "would be taken for a foreign file";
    EXPECT_EQ(isps.Load().size(), StoreFile::largestFile / 768);
}

}  // namespace
}  // namespace varkel::test
