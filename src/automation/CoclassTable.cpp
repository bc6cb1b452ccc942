#include "automation/CoclassTable.h"

#include <array>

#include "automation/Coclasses.h"
#include "automation/Objects.h"
#include "automation/TypeLibraries.h"

namespace kq::automation {
namespace {

enum LibraryNumber {
#define KQ_X(number, library) k##library = number,
    KQ_TYPE_LIBRARIES(KQ_X)
#undef KQ_X
};

#define KQ_X(number, library) +1
static_assert(KQ_TYPE_LIBRARIES(KQ_X) == kTypeLibraries);
#undef KQ_X

}  // namespace

// Each is defined beside its class.
#define KQ_X(library, coclass) \
    template <>                \
    Ptr<IUnknown> New<::coclass>();
KQ_COCLASSES(KQ_X)
#undef KQ_X

std::span<const CoclassEntry> Coclasses() {
    static const std::array entries = {
#define KQ_X(library, coclass) \
    CoclassEntry{__uuidof(::coclass), L## #library, L## #coclass, k##library, &New<::coclass>},
        KQ_COCLASSES(KQ_X)
#undef KQ_X
    };
    return entries;
}

}  // namespace kq::automation
