// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactreader.h"

#include "application/base/logging.h"
#include "storages/contacts/contactavatars.h"
#include "storages/contacts/contactdates.h"
#include "storages/contacts/contactdetails.h"
#include "storages/contacts/contactphonenumbers.h"
#include "storages/contacts/contactsecondname.h"
#include "storages/contacts/contactservertexts.h"
#include "storages/contacts/contactstorecontext.h"

#include <qcontactstatusflags.h>

#include <QtContacts/QContactAddress>
#include <QtContacts/QContactAnniversary>
#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactBirthday>
#include <QtContacts/QContactExtendedDetail>
#include <QtContacts/QContactGuid>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactPhoneNumber>
#include <QtContacts/QContactSyncTarget>
#include <QtContacts/QContactTag>

#include <QDateTime>
#include <QSet>

#include <algorithm>

QTCONTACTS_USE_NAMESPACE

namespace {

/** What the store and the engine add to a contact; it says nothing about the person. */
bool isOwnOfStore(int type)
{
    static const QSet<int> types { QContactDetail::TypeDisplayLabel, QContactDetail::TypeType,
        QContactDetail::TypeTimestamp, QContactDetail::TypeGuid, QContactDetail::TypeSyncTarget,
        QContactDetail::TypeVersion, QContactDetail::TypePresence, QContactDetail::TypeGlobalPresence };
    return types.contains(type) || type == QContactStatusFlags::Type;
}

/** Whether one of the shape's fields has a value already. */
bool isTaken(const ContactDetailShape &shape, const EasContactsItem &item)
{
    return !shape.isEmpty(item);
}

template <typename Fits>
QList<QContactDetail> place(const QList<QContactDetail> &details, EasContactsItem &item, const Fits &fits)
{
    QList<QContactDetail> left;
    for (const QContactDetail &detail : details) {
        const auto &shapes = ContactDetails::shapes();
        const auto shape =
            std::find_if(shapes.cbegin(), shapes.cend(), [&](const ContactDetailShape &candidate) {
                return fits(candidate, detail) && !isTaken(candidate, item);
            });
        if (shape == shapes.cend())
            left.append(detail);
        else
            shape->toItem(detail, item);
    }
    return left;
}

} // namespace

ContactReader::ContactReader(const ContactStoreContext &context)
    : mContext(context)
{
}

const QList<ContactReader::Handler> &ContactReader::handlers()
{
    static const QList<Handler> list {
        { QContactDetail::TypeAnniversary, &ContactReader::processDetailAnniversary },
        { QContactDetail::TypeBirthday, &ContactReader::processDetailBirthday },
        { QContactDetail::TypeName, &ContactReader::processDetailName },
        { QContactDetail::TypeNickname, &ContactReader::processDetailNickname },
        { QContactDetail::TypeNote, &ContactReader::processDetailNote },
        { QContactDetail::TypeEmailAddress, &ContactReader::processDetailEmailAddress },
        { QContactDetail::TypeOnlineAccount, &ContactReader::processDetailOnlineAccount },
        { QContactDetail::TypeAddress, &ContactReader::processDetailAddresses },
        { QContactDetail::TypeExtendedDetail, &ContactReader::processDetailExtended },
        { QContactDetail::TypeTag, &ContactReader::processDetailTags },
        { QContactDetail::TypeAvatar, &ContactReader::processDetailAvatar },
        { QContactDetail::TypeOrganization, &ContactReader::processDetailOfOwnMeaning },
        { QContactDetail::TypeFamily, &ContactReader::processDetailOfOwnMeaning },
        { QContactDetail::TypeUrl, &ContactReader::processDetailOfOwnMeaning },
    };
    return list;
}

EasContactsItem ContactReader::convertContact(const QContact &contact) const
{
    EasContactsItem item;
    item.setLocalStorageAccountId(mContext.accountId);
    // An empty body is one whose note was removed; without a type the server would keep it.
    item.setBodyContainerType(EasBodyContainer::PlainTextBodyType);
    if (contact.id().isNull())
        qCWarning(eas()) << "local id of the contact is null";
    else
        item.setLocalId(contact.id().toString());
    qCDebug(eas()) << "The contact sync target" << contact.detail<QContactSyncTarget>().syncTarget();

    for (const Handler &handler : handlers()) {
        const Details details = contact.details(handler.type);
        if (!details.isEmpty())
            (this->*handler.process)(details, item);
    }
    processPhones(contact, item);
    ContactSecondName::read(contact, item);
    ContactServerTexts::restore(contact, item);
    logUnsupported(contact);
    return item;
}

void ContactReader::processDetailAnniversary(const Details &details, EasContactsItem &item) const
{
    item.setAnniversary(ContactDates::text(QContactAnniversary(details.first()).originalDateTime().date()));
}

void ContactReader::processDetailBirthday(const Details &details, EasContactsItem &item) const
{
    item.setBirthday(ContactDates::text(QContactBirthday(details.first()).date()));
}

