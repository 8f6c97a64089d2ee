#pragma once

#include "Model/PowerAction.h"

#include <QWidget>

#include <functional>
#include <map>
#include <string>

class QRadioButton;

namespace velmorquit {

/// What is to happen once everything is closed: one tile for each choice.
class PowerActionPicker : public QWidget {
public:
    explicit PowerActionPicker(QWidget* parent = nullptr);

    void render(PowerAction selection);

    /// Adds to the help of what ends the session what is to be known of it; empty for nothing.
    void explain(const std::string& remark);

    std::function<void(PowerAction)> onChoose;

private:
    std::map<PowerAction, QRadioButton*> tiles_;
};

} // namespace velmorquit
