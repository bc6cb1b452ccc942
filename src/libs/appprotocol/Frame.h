// The bytes of a block on the wire, without any input or output; docs/wire.md shows them.
//
//   'K' 'Q'   version 1   data type   tag length (2 bytes)   data length (4 bytes)   tag   data
//
// Numbers are big endian. A frame may carry any data type; everything else is checked. The reader checks
// every byte of the header when it arrives, and allocates memory for what has arrived, not for what the
// header announces.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/APClient.h>

#include "base/ErrorSentences.h"

namespace kq {

inline constexpr std::string_view kAppProtocolSource = "KQAppProtocolLib";
inline constexpr std::size_t kFrameHeaderSize = 10;
inline constexpr std::size_t kMaxTagSize = 1024;
inline constexpr std::uint64_t kMaxSentData = 2ULL << 30;

using FrameHeader = std::array<char, kFrameHeaderSize>;

// The sizes must be within the limits above.
FrameHeader EncodeHeader(DataType type, std::size_t tag_size, std::size_t data_size);

// The largest data that a peer may send, in bytes.
struct FrameLimits {
    std::size_t xml = 0;
    std::size_t raw = 0;  // and of every other type
};

struct FrameError {
    std::int32_t number = 0;
    std::string sentence;
};

// Takes bytes in pieces of any size and makes blocks of them.
class FrameReader {
 public:
    explicit FrameReader(FrameLimits limits) : limits_(limits) {}

    // Apply from the next header on.
    void SetLimits(FrameLimits limits) { limits_ = limits; }

    // Takes from the front of `bytes` until a block is complete (and returned) or no byte is left. After an
    // error (see Failure) nothing more is taken.
    std::optional<Block> Take(std::string_view& bytes);
    const std::optional<FrameError>& Failure() const { return failure_; }

    // A frame has begun and is not complete.
    bool InsideFrame() const { return header_size_ > 0; }
    // The block whose data is arriving: its tag, type and how much of it is there. Meaningful while
    // InsideData.
    bool InsideData() const { return header_size_ == kFrameHeaderSize && block_.tag.size() == tag_size_; }
    const Block& Arriving() const { return block_; }
    std::size_t ArrivingSize() const { return data_size_; }

 private:
    bool TakeHeader(std::string_view& bytes);
    void JudgeHeaderByte(unsigned char byte);
    void JudgeSizes();
    bool TakeTag(std::string_view& bytes);
    void TakeData(std::string_view& bytes);
    void Fail(ErrorSentence sentence, const std::vector<std::string>& args = {});

    FrameLimits limits_;
    FrameHeader header_{};
    std::size_t header_size_ = 0;  // bytes of the header that are there
    std::size_t tag_size_ = 0;
    std::size_t data_size_ = 0;
    Block block_;
    std::optional<FrameError> failure_;
};

}  // namespace kq
