// The connections of one listener whose peers have not been admitted: how many each address has, and how many
// bytes they hold together.
//
// When strangers run out of bytes, the connection that holds the most is closed. When connections run out,
// the oldest one of the address that has the most is closed.
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
    // Ends the connection without running code of the program.
    using Cut = std::function<void(std::int32_t number, const std::string& sentence)>;

    // One stranger. Destroyed when it is admitted or its connection has ended, at the latest inside Cut.
    class Place {
     public:
        Place(std::shared_ptr<Strangers> strangers, const std::string& address, Cut cut);
        ~Place();
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;

        // The bytes that it holds from now on. May close this connection or others, so it must be the
        // caller's last use of it.
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
    // Closes the oldest stranger of the address that has the most. False when no address has many.
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
