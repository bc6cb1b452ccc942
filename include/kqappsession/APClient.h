// A connection of the application protocol: blocks of data with a type and a tag over TCP. The same class
// stands for a connection that a program makes and for one that a Listener has accepted; docs/wire.md shows
// the bytes.
//
// Connect, TakeBlock and Request look like blocking calls, but run the event loop until they are done or
// timed out: timers, windows and other connections are served meanwhile, so the object may be disconnected or
// dropped by other code during the call (the call then ends with an error; the object lives until it
// returns).
//
// Errors are kq::Error with the source "KQAppProtocolLib" and Winsock's numbers on every platform: 10060
// timed out, 10061 refused, 10054 dropped by the peer, 10057 not connected, 11001 host not found (see
// NetError). Time-outs are milliseconds; 0 or less takes kDefaultTimeOut.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <kqappsession/Export.h>
#include <kqappsession/Platform.h>
#include <kqappsession/Signal.h>
#include <kqappsession/XMLMessage.h>

namespace kq {

// What a block holds. A peer may give its blocks any type from 0 to 255; this library sends Raw and XML.
enum class DataType : std::int32_t {
    Raw = 0,    // bytes without meaning to this library
    Any = 64,   // in APClient::ReceiveType: blocks of every type
    XML = 128,  // the text of an XML message
};

// How the blocks that arrive are handed out.
enum class ReceiveMode : std::int32_t {
    Events = 0,  // each raises the Receive event
    Take = 1,    // they wait for TakeBlock and Request
};

struct Block {
    DataType data_type = DataType::Raw;
    std::string tag;   // up to 1,024 bytes; returned by a server with its answer
    std::string data;  // UTF-8 text for DataType::XML, else bytes
};

// What a connection bears. A limit that is passed closes that connection, with an Error event that says
// which.
struct APLimits {
    std::size_t frame = 64U << 10;           // bytes of a block's data before the peer is admitted
    std::size_t admitted_frame = 16U << 20;  // and afterwards
    std::size_t raw_frame = 256U << 20;      // of a block that is not XML, on a connection that Connect made
    std::size_t unsent = 8U << 20;           // bytes that wait to be written
    // Bytes that may wait for an accepted peer that is not admitted when one more block is sent to it.
    std::size_t stranger_unsent = 256U << 10;
    // When so many bytes wait to be written to an accepted peer, nothing more is read from it, and no block
    // of it is delivered, until they are written.
    std::size_t reading_stops = 64U << 10;
    Milliseconds first_frame{10'000};  // an accepted peer's time to its first complete block; 0: no limit
    // An accepted peer's time until Admit, which SetDeadline changes; 0: no limit.
    Milliseconds proof{0};
};

class KQ_EXPORT APClient : public std::enable_shared_from_this<APClient> {
 public:
    static constexpr std::int32_t kDefaultTimeOut = 10'000;  // ms

    // Raises RuntimeError::ObjectNotSet when `platform` is null.
    static std::shared_ptr<APClient> Create(PlatformPtr platform);
    APClient(const APClient&) = delete;
    APClient& operator=(const APClient&) = delete;
    ~APClient();  // disconnects; what waits is still written out, within 1 s

    // The connection has ended: by the peer, the network, a limit or Disconnect (never raised from inside
    // that call). Blocks that came before are delivered first; in ReceiveMode Take that is, taken.
    Signal<> Disconnected;
    // Something failed while no call was waiting to be told: number and sentence. Disconnected follows.
    Signal<std::int32_t, const std::string&> Error;
    // A block is on its way: its tag, the bytes so far, the bytes in all; the last time with both equal. Not
    // raised for a block that arrives in one piece, nor for one that would raise no Receive.
    Signal<const std::string&, std::int64_t, std::int64_t> Progress;
    // A block has arrived (ReceiveMode Events, and the type is wanted).
    Signal<const Block&> Receive;
    // What BeginConnect started has ended: 0 and no text when the connection stands, else number and
    // sentence.
    Signal<std::int32_t, const std::string&> ConnectEnded;

