// A queue that costs nothing while it is empty: thousands of idle connections have two each.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace kq {

template <class T>
class Fifo {
 public:
    bool Empty() const { return head_ == items_.size(); }
    std::size_t Size() const { return items_.size() - head_; }
    T& Front() { return items_[head_]; }
    const T& Front() const { return items_[head_]; }
    T& Back() { return items_.back(); }

    void Push(T item) { items_.push_back(std::move(item)); }

    T Pop() {
        T item = std::move(items_[head_++]);
        if (Empty()) {
            Clear();
        } else if (head_ >= kCompactAt && head_ > items_.size() / 2) {
            items_.erase(items_.begin(), items_.begin() + static_cast<std::ptrdiff_t>(head_));
            head_ = 0;
        }
        return item;
    }

    // A long queue gives its memory back, a short one keeps it for the next items.
    void Clear() {
        if (items_.capacity() > kKept) std::vector<T>().swap(items_);
        items_.clear();
        head_ = 0;
    }

 private:
    static constexpr std::size_t kCompactAt = 64;
    static constexpr std::size_t kKept = 16;

    std::vector<T> items_;
    std::size_t head_ = 0;
};

}  // namespace kq
