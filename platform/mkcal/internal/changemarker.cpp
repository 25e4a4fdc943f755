// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/changemarker.h"

#include <QDebug>
#include <QFile>

namespace mKCal {

ChangeMarker::ChangeMarker(const QString &path, QObject *parent)
    : QObject(parent)
    , mPath(path)
{
    connect(&mWatcher, &QFileSystemWatcher::fileChanged, this, &ChangeMarker::onFileChanged);
    watch();
}

void ChangeMarker::touch()
{
    QFile file(mPath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qWarning() << "cannot tell of changes through" << mPath << file.errorString();
}

void ChangeMarker::watch()
{
    // Appending makes a missing file without being a change of one that is there.
    QFile file(mPath);
    if (!file.open(QIODevice::Append) || !mWatcher.addPath(mPath))
        qWarning() << "cannot watch" << mPath << file.errorString();
}

void ChangeMarker::onFileChanged()
{
    if (!mWatcher.files().contains(mPath))
        watch(); // The file was removed.
    Q_EMIT changed();
}

} // namespace mKCal
