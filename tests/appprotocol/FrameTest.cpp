// The bytes of a frame and the reader that believes nothing.
#include <fstream>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "appprotocol/APTesting.h"
#include "libs/appprotocol/Frame.h"

namespace kq {
namespace {

constexpr FrameLimits kLimits{100, 200};

struct Result {
    std::vector<Block> blocks;
    std::optional<FrameError> failure;
    std::size_t left = 0;  // bytes that the reader did not take
};

Result ReadIn(FrameReader& reader, std::string_view bytes, std::size_t piece) {
    Result result;
    while (!bytes.empty() && !reader.Failure()) {
        std::string_view part = bytes.substr(0, piece);
        bytes.remove_prefix(part.size());
        while (auto block = reader.Take(part))
            result.blocks.push_back(std::move(*block));
        result.left = part.size() + bytes.size();
    }
    result.failure = reader.Failure();
    return result;
}

Result ReadAll(const std::string& bytes, std::size_t piece = 1 << 20) {
    FrameReader reader(kLimits);
    return ReadIn(reader, bytes, piece);
}

std::int32_t FailureOf(const std::string& bytes) {
    const auto result = ReadAll(bytes);
    return result.failure ? static_cast<std::int32_t>(result.failure->number) : 0;
}

std::string Header(int type, std::size_t tag, std::size_t data) {
    const FrameHeader header = EncodeHeader(static_cast<DataType>(type), tag, data);
    return std::string(header.data(), header.size());
}

TEST(Frame, HeaderIsTheDocumentedBytes) {
    EXPECT_EQ(Header(128, 2, 0x01020304), std::string("KQ\x01\x80\x00\x02\x01\x02\x03\x04", 10));
    EXPECT_EQ(Header(0, 1024, 0), std::string("KQ\x01\x00\x04\x00\x00\x00\x00\x00", 10));
}

// The bytes of the hex dump in docs/wire.md.
std::string DocumentedFrame() {
    std::ifstream file(KQ_SOURCE_DIR "/docs/wire.md");
    std::string line, bytes;
    while (std::getline(file, line) && line != "```hexdump") {
    }
    while (std::getline(file, line) && line != "```") {
        std::istringstream columns(line.substr(6, 47));
        for (int byte = 0; columns >> std::hex >> byte;)
            bytes += static_cast<char>(byte);
    }
    return bytes;
}

TEST(Frame, DocumentationShowsTheBytesOfAnAnswer) {
    XMLMessage answer("ASRegisterResponse", "1");
    answer.SetField("ErrorNum", "0");
    const std::string xml = answer.ToXML();
    EXPECT_EQ(DocumentedFrame(), Header(128, 1, xml.size()) + "7" + xml);
}

TEST(Frame, HeaderAgreesWithOneMadeByHand) {
    const std::string tag(300, 't');
    const std::string data(70'000, 'd');
    EXPECT_EQ(Header(128, tag.size(), data.size()) + tag + data, XMLFrame(data, tag));
}

TEST(FrameReader, ReadsAFrame) {
    const auto result = ReadAll(XMLFrame("<a/>", "t"));
    ASSERT_EQ(result.blocks.size(), 1U);
    EXPECT_EQ(result.blocks[0].data_type, DataType::XML);
    EXPECT_EQ(result.blocks[0].tag, "t");
    EXPECT_EQ(result.blocks[0].data, "<a/>");
}

TEST(FrameReader, ReadsAFrameWithoutTagAndData) {
    const auto result = ReadAll(RawFrame(""));
    ASSERT_EQ(result.blocks.size(), 1U);
    EXPECT_EQ(result.blocks[0].data_type, DataType::Raw);
    EXPECT_EQ(result.blocks[0].tag + result.blocks[0].data, "");
}

TEST(FrameReader, ReadsTheSameHoweverTheBytesAreSplit) {
    const std::string bytes =
        XMLFrame("one", "a") + RawFrame("") + XMLFrame("", "b") + RawFrame("four", "äö");
    for (std::size_t piece = 1; piece <= bytes.size(); ++piece) {
        const auto result = ReadAll(bytes, piece);
        ASSERT_EQ(result.blocks.size(), 4U) << piece;
        EXPECT_EQ(result.blocks[0].data, "one");
        EXPECT_EQ(result.blocks[2].tag, "b");
        EXPECT_EQ(result.blocks[3].tag, "äö");
        EXPECT_EQ(result.blocks[3].data, "four");
    }
}

TEST(FrameReader, KnowsWhetherItIsInsideAFrame) {
    FrameReader reader(kLimits);
    EXPECT_FALSE(reader.InsideFrame());
    ReadIn(reader, "K", 1);
    EXPECT_TRUE(reader.InsideFrame());
    ReadIn(reader, RawFrame("x").substr(1), 100);
    EXPECT_FALSE(reader.InsideFrame());
}

TEST(FrameReader, RefusesWrongMagicAtTheFirstWrongByte) {
    EXPECT_EQ(FailureOf("X"), 10053);
    EXPECT_EQ(FailureOf("KX"), 10053);
    EXPECT_EQ(FailureOf("KQ"), 0);
    EXPECT_EQ(ReadAll("GET / HTTP/1.1").failure->sentence,
              "The other side does not speak the application protocol");
}

TEST(FrameReader, RefusesAnotherVersionNamingIt) {
    EXPECT_EQ(FailureOf("KQ\x02"), 10053);
    EXPECT_NE(ReadAll("KQ\x02").failure->sentence.find("version 2"), std::string::npos);
    EXPECT_EQ(FailureOf(std::string("KQ\x00", 3)), 10053);
}

TEST(FrameReader, ReadsEveryDataType) {
    for (int type = 0; type < 256; ++type) {
        const auto result = ReadAll(FrameOf(type, "t", "d"));
        ASSERT_EQ(result.blocks.size(), 1U) << type;
        EXPECT_EQ(static_cast<int>(result.blocks[0].data_type), type);
    }
}

TEST(FrameReader, TakesATagOfTheLimitAndRefusesOneByteMore) {
    EXPECT_EQ(ReadAll(RawFrame("", std::string(1024, 't'))).blocks.size(), 1U);
    EXPECT_EQ(FailureOf(std::string("KQ\x01\x00\x04\x01", 6)), 10040);
}

TEST(FrameReader, TakesXMLOfTheLimitAndRefusesOneByteMoreBeforeItComes) {
    EXPECT_EQ(ReadAll(XMLFrame(std::string(100, 'x'))).blocks.size(), 1U);
    EXPECT_EQ(FailureOf(Header(128, 0, 101)), 10040);
}

TEST(FrameReader, HasALimitOfItsOwnForRawBlocksAndOtherTypes) {
    EXPECT_EQ(ReadAll(RawFrame(std::string(200, 'x'))).blocks.size(), 1U);
    EXPECT_EQ(ReadAll(FrameOf(1, "", std::string(200, 'x'))).blocks.size(), 1U);
    EXPECT_EQ(FailureOf(Header(1, 0, 201)), 10040);
    EXPECT_EQ(FailureOf(Header(0, 0, 201)), 10040);
    EXPECT_EQ(FailureOf(Header(0, 0, 0xFFFFFFFFU)), 10040);
}

TEST(FrameReader, RefusesATagThatIsNotUtf8) {
    EXPECT_EQ(FailureOf(RawFrame("", "\xFF")), 10053);
    EXPECT_EQ(FailureOf(RawFrame("", "\xC3")), 10053);
    EXPECT_EQ(FailureOf(RawFrame("", "\xC3\xA4")), 0);
}

TEST(FrameReader, GivesTheBlocksBeforeGarbageAndTakesNothingAfterIt) {
    FrameReader reader(kLimits);
    EXPECT_EQ(ReadIn(reader, RawFrame("good") + "bad" + RawFrame("never"), 1000).blocks.size(), 1U);
    EXPECT_EQ(ReadIn(reader, RawFrame("good"), 1000).blocks.size(), 0U);
}

TEST(FrameReader, TakesMemoryForWhatHasArrivedAndNotForWhatIsPromised) {
    FrameReader reader(FrameLimits{1U << 30, 1U << 30});
    ReadIn(reader, Header(0, 0, 1U << 30) + std::string(1000, 'x'), 100);
    EXPECT_LE(reader.Arriving().data.capacity(), 64U << 10);
}

TEST(FrameReader, NeverTakesMoreMemoryThanTheBlockNeeds) {
    FrameReader reader(FrameLimits{1U << 20, 1U << 20});
    std::string bytes = RawFrame(std::string(100'000, 'x'));
    bytes.pop_back();
    ReadIn(reader, bytes, 7000);
    EXPECT_EQ(reader.Arriving().data.capacity(), 100'000U);
}

TEST(FrameReader, AppliesNewLimitsFromTheNextHeaderOn) {
    FrameReader reader(kLimits);
    ReadIn(reader, Header(128, 0, 100), 1000);
    reader.SetLimits(FrameLimits{10, 10});
    EXPECT_EQ(ReadIn(reader, std::string(100, 'x'), 1000).blocks.size(), 1U);
    EXPECT_TRUE(ReadIn(reader, Header(128, 0, 11), 1000).failure);
}

// Up to four frames with up to three bytes changed.
std::string DamagedFrames(std::mt19937& random) {
    std::string bytes;
    for (int frames = static_cast<int>(random() % 4); frames >= 0; --frames) {
        bytes += FrameOf(random() % 2 == 0 ? 0 : 128, std::string(random() % 9, 't'),
                         std::string(random() % 120, 'd'));
    }
    for (int changes = static_cast<int>(random() % 4); changes > 0; --changes)
        bytes[random() % bytes.size()] = static_cast<char>(random());
    return bytes;
}

TEST(FrameReader, StaysWithinItsLimitsAndReadsTheSameInPiecesWhateverArrives) {
    std::mt19937 random(20240301);
    for (int round = 0; round < 3000; ++round) {
        const std::string bytes = DamagedFrames(random);
        const auto whole = ReadAll(bytes);
        const auto pieces = ReadAll(bytes, 1 + random() % 16);
        ASSERT_EQ(whole.blocks.size(), pieces.blocks.size());
        ASSERT_EQ(whole.failure.has_value(), pieces.failure.has_value());
        for (const auto& block : whole.blocks)
            ASSERT_LE(block.data.size(), block.data_type == DataType::XML ? kLimits.xml : kLimits.raw);
    }
}

TEST(FrameReader, RefusesNoiseWithinTheFirstBytes) {
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        std::string noise(64, '\0');
        for (char& byte : noise)
            byte = static_cast<char>(random());
        noise[0] = 'K';
        noise[1] = 'q';
        EXPECT_EQ(FailureOf(noise), 10053);
    }
}

}  // namespace
}  // namespace kq
