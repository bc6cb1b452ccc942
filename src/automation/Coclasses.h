// The list of everything that this DLL holds: its type libraries and its classes. A row is all that the way
// of a class to hosts takes, beside its description in resources/ and its object in objects/: the list makes
// the class factory, the registration, the resource script, the manifest, the headers of the interfaces, and
// the way between core objects and automation objects. Help strings and identifiers are in the descriptions.
#pragma once

// X(resource number, library); a library comes after those that it imports.
#define KQ_TYPE_LIBRARIES(X) \
    X(2, KQXMLMessageLib)    \
    X(3, KQAppProtocolLib)   \
    X(4, KQXMLBusClientLib)  \
    X(5, KQWebDataLib)       \
    X(6, KQStatisticsLib)    \
    X(7, KQTimerLib)         \
    X(1, KQAppSessionLib)

// X(library, class, core class, Created or Given): hosts create the objects of the one kind, each with a new
// core object; those of the other kind they get from members.
#define KQ_COCLASSES(X)                                             \
    X(KQAppSessionLib, KQAppSessClient, KQAppSessClient, Created)   \
    X(KQAppSessionLib, KQAppSessServer, KQAppSessServer, Created)   \
    X(KQAppSessionLib, KQAppSessionInfo, KQAppSessionInfo, Given)   \
    X(KQAppSessionLib, KQAppSessionInfos, KQAppSessionInfos, Given) \
    X(KQXMLMessageLib, XMLElement, XMLElement, Created)             \
    X(KQXMLMessageLib, XMLMessage, XMLMessage, Created)             \
    X(KQAppProtocolLib, Block, Block, Given)                        \
    X(KQAppProtocolLib, APClient, APClient, Created)                \
    X(KQAppProtocolLib, Listener, Listener, Created)                \
    X(KQXMLBusClientLib, Client, XMLBusClient, Created)             \
    X(KQWebDataLib, TranslationTable, TranslationTable, Created)    \
    X(KQWebDataLib, DataRow, DataRow, Given)                        \
    X(KQWebDataLib, DataRows, DataRows, Given)                      \
    X(KQWebDataLib, DataTable, DataTable, Created)                  \
    X(KQWebDataLib, TableStore, TableStore, Given)                  \
    X(KQWebDataLib, Profile, Profile, Created)                      \
    X(KQWebDataLib, Profiles, Profiles, Created)                    \
    X(KQStatisticsLib, Statistics, Statistics, Created)             \
    X(KQTimerLib, Timer, Timer, Created)
