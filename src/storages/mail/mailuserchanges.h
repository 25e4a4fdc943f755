// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>

#include <qmailid.h>

class QMailMessageKey;
struct MailStoreContext;

/**
 * Tells in which folders the user has marked, moved or deleted messages, in whatever process.
 *
 * The store tells of each change, the engine's own among them. Whose it was is asked of the state that a
 * change left behind, a mark or a place that the server does not know, or a removal record; and asked
 * afterwards, from the event loop, when the engine has finished what it was writing. Owned by the mail
 * storage; main thread only.
 */
class MailUserChanges : public QObject
{
    Q_OBJECT

public:
    /** The context has to outlive it. */
    explicit MailUserChanges(const MailStoreContext &context, QObject *parent = nullptr);

    /** Begins to listen; the context has to have its store by then. */
    void listen();

Q_SIGNALS:
    /** Local identifiers, each once. */
    void found(const QStringList &localFolderIds);

private:
    void onMessagesUpdated(const QMailMessageIdList &ids);
    void onRemovalRecordsAdded(const QMailAccountIdList &ids);
    void look();
    void lookAmong(const QMailMessageIdList &ids, QStringList &folders) const;
    void lookAtRemovals(QStringList &folders) const;

    const MailStoreContext &mContext;
    QSet<QMailMessageId> mUpdated;
    bool mHasRemovals = false;
    QTimer mLookTimer;
};
