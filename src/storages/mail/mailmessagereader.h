// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QMap>
#include <QString>

struct MailStoreContext;
class EasBodyContainer;
class EasEmailItem;
class QMailMessage;
class QMailMessageId;
class QMailMessageMetaData;

/** Reads stored messages back as items, for local changes and for sending; an object of the moment. */
class MailMessageReader
{
public:
    explicit MailMessageReader(const MailStoreContext &context);

    /**
     * The message as an item; an empty one, with a log line, if there is no such message.
     *
     * localToServerFolders translates folder ids. markRead enters the read mark among the changed fields. The
     * body carries type, size and preview, not the text.
     */
    EasEmailItem mailItemFromEmailMessageId(
        const QMailMessageId &id, const QMap<QString, QString> &localToServerFolders, bool markRead) const;

    /** The same of a message that was read before. */
    EasEmailItem mailItemFromEmailMessage(
        const QMailMessage &message, const QMap<QString, QString> &localToServerFolders, bool markRead) const;

    /**
     * What the store knows of a message without its content: names, place, marks and addresses. An empty item
     * for a message that is not stored.
     */
    EasEmailItem itemOfMetaData(
        const QMailMessageMetaData &message, const QMap<QString, QString> &localToServerFolders) const;

private:
    EasBodyContainer bodyContainer(const QMailMessage &message) const;
    QString answeredServerId(const QMailMessage &message) const;
    void setMove(EasEmailItem *item, const QMailMessageMetaData &message,
        const QMap<QString, QString> &localToServerFolders) const;

    const MailStoreContext &mContext;
};
