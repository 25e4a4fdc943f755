// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QtContacts/QContact>
#include <QtContacts/QContactCollection>
#include <QtContacts/QContactManager>

#include <QList>
#include <QString>

#include <memory>
#include <optional>

/**
 * The account's collections in the device's contact store, as the command line works with them. On the stack
 * of a command.
 *
 * A contact goes by its number in the store. What is changed here the engine finds as a change of the user's,
 * and takes to the server with the next sync.
 */
class ContactBook
{
public:
    explicit ContactBook(EasAccountId accountId);
    ~ContactBook();

    /** Opens the store and loads the account's collections; false after an error was printed. */
    bool open();

    const QList<QtContacts::QContactCollection> &collections() const { return mCollections; }
    /** By name or identifier; the account's default one, or the only one, for an empty name. Nothing, after
     * an error, if none is meant. */
    std::optional<QtContacts::QContactCollection> collection(const QString &name) const;
    static QString name(const QtContacts::QContactCollection &collection);

    /** By their names; of one collection, or of all without one. False after an error was printed. */
    bool contacts(const std::optional<QtContacts::QContactCollection> &collection,
        QList<QtContacts::QContact> *contacts) const;
    static QString number(const QtContacts::QContact &contact);

    /** Each is false after an error was printed. */
    bool save(QtContacts::QContact *contact);
    bool remove(const QtContacts::QContact &contact);

private:
    EasAccountId mAccountId;
    std::unique_ptr<QtContacts::QContactManager> mManager;
    QList<QtContacts::QContactCollection> mCollections;
};