void ContactReader::processDetailName(const Details &details, EasContactsItem &item) const
{
    processDetailOfOwnMeaning(details, item);
}

void ContactReader::processDetailNickname(const Details &details, EasContactsItem &item) const
{
    processDetailOfOwnMeaning(details, item);
}

void ContactReader::processDetailNote(const Details &details, EasContactsItem &item) const
{
    // The server has one body for all that is noted.
    QStringList notes;
    for (const QContactDetail &detail : details)
        notes.append(QContactNote(detail).note());
    QContactNote note;
    note.setNote(notes.join(QLatin1Char('\n')));
    qCDebug(eas()) << "Body:" << note.note().size();
    placeExactly({ note }, item);
}

void ContactReader::processDetailEmailAddress(const Details &details, EasContactsItem &item) const
{
    const Details left = placeAnywhere(placeExactly(details, item), item);
    if (!left.isEmpty())
        qCWarning(eas()) << "we have few unsyncable email addresses:" << left;
}

void ContactReader::processDetailOnlineAccount(const Details &details, EasContactsItem &item) const
{
    const Details left = placeAnywhere(placeExactly(details, item), item);
    if (!left.isEmpty())
        qCWarning(eas()) << "we have few unsyncable online accounts:" << left;
}

void ContactReader::processDetailAddresses(const Details &details, EasContactsItem &item) const
{
    // The slot goes by the context alone; an address without one is at home.
    Details known;
    for (QContactDetail detail : details) {
        const QList<int> contexts = detail.contexts();
        detail.setContexts(contexts.isEmpty() ? int(QContactDetail::ContextHome) : contexts.first());
        detail.removeValue(QContactDetail::FieldDetailUri);
        known.append(detail);
    }
    const Details left = placeExactly(known, item);
    if (!left.isEmpty())
        qCWarning(eas()) << "we have few unsyncable addresses:" << left;
}

void ContactReader::processDetailExtended(const Details &details, EasContactsItem &item) const
{
    const Details left = placeExactly(details, item);
    for (const QContactDetail &detail : left) {
        const QString name = QContactExtendedDetail(detail).name();
        if (!ContactServerTexts::isKept(name) && !ContactSecondName::isText(name))
            qCDebug(eas()) << "unsyncable extended detail" << name;
    }
}

void ContactReader::processDetailTags(const Details &details, EasContactsItem &item) const
{
    for (const QContactDetail &detail : details)
        item.addCategory(QContactTag(detail).tag());
}

void ContactReader::processDetailAvatar(const Details &details, EasContactsItem &item) const
{
    const QUrl url = QContactAvatar(details.first()).imageUrl();
    item.setAvatarUrl(url);
    item.setPicture(ContactAvatars::upload(url));
}

void ContactReader::processDetailOfOwnMeaning(const Details &details, EasContactsItem &item) const
{
    // A URI that is none of ours makes a detail no less the plain one.
    Details known = placeExactly(details, item);
    for (QContactDetail &detail : known)
        detail.removeValue(QContactDetail::FieldDetailUri);
    const Details left = placeExactly(known, item);
    for (const QContactDetail &detail : left)
        qCWarning(eas()) << "there is no place for another detail of type" << detail.type();
}

ContactReader::Details ContactReader::placeExactly(const Details &details, EasContactsItem &item)
{
    return place(details, item,
        [](const ContactDetailShape &shape, const QContactDetail &detail) { return shape.fits(detail); });
}

ContactReader::Details ContactReader::placeAnywhere(const Details &details, EasContactsItem &item)
{
    return place(details, item, [](const ContactDetailShape &shape, const QContactDetail &detail) {
        return shape.type == detail.type();
    });
}

void ContactReader::processPhones(const QContact &contact, EasContactsItem &item) const
{
    // What came from the server has the number twice, and the one that the user sees is the one that counts.
    if (!mContext.serverIdOf(contact.detail<QContactGuid>().guid()).isEmpty())
        item.setMms(QString());
    ContactPhoneNumbers::processPhoneNumbers(contact, item);
}

void ContactReader::logUnsupported(const QContact &contact)
{
    const Details details = contact.details();
    for (const QContactDetail &detail : details) {
        // Stores have types of their own, which are no values of the enumeration.
        const int type = detail.type();
        const bool handled = type == QContactDetail::TypePhoneNumber || isOwnOfStore(type)
            || std::any_of(handlers().cbegin(), handlers().cend(),
                [type](const Handler &handler) { return handler.type == type; });
        if (handled)
            continue;
        if (type <= QContactDetail::TypeVersion)
            qCDebug(eas()) << "The contact detail with type " << type << " is not supported by EAS";
        else
            qCDebug(eas()).noquote()
                << QStringLiteral("Unknown contact detail type %1, %2").arg(type).arg(detail.key());
    }
}
