// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>

/** One folder of the device, whatever it holds. */
struct LocalFolder
{
    /** What the engine knows it by. */
    QString id;
    QString name;
    /** The name behind those of its parents, for mail. */
    QString path;
    /** How many folders it lies in. */
    int depth = 0;
    int items = 0;
    /** Messages that were not read; 0 for the other kinds. */
    int unread = 0;
};

/** The account's folders of one kind: of mail, of events, or of contacts. On the stack of a command. */
class FolderDirectory
{
public:
    /** As the daemon counts them. */
    enum Kind { Mail = 0, Calendar = 1, Contacts = 2 };

    /** By the words that the command line uses; false, after an error, for any other. */
    static bool kindOf(const QString &word, Kind *kind);
    static const QStringList &kinds();

    FolderDirectory(EasAccountId accountId, Kind kind);

    /** False, after an error was printed, if the store of this kind does not work. */
    bool open();
    const QList<LocalFolder> &folders() const { return mFolders; }
    QJsonArray describe() const;
    /** By identifier, path or name; null, after an error, if none or several are meant. */
    const LocalFolder *find(const QString &folder) const;

private:
    bool openMail();
    bool openCalendars();
    bool openContacts();

    EasAccountId mAccountId;
    Kind mKind;
    QList<LocalFolder> mFolders;
};
