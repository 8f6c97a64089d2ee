#include "Linux/Program/InstalledBackupTool.h"

#include "Codecs/PreferencesFile.h"
#include "Linux/Program/OwnProcess.h"

#include <QStandardPaths>
#include <QString>

namespace velmorquit {

BackupTool installedBackupTool() {
    if (qEnvironmentVariableIsSet("VELMOR_VIRTUAL_DESKTOP") &&
        qEnvironmentVariableIsSet("VELMOR_STAND_IN_BACKUP_TOOL"))
        return {.program = qEnvironmentVariable("VELMOR_STAND_IN_BACKUP_TOOL").toStdString(),
                .destinations =
                    qEnvironmentVariable("VELMOR_STAND_IN_BACKUP_DESTINATIONS").toStdString()};
    const QString name = QStringLiteral("velmorquit-tmutil");
    QString program = QStandardPaths::findExecutable(
        name, {QString::fromStdString(ownExecutable().parent_path().string())});
    if (program.isEmpty())
        program = QStandardPaths::findExecutable(name);
    if (program.isEmpty())
        return {};
    return {.program = program.toStdString(),
            .destinations = defaultBackupDestinationsFile().string()};
}

} // namespace velmorquit
