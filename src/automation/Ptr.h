// A counted reference to an automation object. Construction from a plain pointer adds a reference; Attach
// takes over the one that an out parameter carries.
#pragma once

#include <unknwn.h>
#include <utility>

namespace kq::automation {

template <class T>
class Ptr {
 public:
    Ptr() = default;
    Ptr(std::nullptr_t) {}
    explicit Ptr(T* pointer) : pointer_(pointer) {
        if (pointer_) pointer_->AddRef();
    }
    Ptr(const Ptr& other) : Ptr(other.pointer_) {}
    Ptr(Ptr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    Ptr& operator=(Ptr other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~Ptr() {
        if (pointer_) pointer_->Release();
    }

    static Ptr Attach(T* pointer) {
        Ptr result;
        result.pointer_ = pointer;
        return result;
    }
    T* Detach() { return std::exchange(pointer_, nullptr); }
    T* Get() const { return pointer_; }
    T* operator->() const { return pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }

    // For an out parameter.
    T** Out() {
        *this = nullptr;
        return &pointer_;
    }
    void** OutVoid() { return reinterpret_cast<void**>(Out()); }

    // The same object by another interface; null when it has none of that kind.
    template <class U>
    Ptr<U> As(REFIID iid = __uuidof(U)) const {
        Ptr<U> result;
        if (pointer_ && FAILED(pointer_->QueryInterface(iid, result.OutVoid()))) return {};
        return result;
    }

 private:
    T* pointer_ = nullptr;
};

}  // namespace kq::automation
