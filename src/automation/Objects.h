// The way from core objects to automation objects and back, for every class of the list.
#pragma once

#include <KQTypeLibraries.h>
#include <memory>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessClient.h>
#include <kqappsession/KQAppSessServer.h>
#include <kqappsession/Listener.h>
#include <kqappsession/Statistics.h>
#include <kqappsession/Timer.h>
#include <kqappsession/WebData.h>
#include <kqappsession/XMLBusClient.h>

#include "automation/Coclasses.h"
#include "automation/Convert.h"
#include "automation/Ptr.h"

namespace kq::automation {

// Answered by this DLL's objects only: a foreign object is never cast.
struct IHasCore : IUnknown {
    // The std::shared_ptr<Core> of an object whose interface is `interface_id`, null for any other.
    virtual const void* CoreOf(REFIID interface_id) noexcept = 0;
};

}  // namespace kq::automation

__CRT_UUID_DECL(kq::automation::IHasCore, 0x711b00ff, 0x4429, 0x4499, 0xbc, 0x5b, 0x74, 0x12, 0x73, 0x78,
                0x4b, 0xd2)

namespace kq::automation {

// What the type libraries call a core class: its dual interface and its class.
template <class Core>
struct Described;
#define KQ_X(library, coclass, core, origin) \
    template <>                              \
    struct Described<core> {                 \
        using Interface = ::_##coclass;      \
        using Coclass = ::coclass;           \
    };
KQ_COCLASSES(KQ_X)
#undef KQ_X

template <class Core>
using InterfaceOf = typename Described<Core>::Interface;

// Null for null. As long as an automation object for a core object lives, it is that one.
template <class Core>
Ptr<InterfaceOf<Core>> Wrap(std::shared_ptr<Core> core);

// Each is instantiated beside the class of its object.
#define KQ_X(library, coclass, core, origin) extern template Ptr<::_##coclass> Wrap(std::shared_ptr<core>);
KQ_COCLASSES(KQ_X)
#undef KQ_X

// Null for Nothing; TypeMismatch for an object of another kind.
template <class Core>
std::shared_ptr<Core> Unwrap(IUnknown* object) {
    if (!object) return nullptr;
    const auto ours = Ptr<IUnknown>(object).As<IHasCore>();
    const void* core = ours ? ours->CoreOf(__uuidof(InterfaceOf<Core>)) : nullptr;
    if (!core) Raise(RuntimeError::TypeMismatch);
    return *static_cast<const std::shared_ptr<Core>*>(core);
}

// What a block holds, as hosts see it: a text, for raw data an array of bytes.
Variant DataOf(const Block& block);
// The core's value; one that it does not know raises error 5.
DataType DataTypeOf(::APDataType type);

// An argument by reference, as the core takes it.
inline std::string In(BSTR* text) {
    return TextOf(Given(text));
}
inline std::int32_t In(long* number) {
    return static_cast<std::int32_t>(Given(number));
}
inline bool In(VARIANT_BOOL* value) {
    return Given(value) != VARIANT_FALSE;
}

}  // namespace kq::automation
