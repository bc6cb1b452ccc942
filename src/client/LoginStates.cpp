// The list of states as a table.
#include "client/LoginStates.h"

#include <array>

namespace kq {

namespace {

struct StateRow {
    const char* name;
    const char* role;
};

constexpr auto kStates = std::to_array<StateRow>({
#define KQ_X(name, role) {#name, role},
    KQ_LOGIN_STATES(KQ_X)
#undef KQ_X
});

}  // namespace

const char* NameOf(LoginStates state) {
    return kStates.at(static_cast<std::size_t>(state)).name;
}

const char* RoleOf(LoginStates state) {
    return kStates.at(static_cast<std::size_t>(state)).role;
}

}  // namespace kq
