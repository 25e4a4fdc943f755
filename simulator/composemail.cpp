// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/command.h"
#include "simulator/email.h"
#include "simulator/mimereader.h"
#include "simulator/postoffice.h"
#include "simulator/protocolversion.h"
#include "simulator/sourcequote.h"

namespace Simulator {
namespace {

enum Status {
    Sent = 0,
    InvalidContent = 101,
    InvalidMime = 107,
    MailboxFull = 113,
    TooLarge = 115,
    SentBefore = 118,
    NoRecipient = 119,
    NoSource = 150
};

/** What a client hands over, in either form. */
struct Submission
{
    QByteArray mime;
    QString clientId;
    bool savesCopy = false;
    bool replacesMime = false;
    QString itemId;
};

Submission ofDocument(const WbxmlNode &document)
{
    Submission submission;
    submission.mime = document.at(QStringLiteral("Mime")).bytes();
    submission.clientId = document.text(QStringLiteral("ClientId"));
    submission.savesCopy = document.has(QStringLiteral("SaveInSentItems"));
    submission.replacesMime = document.has(QStringLiteral("ReplaceMime"));
    const QString longId = document.text(QStringLiteral("Source/LongId"));
    submission.itemId = longId.isEmpty() ? document.text(QStringLiteral("Source/ItemId")) : longId;
    return submission;
}

Submission ofMessage(const RecordedRequest &request)
{
    Submission submission;
    submission.mime = request.body;
    submission.savesCopy = request.queryItem(QStringLiteral("SaveInSent")) == QLatin1String("T");
    const QString longId = request.queryItem(QStringLiteral("LongId"));
    submission.itemId = longId.isEmpty() ? request.queryItem(QStringLiteral("ItemId")) : longId;
    return submission;
}

CommandReply refusal(const CommandContext &context, int status)
{
    if (context.version() >= Version140) {
        WbxmlNode root(QStringLiteral("ComposeMail:") + context.request.command);
        root.append(QStringLiteral("Status"), status);
        return CommandReply::of(root);
    }
    CommandReply reply;
    const bool isFull = status == MailboxFull || status == TooLarge;
    const bool isBad = status == InvalidMime || status == InvalidContent;
    reply.httpStatus = isFull ? 507 : isBad ? 400 : 500;
    return reply;
}

qint64 usedSpace(const Mailbox &mailbox)
{
    qint64 size = 0;
    const QVector<MailFolder> folders = mailbox.folders();
    for (const MailFolder &folder : folders) {
        const QVector<ItemEntry> entries = mailbox.items(folder.id);
        for (const ItemEntry &entry : entries) {
            if (const auto email = std::dynamic_pointer_cast<const Email>(entry.item))
                size += email->content().message().size();
        }
    }
    return size;
}

/** Removes the header by which the server delivers, and nothing else. */
QByteArray withoutBcc(const QByteArray &message)
{
    QByteArray kept;
    bool inBcc = false;
    for (int start = 0; start < message.size();) {
        const int end = message.indexOf('\n', start);
        const int next = end < 0 ? message.size() : end + 1;
        const QByteArray line = message.mid(start, next - start);
        if (line.trimmed().isEmpty())
            return kept + message.mid(start);
        const bool continues = line.startsWith(' ') || line.startsWith('\t');
        inBcc = continues ? inBcc : line.toLower().startsWith("bcc:");
        if (!inBcc)
            kept += line;
        start = next;
    }
    return kept;
}

bool isFull(const CommandContext &context, const QByteArray &message)
{
    const qint64 quota = context.settings.mailboxQuota;
    return quota > 0 && usedSpace(context.mailbox) + message.size() > quota;
}

/** Why the submission is refused as it stands; 0 if it is not. */
int complaint(const CommandContext &context, const Submission &submission, const QStringList &recipients)
{
    if (context.version() >= Version140 && submission.clientId.isEmpty())
        return InvalidContent;
    if (!submission.clientId.isEmpty() && context.device.sentClientIds.contains(submission.clientId))
        return SentBefore;
    if (!submission.mime.contains("\r\n\r\n"))
        return InvalidMime;
    if (recipients.isEmpty())
        return NoRecipient;
    const qint64 largest = context.settings.largestMessage;
    return largest > 0 && submission.mime.size() > largest ? TooLarge : Sent;
}

using Quote = QByteArray (*)(const QByteArray &message, const EmailContent &source);

CommandReply submit(const CommandContext &context, Quote quote)
{
    const bool isDocument = context.version() >= Version140;
    if (!isDocument && context.request.header("Content-Type") != "message/rfc822")
        context.failures.append(QStringLiteral("the message is not announced as one"));
    if (isDocument == context.request.document.isNull())
        return refusal(context, InvalidContent);
    const Submission submission =
        isDocument ? ofDocument(context.request.document) : ofMessage(context.request);
    const QStringList recipients = MimeReader(submission.mime).recipients();
    const int status = complaint(context, submission, recipients);
    if (status != Sent)
        return refusal(context, status);
    QByteArray message = submission.mime;
    if (quote) {
        const auto source = std::dynamic_pointer_cast<const Email>(context.mailbox.item(submission.itemId));
        if (!source)
            return refusal(context, NoSource);
        if (!submission.replacesMime)
            message = quote(message, source->content());
    }
    if (isFull(context, message))
        return refusal(context, MailboxFull);
    context.post.deliver(recipients, withoutBcc(message));
    if (submission.savesCopy) {
        const QString sentItems = context.mailbox.folderOfType(SentItemsFolder).id;
        context.mailbox.setRead(
            context.mailbox.deliver(sentItems, message, QDateTime::currentDateTimeUtc()), true);
    }
    context.device.sentClientIds.insert(submission.clientId);
    return CommandReply();
}

} // namespace

CommandReply handleSendMail(const CommandContext &context)
{
    return submit(context, nullptr);
}

CommandReply handleSmartReply(const CommandContext &context)
{
    return submit(context, &SourceQuote::replied);
}

CommandReply handleSmartForward(const CommandContext &context)
{
    return submit(context, &SourceQuote::forwarded);
}

} // namespace Simulator
