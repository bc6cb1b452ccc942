// The machine that the library runs on: its event loop, network, files, settings, texts and dialogs.
//
// A program makes one platform per thread and gives it to every object that it creates. All objects with the
// same platform share its event loop. A platform must be made and used on the thread that runs the loop.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Export.h>

namespace kq {

// Opaque. Made by MakePlatform, MakeQtPlatform or MakeTtyPlatform, and never changed.
class KQ_EXPORT Platform {
 public:
    struct Machine;  // the parts, for the library only
    explicit Platform(std::unique_ptr<const Machine> machine);
    ~Platform();
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

    // The loop of everything that is made with this platform. A program without an event loop of its own
    // waits with its RunUntil. Never null.
    const std::shared_ptr<EventLoop>& Loop() const;
    // Whether there are dialogs to ask a user. Without them an interactive procedure raises
    // RuntimeError::InvalidProcedureCall where it would have to ask.
    bool Interactive() const;

    const Machine& Parts() const { return *machine_; }

 private:
    std::unique_ptr<const Machine> machine_;
};

using PlatformPtr = std::shared_ptr<const Platform>;

// A platform without dialogs. `loop`: the program's own loop; null: a new one.
//
// `language`: the locale identifier to use instead of the user's own, for programs with a language setting;
// without it the machine's settings decide. Any number from 1 to 0xFFFF whose lower ten bits (the primary
// language) are not all 0 is accepted; others raise RuntimeError::InvalidProcedureCall. Texts exist for 1033,
// 1046, 2058, 9226, 10250, 11274, 13322, 14346 and 15370. Any other Spanish uses the texts of 2058, any other
// Portuguese those of 1046, and every other language those of 1033 (English). Servers are sent the identifier
// unchanged.
KQ_EXPORT PlatformPtr MakePlatform(std::shared_ptr<EventLoop> loop = nullptr,
                                   std::optional<std::int32_t> language = {});

}  // namespace kq
