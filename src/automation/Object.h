// What every automation object has in common: one core object, reference counting, dispatch by the type
// library, error objects, class information and identity.
//
// The object of a core class is ObjectOf<core class>, derived from Object<core class>; a line beside it
// instantiates its Wrap.
#pragma once

#include <memory>
#include <mutex>
#include <oaidl.h>
#include <ocidl.h>
#include <unordered_map>

#include "automation/Convert.h"
#include "automation/Dispatch.h"
#include "automation/Guard.h"
#include "automation/Module.h"
#include "automation/Objects.h"
#include "automation/TypeLibraries.h"

namespace kq::automation {

// The automation object of a core class.
template <class Core>
class ObjectOf;

// The objects that live, by the core object they stand for.
template <class Core>
class Identities {
 public:
    static Ptr<ObjectOf<Core>> Find(const void* core) {
        const std::lock_guard lock(mutex_);
        const auto found = objects_.find(core);
        return Ptr<ObjectOf<Core>>(found == objects_.end() ? nullptr : found->second);
    }
    static void Add(const void* core, ObjectOf<Core>* object) {
        const std::lock_guard lock(mutex_);
        objects_[core] = object;
    }
    static void Remove(const void* core) {
        const std::lock_guard lock(mutex_);
        objects_.erase(core);
    }

 private:
    static inline std::mutex mutex_;
    static inline std::unordered_map<const void*, ObjectOf<Core>*> objects_;
};

// A mixin is a base class with `void* Query(REFIID)` for its interfaces and `IID DefaultSource()`.
template <class Core, class... Mixins>
class Object : public InterfaceOf<Core>,
               public ISupportErrorInfo,
               public IProvideClassInfo2,
               public IHasCore,
               public Mixins... {
 public:
    using Main = InterfaceOf<Core>;
    using Coclass = typename Described<Core>::Coclass;
    using CorePtr = std::shared_ptr<Core>;

    explicit Object(CorePtr core) : core_(std::move(core)) {
        Identities<Core>::Add(core_.get(), static_cast<ObjectOf<Core>*>(this));
    }
    virtual ~Object() { Identities<Core>::Remove(core_.get()); }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        *out = Find(iid);
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return static_cast<ULONG>(InterlockedIncrement(&references_));
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const LONG left = InterlockedDecrement(&references_);
        if (left == 0) {
            references_ = 1;  // what the core's end calls may take and drop references
            delete static_cast<ObjectOf<Core>*>(this);
        }
        return static_cast<ULONG>(left);
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (!count) return E_POINTER;
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** out) override {
        if (index != 0) return DISP_E_BADINDEX;
        return InfoInto(__uuidof(Main), out);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        return IdsOfNames(__uuidof(Main), names, count, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID locale, WORD flags, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO* exception, UINT* wrong_argument) override {
        return automation::Invoke(__uuidof(Main), static_cast<Main*>(this), id, locale, flags, arguments,
                                  result, exception, wrong_argument);
    }

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override {
        return iid == __uuidof(Main) || iid == IID_IDispatch ? S_OK : S_FALSE;
    }

    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** out) override {
        return InfoInto(__uuidof(Coclass), out);
    }
    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* out) override {
        if (!out) return E_POINTER;
        *out = IID_NULL;
        if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID || sizeof...(Mixins) == 0) return E_INVALIDARG;
        ((*out = Mixins::DefaultSource()), ...);
        return S_OK;
    }

    const void* CoreOf(REFIID interface_id) noexcept override {
        return interface_id == __uuidof(Main) ? &core_ : nullptr;
    }

 protected:
    template <class F>
    HRESULT Do(F&& body) noexcept {
        const Ptr<Main> keep(this);
        return Guard(__uuidof(Main), body);
    }
    // Puts what the body returns into the out parameter.
    template <class T, class F>
    HRESULT Get(T* out, F&& body) noexcept {
        return Do([&] {
            Given(out) = T{};
            Put(out, body());
        });
    }

    CorePtr core_;

 private:
    void* Find(REFIID iid) {
        if (iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(Main))
            return static_cast<Main*>(this);
        if (iid == IID_ISupportErrorInfo) return static_cast<ISupportErrorInfo*>(this);
        if (iid == IID_IProvideClassInfo || iid == IID_IProvideClassInfo2) {
            return static_cast<IProvideClassInfo2*>(this);
        }
        if (iid == __uuidof(IHasCore)) return static_cast<IHasCore*>(this);
        void* found = nullptr;
        static_cast<void>(((found = Mixins::Query(iid)) || ...));
        return found;
    }

    HRESULT InfoInto(REFGUID id, ITypeInfo** out) {
        return Guard(__uuidof(Main), [&] {
            Give(out, TypeInfoOf(id));
            if (!*out) throw Failure(TYPE_E_ELEMENTNOTFOUND);
        });
    }

    LONG references_ = 1;
    Living living_;
};

template <class Core>
Ptr<InterfaceOf<Core>> Wrap(std::shared_ptr<Core> core) {
    if (!core) return {};
    if (const auto known = Identities<Core>::Find(core.get())) return Ptr<InterfaceOf<Core>>(known.Get());
    return Ptr<InterfaceOf<Core>>::Attach(new ObjectOf<Core>(std::move(core)));
}

}  // namespace kq::automation
