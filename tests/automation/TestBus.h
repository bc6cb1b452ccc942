// A bus on loopback for the hosts in this process: its hub.
#pragma once

#include <memory>

namespace kq {

class Hub;

class TestBus {
 public:
    TestBus();
    ~TestBus();
    TestBus(const TestBus&) = delete;
    TestBus& operator=(const TestBus&) = delete;

    long Port() const;

 private:
    std::unique_ptr<Hub> hub_;
};

}  // namespace kq
