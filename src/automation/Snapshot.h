// Enumerators over a copy of what is enumerated, so that the original may change meanwhile.
#pragma once

#include <cstddef>
#include <memory>
#include <oaidl.h>
#include <ocidl.h>
#include <vector>

#include "automation/Convert.h"
#include "automation/Counted.h"
#include "automation/Guard.h"

namespace kq::automation {

// Interface: an IEnum... of items; Item: holds one and gives out a copy by `Raw CopyOut() const`.
template <class Interface, class Item, class Raw>
class Snapshot final : public Counted<Interface> {
 public:
    using Items = std::shared_ptr<const std::vector<Item>>;

    static Ptr<Interface> Create(std::vector<Item> items) {
        return Ptr<Interface>::Attach(
            new Snapshot(std::make_shared<const std::vector<Item>>(std::move(items)), 0));
    }

    HRESULT STDMETHODCALLTYPE Next(ULONG count, Raw* out, ULONG* fetched) override {
        if (!out || (!fetched && count != 1)) return E_POINTER;
        ULONG done = 0;
        const HRESULT result = Guard(__uuidof(Interface), [&] {
            for (; done < count && next_ < items_->size(); ++done)
                out[done] = (*items_)[next_++].CopyOut();
        });
        if (fetched) *fetched = done;
        return FAILED(result) ? result : done == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        const std::size_t left = items_->size() - next_;
        next_ += count < left ? count : left;
        return count <= left ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        next_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(Interface** out) override {
        return Guard(__uuidof(Interface),
                     [&] { Give(out, Ptr<Interface>::Attach(new Snapshot(items_, next_))); });
    }

 private:
    Snapshot(Items items, std::size_t next) : items_(std::move(items)), next_(next) {}

    Items items_;
    std::size_t next_;
};

// An element of a collection.
struct Element {
    Variant value;
    VARIANT CopyOut() const { return Variant(value).Detach(); }
};
using Elements = Snapshot<IEnumVARIANT, Element, VARIANT>;

// For a member NewEnum: an enumerator over the automation objects (or texts) of a range.
template <class Range, class Wrap>
Ptr<IUnknown> EnumeratorOver(const Range& range, Wrap&& wrap) {
    std::vector<Element> elements;
    for (const auto& item : range)
        elements.push_back({VariantOf(wrap(item))});
    return Ptr<IUnknown>(Elements::Create(std::move(elements)).Get());
}

}  // namespace kq::automation