    // Connects to a name or numeric address. `local_address`: the interface to connect from, empty for any.
    // An existing connection is disconnected first. Trying several addresses of a name shares the one
    // time-out evenly; the error is the last one's. Raises 10022 when the port is outside 1 to 65535, 10053
    // when Disconnect was called meanwhile, 10004 when the loop quits, RuntimeError::InvalidProcedureCall
    // while a connection is being made.
    void Connect(const std::string& address, std::int32_t port, const std::string& local_address,
                 std::int32_t time_out);
    // The same without waiting: returns at once, ConnectEnded follows unless Disconnect comes first. Raises
    // only what is wrong with the arguments.
    void BeginConnect(const std::string& address, std::int32_t port, const std::string& local_address,
                      std::int32_t time_out);
    // Ends the connection; what waits to be written is written in the background, within 1 s. Blocks that
    // wait to be delivered or taken are dropped. Never raises.
    void Disconnect();
    bool Connected() const;

    // Queues a block; it is written when the loop runs. Raises 10057 when not connected, 10040 when the block
    // is over 2 GiB or its tag over 1,024 bytes, 10022 when the tag is not UTF-8, 10055 when more than
    // APLimits::unsent would wait (the connection is closed).
    void Send(const XMLMessage& message, std::string_view tag = {});
    void SendText(std::string_view text, std::string_view tag = {});  // as SendType says
    void SendBytes(std::string_view bytes, std::string_view tag = {});
    // Waits for the next block and takes it, whatever its type: a caller that waits for an answer must learn
    // that a wrong one came. Blocks that were there before the peer ended the connection can still be taken.
    // A call that waits gets the next block in ReceiveMode Events too. Raises 10060 after `time_out`, 10057
    // when there is no connection, the reason (10054, 10053) when it ends meanwhile, 10004 when the loop
    // quits.
    Block TakeBlock(std::int32_t time_out);
    // Sends the message and takes its reply: the next block that carries `tag`, or with an empty tag simply
    // the next block. Blocks with another tag are not the reply; they raise Receive, or with ReceiveMode Take
    // are kept for TakeBlock (of which there are 256 at most, and a reply behind them is not seen). A reply
    // that comes after the time-out is a block like any other. Raises XMLMessage::kNotAMessage if the reply
    // is not a message, and the errors of Send and TakeBlock.
    XMLMessage Request(const XMLMessage& message, std::string_view tag = {}, std::int32_t time_out = 0);

    // Settings, kept over reconnections. Leaving Take for Events delivers the blocks that wait, as events.
    kq::ReceiveMode ReceiveMode() const;
    void SetReceiveMode(kq::ReceiveMode mode);
    DataType SendType() const;  // Raw or XML
    void SetSendType(DataType type);
    // Which blocks raise the Receive event; the others are silently dropped.
    DataType ReceiveType() const;
    void SetReceiveType(DataType type);
    const APLimits& Limits() const;
    void SetLimits(const APLimits& limits);
    // The peer is trusted from now on: the larger limits apply, its time limits end, and it no longer counts
    // among the unadmitted connections of its Listener. A connection that Connect made starts admitted.
    void Admit();
    // Limits the time of a peer that is not admitted: unless Admit or this is called within `time`, the
    // connection ends with an Error event (10060). 0 or less: no limit. Does nothing when the peer is
    // admitted or there is no connection. APLimits::proof is the limit that an accepted connection starts
    // with.
    void SetDeadline(Milliseconds time);
    void SetKeepAlive(bool on);  // default off; probes after 60 s of silence, then each 15 s: 4 (Windows: 10)

    // Names this object in its process, over reconnections too; never used twice, without "|".
    const std::string& Identifier() const;
    std::string LocalAddress() const;  // empty when not connected
    std::int32_t LocalPort() const;
    std::string RemoteAddress() const;
    std::int32_t RemotePort() const;

 private:
    friend class Listener;
    class KQ_HIDDEN Impl;
    explicit APClient(PlatformPtr platform);
    std::unique_ptr<Impl> impl_;
};

}  // namespace kq
