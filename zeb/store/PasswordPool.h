// Checks passwords away from the event loop: hashing takes a tenth of a second and much memory, so a few
// threads do it, and the queue is limited.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Secret.h>
#include <kqappsession/Signal.h>

#include "zeb/store/Passwords.h"

namespace kq::zeb {

class Executor {
 public:
    using Work = std::function<void()>;
    virtual ~Executor() = default;
    // False when the queue is full; the work is then not run.
    virtual bool Submit(Work work) = 0;
};

// Runs work on `threads` threads; at most `queue` pieces are queued beside those that run. The destructor
// waits for the running work and drops the queued work.
class ThreadPool final : public Executor {
 public:
    ThreadPool(std::size_t threads, std::size_t queue);
    ~ThreadPool() override;
    bool Submit(Work work) override;

 private:
    void RunWorker();

    std::size_t queue_limit_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Work> waiting_;
    std::size_t unfinished_ = 0;  // queued or running
    bool stopping_ = false;
    std::vector<std::thread> threads_;
};

struct PasswordQuestion {
    std::string login;
    Secret password;
    std::optional<std::string> hash;     // none: there is no such user
    std::optional<Secret> new_password;  // to be checked and hashed if the password is correct
};

struct PasswordAnswer {
    bool correct = false;
    bool failed = false;                           // the machine could not do the work
    Refusal new_password_refusal = Refusal::None;  // why the new one is not accepted
    std::string new_hash;                          // if there is one and it is accepted
};

// Answers questions about passwords on the loop's thread. An unknown user costs the same work as a known one.
class PasswordPool {
 public:
    // The executor must be destroyed before the loop and the hasher.
    PasswordPool(std::shared_ptr<EventLoop> loop, Executor& executor, const PasswordHasher& hasher);

    // False when the queue is full. `done` is called later, never from inside the call, and not after the
    // pool is destroyed.
    bool Ask(PasswordQuestion question, std::function<void(const PasswordAnswer&)> done);

 private:
    static PasswordAnswer Work(const PasswordHasher& hasher, const PasswordQuestion& question,
                               const std::string& nobodys_hash) noexcept;

    std::shared_ptr<EventLoop> loop_;
    Executor& executor_;
    const PasswordHasher& hasher_;
    std::string nobodys_hash_;
    Owner owner_;
};

}  // namespace kq::zeb
