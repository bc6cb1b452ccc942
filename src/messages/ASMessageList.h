// Every message that the system knows, and every element inside one, with its fields in the order in which
// they are written. This list alone makes the structs, their builders and readers, the catalogue and its
// document.
//
//   MESSAGE(channel, type, purpose, fields)   one row for each
//   FIELD(kind, name, meaning)                one for each field; the kinds are those of ASMessageFields.h
//
// Channels: Client, between a client program and a server; Bus, between servers; Element, nested in another
// message. An element stands above the message that holds it. A new message is a new row; tests then ask for
// its sample file and its line in docs/messages.md.
#pragma once

// clang-format off
#define KQ_AS_MESSAGES(MESSAGE, FIELD)                                                                       \
    MESSAGE(Client, ASValidateClientRequest, "asks the login server whether this client may log in",         \
        FIELD(Text, AppID, "the application's identifier")                                                   \
        FIELD(Text, InterfaceVersion, "the interface version that the application needs")                    \
        FIELD(Text, ClientVersion, "the client's own version")                                               \
        FIELD(Optional, RestrictIP, "only application servers at this address are considered")               \
        FIELD(Optional, RestrictPort, "only application servers at this port are considered, decimal"))      \
    MESSAGE(Client, ASValidateClientResponse, "the answer to ASValidateClientRequest",                       \
        FIELD(Text, ErrorNumber, "0 or the number of the error, decimal")                                    \
        FIELD(Text, ClientAvailable, "True: a newer client can be downloaded")                               \
        FIELD(Text, InterfaceAvailable, "True: there is an application server for the interface version")    \
        FIELD(Optional, ErrorDesc, "description of the error for the user")                                  \
        FIELD(Optional, ErrorParam, "code of the error, such as ZEBError-132"))                              \
    MESSAGE(Client, ASLoginRequest, "logs a user in",                                                        \
        FIELD(Text, AppID, "the application's identifier")                                                   \
        FIELD(Text, LoginID, "the user's login name")                                                        \
        FIELD(Password, Password, "the user's password")                                                     \
        FIELD(Password, NewPassword, "the new password; empty: keep the current one")                        \
        FIELD(WantedData, Request, "the data to return: the translation table and the profiles")             \
        FIELD(Optional, RestrictIP, "only application servers at this address are considered")               \
        FIELD(Optional, RestrictPort, "only application servers at this port are considered, decimal"))      \
    MESSAGE(Client, ASLoginResponse, "the answer to ASLoginRequest",                                         \
        FIELD(Text, ErrorNumber, "0 or the number of the error, decimal")                                    \
        FIELD(Optional, ErrorDesc, "description of the error for the user")                                  \
        FIELD(Optional, ErrorParam, "code of the error, such as ZEBError-132")                               \
        FIELD(Optional, DaysToExpirePassword, "days until the password expires, decimal")                    \
        FIELD(XML, TranslationTable, "the user's translation table")                                         \
        FIELD(Message, SessionInfo, "the session's record")                                                  \
        FIELD(Optional, SessionID, "the session's identifier")                                               \
        FIELD(Optional, Port, "the application server's port, decimal")                                      \
        FIELD(XML, Profiles, "the user's profiles"))                                                         \
    MESSAGE(Client, ASPasswordChangeRequest, "changes the password of a user who is logged in",              \
        FIELD(Text, AppID, "the application's identifier")                                                   \
        FIELD(Text, LoginID, "the user's login name")                                                        \
        FIELD(Text, SessionID, "the session's identifier")                                                   \
        FIELD(Password, OldPassword, "the current password")                                                 \
        FIELD(Password, NewPassword, "the new password"))                                                    \
    MESSAGE(Client, ASPasswordChangeResponse, "the answer to ASPasswordChangeRequest",                       \
        FIELD(Text, ErrorNumber, "0 or the number of the error, decimal")                                    \
        FIELD(Optional, ErrorDesc, "description of the error for the user, or its code")                     \
        FIELD(Optional, ErrorParam, "code of the error, such as ZEBError-132"))                              \
    MESSAGE(Client, ASProfilesUpdate, "replaces the profiles that the login server keeps",                   \
        FIELD(Text, AppID, "the application's identifier")                                                   \
        FIELD(Text, LoginID, "the user's login name")                                                        \
        FIELD(Text, UserUID, "the user's number, decimal")                                                   \
        FIELD(Text, SessionID, "the session's identifier")                                                   \
        FIELD(XML, Profiles, "the user's profiles"))                                                         \
    MESSAGE(Client, ASProfilesUpdateResponse, "the answer to ASProfilesUpdate",                              \
        FIELD(Text, ErrorNumber, "0 or the number of the error, decimal")                                    \
        FIELD(Optional, ErrorDesc, "description of the error for the user")                                  \
        FIELD(Optional, ErrorParam, "code of the error"))                                                    \
    MESSAGE(Client, ASRegisterRequest, "registers a session with an application server",                     \
        FIELD(Text, AppID, "the application's identifier")                                                   \
        FIELD(Text, SessionID, "the session's identifier")                                                   \
        FIELD(Text, LocaleID, "the user's locale identifier, decimal"))                                      \
    MESSAGE(Client, ASRegisterResponse, "the answer to ASRegisterRequest",                                   \
        FIELD(Text, ErrorNum, "0 or the number of the error, decimal")                                       \
        FIELD(Optional, ErrorDesc, "description of the error for the user"))                                 \
    MESSAGE(Client, ASUnknownResponse, "an application server's answer to a client that has not registered", \
        FIELD(Text, ErrorNum, "the number of the error, decimal")                                            \
        FIELD(Optional, ErrorDesc, "description of the error for the user"))                                 \
    MESSAGE(Client, ASDownloadClientRequest, "asks for a newer client's installer, sent as raw bytes", )     \
    MESSAGE(Client, ASDownloadClientResponse, "the answer to ASDownloadClientRequest without an installer",  \
        FIELD(Text, ErrorNumber, "the number of the error, decimal")                                         \
        FIELD(Optional, ErrorDesc, "description of the error for the user"))                                 \
    MESSAGE(Element, SessionInfo, "a session's record",                                                      \
        FIELD(Text, LoginID, "the user's login name")                                                        \
        FIELD(Text, UserUID, "the user's number, decimal")                                                   \
        FIELD(Text, EnterpriseID, "the enterprise")                                                          \
        FIELD(Text, OperatorID, "the operator")                                                              \
        FIELD(Text, Language, "the user's language")                                                         \
        FIELD(Text, FirstName, "the user's first name")                                                      \
        FIELD(Text, LastName, "the user's last name")                                                        \
        FIELD(Text, TZ, "the user's time zone")                                                              \
        FIELD(Text, DST, "the user's daylight saving time")                                                  \
        FIELD(Text, BUID, "the user's business unit")                                                        \
        FIELD(Text, BUIDUnionList, "all business units of the user, separated by |")                         \
        FIELD(Text, PrivilegeList, "the user's privileges, separated by |")                                  \
        FIELD(Optional, SessionID, "the session's identifier")                                               \
        FIELD(Optional, AppID, "the application's identifier"))                                              \
    MESSAGE(Element, ErrorResponse, "why a registration is refused",                                         \
        FIELD(Text, ErrorCode, "the number of the error, decimal")                                           \
        FIELD(Text, ErrorDescription, "description of the error for the user"))                              \
    MESSAGE(Element, ASRequestInfo, "the sender's reply address",                                            \
        FIELD(Text, ReturnMsgType, "the type of the sender's reply address")                                 \
        FIELD(Text, ReturnSubType, "the subtype of the sender's reply address"))                             \
    MESSAGE(Element, ApplicationInfo, "an application server and its sessions",                              \
        FIELD(Text, AppID, "the application's identifier")                                                   \
        FIELD(Text, Port, "the port for clients, decimal")                                                   \
        FIELD(Text, Address, "the address for clients")                                                      \
        FIELD(Text, BroadcastInterval, "seconds between two announcements, decimal")                         \
        FIELD(Optional, ClientPath, "the network path of the client's installer")                            \
        FIELD(Optional, ClientVersion, "the installer's version")                                            \
        FIELD(Texts, InterfaceVersions, "the interface versions that are served, one element each")          \
        FIELD(Optional, InfoState, "C: all sessions, E: a session that ended, D: the server stops")          \
        FIELD(SessionIDList, Sessions, "the sessions that InfoState refers to"))                             \
    MESSAGE(Element, ApplicationInfos, "the application servers of an announcement",                         \
        FIELD(Element<kq::ApplicationInfo>, ApplicationInfo, "the application server"))                      \
    MESSAGE(Bus, ASBroadcastInfo, "an application server announces itself",                                  \
        FIELD(Element<kq::ASRequestInfo>, ASRequestInfo, "the application server's reply address")           \
        FIELD(Element<kq::ApplicationInfos>, ApplicationInfos, "the announced application servers"))         \
    MESSAGE(Bus, RequestBroadcastAS, "asks application servers to announce themselves immediately", )        \
    MESSAGE(Bus, RequestASRegistration, "asks the login server to confirm a session",                        \
        FIELD(Text, ReturnMsgType, "the type of the application server's reply address")                     \
        FIELD(Text, ReturnSubType, "the subtype of the application server's reply address")                  \
        FIELD(Text, TransID, "the session's and the connection's identifier, separated by |")                \
        FIELD(Text, AppID, "the application's identifier")                                                   \
        FIELD(Text, SessionID, "the session's identifier")                                                   \
        FIELD(Optional, ReturnTag, "the tag of the client's request, to be returned"))                       \
    MESSAGE(Bus, ASRegistrationResponse, "the answer to RequestASRegistration",                              \
        FIELD(Text, TransID, "as in the request")                                                            \
        FIELD(Element<kq::SessionInfo>, SessionInfo, "the session's record; only when it is confirmed")      \
        FIELD(Element<kq::ErrorResponse>, ErrorResponse, "why it is refused; only when it is")               \
        FIELD(Optional, ReturnTag, "as in the request"))                                                     \
    MESSAGE(Bus, ASLogoutUser, "orders application servers to end sessions",                                 \
        FIELD(SessionIDList, SessionIDs, "the sessions"))
// clang-format on
