// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/samplemailbox.h"

#include "simulator/contactitem.h"
#include "simulator/eventitem.h"
#include "simulator/sampleitems.h"

#include <QFile>

namespace Simulator {
namespace {

const int largeAttachmentSize = 300 * 1024;

struct SampleMessage
{
    const char *folder; ///< path of names
    const char *file;
    int hoursAgo;
    bool read;
};

const SampleMessage messages[] = {
    { "Inbox", "welcome.eml", 70, true },
    { "Inbox", "newsletter.eml", 60, true },
    { "Inbox", "nested.eml", 40, false },
    { "Inbox", "greetings.eml", 30, false },
    { "Inbox", "meeting.eml", 20, false },
    { "Inbox", "plain.eml", 10, false },
    { "Inbox", "reply.eml", 4, false },
    { "Projekte/Übersicht", "minutes.eml", 50, true },
    { "日本語", "japanese.eml", 25, false },
    { "Sent Items", "sent.eml", 8, true },
    { "Drafts", "draft.eml", 2, true },
};

QByteArray dateHeader(const QDateTime &time)
{
    return "Date: " + time.toString(Qt::RFC2822Date).toLatin1() + "\r\n";
}

QByteArray sampleText(const QString &file)
{
    QFile source(QStringLiteral(":/sample/") + file);
    const bool open = source.open(QIODevice::ReadOnly);
    Q_ASSERT_X(open, "SampleMailbox", qPrintable(file));
    return open ? source.readAll().replace("\r\n", "\n").replace("\n", "\r\n") : QByteArray();
}

/** Bytes that look like nothing and are always the same. */
QByteArray largeAttachment()
{
    QByteArray bytes("%PDF-1.4\n");
    quint32 state = 12345;
    while (bytes.size() < largeAttachmentSize) {
        state = state * 1664525u + 1013904223u;
        bytes.append(char(state >> 24));
    }
    return bytes;
}

QByteArray folded(const QByteArray &base64)
{
    const int width = 76;
    QByteArray lines;
    for (int i = 0; i < base64.size(); i += width)
        lines += base64.mid(i, width) + "\r\n";
    return lines;
}

QByteArray reportMessage()
{
    return "From: Finance <finance@example.com>\r\nTo: Demo User <user@example.com>\r\n"
           "Subject: Quarterly report\r\nMessage-ID: <report@example.com>\r\nMIME-Version: 1.0\r\n"
           "Content-Type: multipart/mixed; boundary=\"report\"\r\n\r\n"
           "--report\r\nContent-Type: text/plain; charset=utf-8\r\n\r\nThe report is attached.\r\n"
           "--report\r\nContent-Type: application/pdf; name=\"report.pdf\"\r\n"
           "Content-Disposition: attachment; filename=\"report.pdf\"\r\nContent-Transfer-Encoding: "
           "base64\r\n\r\n"
        + folded(largeAttachment().toBase64()) + "--report--\r\n";
}

QString folderAt(const QString &path, Mailbox &mailbox)
{
    const QString known = mailbox.folderByPath(path).id;
    if (!known.isEmpty())
        return known;
    const QString parentPath = path.section(QLatin1Char('/'), 0, -2);
    const QString parent = parentPath.isEmpty() ? QStringLiteral("0") : folderAt(parentPath, mailbox);
    return mailbox.addFolder(path.section(QLatin1Char('/'), -1), UserMailFolder, parent);
}

} // namespace
} // namespace Simulator

/** Has to stand outside of the name space: the resources are in a static library. */
static void initializeSamples()
{
    Q_INIT_RESOURCE(sample);
}

namespace Simulator {

int SampleMailbox::fill(Mailbox &mailbox)
{
    initializeSamples();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    int count = 0;
    const auto deliver = [&](const char *folder, const QByteArray &message, int hoursAgo, bool read) {
        const QDateTime time = now.addSecs(-3600 * hoursAgo);
        const QString id =
            mailbox.deliver(folderAt(QString::fromUtf8(folder), mailbox), dateHeader(time) + message, time);
        mailbox.setRead(id, read);
        ++count;
    };
    for (const SampleMessage &sample : messages)
        deliver(sample.folder, sampleText(QLatin1String(sample.file)), sample.hoursAgo, sample.read);
    deliver("Inbox", reportMessage(), 15, false);
    const QVector<Event> events = SampleItems::events(now.date());
    for (const Event &event : events)
        mailbox.addItem(mailbox.folderOfType(CalendarFolder).id, EventItem::make(event));
    const QVector<Contact> contacts = SampleItems::contacts();
    for (const Contact &contact : contacts)
        mailbox.addItem(mailbox.folderOfType(ContactsFolder).id, ContactItem::make(contact));
    return count;
}

} // namespace Simulator
