// Messages and their elements. Both are values in the core: what is taken out of one is a copy, made into an
// object of its own.
#include "automation/Object.h"
#include "automation/Objects.h"
#include "automation/Snapshot.h"

namespace kq::automation {
namespace {

Ptr<::_XMLElement> WrapCopy(const XMLElement* element) {
    if (!element) Raise(RuntimeError::InvalidProcedureCall);
    return Wrap(std::make_shared<XMLElement>(*element));
}

const XMLElement& ElementIn(::_XMLElement* object) {
    const auto element = Unwrap<XMLElement>(object);
    if (!element) Raise(RuntimeError::ObjectNotSet);
    return *element;  // the caller's reference keeps it
}

}  // namespace

template <>
class ObjectOf<XMLElement> final : public Object<XMLElement> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE Initialize(BSTR Name, BSTR Text) override {
        return Do([&] { *core_ = XMLElement(TextOf(Name), TextOf(Text)); });
    }
    HRESULT STDMETHODCALLTYPE get_Name(BSTR* Result) override {
        return Get(Result, [&] { return core_->Name(); });
    }
    HRESULT STDMETHODCALLTYPE get_Text(BSTR* Result) override {
        return Get(Result, [&] { return core_->Text(); });
    }
    HRESULT STDMETHODCALLTYPE put_Text(BSTR Value) override {
        return Do([&] { core_->SetText(TextOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_Attribute(BSTR Name, BSTR* Result) override {
        return Get(Result, [&] { return core_->Attribute(TextOf(Name)); });
    }
    HRESULT STDMETHODCALLTYPE put_Attribute(BSTR Name, BSTR Value) override {
        return Do([&] { core_->SetAttribute(TextOf(Name), TextOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_AttributeNames(SAFEARRAY** Result) override {
        return Get(Result, [&] {
            std::vector<std::string> names;
            for (const auto& attribute : core_->Attributes())
                names.push_back(attribute.name);
            return names;
        });
    }
    HRESULT STDMETHODCALLTYPE get_Count(long* Result) override {
        return Get(Result, [&] { return static_cast<std::int32_t>(core_->Children().size()); });
    }
    HRESULT STDMETHODCALLTYPE get_Item(VARIANT Index, ::_XMLElement** Result) override {
        return Get(Result, [&] {
            return AtIndex(
                Index, [&](const std::string& path) { return WrapCopy(std::as_const(*core_).Find(path)); },
                [&](std::int32_t position) { return WrapCopy(Child(position)); });
        });
    }
    HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** Result) override {
        return Get(Result, [&] {
            return EnumeratorOver(core_->Children(),
                                  [](const XMLElement& child) { return WrapCopy(&child); });
        });
    }
    HRESULT STDMETHODCALLTYPE Exists(BSTR Path, VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Find(TextOf(Path)) != nullptr; });
    }
    HRESULT STDMETHODCALLTYPE TextOf(BSTR Path, BSTR* Result) override {
        return Get(Result, [&] { return core_->TextOf(automation::TextOf(Path)); });
    }
    HRESULT STDMETHODCALLTYPE Add(BSTR Name, BSTR Text) override {
        return Do([&] { core_->Add(TextOf(Name), TextOf(Text)); });
    }
    HRESULT STDMETHODCALLTYPE AddElement(::_XMLElement* Element) override {
        return Do([&] { core_->Add(XMLElement(ElementIn(Element))); });
    }
    HRESULT STDMETHODCALLTYPE Remove(BSTR Name, long* Result) override {
        return Get(Result, [&] { return static_cast<std::int32_t>(core_->Remove(TextOf(Name))); });
    }

 private:
    static std::string TextOf(BSTR text) { return automation::TextOf(text); }

    const XMLElement* Child(std::int32_t position) const {
        const auto& children = std::as_const(*core_).Children();
        if (position < 1 || static_cast<std::size_t>(position) > children.size()) return nullptr;
        return &children[static_cast<std::size_t>(position) - 1];
    }
};

template <>
class ObjectOf<XMLMessage> final : public Object<XMLMessage> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_Type(BSTR* Result) override {
        return Get(Result, [&] { return core_->Type(); });
    }
    HRESULT STDMETHODCALLTYPE put_Type(BSTR Value) override {
        return Do([&] { core_->SetType(TextOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_Version(BSTR* Result) override {
        return Get(Result, [&] { return core_->Version(); });
    }
    HRESULT STDMETHODCALLTYPE put_Version(BSTR Value) override {
        return Do([&] { core_->SetVersion(TextOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_Schema(BSTR* Result) override {
        return Get(Result, [&] { return core_->Schema(); });
    }
    HRESULT STDMETHODCALLTYPE put_Schema(BSTR Value) override {
        return Do([&] { core_->SetSchema(TextOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_DestinationType(BSTR* Result) override {
        return Get(Result, [&] { return core_->Destination().type; });
    }
    HRESULT STDMETHODCALLTYPE get_DestinationSubType(BSTR* Result) override {
        return Get(Result, [&] { return core_->Destination().subtype; });
    }
    HRESULT STDMETHODCALLTYPE SetDestination(BSTR Type, BSTR SubType) override {
        return Do([&] { core_->SetDestination({TextOf(Type), TextOf(SubType)}); });
    }
    HRESULT STDMETHODCALLTYPE get_Field(BSTR Name, BSTR* Result) override {
        return Get(Result, [&] { return core_->Field(TextOf(Name)); });
    }
    HRESULT STDMETHODCALLTYPE put_Field(BSTR Name, BSTR Value) override {
        return Do([&] { core_->SetField(TextOf(Name), TextOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_FieldNames(SAFEARRAY** Result) override {
        return Get(Result, [&] {
            std::vector<std::string> names;
            for (const auto& field : core_->Root().Children())
                names.push_back(field.Name());
            return names;
        });
    }
    HRESULT STDMETHODCALLTYPE HasField(BSTR Name, VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->HasField(TextOf(Name)); });
    }
    HRESULT STDMETHODCALLTYPE SetMessageField(BSTR Name, ::_XMLMessage* Message) override {
        return Do([&] {
            const auto message = Unwrap<XMLMessage>(Message);
            if (!message) Raise(RuntimeError::ObjectNotSet);
            core_->SetMessageField(TextOf(Name), *message);
        });
    }
    HRESULT STDMETHODCALLTYPE SetXMLField(BSTR Name, BSTR XML) override {
        return Do([&] { core_->SetXMLField(TextOf(Name), TextOf(XML)); });
    }
    HRESULT STDMETHODCALLTYPE SetElementField(::_XMLElement* Element) override {
        return Do([&] { core_->SetField(XMLElement(ElementIn(Element))); });
    }
    HRESULT STDMETHODCALLTYPE RemoveField(BSTR Name) override {
        return Do([&] { core_->RemoveField(TextOf(Name)); });
    }
    HRESULT STDMETHODCALLTYPE get_Root(::_XMLElement** Result) override {
        return Get(Result, [&] { return WrapCopy(&core_->Root()); });
    }
    HRESULT STDMETHODCALLTYPE putref_Root(::_XMLElement* Value) override {
        return Do([&] { core_->Root() = ElementIn(Value); });
    }
    HRESULT STDMETHODCALLTYPE Element(BSTR Path, ::_XMLElement** Result) override {
        return Get(Result, [&] { return WrapCopy(std::as_const(*core_).Root().Find(TextOf(Path))); });
    }
    HRESULT STDMETHODCALLTYPE ToXML(BSTR* Result) override {
        return Get(Result, [&] { return core_->ToXML(); });
    }
    HRESULT STDMETHODCALLTYPE LoadXML(BSTR XML) override {
        return Do([&] { core_->LoadXML(TextOf(XML)); });
    }
    HRESULT STDMETHODCALLTYPE ToBusXML(BSTR* Result) override {
        return Get(Result, [&] { return core_->ToBusXML(); });
    }
    HRESULT STDMETHODCALLTYPE LoadBusXML(BSTR XML) override {
        return Do([&] { core_->LoadBusXML(TextOf(XML)); });
    }
    HRESULT STDMETHODCALLTYPE ToBusMessage(BSTR Schema, ::_XMLMessage** Result) override {
        return Get(Result,
                   [&] { return Wrap(std::make_shared<XMLMessage>(core_->ToBusMessage(TextOf(Schema)))); });
    }
    HRESULT STDMETHODCALLTYPE ToClientMessage(::_XMLMessage** Result) override {
        return Get(Result, [&] { return Wrap(std::make_shared<XMLMessage>(core_->ToClientMessage())); });
    }
    HRESULT STDMETHODCALLTYPE Copy(::_XMLMessage** Result) override {
        return Get(Result, [&] { return Wrap(std::make_shared<XMLMessage>(*core_)); });
    }
};

template Ptr<InterfaceOf<XMLElement>> Wrap(std::shared_ptr<XMLElement>);
template Ptr<InterfaceOf<XMLMessage>> Wrap(std::shared_ptr<XMLMessage>);

}  // namespace kq::automation
