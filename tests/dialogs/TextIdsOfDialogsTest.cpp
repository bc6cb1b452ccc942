// The list of texts names each text of a dialog by the control that shows it.
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "dialogs/DialogCatalogue.h"
#include "messages/TextIds.h"

namespace kq {
namespace {

using Shown = std::map<std::int32_t, std::string>;  // who shows a text, by id

Shown ShownByForms() {
    Shown shown;
    for (const FormRow* form : DialogCatalogue()) {
        const std::string name(form->name);
        if (form->caption_id != 0) shown.emplace(form->caption_id, name);
        for (const auto& control : form->controls) {
            for (const std::int32_t id : {control.text_id, control.other_text_id}) {
                if (id != 0) shown.emplace(id, name + "." + std::string(control.name));
            }
        }
    }
    return shown;
}

TEST(TextIdsOfDialogs, NameTheirControls) {
    Shown listed;
    for (const auto& row : TextRows()) {
        if (row.use == TextUse::Control) listed.emplace(row.id, row.who);
    }
    Shown shown = ShownByForms();
    // What the new profile dialog shows depends on what it is for, so its form does not have them.
    shown.insert({{800, "frmNewProfile"}, {801, "frmNewProfile.lblIntro"}});
    shown.insert({{804, "frmNewProfile"}, {805, "frmNewProfile.lblIntro"}});
    EXPECT_EQ(listed, shown);
}

}  // namespace
}  // namespace kq
