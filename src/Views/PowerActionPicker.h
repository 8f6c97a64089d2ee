#pragma once

#include "Services/PowerAction.h"

#include <QWidget>

#include <functional>
#include <map>

class QRadioButton;

namespace velmorquit {

/// What is to happen once everything is closed: one tile for each choice.
class PowerActionPicker : public QWidget {
public:
    explicit PowerActionPicker(QWidget* parent = nullptr);

    void render(PowerAction selection);

    std::function<void(PowerAction)> onChoose;

private:
    std::map<PowerAction, QRadioButton*> tiles_;
};

} // namespace velmorquit
