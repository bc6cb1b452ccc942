// The list of everything that this DLL holds: its type libraries by resource number, and the classes that a
// host can create. It makes the class factory, the registration, the resource script and the manifest; help
// strings and identifiers stand in the type libraries.
#pragma once

#include <unknwn.h>

#include "automation/Ptr.h"

// X(number, library)
#define KQ_TYPE_LIBRARIES(X) \
    X(1, KQAppSessionLib)    \
    X(2, KQXMLMessageLib)    \
    X(3, KQAppProtocolLib)   \
    X(4, KQXMLBusClientLib)  \
    X(5, KQWebDataLib)       \
    X(6, KQStatisticsLib)    \
    X(7, KQTimerLib)

// X(library, coclass)
#define KQ_COCLASSES(X)                 \
    X(KQAppSessionLib, KQAppSessClient) \
    X(KQAppSessionLib, KQAppSessServer) \
    X(KQXMLMessageLib, XMLElement)      \
    X(KQXMLMessageLib, XMLMessage)      \
    X(KQAppProtocolLib, APClient)       \
    X(KQAppProtocolLib, Listener)       \
    X(KQXMLBusClientLib, Client)        \
    X(KQWebDataLib, TranslationTable)   \
    X(KQWebDataLib, DataTable)          \
    X(KQWebDataLib, Profile)            \
    X(KQWebDataLib, Profiles)           \
    X(KQStatisticsLib, Statistics)      \
    X(KQTimerLib, Timer)

namespace kq::automation {

// A new object of each class, with its own new core object: New<::KQAppSessClient>() and so on.
template <class Coclass>
Ptr<IUnknown> New();

}  // namespace kq::automation
