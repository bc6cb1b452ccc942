// A server that does what a test tells it, right or wrong: answers, stays silent, drops the connection, sends
// half a frame or something that is no message.
//
// It speaks frames with a codec of its own, so that a mistake in the library's framing is not made twice.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <kqappsession/XMLMessage.h>

#include "support/FakePlatform.h"

namespace kq {

class ScriptedPeer {
 public:
    // One connection as the peer sees it.
    class Link {
     public:
        void Send(const XMLMessage& message) { SendFrame(128, message.ToXML()); }
        void SendFrame(int data_type, const std::string& data, const std::string& tag = {});
        void SendBytes(const std::string& bytes);
        void Drop();   // closes as a program that ends
        void Reset();  // as a machine that dies

     private:
        friend class ScriptedPeer;
        void Flush();
        ScriptedPeer* peer = nullptr;
        std::unique_ptr<StreamSocket> stream;
        std::string in;
        std::string out;
    };
    using Reaction = std::function<void(Link&, const XMLMessage&)>;

    ScriptedPeer(FakePlatform& machine, std::string address, int port);
    ~ScriptedPeer();
    ScriptedPeer(const ScriptedPeer&) = delete;
    ScriptedPeer& operator=(const ScriptedPeer&) = delete;

    // What happens at every message of the type; a message of a type without a reaction is heard and left
    // unanswered.
    void On(const std::string& type, Reaction reaction) { always_[type] = std::move(reaction); }
    // What happens at the next message of the type, before On counts again.
    void Once(const std::string& type, Reaction reaction) { once_[type].push_back(std::move(reaction)); }

    static Reaction Answer(XMLMessage reply);
    static Reaction Silence();
    static Reaction Drop();
    static Reaction Reset();
    static Reaction Text(std::string text);  // a block of type 128 whatever it holds
    static Reaction Raw(std::string bytes);  // a block of type 0
    static Reaction HalfOf(XMLMessage reply);

    const std::vector<XMLMessage>& Heard() const { return heard_; }
    std::vector<std::string> HeardTypes() const;
    // The latest message of the type; an empty one when there was none.
    XMLMessage Latest(const std::string& type) const;
    int Accepted() const { return accepted_; }
    int Open() const;
    void DropAll();
    void StopListening() { listener_.reset(); }

 private:
    void Accept();
    void Read(Link& link);
    void Dispatch(Link& link, const XMLMessage& message);

    FakePlatform& machine_;
    std::unique_ptr<ListenSocket> listener_;
    std::vector<std::shared_ptr<Link>> links_;
    std::map<std::string, Reaction> always_;
    std::map<std::string, std::deque<Reaction>> once_;
    std::vector<XMLMessage> heard_;
    int accepted_ = 0;
    Owner owner_;
};

}  // namespace kq
