// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailmessage.h>

#include "internal/headertext.h"
#include "internal/mailvaluedata.h"
#include "internal/mimeparser.h"
#include "internal/mimerenderer.h"
#include "internal/parttree.h"

#include <QDebug>

namespace {

/** The preview that the content gives, null if it has no text. */
QString contentPreview(const QMailMessage &message)
{
    if (const QMailMessagePartContainer *plain = message.findPlainTextContainer(); plain && plain->hasBody())
        return previewOfPlainText(plain->body().data());
    if (const QMailMessagePartContainer *html = message.findHtmlContainer(); html && html->hasBody())
        return previewOfHtml(html->body().data());
    return QString();
}

QList<QMailAddress> addressesIn(const QMailMessagePartContainer &container, const char *header)
{
    return decodedAddresses(MailValueAccess::node(container).header(header));
}

QMailMessagePart &sharedDummy()
{
    qWarning() << "no part of the message is at this location";
    static thread_local QMailMessagePart dummy;
    dummy = QMailMessagePart();
    return dummy;
}

} // namespace

QMailMessage QMailMessage::fromRfc2822(const QByteArray &data)
{
    QMailMessage message;
    MimeNode &node = MailValueAccess::own(message);
    parseMime(data, node);
    QMailMessageMetaDataData &meta = MailValueAccess::data(message);
    meta.messageType = Email;
    meta.subject = message.headerFieldText(QStringLiteral("Subject"));
    meta.date = QMailTimeStamp(QString::fromLatin1(node.header("Date")));
    meta.from = addressesIn(message, "From").value(0);
    meta.recipients = message.to() + message.cc() + message.bcc();
    meta.preview = contentPreview(message);
    if (message.hasAttachments())
        meta.status |= HasAttachments;
    meta.modified = true;
    node.unstored = true;
    return message;
}

QMailMessage::QMailMessage() = default;

QMailMessage::QMailMessage(const QMailMessageId &id)
    : QMailMessage(QMailStore::instance()->message(id))
{
}

QMailMessage::QMailMessage(const QString &uid, const QMailAccountId &accountId)
    : QMailMessage(QMailStore::instance()->message(uid, accountId))
{
}

QMailMessage::QMailMessage(const QMailMessage &other) = default;
QMailMessage &QMailMessage::operator=(const QMailMessage &other) = default;
QMailMessage::~QMailMessage() = default;

QByteArray QMailMessage::toRfc2822(EncodingFormat format) const
{
    return renderMime(*this, format);
}

bool QMailMessage::contains(const QMailMessagePart::Location &location) const
{
    return PartTree::partAt(*this, location) != nullptr;
}

const QMailMessagePart &QMailMessage::partAt(const QMailMessagePart::Location &location) const
{
    const QMailMessagePart *part = PartTree::partAt(*this, location);
    return part ? *part : sharedDummy();
}

QMailMessagePart &QMailMessage::partAt(const QMailMessagePart::Location &location)
{
    QMailMessagePart *part = PartTree::partAt(*this, location);
    return part ? *part : sharedDummy();
}

void QMailMessage::setId(const QMailMessageId &id)
{
    QMailMessageMetaData::setId(id);
    MimeNode &node = MailValueAccess::unloadedOwn(*this);
    // Content that is still in the store stays the content of the message that it was loaded as.
    if (node.unloaded && node.message != id)
        MailValueAccess::node(*this);
    node.message = id;
    node.placeParts();
}

void QMailMessage::setFrom(const QMailAddress &from)
{
    QMailMessageMetaData::setFrom(from);
    setEncodedHeader("From", encodedAddresses({ from }));
}

void QMailMessage::setSubject(const QString &subject)
{
    QMailMessageMetaData::setSubject(subject);
    setEncodedHeader("Subject", QMailMessageHeaderField::encodeWord(subject));
}

void QMailMessage::setDate(const QMailTimeStamp &date)
{
    QMailMessageMetaData::setDate(date);
    setEncodedHeader("Date", date.toString().toLatin1());
}

void QMailMessage::setHeaderField(const QString &id, const QString &content)
{
    QMailMessagePartContainer::setHeaderField(id, content);
    takeOverHeader(id.toLower());
}

