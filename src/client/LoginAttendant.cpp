// Which attendant a procedure gets.
#include "client/LoginAttendant.h"

#include "client/InteractiveAttendant.h"
#include "client/SilentAttendant.h"

namespace kq {

std::unique_ptr<LoginAttendant> MakeAttendant(bool interactive, ClientState& state) {
    if (!interactive) return std::make_unique<SilentAttendant>(state.platform);
    return std::make_unique<InteractiveAttendant>(state);
}

}  // namespace kq
