// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/contactactor.h"

#include "integration/dice.h"
#include "support/devicecontactfields.h"
#include "support/pimlisting.h"
#include "support/synctestbed.h"
#include "support/testpictures.h"

#include <QDir>
#include <QFile>

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactTag>

QTCONTACTS_USE_NAMESPACE
using Simulator::Contact;

namespace {

const QString firstName = QStringLiteral("FirstName");
/** Kinds of edits that are no field of the table; the fields follow. */
enum What { Removal, Categories, Picture, Note, Move, FirstField };

int someKind(Dice &dice)
{
    return dice.below(FirstField + DeviceContactField::all().size());
}

/** A text for a field, or that it goes. */
QString someText(const DeviceContactField &field, Dice &dice)
{
    return dice.oneIn(4) ? QString() : field.sample(dice.below(1000));
}

/** A birthday as a server can have it: the midnight of one zone or another. */
QString onServer(const DeviceContactField &field, const QString &text, Dice &dice)
{
    if (field.name != QLatin1String("Birthday") || text.isEmpty())
        return text;
    const QDateTime midnight(QDate::fromString(text, Qt::ISODate), QTime(0, 0), Qt::UTC);
    return midnight.addSecs((dice.below(20) - 9) * 3600).toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzzZ"));
}

QStringList someCategories(Dice &dice)
{
    static const QStringList all { QStringLiteral("Friends"), QStringLiteral("Work, abroad"),
        QStringLiteral("Ünïcode") };
    QStringList chosen;
    for (const QString &category : all) {
        if (dice.oneIn(2))
            chosen.append(category);
    }
    return chosen;
}

void setTags(QContact &contact, const QStringList &categories)
{
    for (QContactTag tag : contact.details<QContactTag>())
        contact.removeDetail(&tag);
    for (const QString &category : categories) {
        QContactTag tag;
        tag.setTag(category);
        contact.saveDetail(&tag);
    }
}

void setAvatar(QContact &contact, const QByteArray &picture, int number)
{
    QFile file(QDir::homePath() + QStringLiteral("/picture-%1.png").arg(number));
    if (!file.open(QIODevice::WriteOnly) || file.write(picture) != picture.size())
        qFatal("no picture");
    QContactAvatar avatar = contact.detail<QContactAvatar>();
    avatar.setImageUrl(QUrl::fromLocalFile(file.fileName()));
    contact.saveDetail(&avatar);
}

} // namespace

ContactActor::ContactActor(SyncTestBed &bed)
    : mBed(bed)
    , mFolders { bed.contactsId(),
        bed.mailbox().addFolder(
            QStringLiteral("Colleagues"), Simulator::UserContactsFolder, bed.contactsId()) }
{
}

QString ContactActor::newName()
{
    return QStringLiteral("contact %1").arg(++mCreated);
}

ItemActor::Edit ContactActor::createOnServer(Dice &dice)
{
    const QString name = newName();
    const Contact contact = Contact().setText(firstName, name).setCategories(someCategories(dice));
    mBed.mailbox().addItem(dice.pick(mFolders), Simulator::ContactItem::make(contact));
    return { name, QStringLiteral("made") };
}

ItemActor::Edit ContactActor::createOnDevice(Dice &dice)
{
    const auto collections = PimListing::collectionsOf(mStore.manager(), mBed.accountId());
    if (collections.isEmpty())
        return {};
    const QString name = newName();
    QContact contact = ContactFixture::named(name);
    contact.setCollectionId(collections.at(dice.below(collections.size())));
    setTags(contact, someCategories(dice));
    mStore.manager().saveContact(&contact);
    return { name, QStringLiteral("made") };
}

ItemActor::Edit ContactActor::editServer(Dice &dice, const QSet<QString> &delicate)
{
    const QString folder = dice.pick(mFolders);
    const auto items = mBed.mailbox().items(folder);
    if (items.isEmpty() || dice.oneIn(3))
        return createOnServer(dice);
    const QString id = items.at(dice.below(items.size())).serverId;
    const QString name = mBed.serverContact(id)->text(firstName);
    if (delicate.contains(name))
        return {};
    const int what = someKind(dice);
    if (what == Removal) {
        mBed.mailbox().remove(id);
        return { name, QStringLiteral("removed") };
    }
    if (what == Move) {
        const QString target = folder == mFolders.first() ? mFolders.last() : mFolders.first();
        mBed.mailbox().move(id, target);
        // An edit that the device makes meanwhile is one of a contact that is gone.
        return { name, QStringLiteral("moved"), true };
    }
    mBed.editContact(id, [&](Contact &contact) { changeOnServer(contact, what, dice); });
    return { name, QStringLiteral("changed (%1)").arg(what) };
}

void ContactActor::changeOnServer(Contact &contact, int what, Dice &dice)
{
    if (what == Categories) {
        contact.setCategories(someCategories(dice));
    } else if (what == Picture) {
        contact.setPicture(TestPictures::png(++mPictures % 250));
    } else if (what == Note) {
        contact.setNote(QStringLiteral("note s%1").arg(dice.below(1000)));
    } else {
        const DeviceContactField &field = DeviceContactField::all().at(what - FirstField);
        const QString text = someText(field, dice);
        contact.setText(field.name, onServer(field, text, dice));
    }
}

ItemActor::Edit ContactActor::editDevice(Dice &dice, const QSet<QString> &delicate)
{
    const QList<QContact> contacts = PimListing::contactsOf(mStore.manager(), mBed.accountId());
    if (contacts.isEmpty() || dice.oneIn(3))
        return createOnDevice(dice);
    QContact contact = contacts.at(dice.below(contacts.size()));
    const QString name = ContactFixture::name(contact);
    if (delicate.contains(name))
        return {};
    const int what = someKind(dice);
    if (what == Removal || what == Move) {
        mStore.manager().removeContact(contact.id());
        return { name, QStringLiteral("removed") };
    }
    changeOnDevice(contact, what, dice);
    mStore.manager().saveContact(&contact);
    return { name, QStringLiteral("changed (%1)").arg(what) };
}

void ContactActor::changeOnDevice(QContact &contact, int what, Dice &dice)
{
    if (what == Categories) {
        setTags(contact, someCategories(dice));
    } else if (what == Picture) {
        QContactAvatar known = contact.detail<QContactAvatar>();
        if (!known.isEmpty() && dice.oneIn(3)) {
            contact.removeDetail(&known);
        } else {
            ++mPictures;
            setAvatar(contact, TestPictures::png(mPictures % 250), mPictures);
        }
    } else if (what == Note) {
        QContactNote detail = contact.detail<QContactNote>();
        detail.setNote(QStringLiteral("note d%1").arg(dice.below(1000)));
        contact.saveDetail(&detail);
    } else {
        const DeviceContactField &field = DeviceContactField::all().at(what - FirstField);
        field.set(contact, someText(field, dice));
    }
}

ItemActor::State ContactActor::serverState()
{
    return PimListing::serverContacts(mBed.mailbox());
}

ItemActor::State ContactActor::deviceState()
{
    return PimListing::deviceContacts(mBed.accountId());
}
