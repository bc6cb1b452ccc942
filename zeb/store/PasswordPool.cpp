// The pool's threads, and the one piece of work that they do.
#include "zeb/store/PasswordPool.h"

#include <memory>
#include <utility>

#include <sodium.h>

namespace kq::zeb {

ThreadPool::ThreadPool(std::size_t threads, std::size_t queue) : queue_limit_(threads + queue) {
    for (std::size_t i = 0; i < threads; ++i) {
        threads_.emplace_back([this] { RunWorker(); });
    }
}

ThreadPool::~ThreadPool() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    for (auto& thread : threads_)
        thread.join();
}

bool ThreadPool::Submit(Work work) {
    {
        const std::lock_guard lock(mutex_);
        if (unfinished_ >= queue_limit_) return false;
        ++unfinished_;
        waiting_.push_back(std::move(work));
    }
    wake_.notify_one();
    return true;
}

void ThreadPool::RunWorker() {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return stopping_ || !waiting_.empty(); });
        if (stopping_) return;
        Work work = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        work();
        work = nullptr;
        lock.lock();
        --unfinished_;
    }
}

PasswordPool::PasswordPool(std::shared_ptr<EventLoop> loop, Executor& executor, const PasswordHasher& hasher)
    : loop_(std::move(loop)), executor_(executor), hasher_(hasher) {
    std::string nobody(32, '\0');
    randombytes_buf(nobody.data(), nobody.size());
    nobodys_hash_ = hasher_.Hash(Secret(std::move(nobody)));
}

bool PasswordPool::Ask(PasswordQuestion question, std::function<void(const PasswordAnswer&)> done) {
    // Bound here, on the loop's thread; the worker only carries it.
    auto bound = std::make_shared<std::function<void(const PasswordAnswer&)>>(owner_.Bind(std::move(done)));
    auto shared = std::make_shared<const PasswordQuestion>(std::move(question));
    return executor_.Submit([loop = loop_, &hasher = hasher_, nobody = nobodys_hash_,
                             shared = std::move(shared), bound = std::move(bound)]() mutable {
        auto answer = Work(hasher, *shared, nobody);
        shared.reset();
        loop->Post([bound = std::move(bound), answer = std::move(answer)] { (*bound)(answer); });
    });
}

PasswordAnswer PasswordPool::Work(const PasswordHasher& hasher, const PasswordQuestion& question,
                                  const std::string& nobodys_hash) noexcept {
    PasswordAnswer answer;
    try {
        const bool matches = hasher.Verify(question.hash.value_or(nobodys_hash), question.password);
        answer.correct = matches && question.hash.has_value();
        if (!answer.correct || !question.new_password) return answer;
        answer.new_password_refusal =
            CheckNewPassword(*question.new_password, question.login, question.password);
        if (answer.new_password_refusal == Refusal::None)
            answer.new_hash = hasher.Hash(*question.new_password);
    } catch (const std::exception&) {
        answer = {};
        answer.failed = true;
    }
    return answer;
}

}  // namespace kq::zeb
