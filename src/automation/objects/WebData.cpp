// Translation tables, profiles and their tables.
#include "automation/Events.h"
#include "automation/Object.h"
#include "automation/Objects.h"
#include "automation/Snapshot.h"

namespace kq::automation {
namespace {

enum ProfilesEvent : DISPID { kProfileAdded = 1, kProfileRemoved };

}  // namespace

template <>
class ObjectOf<TranslationTable> final : public Object<TranslationTable> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_Language(BSTR* Result) override {
        return Get(Result, [&] { return core_->Language(); });
    }
    HRESULT STDMETHODCALLTYPE put_Language(BSTR Value) override {
        return Do([&] { core_->SetLanguage(TextOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_Translate(BSTR Key, BSTR* Result) override {
        return Get(Result, [&] { return core_->Translate(TextOf(Key)); });
    }
    HRESULT STDMETHODCALLTYPE SetText(BSTR Key, BSTR Text) override {
        return Do([&] { core_->Set(TextOf(Key), TextOf(Text)); });
    }
    HRESULT STDMETHODCALLTYPE Remove(BSTR Key) override {
        return Do([&] { core_->Remove(TextOf(Key)); });
    }
    HRESULT STDMETHODCALLTYPE Exists(BSTR Key, VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Exists(TextOf(Key)); });
    }
    HRESULT STDMETHODCALLTYPE get_Count(long* Result) override {
        return Get(Result, [&] { return core_->Count(); });
    }
    HRESULT STDMETHODCALLTYPE get_Keys(SAFEARRAY** Result) override {
        return Get(Result, [&] { return core_->Keys(); });
    }
    HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** Result) override {
        return Get(Result,
                   [&] { return EnumeratorOver(core_->Keys(), [](const auto& key) { return key; }); });
    }
    HRESULT STDMETHODCALLTYPE ToXML(BSTR* Result) override {
        return Get(Result, [&] { return core_->ToXML(); });
    }
    HRESULT STDMETHODCALLTYPE LoadXML(BSTR XML) override {
        return Do([&] { core_->LoadXML(TextOf(XML)); });
    }
};

template <>
class ObjectOf<DataRow> final : public Object<DataRow> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_Value(BSTR Column, BSTR* Result) override {
        return Get(Result, [&] { return core_->Value(TextOf(Column)); });
    }
    HRESULT STDMETHODCALLTYPE put_Value(BSTR Column, BSTR Value) override {
        return Do([&] { core_->SetValue(TextOf(Column), TextOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE ValueOr(BSTR Column, BSTR DefaultValue, BSTR* Result) override {
        return Get(Result, [&] { return core_->Value(TextOf(Column), TextOf(DefaultValue)); });
    }
};

template <>
class ObjectOf<DataRows> final : public Object<DataRows> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_Item(long Index, ::_DataRow** Result) override {
        return Get(Result, [&] { return Wrap(core_->Item(static_cast<std::int32_t>(Index))); });
    }
    HRESULT STDMETHODCALLTYPE get_Count(long* Result) override {
        return Get(Result, [&] { return core_->Count(); });
    }
    HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** Result) override {
        return Get(Result, [&] { return EnumeratorOver(*core_, [](const auto& row) { return Wrap(row); }); });
    }
};

template <>
class ObjectOf<DataTable> final : public Object<DataTable> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_Name(BSTR* Result) override {
        return Get(Result, [&] { return core_->Name(); });
    }
    HRESULT STDMETHODCALLTYPE get_Columns(SAFEARRAY** Result) override {
        return Get(Result, [&] { return core_->Columns(); });
    }
    HRESULT STDMETHODCALLTYPE get_Rows(::_DataRows** Result) override {
        return Get(Result, [&] { return Wrap(std::make_shared<DataRows>(core_->Rows())); });
    }
    HRESULT STDMETHODCALLTYPE Select(BSTR Column, BSTR Value, ::_DataRows** Result) override {
        return Get(Result, [&] {
            return Wrap(std::make_shared<DataRows>(core_->Select(TextOf(Column), TextOf(Value))));
        });
    }
    HRESULT STDMETHODCALLTYPE AddRow(::_DataRow** Result) override {
        return Get(Result, [&] { return Wrap(core_->AddRow()); });
    }
    HRESULT STDMETHODCALLTYPE RemoveRow(::_DataRow* Row) override {
        return Do([&] { core_->RemoveRow(Unwrap<DataRow>(Row)); });
    }
    HRESULT STDMETHODCALLTYPE ToXML(BSTR* Result) override {
        return Get(Result, [&] { return core_->ToXML(); });
    }
    HRESULT STDMETHODCALLTYPE LoadXML(BSTR XML) override {
        return Do([&] { core_->LoadXML(TextOf(XML)); });
    }
};

template <>
class ObjectOf<TableStore> final : public Object<TableStore> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_Item(VARIANT NameIndex, ::_DataTable** Result) override {
        return Get(Result, [&] {
            const auto item = [&](const auto& index) { return Wrap(core_->Item(index)); };
            return AtIndex(NameIndex, item, item);
        });
    }
    HRESULT STDMETHODCALLTYPE get_Count(long* Result) override {
        return Get(Result, [&] { return core_->Count(); });
    }
    HRESULT STDMETHODCALLTYPE Exists(BSTR Name, VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Exists(TextOf(Name)); });
    }
    HRESULT STDMETHODCALLTYPE Create(BSTR Name, BSTR Columns, ::_DataTable** Result) override {
        return Get(Result, [&] { return Wrap(core_->Create(TextOf(Name), TextOf(Columns))); });
    }
    HRESULT STDMETHODCALLTYPE Add(::_DataTable* Table) override {
        return Do([&] { core_->Add(Unwrap<DataTable>(Table)); });
    }
    HRESULT STDMETHODCALLTYPE Remove(BSTR Name) override {
        return Do([&] { core_->Remove(TextOf(Name)); });
    }
    HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** Result) override {
        return Get(Result,
                   [&] { return EnumeratorOver(*core_, [](const auto& table) { return Wrap(table); }); });
    }
};

