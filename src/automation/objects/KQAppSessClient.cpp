// The client object.
#include <kqappsession/KQAppSessClient.h>

#include "automation/AppObjectOfHost.h"
#include "automation/Object.h"
#include "automation/Objects.h"
#include "automation/Unfinished.h"

namespace kq::automation {
namespace {

// A text as it is loaded, an object as it is; Empty, Null and Nothing are nothing.
template <class T>
KQAppSessClient::TextOrObject<T> TextOrObjectOf(VARIANT* argument) {
    const Variant value = Resolve(Given(argument));
    if (value.vt == VT_BSTR) return TextOf(value.bstrVal);
    auto object = Unwrap<T>(ObjectOr(&value).Get());
    if (!object) return std::monostate();
    return object;
}

// What a profile upload returns: no value.
Variant Nothing() {
    return {};
}

}  // namespace

template <>
class ObjectOf<KQAppSessClient> final : public Object<KQAppSessClient> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_TranslationTable(::_TranslationTable** Result) override {
        return Get(Result, [&] { return Wrap(core_->TranslationTable()); });
    }
    HRESULT STDMETHODCALLTYPE get_Profiles(::_Profiles** Result) override {
        return Get(Result, [&] { return Wrap(core_->Profiles()); });
    }
    HRESULT STDMETHODCALLTYPE get_CurrentProfile(::_Profile** Result) override {
        return Get(Result, [&] { return Wrap(core_->CurrentProfile()); });
    }
    HRESULT STDMETHODCALLTYPE putref_CurrentProfile(::_Profile** Value) override {
        return Do([&] { core_->SetCurrentProfile(Unwrap<Profile>(Given(Value))); });
    }
    HRESULT STDMETHODCALLTYPE get_SessionClient(::_APClient** Result) override {
        return Get(Result, [&] { return Wrap(core_->SessionClient()); });
    }
    HRESULT STDMETHODCALLTYPE get_SessionInfo(::_KQAppSessionInfo** Result) override {
        return Get(Result, [&] { return Wrap(core_->SessionInfo()); });
    }
    HRESULT STDMETHODCALLTYPE get_UseProfiles(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->UseProfiles(); });
    }
    HRESULT STDMETHODCALLTYPE put_UseProfiles(VARIANT_BOOL* Value) override {
        return Do([&] { core_->SetUseProfiles(In(Value)); });
    }

    HRESULT STDMETHODCALLTYPE Login(BSTR* AppID, BSTR* InterfaceVersion, IDispatch** AppObj,
                                    VARIANT* CommandStr, VARIANT* AppIcon, VARIANT_BOOL* Result) override {
        return Get(Result, [&] {
            CheckPicture(AppIcon);
            return core_->Login(In(AppID), In(InterfaceVersion), AppObjectOf(Ptr<IDispatch>(Given(AppObj))),
                                TextOr(CommandStr));
        });
    }
    HRESULT STDMETHODCALLTYPE ChangeConfiguration(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->ChangeConfiguration(); });
    }

