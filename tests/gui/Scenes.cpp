#include "gui/Scenes.h"

#include <kqappsession/Listener.h>

#include "dialogs/frmDownload.h"
#include "dialogs/frmLogin.h"
#include "dialogs/frmNewProfile.h"
#include "dialogs/frmPassword.h"
#include "dialogs/frmProfiles.h"
#include "dialogs/frmServer.h"
#include "dialogs/frmWait.h"
#include "messages/boxes/MessageBoxes.h"

namespace kq {
namespace {

using Act = Stage::Act;

// A modal window: visited and closed by its close box, while `call` shows it.
Scene Modal(std::string name, std::string window, std::function<void(const PlatformPtr&)> call) {
    return {std::move(name), window, [window, call = std::move(call)](Stage& stage, const Act& visit) {
                stage.When(window, [&stage, visit](QWidget& shown) {
                    visit(shown);
                    stage.Close(shown);
                });
                call(stage.Machine());
            }};
}

void Login(const PlatformPtr& machine, bool use_profiles, bool more) {
    LoginAnswer answer{.login_id = "ann", .ask_for_profile = true, .show_details = more};
    frmLogin(machine).Login(answer, use_profiles, nullptr);
}

void Server(const PlatformPtr& machine) {
    ServerSettings server{"login.example.com", 7710, 10'000, true};
    frmServer(machine).GetServerInfo(server, nullptr);
}

void Password(const PlatformPtr& machine) {
    Secret old_password, new_password;
    frmPassword(machine).GetPassword(old_password, new_password, nullptr);
}

void ChooseProfile(const PlatformPtr& machine) {
    const auto profiles = std::make_shared<Profiles>();
    std::shared_ptr<Profile> current;
    for (const char* const name : {"Purchasing", "Sales", "Warehouse"}) {
        const auto added = profiles->Add(std::make_shared<Profile>(name));
        if (!current) current = added;
    }
    bool changed = false;
    frmProfiles(machine).GetProfile(profiles, current, "", {"Demo", "/opt/demo", "demo"}, nullptr, changed);
}

void NewProfile(const PlatformPtr& machine) {
    std::string name;
    frmNewProfile(machine).GetNewProfile(name, nullptr);
}

void RenameProfile(const PlatformPtr& machine) {
    std::string name = "Sales";
    frmNewProfile(machine).RenameProfile(name, nullptr);
}

void Wait(Stage& stage, std::int32_t id, const Args& args, const Act& visit) {
    bool visited = false;
    stage.When("frmWait", [&](QWidget& shown) {
        visit(shown);
        visited = true;
    });
    frmWait wait(stage.Machine());
    wait.ShowWait(id, args);
    stage.Await([&] { return visited; }, "the wait window");
    wait.HideWait();
}

// A server that never answers; the visit ends when it goes.
void Download(Stage& stage, const Act& visit) {
    auto listener = Listener::Create(stage.Machine());
    listener->Listen(0, "127.0.0.1");
    const auto client = APClient::Create(stage.Machine());
    client->Connect("127.0.0.1", listener->Port(), "", 10'000);
    stage.When("frmDownload", [&](QWidget& shown) {
        client->Progress("", 5 << 20, 8 << 20);
        visit(shown);
        client->Error(10054, "The connection was lost");
    });
    stage.When("MessageBox", [&stage](QWidget& box) { stage.Close(box); });
    std::string path;
    bool try_again = false;
    frmDownload(stage.Machine()).DownloadClient(client, path, try_again);
}

std::vector<Scene> MakeScenes() {
    std::vector<Scene> scenes{
        Modal("server", "frmServer", Server),
        Modal("login", "frmLogin", [](const PlatformPtr& machine) { Login(machine, true, false); }),
        Modal("login-more", "frmLogin", [](const PlatformPtr& machine) { Login(machine, true, true); }),
        Modal("login-more-without-profiles", "frmLogin",
              [](const PlatformPtr& machine) { Login(machine, false, true); }),
        Modal("password", "frmPassword", Password),
        Modal("profiles", "frmProfiles", ChooseProfile),
        Modal("new-profile", "frmNewProfile", NewProfile),
        Modal("rename-profile", "frmNewProfile", RenameProfile),
        {"download", "frmDownload", Download},
        Modal("box-warning", "MessageBox",
              [](const PlatformPtr& machine) { MessageBoxes(machine).ShowWarning(250); }),
        Modal("box-information", "MessageBox",
              [](const PlatformPtr& machine) { MessageBoxes(machine).ShowInfo(423); }),
        Modal("box-yes-no", "MessageBox",
              [](const PlatformPtr& machine) { MessageBoxes(machine).AskYesNo(401); }),
        Modal("box-yes-no-cancel", "MessageBox",
              [](const PlatformPtr& machine) { MessageBoxes(machine).AskYesNoCancel(402); }),
        Modal("box-error", "MessageBox",
              [](const PlatformPtr& machine) { MessageBoxes(machine).ShowError(950, {"10054"}); }),
    };
    for (std::int32_t id = 300; id <= 312; id += 2) {
        scenes.push_back({"wait-" + std::to_string(id), "frmWait", [id](Stage& stage, const Act& visit) {
                              Wait(stage, id, id == 308 ? Args{"Main"} : Args{}, visit);
                          }});
    }
    return scenes;
}

}  // namespace

const std::vector<Scene>& Scenes() {
    static const std::vector<Scene> scenes = MakeScenes();
    return scenes;
}

}  // namespace kq
