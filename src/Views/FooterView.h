#pragma once

#include <QWidget>

#include <string>

namespace velmorquit {

class Label;

/// One line about the computer, at the bottom of the panel.
class FooterView : public QWidget {
public:
    explicit FooterView(QWidget* parent = nullptr);

    void setMacLine(const std::string& line);

private:
    Label* line_;
};

} // namespace velmorquit
