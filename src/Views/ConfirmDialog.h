#pragma once

#include <QMessageBox>

#include <functional>
#include <memory>
#include <string>

namespace velmorquit {

/// A question with two answers in a small window, which keeps nothing else from going on.
class ConfirmDialog {
public:
    ConfirmDialog() = default;
    ConfirmDialog(const ConfirmDialog&) = delete;
    ConfirmDialog& operator=(const ConfirmDialog&) = delete;
    ~ConfirmDialog() = default;

    enum class Manner {
        wanted,   ///< the user has just done something that leads to it
        unbidden, ///< it comes out of nowhere: it takes no keyboard, and no yes before it was read
    };
    /// Time in which nobody can have read a question that came unbidden, in milliseconds.
    static constexpr int readingTime = 1500;

    /// Asks, with `button` as the caption of the answer that says yes, and calls `answered` once. A
    /// question that is still open is answered with no.
    void ask(const std::string& question, const std::string& button,
             std::function<void(bool isYes)> answered, Manner manner = Manner::wanted);

    /// Closes the question that is open, which answers it with no.
    void withdraw() { finish(false); }

private:
    void finish(bool isYes);

    std::unique_ptr<QMessageBox> box_;
    std::function<void(bool)> answered_;
};

} // namespace velmorquit
