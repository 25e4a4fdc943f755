// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/messageresponse.h"

#include "client/addresslist.h"
#include "client/mailview.h"
#include "client/timetext.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace {

/** The subject behind a word such as "Re:", which stands there once. */
QString prefixed(const char *prefix, const char *present, const QString &subject)
{
    const QString clean = AddressList::withoutControlCharacters(subject).trimmed();
    const QRegularExpression already(QLatin1String(present), QRegularExpression::CaseInsensitiveOption);
    return already.match(clean).hasMatch() ? clean : QLatin1String(prefix) + clean;
}

QString quoted(const QString &text)
{
    QString lines;
    const QVector<QStringRef> all = text.trimmed().splitRef(QLatin1Char('\n'));
    for (const QStringRef &line : all)
        lines += (line.startsWith(QLatin1Char('>')) ? QStringLiteral(">") : QStringLiteral("> ")) + line
            + QLatin1Char('\n');
    return lines;
}

QString headerLine(const QString &name, const QString &value)
{
    const QString clean = AddressList::withoutControlCharacters(value).trimmed();
    return clean.isEmpty() ? QString() : name + QStringLiteral(": ") + clean + QLatin1Char('\n');
}

QString listed(const QList<QMailAddress> &addresses)
{
    return QMailAddress::toStringList(addresses).join(QStringLiteral(", "));
}

QString textOf(const QMailMessage &message)
{
    QString text = MailView::text(message);
    text.remove(QChar(QChar::Null)).replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return text;
}

/** A part as it can travel: what was downloaded has no encoding that keeps its line ends. */
QMailMessagePart encoded(const QMailMessagePart &part)
{
    QMailMessagePart copy(part);
    if (part.hasBody() && part.transferEncoding() == QMailMessageBody::NoEncoding)
        copy.setBody(QMailMessageBody::fromData(part.body().data(QMailMessageBody::Decoded),
            part.contentType(), QMailMessageBody::Base64, QMailMessageBody::RequiresEncoding));
    return copy;
}

/** The parts of a message that are files. */
QList<QMailMessagePart> filesOf(const QMailMessage &message)
{
    QList<QMailMessagePart> parts;
    const auto locations = message.findAttachmentLocations() + message.findInlineImageLocations();
    for (const QMailMessagePart::Location &location : locations)
        parts.append(message.partAt(location));
    return parts;
}

} // namespace

MessageResponse::MessageResponse(const QMailMessage &source, const QMailAddress &self)
    : mSource(source)
    , mSelf(self)
{
}

bool MessageResponse::isOnServer() const
{
    // A result of a search has a name of its own, by which the engine does not find its folder.
    return !mSource.serverUid().isEmpty()
        && !(mSource.status() & (QMailMessage::LocalOnly | QMailMessage::Temporary));
}

bool MessageResponse::lacksContent(bool isForward) const
{
    if (isSourceAdded() || mSource.serverUid().isEmpty())
        return false;
    const QList<QMailMessagePart> files = isForward ? filesOf(mSource) : QList<QMailMessagePart>();
    // A file of 0 bytes has no body either.
    const bool lacksFile = std::any_of(files.cbegin(), files.cend(), [](const QMailMessagePart &part) {
        return !part.hasBody() && part.contentDisposition().size() != 0;
    });
    return lacksFile || !mSource.contentAvailable();
}

bool MessageResponse::isSelf(const QMailAddress &address) const
{
    return AddressList::isSame(address, mSelf);
}

QList<QMailAddress> MessageResponse::sender() const
{
    const QList<QMailAddress> wanted = AddressList::sendable({ mSource.replyTo() });
    const QList<QMailAddress> from = AddressList::sendable({ mSource.from() });
    // Who answers what they sent goes on writing to the others.
    if (!from.isEmpty() && isSelf(from.first()))
        return AddressList::sendable(mSource.to());
    return wanted.isEmpty() ? from : wanted;
}

OutgoingMessage MessageResponse::begun(QMailMessage::ResponseType type) const
{
    OutgoingMessage outgoing;
    outgoing.source = mSource.id();
    outgoing.response = type;
    outgoing.isSourceAdded = isSourceAdded();
    return outgoing;
}

OutgoingMessage MessageResponse::reply(bool toAll) const
{
    OutgoingMessage outgoing = begun(toAll ? QMailMessage::ReplyToAll : QMailMessage::Reply);
    outgoing.subject = prefixed("Re: ", "^re(\\[\\d+\\])?:", mSource.subject());
    outgoing.to = sender();
    if (!toAll)
        return outgoing;
    const QList<QMailAddress> to = AddressList::sendable(mSource.to());
    for (const QMailAddress &address : to) {
        if (!isSelf(address))
            AddressList::addOnce(address, &outgoing.to);
    }
    const QList<QMailAddress> cc = AddressList::sendable(mSource.cc());
    for (const QMailAddress &address : cc) {
        if (!isSelf(address))
            AddressList::addOnce(address, &outgoing.cc, outgoing.to);
    }
    return outgoing;
}

OutgoingMessage MessageResponse::forward() const
{
    OutgoingMessage outgoing = begun(QMailMessage::Forward);
    outgoing.subject = prefixed("Fwd: ", "^fwd?:", mSource.subject());
    if (isSourceAdded())
        return outgoing;
    const QList<QMailMessagePart> files = filesOf(mSource);
    std::transform(files.cbegin(), files.cend(), std::back_inserter(outgoing.parts), encoded);
    return outgoing;
}

QString MessageResponse::quotation() const
{
    if (isSourceAdded())
        return {};
    return QStringLiteral("%1, %2:\n")
               .arg(TimeText::forPeople(mSource.date().toUTC()),
                   AddressList::withoutControlCharacters(mSource.from().toString()))
        + quoted(textOf(mSource));
}

QString MessageResponse::forwardedText() const
{
    if (isSourceAdded())
        return {};
    return QStringLiteral("-------- Forwarded message --------\n")
        + headerLine(QStringLiteral("From"), mSource.from().toString())
        + headerLine(QStringLiteral("Date"), TimeText::forPeople(mSource.date().toUTC()))
        + headerLine(QStringLiteral("Subject"), mSource.subject())
        + headerLine(QStringLiteral("To"), listed(mSource.to()))
        + headerLine(QStringLiteral("Cc"), listed(mSource.cc())) + QLatin1Char('\n') + textOf(mSource);
}
