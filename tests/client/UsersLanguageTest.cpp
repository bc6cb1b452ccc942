// Logins of a user who reads Spanish: what is raised and what is shown is wholly in that language.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

class UsersLanguageTest : public InteractiveFixture {
 protected:
    UsersLanguageTest() { UserReads(2058); }

    // The description of the error that a login without dialogs raises.
    std::string RaisedBySilentLogin() {
        login.LoginID = "ann";
        login.Password = Secret("secret word");
        return SystemLoginError().Description();
    }
    // The download of a new client fails by what the login server does; the user gives up.
    void ExpectDownloadToFail(const ScriptedPeer::Reaction& script, const std::string& question) {
        XMLMessage validation = FakeZeb::ValidationWith("ClientAvailable", "True");
        zeb.Once(FakeZeb::kValidate, zeb.Answer(validation));
        zeb.Once("ASDownloadClientRequest", script);
        LogsIn();
        IsAsked("Hay una nueva versión del cliente disponible.  ¿Desea actualizarlo?", BoxButton::Yes);
        user.Expect("frmDownload", [](FakeUser&) {});
        IsAsked(question, BoxButton::Yes);
        Cancels("frmLogin");
        EXPECT_FALSE(Login());
        ExpectQuestions();
    }
};

TEST_F(UsersLanguageTest, ARefusedConnectionIsRaisedInIt) {
    zeb.StopListening();
    EXPECT_EQ(RaisedBySilentLogin(),
              "No se pudo conectar al servidor de inicio de sesión: Se rechazó la conexión.");
}

TEST_F(UsersLanguageTest, ARefusedConnectionIsAskedAboutInIt) {
    zeb.StopListening();
    ExpectGivenUpAt("No se pudo conectar al servidor de inicio de sesión.  ¿Desea intentarlo de nuevo?");
}

TEST_F(UsersLanguageTest, AMissingReplyIsRaisedInIt) {
    zeb.Once(FakeZeb::kValidate, zeb.Silence());
    EXPECT_EQ(
        RaisedBySilentLogin(),
        "No se recibió una respuesta de validación del servidor de inicio de sesión: Se agotó el tiempo "
        "de espera de la conexión.");
}

TEST_F(UsersLanguageTest, AConnectionThatEndsIsRaisedInItWithItsReason) {
    zeb.Once(FakeZeb::kValidate, zeb.Drop());
    EXPECT_EQ(
        RaisedBySilentLogin(),
        "No se recibió una respuesta de validación del servidor de inicio de sesión: El otro lado cerró "
        "la conexión.");
}

TEST_F(UsersLanguageTest, AnEmptyReplyIsRaisedInIt) {
    zeb.Once(FakeZeb::kValidate, zeb.Raw(""));
    EXPECT_EQ(
        RaisedBySilentLogin(),
        "No se recibió una respuesta de validación del servidor de inicio de sesión: La respuesta estaba "
        "vacía.");
}

TEST_F(UsersLanguageTest, AnUploadThatCannotConnectIsRaisedInIt) {
    login.LoginID = "ann";
    login.Password = Secret("secret word");
    ASSERT_TRUE(SystemLogin());
    zeb.StopListening();
    std::string address = FakeZeb::kAddress;
    std::int32_t port = FakeZeb::kPort;
    std::int32_t time_out = 1000;
    const Error error = ErrorOf([&] { client->UpdateProfilesEx(false, address, port, time_out); });
    EXPECT_EQ(error.Description(),
              "No se pudo conectar al servidor de inicio de sesión: Se rechazó la conexión.");
}

TEST_F(UsersLanguageTest, AnUnexpectedErrorIsAskedAboutInIt) {
    Settings().SetSetting("UseASServerForLogin", "yes");
    IsAsked("Se produjo un error al iniciar sesión:  Los tipos no coinciden.  ¿Desea intentarlo de nuevo?",
            BoxButton::No);
    EXPECT_FALSE(Login());
    ExpectQuestions();
}

TEST_F(UsersLanguageTest, ADownloadThatIsCutIsAskedAboutInIt) {
    ExpectDownloadToFail(zeb.Reset(),
                         "Se produjo un error durante la descarga: El otro lado cortó la conexión.  ¿Desea "
                         "intentar iniciar sesión de nuevo?");
}

TEST_F(UsersLanguageTest, ADownloadThatTheServerEndsIsAskedAboutInIt) {
    ExpectDownloadToFail(zeb.Drop(),
                         "Se produjo un error durante la descarga: El otro lado cortó la conexión.  ¿Desea "
                         "intentar iniciar sesión de nuevo?");
}

TEST_F(UsersLanguageTest, WhatTheServerSaysIsLeftAsItIs) {
    ExpectDownloadToFail(
        zeb.Answer(FakeZeb::Refusal("ASDownloadClientResponse", "10061", "No client", "")),
        "Se produjo un error durante la descarga: No client.  ¿Desea intentar iniciar sesión "
        "de nuevo?");
}

}  // namespace
}  // namespace kq
