#include "Fuzz/Variants.h"
#include "Linux/Appearance/DesktopLook.h"
#include "Linux/Appearance/PortalSettings.h"
#include "Linux/Tray/NotifierItems.h"

/// An entry of the list of tray icons in a line, then what the portal says.
void velmorquit::fuzz::examine(std::string_view bytes) {
    static const std::set<std::string> wanted = DesktopLook::portalSettings();
    static const QStringList names = [] {
        QStringList all;
        for (const std::string& name : wanted)
            all << QString::fromStdString(name).split(' ');
        return all;
    }();
    static const QStringList texts{"prefer-dark", "prefer-light", "HighContrast-dark"};
    Input input(bytes);
    const QString text = QString::fromStdString(input.line());
    const NotifierEntry entry = NotifierEntry::from(text);
    require(text.startsWith(entry.name), "the entry begins with the name");
    require(entry.path.startsWith('/'), "an object has a path");
    QMap<QString, QVariantMap> groups;
    for (int count = input.byte() % 8; count > 0; --count) {
        const QString group = nameFrom(input, names);
        groups.insert(group, mapFrom(input, names, texts));
    }
    const DesktopSettings settings = portalSettings(groups, wanted);
    require(settings.size() <= wanted.size(), "only what is wanted is kept");
    static_cast<void>(DesktopLook::of(settings, settings));
}
