// SPDX-License-Identifier: LGPL-2.1-or-later
#include "messagecomparison.h"

#include "easitems/containers/easattachmentcontainer.h"
#include "storages/mail/mailattachments.h"
#include "support/imapclient.h"

#include <QCryptographicHash>

#include <qmailmessage.h>
#include <qmailtimestamp.h>

#include <algorithm>

namespace {

QString shown(const QString &name, const QString &address)
{
    return name.isEmpty() ? address : name + QStringLiteral(" <") + address + QLatin1Char('>');
}

QStringList shown(const ImapAddresses &addresses)
{
    QStringList list;
    for (const auto &each : addresses)
        list.append(shown(each.first, each.second));
    return list;
}

/** The server makes the address the name of those who have none. */
QStringList shown(const QList<QMailAddress> &addresses)
{
    QStringList list;
    for (const QMailAddress &address : addresses)
        list.append(
            shown(address.name() == address.address() ? QString() : address.name(), address.address()));
    return list;
}

void expect(QStringList &differences, const char *what, const QString &device, const QString &imap)
{
    if (device != imap)
        differences.append(QStringLiteral("%1: \"%2\" instead of \"%3\"")
                               .arg(QLatin1String(what), device.left(300), imap.left(300)));
}

void expect(
    QStringList &differences, const char *what, const QList<QMailAddress> &device, const ImapAddresses &imap)
{
    expect(
        differences, what, shown(device).join(QStringLiteral(", ")), shown(imap).join(QStringLiteral(", ")));
}

/** Line ends and blank space at the end belong to the transport. */
QString comparable(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    while (!text.isEmpty() && text.at(text.size() - 1).isSpace())
        text.chop(1);
    return text;
}

QList<const QMailMessagePart *> attachments(const QMailMessage &message)
{
    QList<const QMailMessagePart *> parts;
    message.foreachPart([&parts](const QMailMessagePart &part) {
        if (MailAttachments::isAttachment(part))
            parts.append(&part);
        return true;
    });
    return parts;
}

QString sha256(const QByteArray &data)
{
    return QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex());
}

/** The name that the server gives a part that has none itself. */
QString servedName(const ImapPart &part)
{
    if (!part.name.isEmpty())
        return part.name;
    if (part.type == QLatin1String("message/rfc822"))
        return QStringLiteral("email_%1.eml").arg(part.path);
    return QStringLiteral("unknown_%1").arg(part.path);
}

/** Parts that neither have a name nor say what they are, as those of a report, are no attachments there. */
bool isServed(const ImapPart &part)
{
    return !part.name.isEmpty() || !part.disposition.isEmpty();
}

} // namespace

QStringList MessageComparison::headers(const QMailMessage &device, const ImapMessage &imap)
{
    QStringList differences;
    expect(differences, "subject", device.subject(), imap.subject);
    expect(differences, "from", { device.from() }, imap.from);
    // Mail without a To is shown as sent to whom an answer would go; this server tells the sender there.
    expect(differences, "to", device.to(), imap.to.isEmpty() ? imap.from : imap.to);
    expect(differences, "cc", device.cc(), imap.cc);
    expect(differences, "date", device.date().toUTC().toString(Qt::ISODate), imap.date.toString(Qt::ISODate));
    const bool read = (device.status() & QMailMessage::Read) != 0;
    if (read != imap.read)
        differences.append(read ? QStringLiteral("read") : QStringLiteral("unread"));
    return differences;
}

QStringList MessageComparison::body(const QMailMessage &device, const ImapMessage &imap)
{
    const QMailMessagePartContainer *html = device.findHtmlContainer();
    const QMailMessagePartContainer *text = html ? html : device.findPlainTextContainer();
    const QString present = comparable(text && text->hasBody() ? text->body().data() : QString());
    const QString wanted = comparable(html ? imap.html : imap.text);
    if (sha256(present.toUtf8()) == sha256(wanted.toUtf8()))
        return {};
    int at = 0;
    while (at < present.size() && at < wanted.size() && present.at(at) == wanted.at(at))
        ++at;
    return { QStringLiteral("body differs at %1 of %2 (%3): \"%4\" instead of \"%5\"")
                 .arg(at)
                 .arg(wanted.size())
                 .arg(html ? QStringLiteral("HTML") : QStringLiteral("text"))
                 .arg(present.mid(at, 60), wanted.mid(at, 60)) };
}

QStringList MessageComparison::announcedAttachments(const QMailMessage &device, const ImapMessage &imap)
{
    QStringList present;
    for (const EasAttachmentContainer &attachment : MailAttachments::attachments(device))
        present.append(
            QStringLiteral("%1 (%2)").arg(attachment.displayName()).arg(attachment.estimatedDataSize()));
    QStringList wanted;
    for (const ImapPart &part : imap.parts) {
        if (isServed(part))
            wanted.append(QStringLiteral("%1 (%2)").arg(servedName(part)).arg(part.encodedSize));
    }
    present.sort();
    wanted.sort();
    QStringList differences;
    expect(differences, "attachments", present.join(QStringLiteral("; ")), wanted.join(QStringLiteral("; ")));
    return differences;
}

QStringList MessageComparison::downloadedAttachments(const QMailMessage &device, const ImapMessage &imap)
{
    QStringList present;
    for (const QMailMessagePart *part : attachments(device)) {
        const QByteArray data = part->body().data(QMailMessageBody::Decoded);
        present.append(
            QStringLiteral("%1 (%2, %3)").arg(part->displayName()).arg(data.size()).arg(sha256(data)));
    }
    QStringList wanted;
    for (const ImapPart &part : imap.parts) {
        if (isServed(part))
            wanted.append(
                QStringLiteral("%1 (%2, %3)").arg(servedName(part)).arg(part.size).arg(part.sha256));
    }
    present.sort();
    wanted.sort();
    QStringList differences;
    expect(differences, "downloads", present.join(QStringLiteral("; ")), wanted.join(QStringLiteral("; ")));
    return differences;
}

QStringList MessageComparison::attachmentLocations(const QMailMessage &device)
{
    QStringList locations;
    for (const QMailMessagePart *part : attachments(device))
        locations.append(part->location().toString(true));
    return locations;
}
