#pragma once

#include "Services/PowerAction.h"

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

    /// Adds to each choice's help what `remark` says of it, where that is anything.
    void explain(const std::function<std::string(PowerAction)>& remark);

    std::function<void(PowerAction)> onChoose;

private:
    std::map<PowerAction, QRadioButton*> tiles_;
};

} // namespace velmorquit
