// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "storages/contacts/contactavatars.h"

#include <QtContacts/QContact>

struct ContactStoreContext;

/**
 * Makes a contact of an item. One bad field costs that field.
 *
 * Pictures become files before the contact is stored, so the writer remembers what came and what is to go:
 * whoever stores the contacts calls one of keepAvatars() and dropAvatars() afterwards.
 */
class ContactWriter
{
public:
    explicit ContactWriter(const ContactStoreContext &context);

    /**
     * The contact to be stored, with the flag that tells the store what to do with it. An item with a local
     * identifier gives that contact with new details; it is empty if there is none. The item's avatar URL is
     * the known one before and the new one after.
     */
    QtContacts::QContact prepareContact(EasContactsItem &item);

    /** Whether a contact could not be prepared because the store could not be asked. */
    bool hasFailed() const { return mFailed; }

    /** The contacts are stored: pictures that they had before are removed. */
    void keepAvatars();
    /** They are not: their new pictures are removed. */
    void dropAvatars();

    /** The address of a text that may hold a name as well. */
    static QString getRawEmailAddress(const QString &text);

private:
    bool loadContact(const EasContactsItem &item, QtContacts::QContact *contact);
    void saveOrigin(QtContacts::QContact &contact, const EasContactsItem &item) const;
    void saveDates(QtContacts::QContact &contact, const EasContactsItem &item) const;
    void saveTags(QtContacts::QContact &contact, const EasContactsItem &item) const;
    void saveShapes(QtContacts::QContact &contact, const EasContactsItem &item) const;
    void savePicture(QtContacts::QContact &contact, EasContactsItem &item, const QList<QUrl> &oldUrls);

    const ContactStoreContext &mContext;
    const ContactAvatars mAvatars;
    QList<QUrl> mCreated;
    QList<QUrl> mObsolete;
    bool mFailed = false;
};
