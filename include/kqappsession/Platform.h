// What the library asks of the machine it runs on, bundled.
//
// A host makes one bundle per thread and gives it to every object that it creates; all objects of one bundle
// share one event loop. The bundle must be made and used on the thread that runs the loop.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Export.h>

namespace kq {

// Opaque: made by MakePlatform, MakeQtPlatform or MakeTtyPlatform, and never changed.
class KQ_EXPORT Platform {
 public:
    struct Machine;  // the parts, which only the library knows
    explicit Platform(std::unique_ptr<const Machine> machine);
    ~Platform();
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

    // The loop that everything made with this bundle runs on: a program that waits calls its RunUntil. Never
    // null.
    const std::shared_ptr<EventLoop>& Loop() const;
    // Whether a user can be asked: the bundle has dialogs. Without them an interactive procedure raises
    // RuntimeError::InvalidProcedureCall where it would have to ask.
    bool Interactive() const;

    const Machine& Parts() const { return *machine_; }

 private:
    std::unique_ptr<const Machine> machine_;
};

using PlatformPtr = std::shared_ptr<const Platform>;

// The bundle of this machine. `loop`: the host's own, null for a new one. `language`: the locale identifier
// to use instead of the user's own, for hosts with a separate language setting; without it the machine's
// settings count. It is accepted from 1 to 0xFFFF when its lower ten bits, the primary language, are not all
// 0; any other number raises RuntimeError::InvalidProcedureCall. Texts are in that language when it is one of
// 1033, 1046, 2058, 9226, 10250, 11274, 13322, 14346 and 15370. Any other Spanish uses the texts of 2058, any
// other Portuguese those of 1046, and every other language those of 1033 (English). Servers are sent the
// identifier unchanged.
KQ_EXPORT PlatformPtr MakePlatform(std::shared_ptr<EventLoop> loop = nullptr,
                                   std::optional<std::int32_t> language = {});

}  // namespace kq
