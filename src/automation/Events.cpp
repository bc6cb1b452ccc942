#include "automation/Events.h"

#include <algorithm>
#include <olectl.h>

#include "automation/Guard.h"
#include "automation/Snapshot.h"

namespace kq::automation {
namespace {

struct Connection {
    DWORD cookie;
    Ptr<IDispatch> sink;
    CONNECTDATA CopyOut() const { return {Ptr<IUnknown>(sink.Get()).Detach(), cookie}; }
};
using Connections = Snapshot<IEnumConnections, Connection, CONNECTDATA>;

struct Point {
    Ptr<IConnectionPoint> point;
    IConnectionPoint* CopyOut() const { return Ptr<IConnectionPoint>(point).Detach(); }
};
using Points = Snapshot<IEnumConnectionPoints, Point, IConnectionPoint*>;

}  // namespace

void ConnectionPoint::Fire(DISPID id, std::vector<Variant> arguments) {
    const auto sinks = sinks_;
    std::reverse(arguments.begin(), arguments.end());
    for (const auto& [cookie, sink] : sinks) {
        if (!sinks_.contains(cookie)) continue;  // disconnected by an earlier one
        DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
        sink->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                     nullptr);
    }
}

HRESULT ConnectionPoint::QueryInterface(REFIID iid, void** out) {
    if (!out) return E_POINTER;
    *out = iid == IID_IUnknown || iid == IID_IConnectionPoint ? this : nullptr;
    if (!*out) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* out) {
    return Guard(IID_IConnectionPoint, [&] { Given(out) = source_; });
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** out) {
    return Guard(IID_IConnectionPoint, [&] { Give(out, Ptr<IConnectionPointContainer>(&owner_)); });
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
    return Guard(IID_IConnectionPoint, [&] {
        Given(cookie) = 0;
        const Ptr<IUnknown> object(&Given(sink));
        auto dispatch = object.As<IDispatch>(source_);
        if (!dispatch) dispatch = object.As<IDispatch>();
        if (!dispatch) throw Failure(CONNECT_E_CANNOTCONNECT);
        sinks_[++last_cookie_] = dispatch;
        *cookie = last_cookie_;
    });
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) {
    return Guard(IID_IConnectionPoint, [&] {
        const auto sink = sinks_.extract(cookie);  // let go of only after the map is in order
        if (!sink) throw Failure(CONNECT_E_NOCONNECTION);
    });
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections** out) {
    return Guard(IID_IConnectionPoint, [&] {
        std::vector<Connection> connections;
        for (const auto& [cookie, sink] : sinks_)
            connections.push_back({cookie, sink});
        Give(out, Connections::Create(std::move(connections)));
    });
}

HRESULT EventSourceBase::EnumConnectionPoints(IEnumConnectionPoints** out) {
    return Guard(IID_IConnectionPointContainer,
                 [&] { Give(out, Points::Create({Point{Ptr<IConnectionPoint>(&point_)}})); });
}

HRESULT EventSourceBase::FindConnectionPoint(REFIID iid, IConnectionPoint** out) {
    return Guard(IID_IConnectionPointContainer, [&] {
        Given(out) = nullptr;
        if (iid != point_.Source()) throw Failure(CONNECT_E_NOCONNECTION);
        *out = Ptr<IConnectionPoint>(&point_).Detach();
    });
}

}  // namespace kq::automation
