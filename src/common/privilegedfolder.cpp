// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/privilegedfolder.h"

#include <QDebug>
#include <QDir>
#include <QFile>

bool PrivilegedFolder::make()
{
    const QString path = QDir::homePath() + QLatin1String("/.local/share/system/privileged");
    if (QDir(path).exists())
        return true;
    if (QDir().mkpath(path)
        && QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        return true;
    qWarning() << "cannot make the folder" << path;
    return false;
}
