// Every text of the string tables, and who shows it.
//
// A test compares the list with the tables of all languages and with the code: an id that the code uses is
// here, and each one here is used or says why not.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kq {

enum class TextUse {
    Control,  // a control or the caption of a dialog
    Box,      // a message box
    Caption,  // the caption of a message box
    Wait,     // the wait window
    Part,     // a part of another text
    Error,    // the description of an error that is raised
    Server,   // what an application server answers
    Unused,
};

// ROW(id, use, who shows it or, for Unused, why nobody does), NAMED(id, name, use, who)
#define KQ_TEXT_IDS(ROW, NAMED)                                                            \
    /* frmServer */                                                                        \
    ROW(101, Control, "frmServer")                                                         \
    ROW(102, Control, "frmServer.lblIntro")                                                \
    ROW(103, Control, "frmServer.lblAddress")                                              \
    ROW(104, Control, "frmServer.lblPort")                                                 \
    ROW(105, Control, "frmServer.cmdCancel")                                               \
    ROW(106, Control, "frmServer.cmdOK")                                                   \
    ROW(107, Control, "frmServer.lblTimeOut")                                              \
    ROW(108, Control, "frmServer.lblSec")                                                  \
    ROW(109, Control, "frmServer.chkUseASServerforLogin")                                  \
    ROW(150, Unused, "addresses are not looked up before they are used")                   \
    ROW(151, Box, "frmServer: the port")                                                   \
    ROW(152, Box, "frmServer: the time-out")                                               \
    /* frmLogin */                                                                         \
    ROW(200, Control, "frmLogin")                                                          \
    ROW(201, Control, "frmLogin.lblLoginID")                                               \
    ROW(202, Control, "frmLogin.lblPassword")                                              \
    ROW(203, Control, "frmLogin.cmdCancel")                                                \
    ROW(204, Control, "frmLogin.cmdOK")                                                    \
    ROW(205, Control, "frmLogin.cmdShowHide")                                              \
    ROW(206, Control, "frmLogin.cmdShowHide")                                              \
    ROW(207, Control, "frmLogin.lblNewPassword")                                           \
    ROW(208, Control, "frmLogin.cmdChangeServer")                                          \
    ROW(209, Control, "frmLogin.chkAskForProfile")                                         \
    ROW(250, Box, "frmLogin: no login id")                                                 \
    ROW(251, Box, "frmLogin: no password")                                                 \
    /* frmWait: an even id is the caption, the next one its message */                     \
    ROW(300, Wait, "system login: connecting")                                             \
    ROW(301, Wait, "system login: connecting")                                             \
    ROW(302, Wait, "system login: logging in")                                             \
    ROW(303, Wait, "system login: logging in")                                             \
    ROW(304, Wait, "server login: registering")                                            \
    ROW(305, Wait, "server login: registering")                                            \
    ROW(306, Wait, "server login: connecting")                                             \
    ROW(307, Wait, "server login: connecting")                                             \
    ROW(308, Unused, "profiles come with the login's reply")                               \
    ROW(309, Unused, "the message of 308")                                                 \
    ROW(310, Wait, "upload of the profiles")                                               \
    ROW(311, Wait, "upload of the profiles")                                               \
    ROW(312, Wait, "system login: validating the client")                                  \
    ROW(313, Wait, "system login: validating the client")                                  \
    /* message boxes of the procedures */                                                  \
    NAMED(400, kBoxCaption, Caption, "every box but AskYesNoTitled's and a dialog's own")  \
    ROW(401, Box, "NoLoginReply")                                                          \
    ROW(402, Box, "NoConnectAS")                                                           \
    ROW(403, Box, "LoginFailed, LoginServerFailed")                                        \
    ROW(404, Box, "NoRegisterReply")                                                       \
    ROW(405, Box, "NoTranslation")                                                         \
    ROW(406, Box, "an unexpected error in the system login")                               \
    ROW(407, Box, "NoSessionInfo")                                                         \
    ROW(408, Box, "RegisterFailed")                                                        \
    ROW(409, Box, "an unexpected error in the server login")                               \
    ROW(410, Unused, "ChooseProfile has no core yet")                                      \
    ROW(411, Box, "NoConnect; upload of the profiles")                                     \
    NAMED(412, kNoReply, Server,                                                           \
          "refuses a request that the login server does not answer; without its question") \
    ROW(413, Unused, "ChangePassword has no core yet")                                     \
    ROW(414, Unused, "ChangePassword has no core yet")                                     \
    ROW(415, Unused, "ChangePassword has no core yet")                                     \
    ROW(416, Box, "NoValidateReply")                                                       \
    ROW(417, Box, "ValidationFailed, ValidationServerFailed, TooManyUsers")                \
    ROW(418, Box, "NewClient")                                                             \
    ROW(419, Box, "ClientTooOld")                                                          \
    ROW(420, Box, "ClientTooOldNewOne")                                                    \
    ROW(421, Box, "NoServers")                                                             \
    ROW(422, Box, "NoServersNewClient")                                                    \
    ROW(423, Box, "frmProfiles: no profile yet")                                           \
    ROW(424, Box, "frmProfiles: still no profile")                                         \
    ROW(425, Unused, "ChangePassword has no core yet")                                     \
    ROW(426, Box, "PasswordExpires")                                                       \
    /* parts of other texts */                                                             \
    NAMED(500, kUnknownResponse, Part, "a reply that is not a message; 950")               \
    NAMED(501, kImproperResponse, Part, "a reply of another type")                         \
    NAMED(502, kTimedOut, Part, "950")                                                     \
    ROW(550, Part, "ZEBError-130")                                                         \
    ROW(551, Part, "ZEBError-131")                                                         \
    ROW(552, Part, "ZEBError-132")                                                         \
    ROW(553, Part, "ZEBError-301")                                                         \
    ROW(554, Part, "ZEBError-302")                                                         \
    ROW(555, Part, "ZEBError-303")                                                         \
    ROW(556, Part, "ZEBError-304")                                                         \
    ROW(557, Part, "ZEBError-305")                                                         \
    ROW(558, Part, "ZEBError-306")                                                         \
    ROW(559, Unused, "ChangePassword has no core yet")                                     \
    /* frmPassword */                                                                      \
    ROW(600, Control, "frmPassword")                                                       \
    ROW(601, Control, "frmPassword.lblIntro")                                              \
    ROW(602, Control, "frmPassword.lblOldPassword")                                        \
    ROW(603, Control, "frmPassword.lblNewPassword")                                        \
    ROW(604, Control, "frmPassword.cmdOK")                                                 \
    ROW(605, Control, "frmPassword.cmdCancel")                                             \
    ROW(606, Control, "frmPassword.lblConfirmPassword")                                    \
    ROW(650, Box, "frmPassword: a password is missing")                                    \
    ROW(651, Box, "frmPassword: the passwords differ")                                     \
    /* frmProfiles */                                                                      \
    ROW(700, Control, "frmProfiles")                                                       \
    ROW(701, Control, "frmProfiles.lblIntro")                                              \
    ROW(702, Control, "frmProfiles.cmdChoose")                                             \
    ROW(703, Control, "frmProfiles.cmdNew")                                                \
    ROW(704, Control, "frmProfiles.cmdCopy")                                               \
    ROW(705, Control, "frmProfiles.cmdRename")                                             \
    ROW(706, Control, "frmProfiles.cmdRemove")                                             \
    ROW(707, Control, "frmProfiles.cmdShortcut")                                           \
    ROW(708, Control, "frmProfiles.cmdCancel")                                             \
    ROW(709, Caption, "frmProfiles: where to save the shortcut")                           \
    ROW(710, Part, "frmProfiles: the shortcut's description")                              \
    ROW(711, Caption, "frmProfiles: the box of 712")                                       \
    ROW(712, Box, "frmProfiles: whether to remove a profile")                              \
    ROW(750, Box, "frmProfiles: the name is taken")                                        \
    /* frmNewProfile */                                                                    \
    ROW(800, Control, "frmNewProfile")                                                     \
    ROW(801, Control, "frmNewProfile.lblIntro")                                            \
    ROW(802, Control, "frmNewProfile.cmdOK")                                               \
    ROW(803, Control, "frmNewProfile.cmdCancel")                                           \
    ROW(804, Control, "frmNewProfile")                                                     \
    ROW(805, Control, "frmNewProfile.lblIntro")                                            \
    ROW(850, Unused, "the button is disabled instead")                                     \
    ROW(851, Unused, "a name may be a number")                                             \
    /* frmDownload */                                                                      \
    ROW(900, Control, "frmDownload")                                                       \
    ROW(901, Control, "frmDownload.lblIntro")                                              \
    ROW(950, Box, "frmDownload: why it failed, and whether to log in again")               \
    /* descriptions of errors: the id is 1000 + code - 0x80040A00 */                       \
    NAMED(1000, kUnknownError, Error, "the code before KQAppSessErrorEnum")                \
    ROW(1001, Error, "kqaserrNotInitialized")                                              \
    ROW(1002, Error, "kqaserrAlreadyConnected")                                            \
    ROW(1003, Error, "kqaserrInvalidInterfaces")                                           \
    ROW(1004, Error, "kqaserrLoginBadAddr")                                                \
    ROW(1005, Error, "kqaserrLoginBadLogin")                                               \
    ROW(1006, Error, "kqaserrLoginNoConnect")                                              \
    ROW(1007, Error, "kqaserrLoginNoValidate")                                             \
    ROW(1008, Error, "kqaserrLoginValidationFailed")                                       \
    ROW(1009, Error, "kqaserrLoginBadPassword")                                            \
    ROW(1010, Error, "kqaserrLoginInvalidLoginVersion")                                    \
    ROW(1011, Error, "kqaserrLoginInvalidIntfVersion")                                     \
    ROW(1012, Error, "kqaserrLoginNoLogin")                                                \
    ROW(1013, Error, "kqaserrLoginLoginFailed")                                            \
    ROW(1014, Error, "kqaserrLoginNoTranslate")                                            \
    ROW(1015, Error, "kqaserrLoginNoSessionInfo")                                          \
    ROW(1016, Error, "kqaserrLoginNoConnectAS")                                            \
    ROW(1017, Error, "kqaserrLoginNoRegister")                                             \
    ROW(1018, Error, "kqaserrLoginRegisterFailed")                                         \
    ROW(1019, Error, "kqaserrLoginSessionRequired")                                        \
    ROW(1020, Error, "kqaserrLoginTooManyUsers")                                           \
    ROW(1021, Error, "kqaserrPasswordChangeFailed")                                        \
    ROW(1099, Error, "kqaserrLoginNoSystem")

// The ids that the code knows by a name.
struct TextId {
#define KQ_ROW(id, use, who)
#define KQ_NAMED(id, name, use, who) static constexpr std::int32_t name = id;
    KQ_TEXT_IDS(KQ_ROW, KQ_NAMED)
#undef KQ_ROW
#undef KQ_NAMED
};

struct TextRow {
    std::int32_t id;
    TextUse use;
    std::string_view who;
};

// By id.
std::span<const TextRow> TextRows();

}  // namespace kq