void QMailMessage::removeHeaderField(const QString &id)
{
    QMailMessagePartContainer::removeHeaderField(id);
    takeOverHeader(id.toLower());
}

QList<QMailAddress> QMailMessage::to() const
{
    return addressesIn(*this, "To");
}

void QMailMessage::setTo(const QList<QMailAddress> &to)
{
    setEncodedHeader("To", encodedAddresses(to));
    takeOverHeader(QStringLiteral("to"));
}

void QMailMessage::setTo(const QMailAddress &to)
{
    setTo(QList<QMailAddress> { to });
}

QList<QMailAddress> QMailMessage::cc() const
{
    return addressesIn(*this, "Cc");
}

void QMailMessage::setCc(const QList<QMailAddress> &cc)
{
    setEncodedHeader("Cc", encodedAddresses(cc));
    takeOverHeader(QStringLiteral("cc"));
}

QList<QMailAddress> QMailMessage::bcc() const
{
    return addressesIn(*this, "Bcc");
}

void QMailMessage::setBcc(const QList<QMailAddress> &bcc)
{
    setEncodedHeader("Bcc", encodedAddresses(bcc));
    takeOverHeader(QStringLiteral("bcc"));
}

bool QMailMessage::hasRecipients() const
{
    return !recipients().isEmpty();
}

QMailAddress QMailMessage::replyTo() const
{
    return addressesIn(*this, "Reply-To").value(0);
}

void QMailMessage::setReplyTo(const QMailAddress &address)
{
    setEncodedHeader("Reply-To", encodedAddresses({ address }));
}

uint QMailMessage::contentSize() const
{
    return MailValueAccess::data(*this).contentSize;
}

void QMailMessage::setContentSize(uint size)
{
    QMailMessageMetaDataData &meta = MailValueAccess::data(*this);
    meta.contentSize = size;
    meta.modified = true;
}

bool QMailMessage::hasCalendarInvitation() const
{
    return (status() & CalendarInvitation) != 0;
}

bool QMailMessage::hasCalendarCancellation() const
{
    return (status() & CalendarCancellation) != 0;
}

bool QMailMessage::contentAvailable() const
{
    return QMailMessageMetaData::contentAvailable();
}

bool QMailMessage::partialContentAvailable() const
{
    return QMailMessageMetaData::partialContentAvailable();
}

bool QMailMessage::contentModified() const
{
    const MimeNode &node = MailValueAccess::unloadedNode(*this);
    return !node.unloaded && (node.unstored || node.anyModified());
}

QString QMailMessage::preview() const
{
    if (MailValueAccess::unloadedNode(*this).previewStale) {
        // What the text says is no change by the caller, so it is made up for behind the const.
        QMailMessage &self = const_cast<QMailMessage &>(*this);
        const QString text = contentPreview(*this);
        if (!text.isNull())
            self.setPreview(text);
        MailValueAccess::own(self).previewStale = false;
    }
    return QMailMessageMetaData::preview();
}

void QMailMessage::setEncodedHeader(const QByteArray &name, const QByteArray &value)
{
    const MimeNode &node = MailValueAccess::node(*this);
    if (value.isEmpty() ? !node.hasHeader(name) : node.header(name) == value)
        return;
    MimeNode &own = MailValueAccess::edit(*this);
    if (value.isEmpty())
        own.removeHeader(name);
    else
        own.setHeader(name, value);
}

void QMailMessage::takeOverHeader(const QString &lowerName)
{
    QMailMessageMetaDataData &meta = MailValueAccess::data(*this);
    if (lowerName == QLatin1String("subject"))
        meta.subject = headerFieldText(lowerName);
    else if (lowerName == QLatin1String("from"))
        meta.from = addressesIn(*this, "From").value(0);
    else if (lowerName == QLatin1String("date"))
        meta.date = QMailTimeStamp(headerFieldText(lowerName));
    else if (lowerName == QLatin1String("to") || lowerName == QLatin1String("cc")
        || lowerName == QLatin1String("bcc"))
        meta.recipients = to() + cc() + bcc();
    else
        return;
    meta.modified = true;
}
