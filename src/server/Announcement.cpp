// The announcement and the client's installer in it.
//
// A sending moves the list into the kept message and out again, so that the only copy of a long list is the
// one that the bus client makes for its queue.
#include "server/Announcement.h"

#include <utility>

#include "base/Convert.h"
#include "messages/EnsureShare.h"
#include "platform/Folders.h"
#include "platform/Machine.h"
#include "util/VersionInfo.h"

namespace kq {
namespace {

constexpr std::string_view kInfoPath = "ApplicationInfos/ApplicationInfo";

// The letters of the state.
constexpr std::string_view kAllSessions = "C";
constexpr std::string_view kEndedSession = "E";
constexpr std::string_view kDown = "D";

void SetChild(XMLElement& element, std::string_view name, std::string_view text) {
    if (XMLElement* child = element.Find(name)) {
        child->SetText(text);
    } else {
        element.Add(name, text);
    }
}

// The application that the message speaks of: one process may announce several over one bus client.
std::string SubjectOf(const XMLMessage& message, const XMLElement& application) {
    std::string subject = message.Type();
    for (const auto name : {ApplicationInfo::kAppID, ApplicationInfo::kAddress, ApplicationInfo::kPort})
        subject += '\n' + application.TextOf(name);
    return subject;
}

std::optional<BusOutdates> OutdatedBy(std::string_view letter) {
    if (letter == kAllSessions) return BusOutdates::Earlier;
    if (letter == kEndedSession) return BusOutdates::Nothing;
    if (letter == kDown) return BusOutdates::Final;
    return std::nullopt;
}

// Moves the list to the end of an element for as long as it lives.
class Attached {
 public:
    Attached(XMLElement& element, XMLElement& list) : element_(element), list_(list) {
        element_.Add(std::move(list_));
    }
    ~Attached() {
        list_ = std::move(element_.Children().back());
        element_.Children().pop_back();
    }
    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;

 private:
    XMLElement& element_;
    XMLElement& list_;
};

}  // namespace

void Announcement::Keep(const ApplicationInfo& info, const ASRequestInfo& request_info) {
    ASBroadcastInfo broadcast;
    broadcast.ASRequestInfo = request_info;
    broadcast.ApplicationInfos.emplace().ApplicationInfo = info;
    message_ = broadcast.Build();
    message_->SetDestination({"ZEB", "Broadcast"});
}

XMLElement& Announcement::Info() {
    return *message_->Root().Find(kInfoPath);
}

void Announcement::SetBroadcastInterval(std::int32_t seconds) {
    if (message_) SetChild(Info(), ApplicationInfo::kBroadcastInterval, TextOf(seconds));
}

void Announcement::Send(std::string_view letter, const Hand& hand) {
    if (!message_) return;
    SetChild(Info(), ApplicationInfo::kInfoState, letter);
    hand(*message_);
}

void Announcement::SendWith(XMLElement& list, std::string_view letter, const Hand& hand) {
    if (!message_) return;
    SetChild(Info(), ApplicationInfo::kInfoState, letter);
    const Attached attached(Info(), list);
    hand(*message_);
}

void Announcement::SendSessions(const SessionIndex& index, const Hand& hand) {
    if (!list_) {
        XMLElement list(ApplicationInfo::kSessions);
        for (const auto& session : index.Sessions())
            list.Add(field::SessionIDList::kItem, session->SessionID());
        list_ = std::move(list);
    }
    SendWith(*list_, kAllSessions, hand);
}

void Announcement::SendRemoved(const std::string& session_id, const Hand& hand) {
    XMLElement list(ApplicationInfo::kSessions);
    list.Add(field::SessionIDList::kItem, session_id);
    SendWith(list, kEndedSession, hand);
}

void Announcement::SendAlone(const Hand& hand) {
    Send(kAllSessions, hand);
}

void Announcement::SendDown(const Hand& hand) {
    Send(kDown, hand);
}

void Announcement::SessionAdded(const std::string& session_id) {
    if (list_) list_->Add(field::SessionIDList::kItem, session_id);
}

void SendState(XMLBusClient& bus, const XMLMessage& message) {
    const XMLElement* application = message.Root().Find(kInfoPath);
    if (application == nullptr) return bus.Send(message);
    const auto outdates = OutdatedBy(application->TextOf(ApplicationInfo::kInfoState));
    outdates ? bus.Send(message, BusState{SubjectOf(message, *application), *outdates}) : bus.Send(message);
}

Installer FindInstaller(const PlatformPtr& platform, const AppObject* app_obj, const std::string& app_id,
                        const std::string& file_name) {
    if (app_obj == nullptr) return {};
    const auto path = app_obj->Property("Path");
    if (!path) return {};
    const char separator = platform->Parts().folders->Separator();
    const std::string folder = *path + separator + "Install";
    const std::string file = folder + separator + file_name;
    if (!platform->Parts().folders->FileExists(file)) return {};

    Installer installer;
    installer.path = EnsureShare(platform, folder, "ClientInstall_" + app_id) + file_name;
    if (UpperCase(installer.path).find(".MSI") != std::string::npos) return installer;
    VersionInfo version(platform);
    version.Initialize(file);
    if (version.Initialized()) installer.version = version.FileVersion(1);
    return installer;
}

}  // namespace kq
