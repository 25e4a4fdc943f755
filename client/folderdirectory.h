// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

/** One folder of the device, whatever it holds. */
struct LocalFolder
{
    /** What the engine knows it by. */
    QString id;
    /** With the names of its parents for mail. */
    QString name;
};

/** The account's folders of one kind: of mail, of events, or of contacts. On the stack of a command. */
class FolderDirectory
{
public:
    enum Kind { Mail = 0, Calendar = 1, Contacts = 2 };

    /** By the words that the command line uses; false for any other. */
    static bool kindOf(const QString &word, Kind *kind);

    FolderDirectory(EasAccountId accountId, Kind kind);

    /** False, after an error was printed, if the store of this kind does not work. */
    bool open();
    const QList<LocalFolder> &folders() const { return mFolders; }
    /** By identifier or name; an empty identifier, after an error, if there is none. */
    QString find(const QString &folder) const;

private:
    bool openMail();
    bool openCalendars();
    bool openContacts();

    EasAccountId mAccountId;
    Kind mKind;
    QList<LocalFolder> mFolders;
};
