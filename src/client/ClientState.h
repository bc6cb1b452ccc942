// What a client object holds between and during its procedures.
//
// Procedures keep a reference to it, so the client object itself may be dropped while one runs; the procedure
// then finds itself ended, as after TerminateClient.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <kqappsession/KQAppSessClient.h>

#include "client/SessConfig.h"
#include "messages/Texts.h"

namespace kq {

class ClientState : public std::enable_shared_from_this<ClientState> {
 public:
    explicit ClientState(PlatformPtr platform);

    const PlatformPtr platform;
    const Texts texts;

    std::optional<SessConfig> config;  // none before the application identifier is known
    // A procedure runs: no other may start, and events of the profile collection upload nothing.
    bool busy = false;
    bool use_profiles = true;
    std::shared_ptr<TranslationTable> translation_table;
    std::shared_ptr<Profile> current_profile;
    std::shared_ptr<KQAppSessionInfo> session_info = std::make_shared<KQAppSessionInfo>();
    std::string app_server_address;
    std::int32_t app_server_port = 0;
    std::int32_t app_server_time_out = 0;  // ms
    std::string restrict_ip;
    std::int32_t restrict_port = 0;
    bool use_as_server_for_login = false;

    KQAppSessLoginState LoginState() const { return login_state_; }
    // Raises LoginStateChanged when the state is another one.
    void SetLoginState(KQAppSessLoginState login_state);
    Signal<KQAppSessLoginState> LoginStateChanged;
    Signal<const LoginStep&> LoginStepDone;

    // A new settings object for the application.
    SessConfig& OpenConfig(const std::string& app_id);

    // Kept with its events: a profile added or removed while nothing is busy uploads the collection.
    const std::shared_ptr<Profiles>& GetProfiles() const { return profiles_; }
    void SetProfiles(std::shared_ptr<Profiles> profiles);

    // A new connection, ready to exchange messages, takes the place of the old one, which is disconnected.
    std::shared_ptr<APClient> NewLoginClient();
    std::shared_ptr<APClient> NewSessionClient();
    const std::shared_ptr<APClient>& LoginClient() const { return login_client_; }
    const std::shared_ptr<APClient>& SessionClient() const { return session_client_; }
    void ReleaseLoginClient();
    // A released connection is not heard any more.
    void ReleaseSessionClient();

    // Disconnects and drops both connections and ends the wait of a procedure that runs. The end of the
    // session connection is still heard, until another takes its place.
    void Terminate();
    std::uint32_t Terminations() const { return terminations_; }
    // Raised by Terminate; whoever waits for a user stops waiting.
    Signal<> Terminated;

    // The user gives up the procedure that runs: ends its wait, by way of its connection. Its next look ends
    // it.
    void GiveUp();
    bool GivenUp() const { return given_up_; }

    // Lets `seconds` pass on the clock of the day while the loop runs. Ends at once when the loop quits, the
    // client is terminated or the user gives up. The difference of two times of day never reaches `seconds`
    // across midnight, so a pause that would span it first waits for the new day.
    void Pause(float seconds);

 private:
    friend class Procedure;
    float TimeOfDay() const;

    KQAppSessLoginState login_state_ = kqaslsNotLoggedIn;
    std::shared_ptr<Profiles> profiles_;
    std::shared_ptr<APClient> login_client_;
    std::shared_ptr<APClient> session_client_;
    std::shared_ptr<APClient> ending_session_client_;  // of Terminate, until its end is heard
    std::weak_ptr<APClient> newest_client_;            // made last: what a procedure waits for
    std::uint32_t terminations_ = 0;
    bool given_up_ = false;
    Owner profiles_owner_;
    Owner session_owner_;
};

// Leaves a procedure that its user has given up. Not an Error: nobody asks about it, and the procedure's
// result is false.
struct UserGaveUp : std::exception {};

// One run of a long procedure, as the host started it: sets Busy and keeps a second one out, on every way.
class Procedure {
 public:
    // RuntimeError::InvalidProcedureCall when a procedure of this client runs already, NetError::Interrupted
    // when the loop has been quit.
    explicit Procedure(ClientState& state);
    ~Procedure();
    Procedure(const Procedure&) = delete;
    Procedure& operator=(const Procedure&) = delete;

    // Raises NetError::Interrupted once the client was terminated during the run or the loop has been quit,
    // and UserGaveUp once its user has given up.
    void CheckTermination() const;
    void Pause(float seconds) { state_.Pause(seconds); }
    // An error that is met where it occurs and not raised: the trace of a login names its number.
    void Note(std::int32_t error) { errors_.push_back(error); }
    // Those that were noted since the last call.
    std::vector<std::int32_t> TakeErrors() { return std::exchange(errors_, {}); }
    const Texts& UserTexts() const { return state_.texts; }
    bool Ended() const { return Terminated() || state_.GivenUp() || state_.platform->Loop()->Quitting(); }

 private:
    bool Terminated() const { return state_.Terminations() != terminations_; }

    ClientState& state_;
    std::uint32_t terminations_;
    std::vector<std::int32_t> errors_;
};

}  // namespace kq
