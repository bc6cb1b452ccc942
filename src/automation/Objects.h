// The way from core objects to automation objects and back, for every class of the type libraries. Wrap keeps
// identity; Unwrap gives null for Nothing and raises TypeMismatch for an object of another kind.
#pragma once

#include <KQAppProtocolLib.h>
#include <KQAppSessionLib.h>
#include <KQStatisticsLib.h>
#include <KQTimerLib.h>
#include <KQWebDataLib.h>
#include <KQXMLBusClientLib.h>
#include <KQXMLMessageLib.h>
#include <memory>

#include <kqappsession/KQAppSessClient.h>
#include <kqappsession/KQAppSessServer.h>
#include <kqappsession/Listener.h>
#include <kqappsession/Statistics.h>
#include <kqappsession/Timer.h>
#include <kqappsession/WebData.h>
#include <kqappsession/XMLBusClient.h>

#include "automation/Convert.h"
#include "automation/Ptr.h"

namespace kq::automation {

Ptr<::_XMLElement> Wrap(std::shared_ptr<XMLElement> element);
Ptr<::_XMLMessage> Wrap(std::shared_ptr<XMLMessage> message);
Ptr<::_Block> Wrap(std::shared_ptr<Block> block);
Ptr<::_APClient> Wrap(std::shared_ptr<APClient> client);
Ptr<::_Listener> Wrap(std::shared_ptr<Listener> listener);
Ptr<::_Client> Wrap(std::shared_ptr<XMLBusClient> client);
Ptr<::_TranslationTable> Wrap(std::shared_ptr<TranslationTable> table);
Ptr<::_DataRow> Wrap(std::shared_ptr<DataRow> row);
Ptr<::_DataRows> Wrap(std::shared_ptr<DataRows> rows);
Ptr<::_DataTable> Wrap(std::shared_ptr<DataTable> table);
Ptr<::_TableStore> Wrap(std::shared_ptr<TableStore> tables);
Ptr<::_Profile> Wrap(std::shared_ptr<Profile> profile);
Ptr<::_Profiles> Wrap(std::shared_ptr<Profiles> profiles);
Ptr<::_KQAppSessionInfo> Wrap(std::shared_ptr<KQAppSessionInfo> session);
Ptr<::_KQAppSessionInfos> Wrap(std::shared_ptr<KQAppSessionInfos> sessions);

template <class Core>
std::shared_ptr<Core> Unwrap(IUnknown* object);
template <>
std::shared_ptr<XMLElement> Unwrap(IUnknown* object);
template <>
std::shared_ptr<XMLMessage> Unwrap(IUnknown* object);
template <>
std::shared_ptr<XMLBusClient> Unwrap(IUnknown* object);
template <>
std::shared_ptr<TranslationTable> Unwrap(IUnknown* object);
template <>
std::shared_ptr<DataRow> Unwrap(IUnknown* object);
template <>
std::shared_ptr<DataTable> Unwrap(IUnknown* object);
template <>
std::shared_ptr<Profile> Unwrap(IUnknown* object);
template <>
std::shared_ptr<Profiles> Unwrap(IUnknown* object);
template <>
std::shared_ptr<Statistics> Unwrap(IUnknown* object);

// What a block holds, as hosts see it: a text, for raw data an array of bytes.
Variant DataOf(const Block& block);
// The core's value; one that it does not know raises error 5.
DataType DataTypeOf(::APDataType type);

// An argument by reference, as the core takes it.
inline std::string In(BSTR* text) {
    return TextOf(Given(text));
}
inline std::int32_t In(long* number) {
    return static_cast<std::int32_t>(Given(number));
}
inline bool In(VARIANT_BOOL* value) {
    return Given(value) != VARIANT_FALSE;
}

}  // namespace kq::automation
