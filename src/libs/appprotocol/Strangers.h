// The connections of one listener whose peers have not been admitted: how many each address has, and how many
// bytes they hold together.
//
// Strangers compete for places and memory among themselves. When either runs out, the one that takes the most
// loses its connection: of the bytes the connection that holds the most, of the places the oldest connection
// of the address that has the most.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <kqappsession/Error.h>

namespace kq {

class Strangers : public std::enable_shared_from_this<Strangers> {
 public:
    // Ends the connection without running code of the host.
    using Cut = std::function<void(std::int32_t number, const std::string& sentence)>;

    // One stranger. Destroyed when it is admitted or its connection has ended, inside Cut at the latest.
    class Place {
     public:
        Place(std::shared_ptr<Strangers> strangers, const std::string& address, Cut cut);
        ~Place();
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;

        // What it holds from now on. May cut this place or others, so it is the caller's last use of it.
        void Holds(std::size_t bytes);

     private:
        friend class Strangers;
        // Orders the places by what they hold; the oldest of equals is the last.
        std::pair<std::size_t, std::uint64_t> Rank() const { return {bytes_, ~number_}; }

        std::shared_ptr<Strangers> strangers_;
        std::string network_;
        Cut cut_;
        std::uint64_t number_;
        std::size_t bytes_ = 0;
        std::list<Place*>::iterator at_;
    };

    std::size_t CountOf(const std::string& address) const;
    // Cuts the oldest stranger of the address that has the most. False when none has many.
    bool MakeRoom();

    std::size_t most_bytes = 64U << 20;

 private:
    void Hold(Place& place, std::size_t bytes);

    std::map<std::string, std::list<Place*>> by_network_;  // oldest first
    std::map<std::pair<std::size_t, std::uint64_t>, Place*> holders_;
    std::size_t bytes_ = 0;
    std::uint64_t last_number_ = 0;
};

}  // namespace kq
