#pragma once

#include "Loop/MainLoop.h"

#include <concepts>
#include <coroutine>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace velmorquit {

/// What a coroutine that is a member function belongs to: it says which loop the coroutine runs on.
template <class Owner>
concept TaskOwner = requires(Owner& owner) {
    { owner.mainLoop() } -> std::convertible_to<MainLoop&>;
};

/// What all tasks of the loop have in common, whatever they return.
class TaskPromise {
public:
    explicit TaskPromise(MainLoop& loop) : loop_(loop) {}
    TaskPromise(const TaskPromise&) = delete;
    TaskPromise& operator=(const TaskPromise&) = delete;

    auto initial_suspend() {
        struct LaterTurn {
            TaskPromise& promise;
            bool await_ready() const noexcept { return false; }
            void await_suspend(std::coroutine_handle<>) const { promise.waitFor(Duration::zero()); }
            void await_resume() const noexcept {}
        };
        return LaterTurn{*this};
    }
    auto final_suspend() noexcept {
        if (const auto waiting = waiting_.lock())
            (*waiting)->waitFor(Duration::zero());
        return std::suspend_always();
    }
    [[noreturn]] void unhandled_exception() { std::terminate(); }

    [[nodiscard]] MainLoop& loop() const { return loop_; }

    /// Resumes the coroutine when `delay` has passed. The wait is kept here and not in the awaited
    /// object, which has no destructor so: g++ 12 destroys such temporaries twice.
    void waitFor(Duration delay) {
        wait_ = loop_.after(delay, [this] { resume(); });
    }

    /// Resumes the coroutine when `work` has been done elsewhere.
    void waitForWork(std::function<void()> work) {
        wait_ = loop_.background(std::move(work), [this] { resume(); });
    }

    /// Resumes `other` when this coroutine has returned.
    void tellWhenDone(const TaskPromise& other) { waiting_ = other.token(); }

    /// What tells, without holding the coroutine, whether it is still there.
    [[nodiscard]] std::weak_ptr<TaskPromise*> token() const { return token_; }

    /// Goes on until the next suspension. The coroutine may be gone afterwards.
    void resume() {
        const std::coroutine_handle<> coroutine = coroutine_;
        isRunning_ = true;
        coroutine.resume();
        isRunning_ = false;
        if (isAbandoned_)
            coroutine.destroy();
    }

    /// Ends the coroutine: here, or at its next suspension while it runs.
    void abandon() {
        if (isRunning_)
            isAbandoned_ = true;
        else
            coroutine_.destroy();
    }
    [[nodiscard]] bool isAbandoned() const { return isAbandoned_; }

protected:
    void belongTo(std::coroutine_handle<> coroutine) { coroutine_ = coroutine; }

private:
    MainLoop& loop_;
    std::coroutine_handle<> coroutine_;
    Handle wait_;
    std::shared_ptr<TaskPromise*> token_ = std::make_shared<TaskPromise*>(this);
    std::weak_ptr<TaskPromise*> waiting_;
    bool isRunning_ = false;
    bool isAbandoned_ = false;
};

/// What a task of that type leaves behind.
template <class Result> class TaskResult {
public:
    void return_value(Result value) { value_ = std::move(value); }
    Result take() { return std::move(*value_); }

private:
    std::optional<Result> value_;
};
template <> class TaskResult<void> {
public:
    void return_void() {}
    void take() {}
};

