// Parts of the DLL that hosts see only by their effect: conversions, error numbers, the host's application
// object.
#include <dispex.h>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "automation/AppObjectOfHost.h"
#include "automation/Convert.h"

namespace kq::automation {
namespace {

using testing::ElementsAre;

// An application object: answers names, or only expressions as objects of script classes do.
class Application final : public IDispatchEx {
 public:
    explicit Application(bool only_expressions) : only_expressions_(only_expressions) {}
    virtual ~Application() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        const bool known = iid == IID_IUnknown || iid == IID_IDispatch ||
                           (only_expressions_ && iid == __uuidof(IDispatchEx));
        *out = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* id) override {
        return only_expressions_ ? E_NOTIMPL : Find(names[0], id);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kinds, DISPPARAMS*, VARIANT* result,
                                     EXCEPINFO*, UINT*) override {
        if (id == 3 || (id == 4 && kinds != DISPATCH_PROPERTYGET)) return E_FAIL;
        *result = (id == 1 ? VariantOf("C:\\app") : VariantOf(7L)).Detach();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetDispID(BSTR name, DWORD, DISPID* id) override { return Find(name, id); }
    HRESULT STDMETHODCALLTYPE InvokeEx(DISPID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                       IServiceProvider*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DeleteMemberByName(BSTR, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeleteMemberByDispID(DISPID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMemberProperties(DISPID, DWORD, DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMemberName(DISPID, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetNextDispID(DWORD, DISPID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetNameSpaceParent(IUnknown**) override { return E_NOTIMPL; }

 private:
    static HRESULT Find(const wchar_t* name, DISPID* id) {
        const std::map<std::wstring, DISPID> ids{{L"Path", 1}, {L"Major", 2}, {L"Broken", 3}, {L"Value", 4}};
        const auto found = ids.find(name);
        if (found == ids.end()) return DISP_E_UNKNOWNNAME;
        *id = found->second;
        return S_OK;
    }
    bool only_expressions_;
};

class ApplicationObject : public testing::TestWithParam<bool> {};

TEST_P(ApplicationObject, IsAskedByNameAndAnswersAsText) {
    Application application(GetParam());
    const auto object = AppObjectOf(Ptr<IDispatch>(&application));
    EXPECT_EQ(object->Property("Path"), "C:\\app");
    EXPECT_EQ(object->Property("Major"), "7");
    EXPECT_EQ(object->Property("ProductName"), std::nullopt);
    EXPECT_EQ(object->Property("Broken"), std::nullopt);
    EXPECT_EQ(object->Property("Value"), "7");
}

INSTANTIATE_TEST_SUITE_P(Both, ApplicationObject, testing::Bool(), [](const auto& kind) {
    return std::string(kind.param ? "ScriptClasses" : "OtherObjects");
});

TEST(ApplicationObject, IsNoneForNothing) {
    EXPECT_FALSE(AppObjectOf(nullptr));
}

TEST(ErrorNumbers, BecomeFailuresInEveryCase) {
    EXPECT_EQ(ResultOf(static_cast<int>(0x80040A01)), static_cast<HRESULT>(0x80040A01));
    EXPECT_EQ(ResultOf(10060), static_cast<HRESULT>(0x800A274C));
    EXPECT_EQ(ResultOf(0), E_FAIL);
    EXPECT_EQ(ResultOf(0x10000), E_FAIL);
}

TEST(Guard, TurnsEveryExceptionIntoAResult) {
    EXPECT_EQ(Guard(IID_NULL, [] {}), S_OK);
    EXPECT_EQ(Guard(IID_NULL, [] { Raise(RuntimeError::Overflow); }), static_cast<HRESULT>(0x800A0006));
    EXPECT_EQ(Guard(IID_NULL, [] { throw std::bad_alloc(); }), E_OUTOFMEMORY);
    EXPECT_EQ(Guard(IID_NULL, [] { throw std::runtime_error("text"); }), E_FAIL);
    EXPECT_EQ(Guard(IID_NULL, [] { throw 5; }), E_UNEXPECTED);
    EXPECT_EQ(Guard(IID_NULL, [] { Check(E_ACCESSDENIED); }), E_ACCESSDENIED);
}

TEST(Convert, KeepsTextsWithEveryCharacter) {
    const std::string text = std::string("gr\xC3\xBC\xC3\x9F \xF0\x9F\x99\x82") + '\0' + "end";
    EXPECT_EQ(TextOf(VariantOf(text).bstrVal), text);
    EXPECT_EQ(TextOf(static_cast<BSTR>(nullptr)), "");
}

TEST(Convert, KeepsBytes) {
    const std::string bytes("\x00\xFF\x80", 3);
    EXPECT_EQ(BytesOf(VariantOfBytes(bytes)), bytes);
    EXPECT_EQ(BytesOf(VariantOfBytes("")), "");
    EXPECT_THROW(BytesOf(VariantOf(5L)), Error);
}

TEST(Convert, ReadsOptionalArguments) {
    Variant left_out;
    left_out.vt = VT_ERROR;
    left_out.scode = DISP_E_PARAMNOTFOUND;
    const Variant text = VariantOf("7");
    EXPECT_EQ(TextOr(&left_out, "otherwise"), "otherwise");
    EXPECT_EQ(LongOr(nullptr, 3), 3);
    EXPECT_EQ(LongOr(&text), 7);
    EXPECT_TRUE(BooleanOr(&text));
    EXPECT_EQ(SecretOr(&text).Reveal(), "7");
    EXPECT_TRUE(SecretOr(&left_out).Empty());
}

TEST(Convert, GivesListsOfAnyArray) {
    Variant array;
    array.vt = VT_ARRAY | VT_BSTR;
    array.parray = NewArray({"a", "", "c"});
    EXPECT_THAT(ListOf(array), ElementsAre("a", "", "c"));
    EXPECT_THAT(ListOf(ScriptArray(array.parray)), ElementsAre("a", "", "c"));
    EXPECT_THROW(ListOf(VariantOfBytes("abc")), Error);
    EXPECT_THROW(ListOf(VariantOf(5L)), Error);
}

TEST(Convert, StoresIntoVariablesOfAnyType) {
    short number = 0;
    Variant reference;
    reference.vt = VT_BYREF | VT_I2;
    reference.piVal = &number;
    Store(reference, VariantOf(7L));
    EXPECT_EQ(number, 7);
    EXPECT_THROW(Store(reference, VariantOf(70'000L)), Error);
    BSTR text = NewBSTR("before");
    Store(static_cast<VARIANT&>(static_cast<Variant&>(reference = ByReference(text))), VariantOf("after"));
    EXPECT_EQ(TextOf(text), "after");
    SysFreeString(text);
}

}  // namespace
}  // namespace kq::automation
