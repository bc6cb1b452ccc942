// The profiles dialog over a collection with the profiles "Day" and "Night"; "Day" is current.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dialogs/DialogsTesting.h"
#include "dialogs/frmProfiles.h"

namespace kq {

struct ProfilesScene : DialogScene {
    ProfilesScene() {
        profiles->Add(WithColour("Day", "white"));
        profiles->Add(WithColour("Night", "black"));
        profiles->SetLastUsed("Day");
        current = profiles->Item("Day");
    }
    static std::shared_ptr<Profile> WithColour(const std::string& name, const std::string& colour) {
        auto profile = std::make_shared<Profile>(name);
        profile->Tables().Create("Colours", "Value")->AddRow()->SetValue("Value", colour);
        return profile;
    }
    static std::string ColourOf(const Profile& profile) {
        return profile.Tables().Item("Colours")->Rows().Item(1)->Value("Value");
    }
    void MakesAnEmptyCollection() {
        profiles = std::make_shared<Profiles>();
        current.reset();
    }

    bool Opens(FakeDialogHost::Script script) {
        host.Expect("frmProfiles", std::move(script));
        return frmProfiles(machine.platform)
            .GetProfile(profiles, current, command_str, program, icon, changed);
    }
    // What the user answers when asked for a name.
    void Names(const std::string& name) {
        host.Expect("frmNewProfile", [name](FakeUser& user) {
            user.Clears("txtName");
            user.Types("txtName", name);
            user.Waits(Milliseconds(100));
            user.Presses(Key::Enter);
        });
    }
    void AcceptsTheProposal(const std::string& proposal) {
        host.Expect("frmNewProfile", [proposal](FakeUser& user) {
            EXPECT_EQ(user.Sees("txtName"), proposal);
            user.Waits(Milliseconds(100));
            user.Presses(Key::Enter);
        });
    }
    void NamesNothing() {
        host.Expect("frmNewProfile", [](FakeUser& user) { user.Closes(); });
    }
    std::vector<std::string> All() const {
        std::vector<std::string> names;
        for (const auto& profile : *profiles)
            names.push_back(profile->Name());
        return names;
    }

    std::shared_ptr<Profiles> profiles = std::make_shared<Profiles>();
    std::shared_ptr<Profile> current;
    std::string command_str;
    ProgramInfo program{"Trader", "C:\\Trader", "trader.exe"};
    IconPtr icon;
    bool changed = false;
};

}  // namespace kq
