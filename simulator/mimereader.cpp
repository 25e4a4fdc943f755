// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/mimereader.h"

#include <KMime/Message>

#include <QRegularExpression>

namespace Simulator {
namespace {

QString addressList(const QVector<KMime::Types::Mailbox> &mailboxes)
{
    QStringList addresses;
    for (const KMime::Types::Mailbox &mailbox : mailboxes) {
        const QString address = QString::fromLatin1(mailbox.address());
        addresses.append(
            mailbox.hasName() ? QStringLiteral("\"%1\" <%2>").arg(mailbox.name(), address) : address);
    }
    return addresses.join(QStringLiteral(", "));
}

QString displayList(const QVector<KMime::Types::Mailbox> &mailboxes)
{
    QStringList names;
    for (const KMime::Types::Mailbox &mailbox : mailboxes)
        names.append(mailbox.hasName() ? mailbox.name() : QString::fromLatin1(mailbox.address()));
    return names.join(QStringLiteral("; "));
}

template <typename Header> QVector<KMime::Types::Mailbox> mailboxes(const Header *header)
{
    return header ? header->mailboxes() : QVector<KMime::Types::Mailbox>();
}

QString headerText(KMime::Content *content, const char *name)
{
    const KMime::Headers::Base *header = content->headerByType(name);
    return header ? header->asUnicodeString() : QString();
}

int importanceOf(KMime::Content *content)
{
    const QString importance = headerText(content, "Importance").toLower();
    const QString priority = headerText(content, "X-Priority").left(1);
    if (importance == QLatin1String("high") || priority == QLatin1String("1")
        || priority == QLatin1String("2"))
        return 2;
    const bool low = importance == QLatin1String("low") || priority == QLatin1String("4")
        || priority == QLatin1String("5");
    return low ? 0 : 1;
}

QString withoutReplyMarks(const QString &subject)
{
    static const QRegularExpression marks(
        QStringLiteral("^(\\s*(re|fw|fwd|aw|wg)\\s*:)+\\s*"), QRegularExpression::CaseInsensitiveOption);
    return QString(subject).remove(marks);
}

QByteArray mimeTypeOf(KMime::Content *content)
{
    const KMime::Headers::ContentType *type = content->contentType(false);
    return type && !type->mimeType().isEmpty() ? type->mimeType().toLower() : QByteArray("text/plain");
}

QString messageClassOf(KMime::Content *content)
{
    const QByteArray type = mimeTypeOf(content);
    if (type == "multipart/signed")
        return QStringLiteral("IPM.Note.SMIME.MultipartSigned");
    if (type == "application/pkcs7-mime" || type == "application/x-pkcs7-mime")
        return QStringLiteral("IPM.Note.SMIME");
    if (type == "multipart/report")
        return QStringLiteral("REPORT.IPM.Note.NDR");
    return QStringLiteral("IPM.Note");
}

/** Of invitations, cancellations and answers; empty for any other text. */
QString meetingClassOf(const QByteArray &calendar)
{
    if (calendar.contains("METHOD:REQUEST"))
        return QStringLiteral("IPM.Schedule.Meeting.Request");
    if (calendar.contains("METHOD:CANCEL"))
        return QStringLiteral("IPM.Schedule.Meeting.Canceled");
    if (!calendar.contains("METHOD:REPLY"))
        return QString();
    if (calendar.contains("PARTSTAT=ACCEPTED"))
        return QStringLiteral("IPM.Schedule.Meeting.Resp.Pos");
    return calendar.contains("PARTSTAT=DECLINED") ? QStringLiteral("IPM.Schedule.Meeting.Resp.Neg")
                                                  : QStringLiteral("IPM.Schedule.Meeting.Resp.Tent");
}

QString fileNameOf(KMime::Content *content)
{
    const KMime::Headers::ContentDisposition *disposition = content->contentDisposition(false);
    const QString name = disposition ? disposition->filename() : QString();
    const KMime::Headers::ContentType *type = content->contentType(false);
    return name.isEmpty() && type ? type->name() : name;
}

MimeAttachment attachmentOf(KMime::Content *content, int position)
{
    MimeAttachment result;
    ItemAttachment &item = result.item;
    item.contentType = mimeTypeOf(content);
    item.isMessage = item.contentType == "message/rfc822";
    item.bytes = item.isMessage ? content->encodedBody() : content->decodedContent();
    item.name = fileNameOf(content);
    if (item.name.isEmpty() && item.isMessage && content->bodyIsMessage())
        item.name = content->bodyAsMessage()->subject()->asUnicodeString() + QStringLiteral(".eml");
    if (item.name.isEmpty())
        item.name = QStringLiteral("ATT%1").arg(position + 1, 5, 10, QLatin1Char('0'));
    if (const KMime::Headers::ContentID *id = content->contentID(false))
        item.contentId = QString::fromLatin1(id->identifier());
    const KMime::Headers::ContentDisposition *disposition = content->contentDisposition(false);
    item.isInline =
        !item.contentId.isEmpty() && (!disposition || disposition->disposition() == KMime::Headers::CDinline);
    result.contentLocation = headerText(content, "Content-Location");
    return result;
}

} // namespace

class MimeReader::Private
{
public:
    KMime::Message message;
    KMime::Content *plain = nullptr;
    KMime::Content *html = nullptr;
    KMime::Content *calendar = nullptr;
    QVector<KMime::Content *> attachments;

