// The memory card.
#include "bindings/linux/storage/memory_card.h"

#include <gtest/gtest.h>

#include "tests/unit/bindings/linux/services/folder.h"

namespace {

class MemoryCardTest : public ::testing::Test {
  protected:
    void WriteCard(const std::string& name, const std::string& number) const {
        blocks.Write(name + "/removable", "0\n");
        blocks.Write(name + "/size", "62333952\n");
        blocks.Write(name + "/dev", "179:" + number + "\n");
        blocks.Write(name + "/device/type", "SD\n");
        blocks.Write(name + "/" + name + "p1/partition", "1\n");
        blocks.Write(name + "/" + name + "p1/dev", "179:" + number + "1\n");
    }

    static std::string MountOf(const std::string& device, const std::string& path) {
        return "36 22 " + device + " / " + path + " rw,noatime shared:1 - vfat /dev/x rw\n";
    }

    Folder blocks;
};

TEST_F(MemoryCardTest, AnEmptySlotHasNone) {
    EXPECT_FALSE(binding::FindMemoryCard(blocks.Path(), ""));
    EXPECT_FALSE(binding::FindMemoryCard("/nonexistent", ""));
}

TEST_F(MemoryCardTest, ACardIsMountedByItsPartition) {
    WriteCard("mmcblk1", "2");
    auto card = binding::FindMemoryCard(blocks.Path(), MountOf("8:1", "/mnt"));
    ASSERT_TRUE(card);
    EXPECT_EQ(card->name, "mmcblk1");
    EXPECT_EQ(card->mountPoint, "");
    card = binding::FindMemoryCard(
        blocks.Path(), MountOf("8:1", "/mnt") + MountOf("179:21", "/media/my\\040card"));
    ASSERT_TRUE(card);
    EXPECT_EQ(card->mountPoint, "/media/my card");
}

TEST_F(MemoryCardTest, ACardMayBeMountedWithoutAPartition) {
    WriteCard("mmcblk1", "2");
    EXPECT_EQ(binding::FindMemoryCard(blocks.Path(), MountOf("179:2", "/media/card"))->mountPoint,
              "/media/card");
}

TEST_F(MemoryCardTest, SolderedMemoryIsNoCard) {
    WriteCard("mmcblk0", "0");
    blocks.Write("mmcblk0/device/type", "MMC\n");
    blocks.Write("mmcblk0boot0/size", "8192\n");
    blocks.Write("mmcblk0boot0/device/type", "SD\n");
    EXPECT_FALSE(binding::FindMemoryCard(blocks.Path(), ""));
}

TEST_F(MemoryCardTest, TheCardThatTheDeviceStartedFromIsNone) {
    WriteCard("mmcblk0", "0");
    const std::string root = MountOf("179:01", "/");
    EXPECT_FALSE(binding::FindMemoryCard(blocks.Path(), root));
    WriteCard("mmcblk1", "2");
    EXPECT_EQ(binding::FindMemoryCard(blocks.Path(), root)->name, "mmcblk1");
}

TEST_F(MemoryCardTest, AReaderWithoutACardHasNone) {
    blocks.Write("sda/size", "0\n");
    EXPECT_FALSE(binding::FindMemoryCard(blocks.Path(), "", "sda"));
    blocks.Write("sda/size", "8192\n");
    EXPECT_FALSE(binding::FindMemoryCard(blocks.Path(), ""));
    EXPECT_EQ(binding::FindMemoryCard(blocks.Path(), "", "sda")->name, "sda");
}

TEST_F(MemoryCardTest, LinesThatAreNoMountsAreLeftOut) {
    WriteCard("mmcblk1", "2");
    const auto card = binding::FindMemoryCard(
        blocks.Path(), "\n36\n36 22 179:21\n36 22 179:21 /\n\xff\xfe 22 179:21 / \\04\\999");
    ASSERT_TRUE(card);
    EXPECT_EQ(card->mountPoint, "\\04\\999");
}

TEST(Space, IsThatOfTheFileSystem) {
    const auto space = binding::SpaceAt(std::filesystem::temp_directory_path());
    ASSERT_TRUE(space);
    EXPECT_EQ(space->totalCapacity,
              std::filesystem::space(std::filesystem::temp_directory_path()).capacity);
    EXPECT_LE(space->freeSpace, space->totalCapacity);
    EXPECT_FALSE(binding::SpaceAt("/nonexistent"));
}

}  // namespace
