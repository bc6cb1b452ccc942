// Encoding is trivial; reading is a walk through header, tag and data that can stop after any byte.
#include "libs/appprotocol/Frame.h"

#include <algorithm>
#include <utility>

#include "base/Utf.h"

namespace kq {
namespace {

constexpr unsigned char kVersion = 1;
constexpr std::size_t kFirstReserve = 64U << 10;

std::size_t Number(const FrameHeader& header, std::size_t at, std::size_t bytes) {
    std::size_t number = 0;
    for (std::size_t i = at; i < at + bytes; ++i)
        number = (number << 8) | static_cast<unsigned char>(header[i]);
    return number;
}

void Append(std::string& text, std::string_view& bytes, std::size_t size) {
    const std::size_t count = std::min(size - text.size(), bytes.size());
    text.append(bytes.substr(0, count));
    bytes.remove_prefix(count);
}

}  // namespace

FrameHeader EncodeHeader(DataType type, std::size_t tag_size, std::size_t data_size) {
    const auto byte = [](std::size_t number, int shift) {
        return static_cast<char>((number >> shift) & 0xFF);
    };
    return {'K',
            'Q',
            static_cast<char>(kVersion),
            static_cast<char>(type),
            byte(tag_size, 8),
            byte(tag_size, 0),
            byte(data_size, 24),
            byte(data_size, 16),
            byte(data_size, 8),
            byte(data_size, 0)};
}

std::optional<Block> FrameReader::Take(std::string_view& bytes) {
    if (failure_ || !TakeHeader(bytes) || !TakeTag(bytes)) return std::nullopt;
    TakeData(bytes);
    if (block_.data.size() < data_size_) return std::nullopt;
    header_size_ = 0;
    return std::exchange(block_, Block());
}

bool FrameReader::TakeHeader(std::string_view& bytes) {
    while (header_size_ < kFrameHeaderSize) {
        if (bytes.empty()) return false;
        header_[header_size_++] = bytes.front();
        JudgeHeaderByte(static_cast<unsigned char>(bytes.front()));
        if (failure_) return false;
        bytes.remove_prefix(1);
    }
    return true;
}

void FrameReader::JudgeHeaderByte(unsigned char byte) {
    switch (header_size_) {
        case 1:
        case 2:
            if (byte != static_cast<unsigned char>(header_size_ == 1 ? 'K' : 'Q')) {
                Fail(ErrorSentence::OtherProtocol);
            }
            break;
        case 3:
            if (byte != kVersion) {
                Fail(ErrorSentence::OtherVersion, {std::to_string(byte)});
            }
            break;
        case 4:
            block_.data_type = static_cast<DataType>(byte);
            break;
        case 6:
            tag_size_ = Number(header_, 4, 2);
            if (tag_size_ > kMaxTagSize) {
                Fail(ErrorSentence::LongTagArrived, {std::to_string(tag_size_), std::to_string(kMaxTagSize)});
            }
            break;
        case kFrameHeaderSize:
            JudgeSizes();
            break;
        default:
            break;
    }
}

void FrameReader::JudgeSizes() {
    data_size_ = Number(header_, 6, 4);
    const std::size_t limit = block_.data_type == DataType::XML ? limits_.xml : limits_.raw;
    if (data_size_ > limit) {
        Fail(ErrorSentence::LongBlockArrived, {std::to_string(data_size_), std::to_string(limit)});
    }
}

bool FrameReader::TakeTag(std::string_view& bytes) {
    if (block_.tag.size() == tag_size_) return true;
    Append(block_.tag, bytes, tag_size_);
    if (block_.tag.size() < tag_size_) return false;
    if (!IsValidUtf8(block_.tag)) Fail(ErrorSentence::MalformedTagArrived);
    return !failure_;
}

// Grows by doubling like any string, but never beyond the block's own size: reserve alone would go beyond it.
void FrameReader::TakeData(std::string_view& bytes) {
    std::string& data = block_.data;
    const std::size_t wanted = std::min(data_size_, data.size() + bytes.size());
    if (wanted > data.capacity()) {
        std::string larger;
        larger.reserve(std::min(data_size_, std::max({wanted, 2 * data.capacity(), kFirstReserve})));
        larger.append(data);
        data.swap(larger);
    }
    Append(data, bytes, data_size_);
}

void FrameReader::Fail(ErrorSentence sentence, const std::vector<std::string>& args) {
    failure_ = FrameError{NumberOf(sentence), TextOf(sentence, args)};
}

}  // namespace kq
