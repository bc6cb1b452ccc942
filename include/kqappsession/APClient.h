// A connection of the application protocol: blocks of data, each with a type and a tag, over TCP. The same
// class is used for a connection that a program makes and for one that a Listener has accepted. docs/wire.md
// shows the bytes.
//
// Connect, TakeBlock and Request wait until they are done or timed out. They run the event loop in the
// meantime, so timers, windows and other connections are served, and other code may disconnect or release the
// object. The call then ends with an error; the object lives until the call returns.
//
// One thread: all members belong to the thread of the platform's event loop. Events are raised by the loop,
// never from inside the member that causes them; they do arrive while a member waits. A handler may call
// every member and may release the object.
//
// Errors are kq::Error with the source "KQAppProtocolLib" and Winsock's numbers on every platform: 10060
// timed out, 10061 refused, 10054 ended by the peer, 10057 not connected, 11001 host not found (see
// NetError). Time-outs are milliseconds; 0 or less means kDefaultTimeOut.
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

// What a block holds. A peer may send blocks of any type from 0 to 255; this library sends Raw and XML only.
enum class DataType : std::int32_t {
    Raw = 0,    // bytes without meaning to this library
    Any = 64,   // as APClient::ReceiveType only: blocks of every type
    XML = 128,  // the text of an XML message
};

// What happens to the blocks that arrive.
enum class ReceiveMode : std::int32_t {
    Events = 0,  // each one raises the Receive event
    Take = 1,    // they are queued for TakeBlock and Request
};

struct Block {
    DataType data_type = DataType::Raw;
    std::string tag;   // UTF-8, up to 1,024 bytes; a server returns it with its answer
    std::string data;  // UTF-8 text for DataType::XML, else bytes
};

// Limits of a connection. Exceeding one closes the connection and raises an Error event that names the limit;
// reading_stops closes nothing.
struct APLimits {
    std::size_t frame = 64U << 10;           // bytes of a block's data, until the peer is admitted
    std::size_t admitted_frame = 16U << 20;  // the same afterwards
    std::size_t raw_frame = 256U << 20;      // of blocks that are not XML, on a connection made by Connect
    std::size_t unsent = 8U << 20;           // bytes that are queued to be written
    // The same for an accepted peer that is not admitted. It is checked before a further block is queued, so
    // one block may be larger.
    std::size_t stranger_unsent = 256U << 10;
    // When so many bytes are queued for an accepted peer, nothing more is read from it, and none of its
    // blocks is delivered, until they are written.
    std::size_t reading_stops = 64U << 10;
    Milliseconds first_frame{10'000};  // until an accepted peer's first block is complete; 0: no limit
    // Until Admit is called for an accepted peer; 0: no limit. SetDeadline changes it for one connection.
    Milliseconds proof{0};
};

class KQ_EXPORT APClient : public std::enable_shared_from_this<APClient> {
 public:
    static constexpr std::int32_t kDefaultTimeOut = 10'000;  // ms

    // Raises RuntimeError::ObjectNotSet when `platform` is null.
    static std::shared_ptr<APClient> Create(PlatformPtr platform);
    APClient(const APClient&) = delete;
    APClient& operator=(const APClient&) = delete;
    ~APClient();  // as Disconnect, but without the event

    // The connection has ended: by the peer, the network, a limit or Disconnect. Raised after all earlier
    // blocks have been delivered or, in ReceiveMode Take, taken. Raised once for each connection; when an
    // object reconnects, the new connection may be open already.
    Signal<> Disconnected;
    // A failure that no waiting call could report: its number and description. Disconnected follows.
    Signal<std::int32_t, const std::string&> Error;
    // Progress of an incoming block: its tag, the bytes received, the bytes in total. Raised a last time when
    // both are equal. Not raised for a block that arrives in one piece, nor for one that would not raise
    // Receive.
    Signal<const std::string&, std::int64_t, std::int64_t> Progress;
    // A block of a wanted type (see SetReceiveType) has arrived in ReceiveMode Events.
    Signal<const Block&> Receive;
    // An attempt that BeginConnect started has ended: 0 and an empty text when connected, else the error's
    // number and description. Connect does not raise it.
    Signal<std::int32_t, const std::string&> ConnectEnded;

