// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/mailview.h"

#include "client/htmltext.h"
#include "client/mailbox.h"
#include "client/timetext.h"

#include <QJsonArray>

namespace {

QJsonArray addresses(const QList<QMailAddress> &list)
{
    return QJsonArray::fromStringList(QMailAddress::toStringList(list));
}

} // namespace

QJsonObject MailView::describeMessage(const QMailMessageMetaData &message)
{
    const bool isFound = message.status() & QMailMessage::Temporary;
    return {
        { QStringLiteral("id"), QString::number(message.id().toULongLong()) },
        { QStringLiteral("date"), TimeText::forPrograms(message.date().toUTC()) },
        { QStringLiteral("from"), message.from().toString() },
        { QStringLiteral("subject"), message.subject() },
        { QStringLiteral("read"), bool(message.status() & QMailMessage::Read) },
        { QStringLiteral("attachments"), bool(message.status() & QMailMessage::HasAttachments) },
        // What a search has found is kept apart from the folder that it is in on the server.
        { QStringLiteral("folder"),
            MailBox::path(isFound ? message.restoreFolderId() : message.parentFolderId()) },
        { QStringLiteral("size"), double(message.size()) },
    };
}

const Columns &MailView::messageColumns()
{
    static const Columns columns { { "id", "ID" }, { "date", "DATE" }, { "from", "FROM" },
        { "subject", "SUBJECT" }, { "read", "READ" }, { "attachments", "FILES" }, { "folder", "FOLDER" } };
    return columns;
}

QJsonObject MailView::describeWhole(const QMailMessage &message)
{
    QJsonObject object = describeMessage(message);
    object[QStringLiteral("to")] = addresses(message.to());
    object[QStringLiteral("cc")] = addresses(message.cc());
    object[QStringLiteral("bcc")] = addresses(message.bcc());
    object[QStringLiteral("text")] = text(message);
    object[QStringLiteral("parts")] = parts(message);
    object[QStringLiteral("serverId")] = message.serverUid();
    if (message.inResponseTo().isValid())
        object[QStringLiteral("original")] = QString::number(message.inResponseTo().toULongLong());
    object[QStringLiteral("complete")] = message.contentAvailable();
    return object;
}

QJsonArray MailView::parts(const QMailMessage &message)
{
    QJsonArray array;
    const auto locations = message.findAttachmentLocations() + message.findInlineImageLocations();
    for (const QMailMessagePart::Location &location : locations) {
        const QMailMessagePart &part = message.partAt(location);
        // It stands for the original of an answer until that goes out.
        if (part.referenceType() == QMailMessagePart::MessageReference)
            continue;
        const QMailMessageContentType type = part.contentType();
        array.append(QJsonObject {
            { QStringLiteral("location"), location.toString(false) },
            { QStringLiteral("name"), part.displayName() },
            // The engine puts a mark in its place until the part is on the device.
            { QStringLiteral("type"),
                part.hasBody() ? QString::fromLatin1(type.type() + '/' + type.subType()) : QString() },
            { QStringLiteral("size"), part.contentDisposition().size() },
            { QStringLiteral("downloaded"), part.hasBody() },
        });
    }
    return array;
}

const Columns &MailView::partColumns()
{
    static const Columns columns { { "location", "PART" }, { "name", "NAME" }, { "size", "SIZE" },
        { "downloaded", "DOWNLOADED" } };
    return columns;
}

QString MailView::text(const QMailMessage &message)
{
    if (const QMailMessagePartContainer *plain = message.findPlainTextContainer())
        return plain->body().data();
    if (const QMailMessagePartContainer *html = message.findHtmlContainer())
        return HtmlText::toPlain(html->body().data());
    return {};
}

QString MailView::safeFileName(const QString &text, const QString &fallback)
{
    QString name = text;
    for (QChar &character : name) {
        const bool harmful = character == QLatin1Char('/') || character == QLatin1Char('\\')
            || character.category() == QChar::Other_Control || character.category() == QChar::Other_Format;
        if (harmful)
            character = QLatin1Char('_');
    }
    while (name.startsWith(QLatin1Char('.')))
        name.remove(0, 1);
    // A file system counts bytes, and 255 of them is what most allow.
    while (name.toUtf8().size() > 200)
        name.chop(1);
    return name.isEmpty() ? fallback : name;
}

QString MailView::safeFileName(const QMailMessagePart &part)
{
    return safeFileName(part.displayName(), QStringLiteral("attachment"));
}