/// A coroutine on the main loop, owned by this handle.
///
/// Its first step runs in a later turn, when the handle has been stored. Cancelling or destroying
/// the handle ends the coroutine where it is suspended, its local objects destroyed; a coroutine
/// that cancels itself goes on to its next suspension and ends there. So a task never outlives its
/// owner. The coroutine is a member of a `TaskOwner`, or a function whose first parameter is a
/// `MainLoop&`.
///
/// Another task may wait for it and has what it returned: `Task<int> counting = count();` and then
/// `co_await counting`, once. Under a name, not within the expression: see `waitFor`.
template <class Result = void> class Task {
public:
    class promise_type : public TaskPromise, public TaskResult<Result> {
    public:
        template <TaskOwner Owner, class... Arguments>
        explicit promise_type(Owner& owner, Arguments&...) : TaskPromise(owner.mainLoop()) {}
        template <class... Arguments>
        explicit promise_type(MainLoop& loop, Arguments&...) : TaskPromise(loop) {}

        Task get_return_object() {
            const auto coroutine = Coroutine::from_promise(*this);
            this->belongTo(coroutine);
            return Task(coroutine);
        }
    };

    Task() = default;
    Task(Task&& other) noexcept : coroutine_(std::exchange(other.coroutine_, nullptr)) {}
    Task& operator=(Task&& other) noexcept {
        Task moved(std::move(other));
        std::swap(coroutine_, moved.coroutine_);
        return *this;
    }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task() { cancel(); }

    void cancel() {
        if (coroutine_)
            std::exchange(coroutine_, nullptr).promise().abandon();
    }

    /// True from the start until the coroutine has returned or was cancelled.
    [[nodiscard]] bool isActive() const { return coroutine_ && !coroutine_.done(); }

    [[nodiscard]] bool await_ready() const noexcept { return coroutine_.done(); }
    template <class Promise> void await_suspend(std::coroutine_handle<Promise> waiting) const {
        coroutine_.promise().tellWhenDone(waiting.promise());
    }
    Result await_resume() const { return coroutine_.promise().take(); }

private:
    using Coroutine = std::coroutine_handle<promise_type>;
    explicit Task(Coroutine coroutine) : coroutine_(coroutine) {}

    Coroutine coroutine_ = nullptr;
};

/// `co_await sleep(250ms)` in a `Task`: goes on when that much running time has passed.
struct sleep {
    Duration duration;

    explicit sleep(Duration time) : duration(time) {}
    bool await_ready() const noexcept { return false; }
    template <class Promise> void await_suspend(std::coroutine_handle<Promise> coroutine) const {
        coroutine.promise().waitFor(duration);
    }
    void await_resume() const noexcept {}
};

/// `co_await unlessCancelled()` in a `Task`: goes on at once, unless the task has been cancelled by
/// what it called meanwhile; then it ends here, and nothing of its owner is touched any more.
struct unlessCancelled {
    bool await_ready() const noexcept { return false; }
    template <class Promise> bool await_suspend(std::coroutine_handle<Promise> coroutine) const {
        return coroutine.promise().isAbandoned();
    }
    void await_resume() const noexcept {}
};

/// Work that a `Task` has done elsewhere, where it may block: `OffMain reading([...] {...});` and
/// then `co_await reading`, which gives what the work returned. The work owns what it uses. Under a
/// name, not within the expression: see `waitFor`.
template <class Result> class OffMain {
public:
    explicit OffMain(std::function<Result()> work) : work_(std::move(work)) {}

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <class Promise> void await_suspend(std::coroutine_handle<Promise> coroutine) {
        coroutine.promise().waitForWork(
            [result = result_, work = std::move(work_)] { result->emplace(work()); });
    }
    Result await_resume() { return std::move(**result_); }

private:
    std::function<Result()> work_;
    /// Kept by the work as well, which may outlive the task.
    std::shared_ptr<std::optional<Result>> result_ = std::make_shared<std::optional<Result>>();
};
template <class Work> OffMain(Work) -> OffMain<std::invoke_result_t<Work>>;

/// A value that somebody gives later, for one `Task` that waits for it: `co_await answer`. The
/// first value counts; it may be given before it is waited for. Once taken, the next one can be
/// given.
template <class Given> class Answer {
public:
    void give(Given value) {
        if (value_)
            return;
        value_ = std::move(value);
        if (const auto waiting = waiting_.lock())
            (*waiting)->waitFor(Duration::zero());
    }

    /// Whether a task waits and has no value yet.
    [[nodiscard]] bool isAwaited() const { return !value_ && !waiting_.expired(); }
    /// Forgets a value that nobody has taken.
    void clear() { value_.reset(); }

    [[nodiscard]] bool await_ready() const noexcept { return value_.has_value(); }
    template <class Promise> void await_suspend(std::coroutine_handle<Promise> coroutine) {
        waiting_ = coroutine.promise().token();
    }
    Given await_resume() {
        waiting_.reset();
        return *std::exchange(value_, std::nullopt);
    }

private:
    std::optional<Given> value_;
    std::weak_ptr<TaskPromise*> waiting_;
};

} // namespace velmorquit
