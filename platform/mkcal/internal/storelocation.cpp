// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/storelocation.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

QString StoreLocation::databaseName()
{
    const QString named = qEnvironmentVariable("SQLITESTORAGEDB");
    if (!named.isEmpty())
        return named;
    const QString system = QDir::homePath() + QLatin1String("/.local/share/system");
    const QFileInfo privileged(system + QLatin1String("/privileged"));
    const bool usePrivileged = privileged.isDir() && privileged.isWritable();
    const QString path =
        (usePrivileged ? privileged.filePath() : system) + QLatin1String("/Calendar/mkcal/db");
    QDir().mkpath(QFileInfo(path).path());
    return path;
}

QString StoreLocation::attachmentFile(const QString &attachmentUri)
{
    const QByteArray hash = QCryptographicHash::hash(attachmentUri.toUtf8(), QCryptographicHash::Sha1);
    return QFileInfo(databaseName())
        .dir()
        .filePath(QLatin1String("attachments/") + QLatin1String(hash.toHex()));
}
