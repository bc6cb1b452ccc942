// The bus inside a process. What a transport has taken but could not deliver, because the bus went away, it
// delivers when its place is there again, like any other transport.
#include "libs/xmlbus/LocalBus.h"

#include <deque>
#include <map>
#include <utility>

#include "libs/xmlbus/BusNames.h"
#include "libs/xmlbus/BusRoutes.h"
#include "platform/Machine.h"

namespace kq {

struct LocalBus::Core {
    std::shared_ptr<EventLoop> loop;
    BusRoutes routes;
    std::map<BusRoutes::PeerId, Transport*> places;
    BusRoutes::PeerId last_place = 0;
    bool up = true;
    bool room = true;
};

class LocalBus::Transport final : public BusTransport, public std::enable_shared_from_this<Transport> {
 public:
    explicit Transport(std::shared_ptr<Core> core) : core_(std::move(core)) {}
    ~Transport() override { Close(); }

    void Open() override {
        if (std::exchange(wanted_, true)) return;
        PostForThisPlace([this] { TakePlace(); });
    }

    void Close() override {
        wanted_ = false;
        // What was written goes out first; a bus that is away leaves it for the next Open.
        if (place_ != 0) Deliver();
        LeavePlace();
    }

    void Subscribe(const BusAddress& address, BusSubscription option) override {
        if (place_ != 0) core_->routes.Subscribe(place_, BusNameOf(address), option);
    }

    void Unsubscribe(const BusAddress& address) override {
        core_->routes.Unsubscribe(place_, BusNameOf(address));
    }

    bool HasRoom() const override { return place_ != 0 && core_->up && core_->room; }

    void Write(const BusAddress& destination, std::string text, EventLoop::TimePoint expiry) override {
        written_.push_back({BusNameOf(destination), std::move(text), expiry});
        PostForThisPlace([this] {
            Deliver();
            Room();
        });
    }

    std::int64_t Expired() const override { return expired_; }
    bool Flushed() const override { return written_.empty(); }

    void LoseSoon() {
        LeavePlace();
        PostForThisPlace([this] { Fail(); });
    }

    void TellRoomSoon() {
        PostForThisPlace([this] { Room(); });
    }

 private:
    struct Written {
        std::string name;
        std::string text;
        EventLoop::TimePoint expiry;
    };

    // A task that runs with this object alive, unless the place is given up before.
    template <class Task>
    void PostForThisPlace(Task task) {
        core_->loop->Post(owner_.Bind([this, task = std::move(task)] {
            const auto self = shared_from_this();
            task();
        }));
    }

    void TakePlace() {
        if (!core_->up) return Fail();
        place_ = ++core_->last_place;
        core_->places[place_] = this;
        PostForThisPlace([this] {
            Deliver();
            Room();
        });
        Ready();
    }

    void LeavePlace() {
        owner_.Cancel();
        core_->routes.Remove(place_);
        core_->places.erase(std::exchange(place_, 0));
    }

    void Fail() {
        wanted_ = false;
        Lost("The bus inside this process is away");
    }

    void Deliver() {
        while (core_->up && !written_.empty()) {
            const Written written = std::move(written_.front());
            written_.pop_front();
            if (written.expiry <= core_->loop->Now()) {
                ++expired_;
                continue;
            }
            core_->routes.Deliver(written.name, [&, this, &message = written.text](BusRoutes::PeerId peer) {
                Transport* const receiver = core_->places.at(peer);
                receiver->PostForThisPlace([receiver, message] { receiver->Message(message); });
                return true;
            });
        }
    }

    std::shared_ptr<Core> core_;
    bool wanted_ = false;          // between Open and the end of the attempt or place
    BusRoutes::PeerId place_ = 0;  // 0: none
    std::deque<Written> written_;
    std::int64_t expired_ = 0;
    Owner owner_;
};

LocalBus::LocalBus(const PlatformPtr& platform) : core_(std::make_shared<Core>()) {
    core_->loop = RequirePlatform(platform, "A local bus")->Loop();
}

LocalBus::~LocalBus() {
    SetUp(false);
}

std::shared_ptr<BusTransport> LocalBus::MakeTransport() {
    return std::make_shared<Transport>(core_);
}

void LocalBus::SetUp(bool up) {
    core_->up = up;
    if (up) return;
    const auto places = core_->places;
    for (const auto& [id, transport] : places)
        transport->LoseSoon();
}

void LocalBus::SetRoom(bool room) {
    core_->room = room;
    for (const auto& [id, transport] : core_->places)
        transport->TellRoomSoon();
}

}  // namespace kq
