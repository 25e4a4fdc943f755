// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"

#include <QtContacts/QContact>

#include <QList>

struct ContactStoreContext;

/** Makes an item of a contact, the inverse of ContactWriter; what the protocol has no place for is logged. */
class ContactReader
{
public:
    explicit ContactReader(const ContactStoreContext &context);

    EasContactsItem convertContact(const QtContacts::QContact &contact) const;

private:
    using Details = QList<QtContacts::QContactDetail>;
    using Process = void (ContactReader::*)(const Details &details, EasContactsItem &item) const;

    struct Handler
    {
        QtContacts::QContactDetail::DetailType type;
        Process process;
    };

    static const QList<Handler> &handlers();

    void processDetailAnniversary(const Details &details, EasContactsItem &item) const;
    void processDetailBirthday(const Details &details, EasContactsItem &item) const;
    void processDetailName(const Details &details, EasContactsItem &item) const;
    void processDetailNickname(const Details &details, EasContactsItem &item) const;
    void processDetailNote(const Details &details, EasContactsItem &item) const;
    void processDetailEmailAddress(const Details &details, EasContactsItem &item) const;
    void processDetailOnlineAccount(const Details &details, EasContactsItem &item) const;
    void processDetailAddresses(const Details &details, EasContactsItem &item) const;
    void processDetailExtended(const Details &details, EasContactsItem &item) const;
    void processDetailTags(const Details &details, EasContactsItem &item) const;
    void processDetailAvatar(const Details &details, EasContactsItem &item) const;
    /** Details of which the item has one or two of different meaning. */
    void processDetailOfOwnMeaning(const Details &details, EasContactsItem &item) const;

    /** Gives each detail the shape that fits and is free; returns those for which there is none. */
    static Details placeExactly(const Details &details, EasContactsItem &item);
    /** Gives what is left any free shape of its type. */
    static Details placeAnywhere(const Details &details, EasContactsItem &item);
    void processPhones(const QtContacts::QContact &contact, EasContactsItem &item) const;
    static void logUnsupported(const QtContacts::QContact &contact);

    const ContactStoreContext &mContext;
};
