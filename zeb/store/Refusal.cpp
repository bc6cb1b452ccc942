// The texts of the refusals, from their list.
#include "zeb/store/Refusal.h"

namespace kq::zeb {

std::string_view CodeOf(Refusal refusal) {
    switch (refusal) {
#define X(name, number, param, text) \
    case Refusal::name:              \
        return param;
        KQ_ZEB_REFUSALS(X)
#undef X
        case Refusal::None:
            break;
    }
    return {};
}

std::string_view SentenceOf(Refusal refusal) {
    switch (refusal) {
#define X(name, number, param, text) \
    case Refusal::name:              \
        return text;
        KQ_ZEB_REFUSALS(X)
#undef X
        case Refusal::None:
            break;
    }
    return {};
}

}  // namespace kq::zeb
