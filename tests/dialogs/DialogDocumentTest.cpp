// The document of the dialogs, and what must hold for every form.
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>

#include <gtest/gtest.h>

#include "dialogs/DialogCatalogue.h"
#include "dialogs/DialogDocument.h"

namespace kq {
namespace {

TEST(DialogDocument, StandsInTheDocs) {
    const std::string path = KQ_SOURCE_DIR "/docs/dialogs.md";
    if (std::getenv("KQ_UPDATE_GOLDEN")) std::ofstream(path, std::ios::binary) << DialogDocument();
    std::ifstream file(path, std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(page, DialogDocument());
}

bool Has(const FormRow& form, std::string_view name) {
    for (const auto& control : form.controls) {
        if (control.name == name) return true;
    }
    return name.empty();
}

TEST(Forms, NameOnlyControlsThatTheyHave) {
    for (const FormRow* form : DialogCatalogue()) {
        for (const auto name : {form->default_button, form->cancel_button, form->first_focus})
            EXPECT_TRUE(Has(*form, name)) << name;
        for (const auto& control : form->controls)
            EXPECT_TRUE(Has(*form, control.buddy) && Has(*form, control.frame)) << control.name;
    }
}

TEST(Forms, NameEachControlOnce) {
    for (const FormRow* form : DialogCatalogue()) {
        std::set<std::string_view> names;
        for (const auto& control : form->controls)
            EXPECT_TRUE(names.insert(control.name).second) << control.name;
    }
}

TEST(Forms, HaveALabelForEveryBoxAndList) {
    for (const FormRow* form : DialogCatalogue()) {
        std::set<std::string_view> named;
        for (const auto& control : form->controls)
            named.insert(control.buddy);
        for (const auto& control : form->controls) {
            const bool needs_one = control.kind == ControlKind::TextBox ||
                                   control.kind == ControlKind::MaskedBox ||
                                   control.kind == ControlKind::ListView;
            EXPECT_TRUE(!needs_one || !control.visible || named.count(control.name)) << control.name;
        }
    }
}

}  // namespace
}  // namespace kq