template <>
class ObjectOf<Profile> final : public Object<Profile> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_Name(BSTR* Result) override {
        return Get(Result, [&] { return core_->Name(); });
    }
    HRESULT STDMETHODCALLTYPE get_Tables(::_TableStore** Result) override {
        return Get(Result, [&] { return Wrap(std::shared_ptr<TableStore>(core_, &core_->Tables())); });
    }
    HRESULT STDMETHODCALLTYPE Copy(BSTR Name, ::_Profile** Result) override {
        return Get(Result, [&] { return Wrap(core_->Copy(TextOf(Name))); });
    }
    HRESULT STDMETHODCALLTYPE ToXML(BSTR* Result) override {
        return Get(Result, [&] { return core_->ToXML(); });
    }
    HRESULT STDMETHODCALLTYPE LoadXML(BSTR XML) override {
        return Do([&] { core_->LoadXML(TextOf(XML)); });
    }
};

template <>
class ObjectOf<Profiles> final : public Object<Profiles, EventSource<::_ProfilesEvents>> {
 public:
    explicit ObjectOf(CorePtr core) : Object(std::move(core)) {
        core_->ProfileAdded.Connect(owner_, [this](const std::shared_ptr<Profile>& profile) {
            Fire(kProfileAdded, [&] { return Arguments(Wrap(profile)); });
        });
        core_->ProfileRemoved.Connect(owner_, [this](const std::string& name) {
            Fire(kProfileRemoved, [&] { return Arguments(name); });
        });
    }

    HRESULT STDMETHODCALLTYPE get_Item(VARIANT NameIndex, ::_Profile** Result) override {
        return Get(Result, [&] {
            const auto item = [&](const auto& index) { return Wrap(core_->Item(index)); };
            return AtIndex(NameIndex, item, item);
        });
    }
    HRESULT STDMETHODCALLTYPE get_Count(long* Result) override {
        return Get(Result, [&] { return core_->Count(); });
    }
    HRESULT STDMETHODCALLTYPE Exists(BSTR Name, VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Exists(TextOf(Name)); });
    }
    HRESULT STDMETHODCALLTYPE AddNew(BSTR Name, ::_Profile** Result) override {
        return Get(Result, [&] { return Wrap(core_->Add(std::make_shared<kq::Profile>(TextOf(Name)))); });
    }
    HRESULT STDMETHODCALLTYPE Add(::_Profile* Profile) override {
        return Do([&] { core_->Add(Unwrap<kq::Profile>(Profile)); });
    }
    HRESULT STDMETHODCALLTYPE Remove(BSTR Name) override {
        return Do([&] { core_->Remove(TextOf(Name)); });
    }
    HRESULT STDMETHODCALLTYPE Rename(BSTR Name, BSTR NewName) override {
        return Do([&] { core_->Rename(TextOf(Name), TextOf(NewName)); });
    }
    HRESULT STDMETHODCALLTYPE get_LastUsed(BSTR* Result) override {
        return Get(Result, [&] { return core_->LastUsed(); });
    }
    HRESULT STDMETHODCALLTYPE put_LastUsed(BSTR Value) override {
        return Do([&] { core_->SetLastUsed(TextOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** Result) override {
        return Get(Result,
                   [&] { return EnumeratorOver(*core_, [](const auto& profile) { return Wrap(profile); }); });
    }
    HRESULT STDMETHODCALLTYPE ToXML(BSTR* Result) override {
        return Get(Result, [&] { return core_->ToXML(); });
    }
    HRESULT STDMETHODCALLTYPE LoadXML(BSTR XML) override {
        return Do([&] { core_->LoadXML(TextOf(XML)); });
    }

 private:
    Owner owner_;
};

template Ptr<InterfaceOf<TranslationTable>> Wrap(std::shared_ptr<TranslationTable>);
template Ptr<InterfaceOf<DataRow>> Wrap(std::shared_ptr<DataRow>);
template Ptr<InterfaceOf<DataRows>> Wrap(std::shared_ptr<DataRows>);
template Ptr<InterfaceOf<DataTable>> Wrap(std::shared_ptr<DataTable>);
template Ptr<InterfaceOf<TableStore>> Wrap(std::shared_ptr<TableStore>);
template Ptr<InterfaceOf<Profile>> Wrap(std::shared_ptr<Profile>);
template Ptr<InterfaceOf<Profiles>> Wrap(std::shared_ptr<Profiles>);

}  // namespace kq::automation
