#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <chrono>
#include <functional>
#include <limits>
#include <memory>

namespace velmorquit {

/// The conditions under which an answer on a bus counts.
struct BusTerms {
    using Patience = std::chrono::milliseconds;
    /// QtDBus's own time limit.
    static constexpr Patience usual{-1};
    static constexpr Patience endless{std::numeric_limits<int>::max()};

    Patience patience = usual;
    const char* signature = nullptr; ///< of the answer; null for any
};

/// A call to the bus itself.
[[nodiscard]] QDBusMessage busQuestion(const QString& method, const QVariantList& arguments = {});

/// Calls whose answers are dropped together, at the latest with this object. None of them waits.
///
/// For the calling thread, whose event loop delivers the answers.
class BusCalls {
public:
    using Answered = std::function<void(const QDBusMessage&)>;

    /// Delivers the answer once, in a turn of its own; or an error when there is none in time, it
    /// has another signature, or it comes from another connection than the unique name that was
    /// called. The callback may drop the calls and destroy this object.
    void send(const QDBusConnection& bus, const QDBusMessage& message, Answered answered,
              BusTerms terms = {});

    /// Drops all pending answers.
    void drop() { open_ = std::make_unique<QObject>(); }

private:
    /// Owns everything that waits for an answer.
    std::unique_ptr<QObject> open_ = std::make_unique<QObject>();
};

/// One call at a time: a new one drops the pending answer.
class BusCall {
public:
    BusCall() = default;
    BusCall(const BusCall&) = delete;
    BusCall& operator=(const BusCall&) = delete;

    /// See `BusCalls::send`.
    void send(const QDBusConnection& bus, const QDBusMessage& message, BusCalls::Answered answered,
              BusTerms terms = {});
    void drop();

    /// Whether an answer is pending; no longer true while it is delivered.
    [[nodiscard]] bool isOpen() const { return isOpen_; }

private:
    BusCalls calls_;
    bool isOpen_ = false;
};

} // namespace velmorquit
