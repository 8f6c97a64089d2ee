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

/// The class of which a coroutine is a member function: it provides the coroutine's loop.
template <class Owner>
concept TaskOwner = requires(Owner& owner) {
    { owner.mainLoop() } -> std::convertible_to<MainLoop&>;
};

/// The part of a task's promise that doesn't depend on its result.
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

    /// Resumes the coroutine when `delay` has passed. The wait is kept here instead of in the
    /// awaited object, which thus needs no destructor: g++ 12 destroys such temporaries twice.
    void waitFor(Duration delay) {
        wait_ = loop_.after(delay, [this] { resume(); });
    }

    /// Resumes the coroutine when `work` has been done on another thread.
    void waitForWork(std::function<void()> work) {
        wait_ = loop_.background(std::move(work), [this] { resume(); });
    }

    /// Resumes `other` when this coroutine has returned.
    void tellWhenDone(const TaskPromise& other) { waiting_ = other.token(); }

    /// Tells, without keeping the coroutine alive, whether it still exists.
    [[nodiscard]] std::weak_ptr<TaskPromise*> token() const { return token_; }

    /// Runs until the next suspension. The coroutine may be gone afterwards.
    void resume() {
        const std::coroutine_handle<> coroutine = coroutine_;
        isRunning_ = true;
        coroutine.resume();
        isRunning_ = false;
        if (isAbandoned_)
            coroutine.destroy();
    }

    /// Ends the coroutine: at once, or at its next suspension if it is running.
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

/// Holds a task's result.
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
/// Its first step runs in a later turn, once the handle has been stored. Cancelling or destroying
/// the handle ends the coroutine where it is suspended and destroys its local objects; a coroutine
/// that cancels itself runs on to its next suspension and ends there. So a task never outlives its
/// owner. The coroutine is a member of a `TaskOwner`, or a function whose first parameter is a
/// `MainLoop&`.
///
/// Another task can wait for it and get its result: `Task<int> counting = count();` and then
/// `co_await counting`, once. It needs a variable, not a temporary: see `waitFor`.
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

/// `co_await sleep(250ms)` in a `Task`: continues when that much running time has passed.
struct sleep {
    Duration duration;

    explicit sleep(Duration time) : duration(time) {}
    bool await_ready() const noexcept { return false; }
    template <class Promise> void await_suspend(std::coroutine_handle<Promise> coroutine) const {
        coroutine.promise().waitFor(duration);
    }
    void await_resume() const noexcept {}
};

/// `co_await unlessCancelled()` in a `Task`: continues at once, unless something that the task
/// called has cancelled it; then it ends here, without touching its owner again.
struct unlessCancelled {
    bool await_ready() const noexcept { return false; }
    template <class Promise> bool await_suspend(std::coroutine_handle<Promise> coroutine) const {
        return coroutine.promise().isAbandoned();
    }
    void await_resume() const noexcept {}
};

/// Work that a `Task` has done on another thread, where it may block: `OffMain reading([...]
/// {...});` and then `co_await reading`, which gives its result. The work must own all that it
/// uses. It needs a variable, not a temporary: see `waitFor`.
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
    /// Shared with the work, which may outlive the task.
    std::shared_ptr<std::optional<Result>> result_ = std::make_shared<std::optional<Result>>();
};
template <class Work> OffMain(Work) -> OffMain<std::invoke_result_t<Work>>;

/// A value given later to one `Task` that waits for it: `co_await answer`. Only the first value
/// counts; it may be given before anybody waits for it. Once it has been taken, the next one can be
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

    /// Whether a task is waiting and has no value yet.
    [[nodiscard]] bool isAwaited() const { return !value_ && !waiting_.expired(); }
    /// Discards a value that was not taken.
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
