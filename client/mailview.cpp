// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/mailview.h"

#include <QJsonArray>
#include <QRegularExpression>
#include <qmailfolderkey.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

#include <algorithm>

namespace {

QString addresses(const QList<QMailAddress> &list)
{
    return QMailAddress::toStringList(list).join(QStringLiteral(", "));
}

QJsonArray attachments(const QMailMessage &message)
{
    QJsonArray array;
    const auto locations = message.findAttachmentLocations() + message.findInlineImageLocations();
    for (const QMailMessagePart::Location &location : locations) {
        const QMailMessagePart &part = message.partAt(location);
        const QMailMessageContentType type = part.contentType();
        array.append(QJsonObject {
            { QStringLiteral("location"), location.toString(false) },
            { QStringLiteral("name"), part.displayName() },
            { QStringLiteral("type"), QString::fromLatin1(type.type() + '/' + type.subType()) },
            { QStringLiteral("size"), part.contentDisposition().size() },
            { QStringLiteral("downloaded"), part.hasBody() },
        });
    }
    return array;
}

QString textOfHtml(QString html)
{
    static const QRegularExpression hidden(QStringLiteral("<(style|script|head)\\b.*?</\\1>"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression breaks(
        QStringLiteral("<(br|/p|/div|/tr|/h[1-6]|/li)\\b[^>]*>"), QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression tags(QStringLiteral("<[^>]*>"));
    html.remove(hidden).replace(breaks, QStringLiteral("\n")).remove(tags);
    return html.replace(QLatin1String("&nbsp;"), QLatin1String(" "))
        .replace(QLatin1String("&lt;"), QLatin1String("<"))
        .replace(QLatin1String("&gt;"), QLatin1String(">"))
        .replace(QLatin1String("&quot;"), QLatin1String("\""))
        .replace(QLatin1String("&amp;"), QLatin1String("&"))
        .trimmed();
}

} // namespace

QMailFolderIdList MailView::folders(EasAccountId accountId)
{
    QMailFolderIdList ids =
        QMailStore::instance()->queryFolders(QMailFolderKey::parentAccountId(QMailAccountId(accountId)));
    std::sort(ids.begin(), ids.end(), [](const QMailFolderId &left, const QMailFolderId &right) {
        return QString::localeAwareCompare(folderPath(left), folderPath(right)) < 0;
    });
    return ids;
}

QMailFolderId MailView::findFolder(EasAccountId accountId, const QString &folder)
{
    const QMailFolderIdList ids = folders(accountId);
    for (const QMailFolderId &id : ids) {
        if (QString::number(id.toULongLong()) == folder
            || folderPath(id).compare(folder, Qt::CaseInsensitive) == 0)
            return id;
    }
    return {};
}

QString MailView::folderPath(const QMailFolderId &id)
{
    QStringList names;
    QMailFolderId current = id;
    // A damaged store could hold a circle of parents.
    for (int depth = 0; current.isValid() && depth < 100; ++depth) {
        const QMailFolder folder(current);
        names.prepend(folder.displayName());
        current = folder.parentFolderId();
    }
    return names.join(QLatin1Char('/'));
}

QJsonObject MailView::describeFolder(const QMailFolderId &id)
{
    const QMailFolder folder(id);
    const QMailMessageKey inFolder = QMailMessageKey::parentFolderId(id);
    const QMailMessageKey unread =
        inFolder & QMailMessageKey::status(QMailMessage::Read, QMailDataComparator::Excludes);
    return {
        { QStringLiteral("id"), double(id.toULongLong()) },
        { QStringLiteral("name"), folder.displayName() },
        { QStringLiteral("path"), folderPath(id) },
        { QStringLiteral("depth"), folderPath(id).count(QLatin1Char('/')) },
        { QStringLiteral("messages"), QMailStore::instance()->countMessages(inFolder) },
        { QStringLiteral("unread"), QMailStore::instance()->countMessages(unread) },
    };
}

QMailMessageIdList MailView::messages(EasAccountId accountId, const QMailFolderId &folder)
{
    QMailMessageKey key = QMailMessageKey::parentAccountId(QMailAccountId(accountId));
    if (folder.isValid())
        key &= QMailMessageKey::parentFolderId(folder);
    QMailMessageIdList ids = QMailStore::instance()->queryMessages(key);
    QList<QPair<QDateTime, QMailMessageId>> dated;
    for (const QMailMessageId &id : qAsConst(ids))
        dated.append({ QMailMessageMetaData(id).date().toUTC(), id });
    std::sort(dated.begin(), dated.end(), [](const auto &left, const auto &right) {
        return left.first != right.first ? left.first > right.first : right.second < left.second;
    });
    ids.clear();
    for (const auto &entry : qAsConst(dated))
        ids.append(entry.second);
    return ids;
}

QMailMessageId MailView::findMessage(EasAccountId accountId, const QString &number)
{
    const QMailMessageMetaData message { QMailMessageId(number.toULongLong()) };
    return message.parentAccountId() == QMailAccountId(accountId) ? message.id() : QMailMessageId();
}

QJsonObject MailView::describeMessage(const QMailMessageMetaData &message)
{
    return {
        { QStringLiteral("id"), double(message.id().toULongLong()) },
        { QStringLiteral("date"), message.date().toUTC().toString(Qt::ISODate) },
        { QStringLiteral("from"), message.from().toString() },
        { QStringLiteral("subject"), message.subject() },
        { QStringLiteral("read"), bool(message.status() & QMailMessage::Read) },
        { QStringLiteral("attachments"), bool(message.status() & QMailMessage::HasAttachments) },
        { QStringLiteral("folder"), folderPath(message.parentFolderId()) },
        { QStringLiteral("size"), double(message.size()) },
    };
}

QJsonObject MailView::describeWhole(const QMailMessage &message)
{
    QJsonObject object = describeMessage(message);
    object[QStringLiteral("to")] = addresses(message.to());
    object[QStringLiteral("cc")] = addresses(message.cc());
    object[QStringLiteral("text")] = text(message);
    object[QStringLiteral("parts")] = attachments(message);
    object[QStringLiteral("serverId")] = message.serverUid();
    object[QStringLiteral("complete")] = message.contentAvailable();
    return object;
}

QString MailView::text(const QMailMessage &message)
{
    if (const QMailMessagePartContainer *plain = message.findPlainTextContainer())
        return plain->body().data();
    if (const QMailMessagePartContainer *html = message.findHtmlContainer())
        return textOfHtml(html->body().data());
    return {};
}

QString MailView::safeFileName(const QMailMessagePart &part)
{
    QString name = part.displayName();
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
    return name.isEmpty() ? QStringLiteral("attachment") : name;
}
