// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/picturefolder.h"

#include "client/mailview.h"
#include "client/output.h"

#include <QDir>
#include <QSaveFile>

namespace {

/** The ending that the bytes of an image ask for. */
QString endingOf(const QByteArray &picture)
{
    if (picture.startsWith("\xFF\xD8"))
        return QStringLiteral(".jpg");
    if (picture.startsWith("\x89PNG"))
        return QStringLiteral(".png");
    return picture.startsWith("GIF8") ? QStringLiteral(".gif") : QStringLiteral(".img");
}

} // namespace

PictureFolder::PictureFolder(const QString &path)
    : mPath(path)
{
}

bool PictureFolder::open() const
{
    if (QDir().mkpath(mPath))
        return true;
    Output::error(QStringLiteral("cannot make the folder %1").arg(mPath));
    return false;
}

QString PictureFolder::fileName(const GalItem &person, const QByteArray &picture)
{
    const QString wanted = person.emailAddress().isEmpty() ? person.displayName() : person.emailAddress();
    const QString name = MailView::safeFileName(wanted, QStringLiteral("person"));
    QString file = name + endingOf(picture);
    for (int number = 2; mNames.contains(file); ++number)
        file = name + QStringLiteral("-%1").arg(number) + endingOf(picture);
    mNames.insert(file);
    return QDir(mPath).filePath(file);
}

QString PictureFolder::write(const GalItem &person)
{
    const QByteArray picture = QByteArray::fromBase64(person.pictureData().toLatin1());
    if (picture.isEmpty())
        return QString();
    QSaveFile file(fileName(person, picture));
    if (file.open(QIODevice::WriteOnly) && file.write(picture) == picture.size() && file.commit())
        return file.fileName();
    Output::error(QStringLiteral("cannot write %1: %2").arg(file.fileName(), file.errorString()));
    mHasFailed = true;
    return QString();
}