    QByteArray calendarText() const { return calendar ? calendar->decodedContent() : QByteArray(); }

    void sort(KMime::Content *content)
    {
        const KMime::Headers::ContentType *type = content->contentType(false);
        if (type && type->isMultipart()) {
            const QVector<KMime::Content *> parts = content->contents();
            for (KMime::Content *part : parts)
                sort(part);
            return;
        }
        KMime::Content **const place = bodyPlace(content);
        if (place)
            *place = content;
        else
            attachments.append(content);
    }

    /** Where the part belongs if it is one of the bodies, null for an attachment. */
    KMime::Content **bodyPlace(KMime::Content *content)
    {
        const KMime::Headers::ContentDisposition *disposition = content->contentDisposition(false);
        const bool attached = disposition && disposition->disposition() == KMime::Headers::CDattachment;
        if (attached || !fileNameOf(content).isEmpty())
            return nullptr;
        const QByteArray type = mimeTypeOf(content);
        if (type == "text/plain" && !plain)
            return &plain;
        if (type == "text/html" && !html)
            return &html;
        return type == "text/calendar" && !calendar ? &calendar : nullptr;
    }
};

MimeReader::MimeReader(const QByteArray &message)
    : d(new Private)
{
    d->message.setContent(KMime::CRLFtoLF(message));
    d->message.parse();
    d->sort(&d->message);
}

MimeReader::~MimeReader() = default;

EmailHeaders MimeReader::headers() const
{
    KMime::Message &message = d->message;
    EmailHeaders headers;
    headers.from = addressList(mailboxes(message.from(false)));
    headers.sender = message.sender(false) ? message.sender(false)->asUnicodeString() : QString();
    headers.to = addressList(mailboxes(message.to(false)));
    headers.cc = addressList(mailboxes(message.cc(false)));
    headers.bcc = addressList(mailboxes(message.bcc(false)));
    headers.replyTo = addressList(mailboxes(message.replyTo(false)));
    headers.displayTo = displayList(mailboxes(message.to(false)));
    headers.subject = message.subject(false) ? message.subject(false)->asUnicodeString() : QString();
    headers.threadTopic = withoutReplyMarks(headers.subject);
    headers.importance = importanceOf(&message);
    headers.messageClass = meetingClassOf(d->calendarText());
    if (headers.messageClass.isEmpty())
        headers.messageClass = messageClassOf(&message);
    return headers;
}

QStringList MimeReader::recipients() const
{
    KMime::Message &message = d->message;
    const QVector<KMime::Types::Mailbox> all =
        mailboxes(message.to(false)) + mailboxes(message.cc(false)) + mailboxes(message.bcc(false));
    QStringList addresses;
    for (const KMime::Types::Mailbox &mailbox : all) {
        if (mailbox.hasAddress())
            addresses.append(QString::fromUtf8(mailbox.address()));
    }
    return addresses;
}

QDateTime MimeReader::date() const
{
    return d->message.date(false) ? d->message.date(false)->dateTime() : QDateTime();
}

QString MimeReader::plainText() const
{
    return d->plain ? d->plain->decodedText() : QString();
}

QString MimeReader::htmlText() const
{
    return d->html ? d->html->decodedText() : QString();
}

QByteArray MimeReader::calendar() const
{
    const QByteArray text = d->calendarText();
    return text.contains("METHOD:REQUEST") || text.contains("METHOD:CANCEL") ? text : QByteArray();
}

QVector<MimeAttachment> MimeReader::attachments() const
{
    QVector<MimeAttachment> result;
    for (KMime::Content *content : qAsConst(d->attachments))
        result.append(attachmentOf(content, result.size()));
    return result;
}

} // namespace Simulator
