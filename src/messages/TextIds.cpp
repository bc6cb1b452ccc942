// The list as data.
#include "messages/TextIds.h"

namespace kq {
namespace {

constexpr TextRow kRows[] = {
#define KQ_ROW(id, use, who) {id, TextUse::use, who},
#define KQ_NAMED(id, name, use, who) {id, TextUse::use, who},
    KQ_TEXT_IDS(KQ_ROW, KQ_NAMED)
#undef KQ_ROW
#undef KQ_NAMED
};

}  // namespace

std::span<const TextRow> TextRows() {
    return kRows;
}

}  // namespace kq
