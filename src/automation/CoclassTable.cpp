#include "automation/CoclassTable.h"

#include <array>
#include <type_traits>

#include "automation/Coclasses.h"
#include "automation/Module.h"
#include "automation/Objects.h"

namespace kq::automation {
namespace {

enum LibraryNumber {
#define KQ_X(number, library) k##library = number,
    KQ_TYPE_LIBRARIES(KQ_X)
#undef KQ_X
};

template <class Core>
std::shared_ptr<Core> NewCore() {
    if constexpr (requires(PlatformPtr platform) { Core::Create(platform); }) {
        return Core::Create(ThreadPlatform());
    } else if constexpr (requires(PlatformPtr platform) { Core::Create(platform, BusSettings()); }) {
        return Core::Create(ThreadPlatform(), BusSettings());
    } else if constexpr (std::is_constructible_v<Core, PlatformPtr>) {
        return std::make_shared<Core>(ThreadPlatform());
    } else {
        return std::make_shared<Core>();
    }
}

template <class Core>
Ptr<IUnknown> New() {
    return Ptr<IUnknown>(Wrap(NewCore<Core>()).Get());
}

}  // namespace

std::span<const CoclassEntry> Coclasses() {
    static const std::array entries = {
#define KQ_Created(library, coclass, core) \
    CoclassEntry{__uuidof(::coclass), L## #library, L## #coclass, k##library, &New<core>},
#define KQ_Given(library, coclass, core)
#define KQ_X(library, coclass, core, origin) KQ_##origin(library, coclass, core)
        KQ_COCLASSES(KQ_X)
#undef KQ_X
#undef KQ_Given
#undef KQ_Created
    };
    return entries;
}

}  // namespace kq::automation
