// Which attendant a procedure gets.
#include "client/LoginAttendant.h"

#include "client/InteractiveAttendant.h"
#include "client/SilentAttendant.h"

namespace kq {

std::unique_ptr<LoginAttendant> MakeAttendant(bool interactive, ClientState& state) {
    if (!interactive) return std::make_unique<SilentAttendant>(state.platform);
    if (!state.platform->dialogs) {
        Raise(RuntimeError::InvalidProcedureCall,
              "An interactive login asks its user through dialogs, and this program has none");
    }
    return std::make_unique<InteractiveAttendant>(state);
}

}  // namespace kq
