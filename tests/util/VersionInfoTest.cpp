// What is read out of a version block, the peculiar index included.
#include <limits>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "support/FakePlatform.h"
#include "util/VersionInfo.h"

namespace kq {
namespace {

constexpr char kFile[] = "Setup.exe";
constexpr char kEnglish[] = "\\StringFileInfo\\040904B0\\";

struct VersionInfoTest : testing::Test {
    VersionInfoTest() { Block().translation = {0x09, 0x04, 0xB0, 0x04}; }

    FakeVersionResource::Block& Block() { return machine.version_resource->blocks[kFile]; }
    void Has(const std::string& name, const std::string& value) { Block().texts[kEnglish + name] = value; }
    VersionInfo& Read() {
        info.Initialize(kFile);
        return info;
    }
    std::string FileVersion(const std::string& value) {
        Has("FileVersion", value);
        return Read().FileVersion(1);
    }

    FakePlatform machine;
    VersionInfo info{machine.platform};
};

template <class F>
std::pair<std::int32_t, std::string> ErrorOf(F call) {
    try {
        call();
    } catch (const Error& error) {
        return {error.Number(), error.Source() + error.Description()};
    }
    return {0, "no error"};
}

TEST_F(VersionInfoTest, IsNotInitializedByAFileWithoutAVersionResource) {
    info.Initialize("plain.txt");
    EXPECT_FALSE(info.Initialized());
}

TEST_F(VersionInfoTest, RaisesNotInitedFromEveryMemberUntilInitialized) {
    const std::pair<std::int32_t, std::string> not_inited{-1, "Not Inited"};
    EXPECT_EQ(ErrorOf([&] { info.CodePageCount(); }), not_inited);
    EXPECT_EQ(ErrorOf([&] { info.Language(1); }), not_inited);
    EXPECT_EQ(ErrorOf([&] { info.CodePage(std::numeric_limits<std::int32_t>::min()); }), not_inited);
    EXPECT_EQ(ErrorOf([&] { info.ProductName(1); }), not_inited);
    EXPECT_EQ(ErrorOf([&] { info.FileVersion(1); }), not_inited);
}

TEST_F(VersionInfoTest, IsInitializedByAFileWithAVersionResource) {
    EXPECT_TRUE(Read().Initialized());
}

TEST_F(VersionInfoTest, KeepsWhatItReadWhenAnotherFileHasNoVersionResource) {
    Has("ProductName", "Demo");
    Read().Initialize("plain.txt");
    EXPECT_EQ(info.ProductName(1), "Demo");
}

TEST_F(VersionInfoTest, CountsTheEntriesOfTheTranslationTable) {
    EXPECT_EQ(Read().CodePageCount(), 1);
    Block().translation.resize(8);
    EXPECT_EQ(Read().CodePageCount(), 2);
}

TEST_F(VersionInfoTest, RoundsTheCountOfACutTableToTheEvenNeighbour) {
    Block().translation.resize(6);
    EXPECT_EQ(Read().CodePageCount(), 2);
    Block().translation.resize(10);
    EXPECT_EQ(Read().CodePageCount(), 2);
}

TEST_F(VersionInfoTest, ReadsLanguageAndCodePageOfTheFirstEntry) {
    EXPECT_EQ(Read().Language(1), 0x0409);
    EXPECT_EQ(info.CodePage(1), 0x04B0);
}

TEST_F(VersionInfoTest, ReadsTheFirstEntryAgainByHigherIndexes) {
    Block().translation = {0x09, 0x04, 0xB0, 0x04, 0x0A, 0x08, 0xE4, 0x04};
    EXPECT_EQ(Read().Language(2), 0x0409);
    EXPECT_EQ(info.Language(3), 0x0409) << "a half is rounded to the even neighbour";
    EXPECT_EQ(info.CodePage(2), 0x04B0);
}

TEST_F(VersionInfoTest, ReadsAByteOrSoBehindTheFirstEntryByIndexesFromFour) {
    Block().translation = {0x09, 0x04, 0xB0, 0x04, 0x0A, 0x08, 0xE4, 0x04};
    EXPECT_EQ(static_cast<std::uint16_t>(Read().Language(4)), 0xB004);
    EXPECT_EQ(info.CodePage(4), 0x0A04);
    EXPECT_EQ(info.Language(7), 0x04B0) << "one and a half becomes two";
}

TEST_F(VersionInfoTest, ReadsZeroOutsideTheTable) {
    EXPECT_EQ(Read().Language(17), 0);
    EXPECT_EQ(info.CodePage(2'000'000'000), 0);
    EXPECT_EQ(info.Language(-2'000'000'000), 0);
    EXPECT_EQ(info.Language(13), 0x0004) << "the byte inside is read";
}

TEST_F(VersionInfoTest, OverflowsForTheSmallestIndex) {
    constexpr auto kSmallest = std::numeric_limits<std::int32_t>::min();
    Read();
    EXPECT_EQ(ErrorOf([&] { info.Language(kSmallest); }).first, NumberOf(RuntimeError::Overflow));
    EXPECT_EQ(ErrorOf([&] { info.CodePage(kSmallest); }).first, NumberOf(RuntimeError::Overflow));
    EXPECT_EQ(ErrorOf([&] { info.Comments(kSmallest); }).first, NumberOf(RuntimeError::Overflow));
}

TEST_F(VersionInfoTest, HasNeitherIdsNorTextsWithoutATranslationTable) {
    Block().translation.clear();
    Block().texts["\\StringFileInfo\\00000000\\ProductName"] = "Demo";
    EXPECT_EQ(Read().CodePageCount(), 0);
    EXPECT_EQ(info.Language(1), 0);
    EXPECT_EQ(info.CodePage(1), 0);
    EXPECT_EQ(info.ProductName(1), "");
}

TEST_F(VersionInfoTest, FindsValuesByLanguageAndCodePageInUpperCaseHexadecimal) {
    Block().translation = {0x0A, 0x2C, 0xE4, 0xFD};
    Block().texts["\\StringFileInfo\\2C0AFDE4\\ProductName"] = "Demo";
    EXPECT_EQ(Read().ProductName(1), "Demo");
}

TEST_F(VersionInfoTest, ReadsEachValueByItsOwnName) {
    for (const char* name :
         {"ProductName", "Comments", "InternalName", "CompanyName", "LegalCopyright", "ProductVersion",
          "FileDescription", "LegalTrademarks", "PrivateBuild", "OriginalFilename", "SpecialBuild"})
        Has(name, std::string("of ") + name);
    Read();
    EXPECT_EQ(info.ProductName(1) + info.Comments(1) + info.InternalName(1) + info.CompanyName(1),
              "of ProductNameof Commentsof InternalNameof CompanyName");
    EXPECT_EQ(info.LegalCopyright(1) + info.ProductVersion(1) + info.FileDescription(1),
              "of LegalCopyrightof ProductVersionof FileDescription");
    EXPECT_EQ(
        info.LegalTrademarks(1) + info.PrivateBuild(1) + info.OriginalFilename(1) + info.SpecialBuild(1),
        "of LegalTrademarksof PrivateBuildof OriginalFilenameof SpecialBuild");
}

TEST_F(VersionInfoTest, ReadsAMissingValueAsEmptyText) {
    EXPECT_EQ(Read().Comments(1), "");
    EXPECT_EQ(info.FileVersion(1), "");
}

TEST_F(VersionInfoTest, RebuildsAFileVersionOfThreePartsFromItsNumbers) {
    EXPECT_EQ(FileVersion("5.02.3"), "5.2.3");
    EXPECT_EQ(FileVersion(" 5. 02.0003"), "5.2.3");
    EXPECT_EQ(FileVersion("1.0.0"), "1.0.0");
    EXPECT_EQ(FileVersion("5.2b.x"), "5.2.0");
    EXPECT_EQ(FileVersion("5.2.20240131001"), "5.2.20240131001");
}

TEST_F(VersionInfoTest, LeavesAFileVersionOfAnotherNumberOfPartsAsItIs) {
    EXPECT_EQ(FileVersion("5.2.0.14"), "5.2.0.14");
    EXPECT_EQ(FileVersion("05.02"), "05.02");
    EXPECT_EQ(FileVersion("1"), "1");
}

TEST_F(VersionInfoTest, RebuildsNoOtherVersion) {
    Has("ProductVersion", "5.02.3");
    EXPECT_EQ(Read().ProductVersion(1), "5.02.3");
}

}  // namespace
}  // namespace kq
