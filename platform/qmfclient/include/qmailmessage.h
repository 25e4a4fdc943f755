// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessagebody.h>
#include <qmailmessagefwd.h>
#include <qmailmessageheaderfield.h>
#include <qmailmessagemetadata.h>
#include <qmailmessagepart.h>

/**
 * A message with its content. A value: a copy is independent of the object it came from and of the store.
 * One loaded from the store reads its content when it is first asked for it.
 */
class QMF_EXPORT QMailMessage : public QMailMessageMetaData,
                                public QMailMessagePartContainer,
                                public QMailMessageFwd
{
public:
    static QMailMessage fromRfc2822(const QByteArray &data);

    QMailMessage();
    QMailMessage(const QMailMessageId &id); // NOLINT: converts on purpose
    QMailMessage(const QString &uid, const QMailAccountId &accountId);
    QMailMessage(const QMailMessage &other);
    QMailMessage &operator=(const QMailMessage &other);
    ~QMailMessage() override;

    QByteArray toRfc2822(EncodingFormat format = TransmissionFormat) const;

    using QMailMessagePartContainer::partAt;
    /** The indices alone decide; the message of the location is not compared. */
    bool contains(const QMailMessagePart::Location &location) const;
    const QMailMessagePart &partAt(const QMailMessagePart::Location &location) const;
    QMailMessagePart &partAt(const QMailMessagePart::Location &location);

    void setId(const QMailMessageId &id) override;
    void setFrom(const QMailAddress &from) override;
    void setSubject(const QString &subject) override;
    void setDate(const QMailTimeStamp &date) override;
    void setHeaderField(const QString &id, const QString &content) override;
    void removeHeaderField(const QString &id) override;

    virtual QList<QMailAddress> to() const;
    virtual void setTo(const QList<QMailAddress> &to);
    virtual void setTo(const QMailAddress &to);
    virtual QList<QMailAddress> cc() const;
    virtual void setCc(const QList<QMailAddress> &cc);
    virtual QList<QMailAddress> bcc() const;
    virtual void setBcc(const QList<QMailAddress> &bcc);
    virtual bool hasRecipients() const;
    virtual QMailAddress replyTo() const;
    virtual void setReplyTo(const QMailAddress &address);
    virtual uint contentSize() const;
    virtual void setContentSize(uint size);
    virtual bool hasCalendarInvitation() const;
    virtual bool hasCalendarCancellation() const;
    bool contentAvailable() const override;
    bool partialContentAvailable() const override;
    virtual bool contentModified() const;
    /** Computed anew from the text once after each body that was set; otherwise what was set. */
    QString preview() const override;

private:
    void setEncodedHeader(const QByteArray &name, const QByteArray &value);
    void takeOverHeader(const QString &lowerName);
};
