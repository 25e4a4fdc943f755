// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/exchangeserver.h"

#include <QObject>
#include <QSocketNotifier>

/**
 * Commands on standard input that act on the mailbox of the first user, or of one who is named, as its other
 * clients and its administrator would; each is answered by lines of which the last begins with "ok" or
 * "error". Owned by main(), lives in the main thread.
 */
class ControlChannel : public QObject
{
    Q_OBJECT

public:
    ControlChannel(Simulator::ExchangeServer &server, QObject *parent);

    /** Runs one line and returns the answer. */
    QString run(const QString &line);
    static QString help();

Q_SIGNALS:
    void quitRequested();

private:
    using Arguments = QStringList;
    using Command = QString (ControlChannel::*)(const Arguments &);
    struct Entry
    {
        const char *name;
        int fewestArguments;
        Command command;
        const char *usage;
    };
    static const QVector<Entry> &entries();

    void onReadable();
    QString runFor(const QString &user, QStringList arguments);
    Simulator::Mailbox &mailbox() const;
    void changePolicies(const std::function<void(Simulator::ServerPolicies &)> &change);
    QString actAs(const Arguments &arguments);
    QString deliver(const Arguments &arguments);
    QString remove(const Arguments &arguments);
    QString read(const Arguments &arguments);
    QString unread(const Arguments &arguments);
    QString move(const Arguments &arguments);
    QString list(const Arguments &arguments);
    QString add(const Arguments &arguments);
    QString show(const Arguments &arguments);
    QString set(const Arguments &arguments);
    QString setOccurrence(const Arguments &arguments);
    QString deleteOccurrence(const Arguments &arguments);
    QString folders(const Arguments &arguments);
    QString addFolder(const Arguments &arguments);
    QString renameFolder(const Arguments &arguments);
    QString removeFolder(const Arguments &arguments);
    QString policy(const Arguments &arguments);
    QString allowAll(const Arguments &arguments);
    QString noPolicy(const Arguments &arguments);
    QString refreshPolicy(const Arguments &arguments);
    QString demand(const Arguments &arguments);
    QString wipe(const Arguments &arguments);
    QString policyStatus(const Arguments &arguments);
    QString expirePings(const Arguments &arguments);
    QString heartbeats(const Arguments &arguments);
    QString quit(const Arguments &arguments);
    QString setRead(const Arguments &arguments, bool isRead);
    /** Identifier of a folder named by its path or its identifier. */
    QString folderId(const QString &name) const;
    QString itemId(const QString &folder, const QString &item) const;

    Simulator::ExchangeServer &mServer;
    QString mUser; ///< for whom the present command acts; empty for the first user
    QSocketNotifier mNotifier;
    QByteArray mInput;
};
