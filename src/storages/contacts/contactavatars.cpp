// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactavatars.h"

#include "application/base/logging.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QTemporaryFile>

namespace {

// Beyond these a picture is no portrait. A decoded one takes four bytes a pixel.
constexpr qint64 maxFileSize = 32 * 1024 * 1024;
constexpr qint64 maxPixels = 64 * 1024 * 1024;
/** The longer side of a picture that is to be made smaller; more would not fit at any quality. */
constexpr int maxUploadSide = 1024;
constexpr int uploadQuality = 20;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    // Links and devices may have no end.
    if (!QFileInfo(path).isFile() || QFileInfo(path).size() > maxFileSize || !file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.read(maxFileSize);
}

/** Null if it cannot be read, or would be too large. */
QImage readWithinLimits(const QString &path)
{
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    // Cameras write a picture as it fell on the chip, and the turn beside it; the copy has no place for that.
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (!size.isValid() || qint64(size.width()) * size.height() > maxPixels)
        return QImage();
    if (qMax(size.width(), size.height()) > maxUploadSide)
        reader.setScaledSize(size.scaled(maxUploadSide, maxUploadSide, Qt::KeepAspectRatio));
    return reader.read();
}

bool writeJpeg(const QImage &image, QByteArray &out, QString *error)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpg");
    writer.setQuality(uploadQuality);
    const bool written = writer.write(image);
    *error = writer.errorString();
    out = buffer.data().toBase64();
    return written;
}

} // namespace

ContactAvatars::ContactAvatars(EasAccountId accountId)
    : mAccountId(accountId)
{
}

QString ContactAvatars::avatarsDirInHome(EasAccountId accountId)
{
    return QDir::homePath() + QStringLiteral("/.avatars/account-%1").arg(accountId);
}

bool ContactAvatars::isOwn(const QUrl &url) const
{
    return url.isLocalFile()
        && QFileInfo(url.toLocalFile()).absolutePath()
        == QFileInfo(avatarsDirInHome(mAccountId)).absoluteFilePath();
}

QUrl ContactAvatars::saveAvatar(const QByteArray &base64) const
{
    QByteArray data = QByteArray::fromBase64(base64);
    if (data.isEmpty() || data.size() > maxFileSize) {
        qCWarning(eas()) << "Decoded picture's data is empty";
        return QUrl();
    }
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    const QByteArray format = QImageReader(&buffer).format();
    if (format.isEmpty()) {
        qCWarning(eas()) << "The picture format was not detected";
        return QUrl();
    }
    qCDebug(eas()) << "Picture format: " << format << ", size: " << data.size();

    const QString folder = avatarsDirInHome(mAccountId);
    if (!makeFolder()) {
        qCWarning(eas()) << "Failed to created avatars directory for account " << mAccountId;
        return QUrl();
    }
    QTemporaryFile file(folder + QStringLiteral("/avatar-XXXXXX.") + QString::fromLatin1(format));
    if (!file.open()) {
        qCWarning(eas()) << "Failed to created avatar file" << file.errorString();
        return QUrl();
    }
    if (file.write(data) != data.size() || !file.flush()) {
        qCWarning(eas()) << "Failed write data to avatar file" << file.errorString();
        return QUrl();
    }
    file.setAutoRemove(false);
    qCDebug(eas()) << "Avatar was saved " << file.fileName();
    return QUrl::fromLocalFile(file.fileName());
}

bool ContactAvatars::makeFolder() const
{
    const QString folder = avatarsDirInHome(mAccountId);
    return QDir().mkpath(folder)
        && QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

bool ContactAvatars::isPictureOf(const QUrl &url, const QByteArray &base64)
{
    if (base64.isEmpty())
        return false;
    return holds(url, base64)
        || QByteArray::fromBase64(upload(url).toLatin1()) == QByteArray::fromBase64(base64);
}

bool ContactAvatars::holds(const QUrl &url, const QByteArray &base64)
{
    const QByteArray content = url.isLocalFile() ? contentOf(url.toLocalFile()) : QByteArray();
    return !content.isEmpty() && content == QByteArray::fromBase64(base64);
}

QString ContactAvatars::upload(const QUrl &url)
{
    if (!url.isLocalFile())
        return QString();
    const QString path = url.toLocalFile();
    const QByteArray whole = contentOf(path).toBase64();
    if (whole.size() <= MaxUploadSize)
        return QString::fromLatin1(whole);
    QByteArray compressed;
    if (!compressAvatar(path, compressed)) {
        qCWarning(eas()) << "failed to convert avatar " << path;
        return QString();
    }
    qCDebug(eas()) << "new compressed avatar size " << compressed.size();
    return QString::fromLatin1(compressed);
}

bool ContactAvatars::compressAvatar(const QString &path, QByteArray &out)
{
    QImage image = readWithinLimits(path);
    if (image.isNull()) {
        qCWarning(eas()) << "tried to compress avatar " << path << ", but image is null";
        return false;
    }
    QString error;
    while (writeJpeg(image, out, &error)) {
        if (out.size() <= MaxUploadSize)
            return true;
        image = image.scaled(image.size() * 0.75, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    qCWarning(eas()) << "failed to write image " << path << " to the buffer" << error;
    return false;
}

void ContactAvatars::removeAvatars(const QList<QUrl> &urls) const
{
    for (const QUrl &url : urls) {
        // A picture that the user chose belongs to the user.
        if (isOwn(url) && !QFile::remove(url.toLocalFile()) && QFile::exists(url.toLocalFile()))
            qCWarning(eas()) << "failed to remove avatar file" << url.toLocalFile();
    }
}

bool ContactAvatars::removeOrphans(const QSet<QString> &usedPaths) const
{
    const QDir folder(avatarsDirInHome(mAccountId));
    const QFileInfoList files =
        folder.entryInfoList({ QStringLiteral("avatar-*") }, QDir::Files | QDir::NoSymLinks);
    bool complete = true;
    for (const QFileInfo &file : files) {
        if (usedPaths.contains(file.absoluteFilePath()))
            continue;
        qCInfo(eas()) << "Removing avatar file" << file.fileName() << "which no contact has";
        if (QFile::remove(file.absoluteFilePath()))
            continue;
        qCWarning(eas()) << "failed to remove avatar file" << file.absoluteFilePath();
        complete = false;
    }
    return complete;
}

bool ContactAvatars::removeAll() const
{
    const bool complete = removeOrphans({});
    // A folder into which the user has put something stays.
    QDir().rmdir(avatarsDirInHome(mAccountId));
    return complete;
}
