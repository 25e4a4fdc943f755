// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactwriter.h"

#include "application/base/logging.h"
#include "storages/contacts/contactdates.h"
#include "storages/contacts/contactdetails.h"
#include "storages/contacts/contactphonenumbers.h"
#include "storages/contacts/contactservertexts.h"
#include "storages/contacts/contactstorecontext.h"

#include <qcontactstatusflags.h>

#include <QtContacts/QContactAnniversary>
#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactBirthday>
#include <QtContacts/QContactGuid>
#include <QtContacts/QContactPhoneNumber>
#include <QtContacts/QContactSyncTarget>
#include <QtContacts/QContactTag>

#include <QDateTime>

QTCONTACTS_USE_NAMESPACE

namespace {

void save(QContact &contact, QContactDetail detail, const char *failure, const QVariant &value)
{
    if (!contact.saveDetail(&detail, QContact::IgnoreAccessConstraints))
        qCWarning(eas()) << failure << value;
}

} // namespace

ContactWriter::ContactWriter(const ContactStoreContext &context)
    : mContext(context)
    , mAvatars(context.accountId)
{
}

QContact ContactWriter::prepareContact(EasContactsItem &item)
{
    QContact contact;
    QContactStatusFlags flags;
    QList<QUrl> oldAvatars;
    if (QContactId::fromString(item.localId()).isNull()) {
        flags.setFlag(QContactStatusFlags::IsAdded, true);
    } else {
        if (!loadContact(item, &contact))
            return QContact();
        oldAvatars = { contact.detail<QContactAvatar>().imageUrl(), item.avatarUrl() };
        const QList<QContactPhoneNumber> phoneNumbers = contact.details<QContactPhoneNumber>();
        contact.clearDetails();
        for (const QContactPhoneNumber &number : phoneNumbers)
            save(contact, number, "Failed restoring phone number: ", number.number());
        flags.setFlag(QContactStatusFlags::IsModified, true);
    }
    save(contact, flags, "Failed to save status flags ", flags.flagsValue());

    EasContactsItem plain = item;
    plain.setEmail1Address(getRawEmailAddress(item.email1Address()));
    plain.setEmail2Address(getRawEmailAddress(item.email2Address()));
    plain.setEmail3Address(getRawEmailAddress(item.email3Address()));
    saveOrigin(contact, plain);
    saveDates(contact, plain);
    saveShapes(contact, plain);
    saveTags(contact, plain);
    ContactServerTexts::save(contact, item);
    savePicture(contact, item, oldAvatars);
    ContactPhoneNumbers::easPhoneNumbersToContacts(contact, plain);
    return contact;
}

bool ContactWriter::loadContact(const EasContactsItem &item, QContact *contact)
{
    if (!mContext.manager) {
        qCCritical(eas()) << "manager is null";
        return false;
    }
    if (!mContext.read(QContactId::fromString(item.localId()), contact)) {
        mFailed = true;
        return false;
    }
    if (!contact->id().isNull())
        return true;
    qCWarning(eas()) << "contact does not exist, cannot prepare: " << item.serverId() << " -> "
                     << item.localId();
    return false;
}

void ContactWriter::saveOrigin(QContact &contact, const EasContactsItem &item) const
{
    QContactSyncTarget target;
    target.setSyncTarget(ContactStoreContext::applicationName());
    save(contact, target, "Failed to save sync target", target.syncTarget());
    QContactGuid guid;
    guid.setGuid(mContext.guid(item.serverId()));
    save(contact, guid, "Failed to save GUID", guid.guid());
}

void ContactWriter::saveDates(QContact &contact, const EasContactsItem &item) const
{
    const QDate anniversary = ContactDates::day(item.anniversary());
    if (anniversary.isValid()) {
        QContactAnniversary detail;
        detail.setOriginalDateTime(QDateTime(anniversary, QTime(0, 0)));
        detail.setSubType(QContactAnniversary::SubTypeWedding);
        save(contact, detail, "Failed to save anniversary ", item.anniversary());
    } else if (!item.anniversary().isEmpty()) {
        qCWarning(eas()) << "Failed to save anniversary " << item.anniversary();
    }
    const QDate birthday = ContactDates::day(item.birthday());
    if (birthday.isValid()) {
        QContactBirthday detail;
        detail.setDate(birthday);
        save(contact, detail, "Failed to save birthday ", item.birthday());
    } else if (!item.birthday().isEmpty()) {
        qCWarning(eas()) << "Failed to save birthday " << item.birthday();
    }
}

void ContactWriter::saveShapes(QContact &contact, const EasContactsItem &item) const
{
    for (const ContactDetailShape &shape : ContactDetails::shapes()) {
        if (!shape.isEmpty(item))
            save(contact, shape.toDetail(item), shape.failure, shape.fields.first().get(item));
    }
}

void ContactWriter::saveTags(QContact &contact, const EasContactsItem &item) const
{
    const QStringList categories = item.categories();
    for (const QString &category : categories) {
        QContactTag tag;
        tag.setTag(category);
        save(contact, tag, "Failed to save tag ", category);
    }
}

void ContactWriter::savePicture(QContact &contact, EasContactsItem &item, const QList<QUrl> &oldUrls)
{
    const QByteArray picture = item.picture().toLatin1();
    QUrl url;
    for (const QUrl &old : oldUrls) {
        if (url.isEmpty() && !picture.isEmpty() && ContactAvatars::isPictureOf(old, picture))
            url = old;
    }
    if (url.isEmpty() && !picture.isEmpty()) {
        url = mAvatars.saveAvatar(picture);
        if (!url.isEmpty())
            mCreated.append(url);
    }
    for (const QUrl &old : oldUrls) {
        if (!old.isEmpty() && old != url)
            mObsolete.append(old);
    }
    item.setAvatarUrl(url);
    if (url.isEmpty())
        return;
    QContactAvatar detail;
    detail.setImageUrl(url);
    save(contact, detail, "Failed to save contact avatar", url);
}

void ContactWriter::keepAvatars()
{
    mAvatars.removeAvatars(mObsolete);
    mObsolete.clear();
    mCreated.clear();
}

void ContactWriter::dropAvatars()
{
    mAvatars.removeAvatars(mCreated);
    mObsolete.clear();
    mCreated.clear();
}

QString ContactWriter::getRawEmailAddress(const QString &text)
{
    const int start = text.indexOf(QLatin1Char('<'));
    const int end = start < 0 ? -1 : text.indexOf(QLatin1Char('>'), start);
    return end < 0 ? text : text.mid(start + 1, end - start - 1);
}