#define KQ_X(member, parameters)                           \
    HRESULT STDMETHODCALLTYPE member parameters override { \
        return Do([] { RaiseNotImplemented(#member); });   \
    }
    KQ_UNFINISHED_CLIENT_MEMBERS(KQ_X)
#undef KQ_X

    HRESULT STDMETHODCALLTYPE UpdateProfiles(VARIANT* Result) override {
        return Get(Result, [&] {
            core_->UpdateProfiles();
            return Nothing();
        });
    }
    HRESULT STDMETHODCALLTYPE AddReplaceProfile(::_Profile** ChangedProfile, VARIANT* Result) override {
        return Get(Result, [&] {
            core_->AddReplaceProfile(Unwrap<Profile>(Given(ChangedProfile)));
            return Nothing();
        });
    }
    HRESULT STDMETHODCALLTYPE get_LoginState(::KQAppSessLoginState* Result) override {
        return Get(Result, [&] { return core_->LoginState(); });
    }
    HRESULT STDMETHODCALLTYPE get_AppServerAddress(BSTR* Result) override {
        return Get(Result, [&] { return core_->AppServerAddress(); });
    }
    HRESULT STDMETHODCALLTYPE put_AppServerAddress(BSTR* Value) override {
        return Do([&] { core_->SetAppServerAddress(In(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_AppServerPort(long* Result) override {
        return Get(Result, [&] { return core_->AppServerPort(); });
    }
    HRESULT STDMETHODCALLTYPE put_AppServerPort(long* Value) override {
        return Do([&] { core_->SetAppServerPort(In(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_AppServerTimeOut(long* Result) override {
        return Get(Result, [&] { return core_->AppServerTimeOut(); });
    }
    HRESULT STDMETHODCALLTYPE put_AppServerTimeOut(long* Value) override {
        return Do([&] { core_->SetAppServerTimeOut(In(Value)); });
    }
    HRESULT STDMETHODCALLTYPE SetSystemLoginState(VARIANT* SessionMsg, VARIANT* TranslationTable,
                                                  VARIANT* Profiles, BSTR* CurrentProfileName,
                                                  BSTR* AppServerAddress, long* AppServerPort,
                                                  long* AppServerTimeOut) override {
        return Do([&] {
            core_->SetSystemLoginState(TextOrObjectOf<XMLMessage>(SessionMsg),
                                       TextOrObjectOf<kq::TranslationTable>(TranslationTable),
                                       TextOrObjectOf<kq::Profiles>(Profiles), In(CurrentProfileName),
                                       In(AppServerAddress), In(AppServerPort), In(AppServerTimeOut));
        });
    }
    HRESULT STDMETHODCALLTYPE SystemLogin(VARIANT_BOOL* Interactive, BSTR* AppID, BSTR* InterfaceVersion,
                                          VARIANT* ClientVersion, VARIANT* AppObj, VARIANT* CommandStr,
                                          VARIANT* AppIcon, VARIANT* LoginID, VARIANT* Password,
                                          VARIANT* Address, VARIANT* Port, VARIANT* TimeOut,
                                          VARIANT_BOOL* Result) override {
        return SystemLogin2(Interactive, AppID, InterfaceVersion, ClientVersion, AppObj, CommandStr, AppIcon,
                            LoginID, Password, Address, Port, TimeOut, nullptr, Result);
    }
    HRESULT STDMETHODCALLTYPE ServerLogin(VARIANT_BOOL* Interactive, VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->ServerLogin(In(Interactive)); });
    }
    HRESULT STDMETHODCALLTYPE UpdateProfilesEx(VARIANT_BOOL* Interactive, VARIANT* Address, VARIANT* Port,
                                               VARIANT* TimeOut, VARIANT_BOOL* Result) override {
        return Get(Result, [&] {
            std::string address = TextOr(Address);
            std::int32_t port = LongOr(Port);
            std::int32_t time_out = LongOr(TimeOut);
            const auto show_caller = [&] {
                PutBack(Address, VariantOf(address));
                PutBack(Port, VariantOf(port));
                PutBack(TimeOut, VariantOf(time_out));
            };
            try {
                const bool sent = core_->UpdateProfilesEx(In(Interactive), address, port, time_out);
                show_caller();
                return sent;
            } catch (...) {
                const HRESULT shown = Guard(__uuidof(Main), show_caller);
                static_cast<void>(shown);  // the upload's own error counts, not a variable too small
                throw;
            }
        });
    }
    HRESULT STDMETHODCALLTYPE TerminateClient() override {
        return Do([&] { core_->TerminateClient(); });
    }
    HRESULT STDMETHODCALLTYPE AddReplaceProfileASP(::_Profile** ChangedProfile, VARIANT* Result) override {
        return Get(Result, [&] {
            core_->AddReplaceProfileASP(Unwrap<Profile>(Given(ChangedProfile)));
            return Nothing();
        });
    }
    HRESULT STDMETHODCALLTYPE SetSystemConnectState(BSTR* SystemAddress, long* SystemPort,
                                                    long* SystemTimeOut) override {
        return Do(
            [&] { core_->SetSystemConnectState(In(SystemAddress), In(SystemPort), In(SystemTimeOut)); });
    }
    HRESULT STDMETHODCALLTYPE get_RestrictIP(BSTR* Result) override {
        return Get(Result, [&] { return core_->RestrictIP(); });
    }
    HRESULT STDMETHODCALLTYPE put_RestrictIP(BSTR* Value) override {
        return Do([&] { core_->SetRestrictIP(In(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_RestrictPort(long* Result) override {
        return Get(Result, [&] { return core_->RestrictPort(); });
    }
    HRESULT STDMETHODCALLTYPE put_RestrictPort(long* Value) override {
        return Do([&] { core_->SetRestrictPort(In(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_UseASServerForLogin(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->UseASServerForLogin(); });
    }
    HRESULT STDMETHODCALLTYPE put_UseASServerForLogin(VARIANT_BOOL* Value) override {
        return Do([&] { core_->SetUseASServerForLogin(In(Value)); });
    }
    HRESULT STDMETHODCALLTYPE IPAddressFromHostName(BSTR* HostName, BSTR* Result) override {
        return Get(Result, [&] { return core_->IPAddressFromHostName(In(HostName)); });
    }
    HRESULT STDMETHODCALLTYPE SetSystemConnectState2(BSTR* SystemAddress, long* SystemPort,
                                                     long* SystemTimeOut,
                                                     VARIANT_BOOL* UseASServerForLogin) override {
        return Do([&] {
            core_->SetSystemConnectState2(In(SystemAddress), In(SystemPort), In(SystemTimeOut),
                                          In(UseASServerForLogin));
        });
    }
    HRESULT STDMETHODCALLTYPE SystemLogin2(VARIANT_BOOL* Interactive, BSTR* AppID, BSTR* InterfaceVersion,
                                           VARIANT* ClientVersion, VARIANT* AppObj, VARIANT* CommandStr,
                                           VARIANT* AppIcon, VARIANT* LoginID, VARIANT* Password,
                                           VARIANT* Address, VARIANT* Port, VARIANT* TimeOut,
                                           VARIANT* UseASServerForLogin, VARIANT_BOOL* Result) override {
        return Get(Result, [&] {
            SystemLoginArguments login;
            login.AppID = In(AppID);
            login.InterfaceVersion = In(InterfaceVersion);
            login.ClientVersion = TextOr(ClientVersion);
            login.AppObj = AppObjectOf(ObjectOr(AppObj));
            login.CommandStr = TextOr(CommandStr);
            CheckPicture(AppIcon);
            login.LoginID = TextOr(LoginID);
            login.Password = SecretOr(Password);
            login.Address = TextOr(Address);
            login.Port = LongOr(Port);
            login.TimeOut = LongOr(TimeOut);
            if (!Missing(UseASServerForLogin)) login.UseASServerForLogin = BooleanOr(UseASServerForLogin);
            return core_->SystemLogin2(In(Interactive), login);
        });
    }
};

template Ptr<InterfaceOf<KQAppSessClient>> Wrap(std::shared_ptr<KQAppSessClient>);

}  // namespace kq::automation
