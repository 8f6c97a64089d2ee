#pragma once

#include "Model/PowerAction.h"

#include <QWidget>

#include <functional>
#include <map>
#include <string>

class QRadioButton;

namespace velmorquit {

/// The action once everything is closed: one tile for each choice.
class PowerActionPicker : public QWidget {
public:
    explicit PowerActionPicker(QWidget* parent = nullptr);

    void render(PowerAction selection);

    /// Adds a remark to the help of the choices that end the session; empty for none.
    void explain(const std::string& remark);

    std::function<void(PowerAction)> onChoose;

private:
    std::map<PowerAction, QRadioButton*> tiles_;
};

} // namespace velmorquit
