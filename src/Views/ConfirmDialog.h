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

    /// Asks, with `button` as the caption of the answer that says yes, and calls `answered` once. A
    /// question that is still open is answered with no.
    void ask(const std::string& question, const std::string& button,
             std::function<void(bool isYes)> answered);

private:
    void finish(bool isYes);

    std::unique_ptr<QMessageBox> box_;
    std::function<void(bool)> answered_;
};

} // namespace velmorquit
