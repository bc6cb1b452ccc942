// Events to hosts by connection points. An event goes to every sink that is connected when it is raised;
// sinks may connect, disconnect and drop the object meanwhile. What a sink answers is not looked at.
#pragma once

#include <map>
#include <oaidl.h>
#include <ocidl.h>
#include <vector>

#include "automation/Convert.h"
#include "automation/Ptr.h"

namespace kq::automation {

// The one connection point of an object, part of it: references count for the object.
class ConnectionPoint final : public IConnectionPoint {
 public:
    ConnectionPoint(IConnectionPointContainer& owner, const IID& source) : owner_(owner), source_(source) {}
    virtual ~ConnectionPoint() = default;
    ConnectionPoint(const ConnectionPoint&) = delete;
    ConnectionPoint& operator=(const ConnectionPoint&) = delete;

    const IID& Source() const { return source_; }
    bool HasSinks() const { return !sinks_.empty(); }
    // Arguments in the order of the declaration.
    void Fire(DISPID id, std::vector<Variant> arguments);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return owner_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return owner_.Release(); }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* out) override;
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** out) override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** out) override;

 private:
    IConnectionPointContainer& owner_;
    const IID source_;
    std::map<DWORD, Ptr<IDispatch>> sinks_;  // in the order of connection
    DWORD last_cookie_ = 0;
};

// A mixin of Object: the object raises the events of `Source`, a dispinterface.
class EventSourceBase : public IConnectionPointContainer {
 public:
    explicit EventSourceBase(const IID& source) : point_(*this, source) {}
    virtual ~EventSourceBase() = default;

    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** out) override;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** out) override;

    void* Query(REFIID iid) {
        return iid == IID_IConnectionPointContainer ? static_cast<IConnectionPointContainer*>(this) : nullptr;
    }

 protected:
    // Nothing is made of the arguments while nobody listens. Arguments() returns them in order.
    template <class Arguments>
    void Fire(DISPID id, Arguments&& arguments) {
        if (!point_.HasSinks()) return;
        const Ptr<IConnectionPointContainer> keep(this);
        point_.Fire(id, arguments());
    }

 private:
    ConnectionPoint point_;
};

template <class Source>
class EventSource : public EventSourceBase {
 public:
    EventSource() : EventSourceBase(__uuidof(Source)) {}
    static IID DefaultSource() { return __uuidof(Source); }
};

// The arguments of an event.
template <class... Values>
std::vector<Variant> Arguments(Values&&... values) {
    std::vector<Variant> arguments;
    (arguments.push_back(VariantOf(std::forward<Values>(values))), ...);
    return arguments;
}

}  // namespace kq::automation
