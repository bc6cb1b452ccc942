// Password work away from the event loop: hashing takes a tenth of a second and much memory, so a few threads
// do it, and only so much of it may wait.
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
    // False when too much waits already; the work is then not run.
    virtual bool Submit(Work work) = 0;
};

// Runs work on `threads` threads; at most `queue` pieces wait beside those that run. The destructor waits for
// what runs and drops what waits.
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
    std::size_t unfinished_ = 0;  // waiting or running
    bool stopping_ = false;
    std::vector<std::thread> threads_;
};

struct PasswordQuestion {
    std::string login;
    Secret password;
    std::optional<std::string> hash;     // none: there is no such user
    std::optional<Secret> new_password;  // to be checked and hashed when the password is right
};

struct PasswordAnswer {
    bool correct = false;
    bool failed = false;                           // the machine could not do the work
    Refusal new_password_refusal = Refusal::None;  // why the new one cannot be taken
    std::string new_hash;                          // when one was given and can be taken
};

// Answers questions about passwords on the loop's thread. An unknown user costs the same work as a known one.
class PasswordPool {
 public:
    // The executor must be gone before the loop and the hasher are.
    PasswordPool(std::shared_ptr<EventLoop> loop, Executor& executor, const PasswordHasher& hasher);

    // False when too much waits. `done` is called later, never from inside the call, and not once the pool is
    // gone.
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
