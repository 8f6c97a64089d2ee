#pragma once

#include <QMessageBox>

#include <functional>
#include <memory>
#include <string>

namespace velmorquit {

/// A question with two answers in a small window that doesn't block anything else.
class ConfirmDialog {
public:
    ConfirmDialog() = default;
    ConfirmDialog(const ConfirmDialog&) = delete;
    ConfirmDialog& operator=(const ConfirmDialog&) = delete;
    ~ConfirmDialog() = default;

    enum class Manner {
        wanted,   ///< in reply to something the user has just done
        unbidden, ///< unexpected: it takes no keyboard, and no yes before it can have been read
    };
    /// How soon nobody can have read an unexpected question, in milliseconds.
    static constexpr int readingTime = 1500;

    /// Asks, with `button` as the caption of the yes button, and calls `answered` once. A question
    /// that is still open is answered with no.
    void ask(const std::string& question, const std::string& button,
             std::function<void(bool isYes)> answered, Manner manner = Manner::wanted);

    /// Closes the open question, which answers it with no.
    void withdraw() { finish(false); }

private:
    void finish(bool isYes);

    std::unique_ptr<QMessageBox> box_;
    std::function<void(bool)> answered_;
};

} // namespace velmorquit
