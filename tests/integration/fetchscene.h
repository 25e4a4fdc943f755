// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "integration/statusscene.h"

/** What tests of downloads share: messages with files on the server, and what of them is on the device. */
namespace FetchScene {

constexpr int RangeSize = 65536;
inline QString fetchCommand()
{
    return QStringLiteral("ItemOperations");
}

/** Bytes of all values, so that nothing on the way can take them for text. */
inline QByteArray bytesOf(int size, int seed = 0)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i)
        bytes[i] = char((i * 31 + i / 251 + seed) & 0xff);
    return bytes;
}

inline QByteArray messageWith(const QList<QByteArray> &files, const QByteArray &subject = "files")
{
    QByteArray message = "From: Bob <bob@example.com>\r\nTo: Alice <alice@example.com>\r\nSubject: " + subject
        + "\r\nDate: Tue, 2 Jan 2024 03:04:05 +0000\r\nMIME-Version: 1.0\r\n"
          "Content-Type: multipart/mixed; boundary=x\r\n\r\n"
          "--x\r\nContent-Type: text/plain\r\n\r\nbody\r\n";
    for (int i = 0; i < files.size(); ++i) {
        const QByteArray name = "file" + QByteArray::number(i) + ".bin";
        message += "--x\r\nContent-Type: application/octet-stream; name=" + name
            + "\r\nContent-Disposition: attachment; filename=" + name
            + "\r\nContent-Transfer-Encoding: base64\r\n\r\n" + files.at(i).toBase64() + "\r\n";
    }
    return message + "--x--\r\n";
}

/** A message with these files stands on the device, the files themselves do not; zero if it failed. */
inline qulonglong receives(SyncTestBed &bed, const QList<QByteArray> &files)
{
    bed.mailbox().deliver(bed.mailbox().inboxId(), messageWith(files));
    if (bed.sync() != 0)
        return 0;
    bed.server().clearRequests();
    return bed.deviceMessage(QStringLiteral("files")).toULongLong();
}

/** The body is the first part of a message. */
inline QString bodyLocation()
{
    return QStringLiteral("1");
}

inline QString fileLocation(int file)
{
    return QString::number(file + 2);
}

inline QMailMessagePart devicePart(qulonglong message, const QString &location)
{
    return QMailMessage(QMailMessageId(message)).partAt(QMailMessagePart::Location(location));
}

inline bool hasFile(qulonglong message, int file)
{
    return devicePart(message, fileLocation(file)).contentAvailable();
}

inline QByteArray fileOnDevice(qulonglong message, int file)
{
    return devicePart(message, fileLocation(file)).body().data(QMailMessageBody::Decoded);
}

inline QStringList ranges(SyncTestBed &bed)
{
    QStringList texts;
    const auto requests = bed.server().requests(fetchCommand());
    for (const auto &request : requests)
        texts.append(request.document.text(QStringLiteral("Fetch/Options/Range")));
    return texts;
}

/** A whole reply about the file in the single form, where the data is Base64 in the document. */
inline Simulator::WbxmlNode singleForm(
    qulonglong message, const QByteArray &data, int topStatus = 1, int itemStatus = 1)
{
    const QString reference =
        QString::fromUtf8(devicePart(message, fileLocation(0)).contentDisposition().filename());
    Simulator::WbxmlNode fetch(QStringLiteral("ItemOperations:Fetch"));
    fetch.append(QStringLiteral("Status"), itemStatus);
    fetch.append(QStringLiteral("AirSyncBase:FileReference"), reference);
    if (!data.isEmpty()) {
        Simulator::WbxmlNode &properties = fetch.append(QStringLiteral("Properties"));
        properties.append(QStringLiteral("AirSyncBase:ContentType"), QStringLiteral("application/zip"));
        properties.append(QStringLiteral("Data"), QString::fromLatin1(data.toBase64()));
    }
    Simulator::WbxmlNode root(QStringLiteral("ItemOperations:ItemOperations"));
    root.append(QStringLiteral("Status"), topStatus);
    root.append(QStringLiteral("Response")).append(fetch);
    return root;
}

} // namespace FetchScene
