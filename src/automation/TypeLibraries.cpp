#include "automation/TypeLibraries.h"

#include <array>
#include <cstring>
#include <map>
#include <mutex>

#include "automation/Guard.h"
#include "automation/Module.h"

namespace kq::automation {
namespace {

struct ById {
    bool operator()(const GUID& a, const GUID& b) const { return std::memcmp(&a, &b, sizeof(GUID)) < 0; }
};

struct Known {
    std::mutex mutex;
    std::array<Ptr<ITypeLib>, kTypeLibraries> libraries;
    std::map<GUID, Ptr<ITypeInfo>, ById> infos;
};

// Never destroyed: at the end of the process the system's own code may be gone already.
Known& TheKnown() {
    static Known& known = *new Known;
    return known;
}

void LoadAll(Known& known) {
    for (int number = 1; number <= kTypeLibraries; ++number) {
        auto& library = known.libraries[static_cast<std::size_t>(number - 1)];
        if (!library) library = LoadTypeLibrary(number);
    }
}

}  // namespace

std::wstring TypeLibraryPath(int number) {
    return ThisModulePath() + L"\\" + std::to_wstring(number);
}

Ptr<ITypeLib> LoadTypeLibrary(int number) {
    Ptr<ITypeLib> library;
    Check(LoadTypeLibEx(TypeLibraryPath(number).c_str(), REGKIND_NONE, library.Out()));
    return library;
}

void KeepTypeLibraries() {
    Known& known = TheKnown();
    const std::lock_guard lock(known.mutex);
    LoadAll(known);
}

Ptr<ITypeInfo> TypeInfoOf(REFGUID id) {
    Known& known = TheKnown();
    const std::lock_guard lock(known.mutex);
    if (const auto found = known.infos.find(id); found != known.infos.end()) return found->second;
    LoadAll(known);
    for (const auto& library : known.libraries) {
        Ptr<ITypeInfo> info;
        if (SUCCEEDED(library->GetTypeInfoOfGuid(id, info.Out()))) return known.infos[id] = info;
    }
    return {};
}

void ForgetTypeLibraries() noexcept {
    Known& known = TheKnown();
    const std::lock_guard lock(known.mutex);
    known.infos.clear();
    known.libraries.fill({});
}

}  // namespace kq::automation
