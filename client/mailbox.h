// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QDate>
#include <QString>
#include <qmailfolder.h>
#include <qmailmessage.h>

#include <optional>
#include <qmailmessagekey.h>

/** Which messages a list is to show; what is not set selects all. */
struct MailFilter
{
    QMailFolderId folder;
    bool isUnreadOnly = false;
    /** Part of the sender's name or address, and of the subject. */
    QString from;
    QString subject;
    /** In the zone of the device. */
    QDate since;
};

/**
 * The account's mail in the device's mail store, as the command line works with it. On the stack of a
 * command.
 *
 * What is changed here the engine finds as a change of the user's, and takes to the server with the next
 * sync.
 */
class MailBox
{
public:
    explicit MailBox(EasAccountId accountId);

    /** False, after an error was printed, if the mail store does not work. */
    bool open();

    /** Parents before children, by display name. */
    QMailFolderIdList folders() const;
    /** By number, or by path of display names ("Projects/2024"); an invalid identifier, after an error, if
     * none or several are meant. */
    QMailFolderId findFolder(const QString &folder) const;
    /** The folder's own name behind those of its parents. */
    static QString path(const QMailFolderId &id);
    /** How many folders it lies in. */
    static int depth(const QMailFolderId &id);
    static int count(const QMailFolderId &id, bool unreadOnly);

    /** Messages that were read, moved or deleted here and that the server has not been told of. */
    int waiting() const;

    /** All that is synchronised, in no order. */
    QMailMessageIdList allMessages() const;
    /** Newest first. */
    QMailMessageIdList messages(const MailFilter &filter) const;
    /** One of the account's messages by its number; an invalid identifier, after an error, without one. */
    QMailMessageId findMessage(const QString &number) const;
    /** A message with its content in memory, but for long bodies; nothing, after an error, if the store
     * cannot read it. By itself the store takes what it cannot read for empty. */
    static std::optional<QMailMessage> read(const QMailMessageId &id);

    /** Each is false, after an error was printed, if the store refused. */
    bool setStatus(const QMailMessageIdList &ids, quint64 status, bool set);
    bool move(const QMailMessageIdList &ids, const QMailFolderId &folder);
    bool remove(const QMailMessageIdList &ids);

    /** Has the message stand in the account's Outbox or Drafts; with the device's own mail where the server
     * has no such folder. */
    void place(QMailMessageMetaData &message, QMailFolder::StandardFolder folder) const;
    /** Each is false, after an error was printed, if the store refused. */
    bool add(QMailMessage *message);
    bool update(QMailMessageMetaData *message);
    bool update(QMailMessage *message);

private:
    /** Without what searches have found. */
    QMailMessageKey ownMessages() const;
    static QMailFolderIdList ancestry(const QMailFolderId &id);

    EasAccountId mAccountId;
};