    // Connects to a host name or numeric address and waits until that is done. `local_address`: the interface
    // to connect from; empty: any. An existing connection is disconnected first. All addresses of a name are
    // tried in turn and share the time-out evenly. Raises the error of the last address that was tried, 10060
    // after `time_out` (ms), 11001 for an empty or unknown name, 10022 when the port is outside 1 to 65535,
    // 10053 when Disconnect was called in the meantime, 10004 when the loop quits, and
    // RuntimeError::InvalidProcedureCall while a connection attempt is in progress.
    void Connect(const std::string& address, std::int32_t port, const std::string& local_address,
                 std::int32_t time_out);
    // The same without waiting. ConnectEnded follows unless Disconnect is called first. Raises only what is
    // wrong with the call: 10022 for the port, 11001 for an empty address, RuntimeError::InvalidProcedureCall
    // while a connection attempt is in progress.
    void BeginConnect(const std::string& address, std::int32_t port, const std::string& local_address,
                      std::int32_t time_out);
    // Ends the connection or the attempt to connect. Queued bytes are written in the background, within 1 s.
    // Blocks that are not delivered or taken yet are dropped. Disconnected follows if there was a connection.
    // Does nothing without one. Never raises.
    void Disconnect();
    // False as soon as the connection has ended, even while Disconnected is still to come.
    bool Connected() const;

    // Queue a block, which is written when the loop runs. Send sends the message as XML, SendText sends the
    // text with the type SendType, SendBytes sends Raw. Raise 10057 when not connected, 10040 when the block
    // is over 2 GiB or its tag over 1,024 bytes, 10022 when the tag is not UTF-8, and 10055 when more bytes
    // would be queued than the limits allow (the connection is then closed). Send also raises the errors of
    // XMLMessage::ToXML.
    void Send(const XMLMessage& message, std::string_view tag = {});
    void SendText(std::string_view text, std::string_view tag = {});
    void SendBytes(std::string_view bytes, std::string_view tag = {});
    // Waits for the next block and takes it, in either ReceiveMode and whatever its type is: a caller that
    // waits for an answer must learn that another one came. Blocks that arrived before the end of the
    // connection can still be taken. Raises 10060 after `time_out` (ms), 10057 when not connected, and 10004
    // when the loop quits. When the connection ends during the call, or has ended and no call has raised the
    // reason yet, raises that reason (10054 ended by the peer, 10053 ended by this side or a malformed frame,
    // or the number of a limit).
    Block TakeBlock(std::int32_t time_out);
    // Sends the message and waits for its reply: the next block with the same tag or, without a tag, simply
    // the next block. Blocks with another tag raise Receive, or in ReceiveMode Take are queued for TakeBlock.
    // That queue holds up to 256 blocks; a reply behind a full queue is not seen. A reply that arrives after
    // the time-out is treated as any other block. Raises XMLMessage::kNotAMessage if the reply is not a
    // message, and the errors of Send and TakeBlock.
    XMLMessage Request(const XMLMessage& message, std::string_view tag = {}, std::int32_t time_out = 0);

    // Settings. They may be changed at any time and are kept when the object reconnects. A value that is not
    // one of those named raises RuntimeError::InvalidProcedureCall.
    //
    // Default Events. Setting Events delivers the queued blocks as events.
    kq::ReceiveMode ReceiveMode() const;
    void SetReceiveMode(kq::ReceiveMode mode);
    DataType SendType() const;  // of SendText: Raw or XML, the default
    void SetSendType(DataType type);
    // Which blocks raise Receive: Raw, XML or, by default, Any. Others are silently dropped. TakeBlock
    // ignores it.
    DataType ReceiveType() const;
    void SetReceiveType(DataType type);
    // Apply from now on, to the existing connection too; the time limits of APLimits only to connections that
    // are accepted later.
    const APLimits& Limits() const;
    void SetLimits(const APLimits& limits);
    // The peer is trusted from now on: the larger limits apply, its time limits end, and it no longer counts
    // among the unadmitted connections of its Listener. Not needed for a connection made by Connect, to which
    // the larger limits always apply.
    void Admit();
    // Limits the time of an accepted peer that is not admitted: unless Admit or SetDeadline is called within
    // `time`, the connection ends with an Error event (10060). 0 or less: no limit. Replaces the limit
    // APLimits::proof. Does nothing for other connections.
    void SetDeadline(Milliseconds time);
    // Default off. Probes an idle connection: the first time after 60 s of silence, then every 15 s. The
    // connection ends when 4 probes in a row (Windows: 10) are not answered.
    void SetKeepAlive(bool on);

    // Unique within the process, unchanged by reconnecting, never reused; contains no "|".
    const std::string& Identifier() const;
    // Both ends of the connection. Addresses are numeric. Empty and 0 when not connected.
    std::string LocalAddress() const;
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
