#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <chrono>
#include <functional>
#include <limits>
#include <memory>

namespace velmorquit {

/// The terms on which an answer over a bus counts.
struct BusTerms {
    using Patience = std::chrono::milliseconds;
    /// As long as QtDBus waits by itself.
    static constexpr Patience usual{-1};
    static constexpr Patience endless{std::numeric_limits<int>::max()};

    Patience patience = usual;
    const char* signature = nullptr; ///< of the answer; null for any
};

/// A call of the bus itself.
[[nodiscard]] QDBusMessage busQuestion(const QString& method, const QVariantList& arguments = {});

/// Calls whose answers are dropped together, with this object or before. None of them waits.
///
/// For the thread that makes them, whose event loop brings the answers.
class BusCalls {
public:
    using Answered = std::function<void(const QDBusMessage&)>;

    /// Tells the answer once, in a turn of its own, and an error in its place when there is none in
    /// time, its signature is another one, or it comes from another connection than the one that
    /// was called by its unique name. The callback may drop the calls and end this object.
    void send(const QDBusConnection& bus, const QDBusMessage& message, Answered answered,
              BusTerms terms = {});

    /// Nothing that is still awaited is told any more.
    void drop() { open_ = std::make_unique<QObject>(); }

private:
    /// Owns all that waits for an answer.
    std::unique_ptr<QObject> open_ = std::make_unique<QObject>();
};

/// One call at a time: a new one drops the answer to the one before.
class BusCall {
public:
    BusCall() = default;
    BusCall(const BusCall&) = delete;
    BusCall& operator=(const BusCall&) = delete;

    /// As `BusCalls::send` does.
    void send(const QDBusConnection& bus, const QDBusMessage& message, BusCalls::Answered answered,
              BusTerms terms = {});
    void drop();

    /// Whether an answer is awaited. It isn't any more while it is told.
    [[nodiscard]] bool isOpen() const { return isOpen_; }

private:
    BusCalls calls_;
    bool isOpen_ = false;
};

} // namespace velmorquit
