// Session records and their collection.
#include "automation/Object.h"
#include "automation/Objects.h"
#include "automation/Snapshot.h"

namespace kq::automation {

template <>
class ObjectOf<KQAppSessionInfo> final : public Object<KQAppSessionInfo> {
 public:
    using Object::Object;

#define KQ_TEXTS(X) \
    X(AppID)        \
    X(SessionID)    \
    X(LoginID)      \
    X(FirstName)    \
    X(LastName)     \
    X(EnterpriseID) \
    X(OperatorID)   \
    X(Language)     \
    X(TZ)           \
    X(DST)          \
    X(BUID)         \
    X(Password)
#define KQ_X(property)                                                \
    HRESULT STDMETHODCALLTYPE get_##property(BSTR* Result) override { \
        return Get(Result, [&] { return core_->property(); });        \
    }
    KQ_TEXTS(KQ_X)
#undef KQ_X
#undef KQ_TEXTS

    HRESULT STDMETHODCALLTYPE get_UserUID(long* Result) override {
        return Get(Result, [&] { return core_->UserUID(); });
    }
    HRESULT STDMETHODCALLTYPE get_BUIDList(SAFEARRAY** Result) override {
        return Get(Result, [&] { return core_->BUIDList(); });
    }
    HRESULT STDMETHODCALLTYPE get_PrivilegeList(SAFEARRAY** Result) override {
        return Get(Result, [&] { return core_->PrivilegeList(); });
    }
    HRESULT STDMETHODCALLTYPE get_Client(::_APClient** Result) override {
        return Get(Result, [&] { return Wrap(core_->Client()); });
    }
    HRESULT STDMETHODCALLTYPE Export(::_XMLMessage** Result) override {
        return Get(Result, [&] { return Wrap(core_->Export()); });
    }
    HRESULT STDMETHODCALLTYPE get_IsInitialized(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->IsInitialized(); });
    }
};

template <>
class ObjectOf<KQAppSessionInfos> final : public Object<KQAppSessionInfos> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_Session(VARIANT SessionIDIndex, ::_KQAppSessionInfo** Result) override {
        return Get(Result, [&] {
            const auto session = [&](const auto& index) { return Wrap(core_->Session(index)); };
            return AtIndex(SessionIDIndex, session, session);
        });
    }
    HRESULT STDMETHODCALLTYPE Exists(BSTR SessionID, VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Exists(TextOf(SessionID)); });
    }
    HRESULT STDMETHODCALLTYPE get_Count(long* Result) override {
        return Get(Result, [&] { return core_->Count(); });
    }
    HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** Result) override {
        return Get(Result, [&] {
            return EnumeratorOver(core_->All(), [](const auto& session) { return Wrap(session); });
        });
    }
};

template Ptr<InterfaceOf<KQAppSessionInfo>> Wrap(std::shared_ptr<KQAppSessionInfo>);
template Ptr<InterfaceOf<KQAppSessionInfos>> Wrap(std::shared_ptr<KQAppSessionInfos>);

}  // namespace kq::automation
