#include "Theme/LookOwner.h"

#include "Platform/Appearance.h"

#include <QGuiApplication>

namespace velmorquit {

LookOwner::LookOwner(const Appearance& appearance)
    : appearance_(appearance), desktopChanges_(appearance.observe([this] { takeOver(); })) {}

LookOwner::~LookOwner() { AppTheme::setLook({}); }

Handle LookOwner::hold() {
    takeOver();
    ++holders_->count;
    return {holders_, 1};
}

// Changes of the font aren't reported, so it is checked whenever something is about to be shown.
void LookOwner::takeOver() {
    const AppTheme::Look asked{appearance_.isHighContrast(), appearance_.isMotionReduced(),
                               AppTheme::textScaleFor(QGuiApplication::font())};
    if (holders_->count > 0 || AppTheme::look() == asked)
        return;
    AppTheme::setLook(asked);
    changes_.tell();
}

} // namespace velmorquit
