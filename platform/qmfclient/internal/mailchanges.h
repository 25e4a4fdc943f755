// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QMap>
#include <QSet>

/** What a call changed, to be told once it is committed. Each number once a kind. */
class MailChanges
{
public:
    /** In the order in which the signals go out. */
    enum Kind {
        AccountsAdded,
        FoldersAdded,
        MessagesAdded,
        AccountsUpdated,
        FoldersUpdated,
        MessagesUpdated,
        MessagesRemoved,
        FoldersRemoved,
        AccountsRemoved,
        RemovalRecordsAdded,
        RemovalRecordsRemoved,
        MessageContentsModified,
        FolderContentsModified
    };

    void add(Kind kind, quint64 id)
    {
        QSet<quint64> &known = mKnown[kind];
        if (known.contains(id))
            return;
        known.insert(id);
        mIds[kind].append(id);
    }

    void add(Kind kind, const QList<quint64> &ids)
    {
        for (const quint64 id : ids)
            add(kind, id);
    }

    /** Nothing is told about what is gone. */
    void drop(Kind kind, const QList<quint64> &ids)
    {
        QList<quint64> &known = mIds[kind];
        for (const quint64 id : ids)
            known.removeAll(id);
    }

    const QMap<Kind, QList<quint64>> &all() const { return mIds; }
    bool contains(Kind kind, quint64 id) const { return mKnown.value(kind).contains(id); }

private:
    QMap<Kind, QList<quint64>> mIds;
    QMap<Kind, QSet<quint64>> mKnown;
};
