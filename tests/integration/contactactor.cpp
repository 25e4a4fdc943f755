// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/contactactor.h"

#include "integration/dice.h"
#include "support/pimlisting.h"
#include "support/synctestbed.h"
#include "support/testpictures.h"

#include <QDir>
#include <QFile>

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactTag>

QTCONTACTS_USE_NAMESPACE
using Simulator::Contact;

namespace {

const QString firstName = QStringLiteral("FirstName");
const QString lastName = QStringLiteral("LastName");
const QString email = QStringLiteral("Email1Address");

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
{
}

QString ContactActor::newName()
{
    return QStringLiteral("contact %1").arg(++mCreated);
}

ItemActor::Edit ContactActor::createOnServer(Dice &dice)
{
    const QString name = newName();
    mBed.place(Contact().setText(firstName, name).setCategories(someCategories(dice)));
    return { name, QStringLiteral("made") };
}

ItemActor::Edit ContactActor::createOnDevice(Dice &dice)
{
    const QContactCollectionId collection = PimListing::collectionOf(mStore.manager(), mBed.accountId());
    if (collection.isNull())
        return {};
    const QString name = newName();
    QContact contact = ContactFixture::named(name);
    contact.setCollectionId(collection);
    setTags(contact, someCategories(dice));
    mStore.manager().saveContact(&contact);
    return { name, QStringLiteral("made") };
}

ItemActor::Edit ContactActor::editServer(Dice &dice, const QSet<QString> &delicate)
{
    const auto items = mBed.mailbox().items(mBed.contactsId());
    if (items.isEmpty() || dice.oneIn(3))
        return createOnServer(dice);
    const QString id = items.at(dice.below(items.size())).serverId;
    const QString name = mBed.serverContact(id)->text(firstName);
    if (delicate.contains(name))
        return {};
    const QString text = QStringLiteral("s%1").arg(dice.below(1000));
    const QStringList categories = someCategories(dice);
    const int what = dice.below(6);
    if (what == 0) {
        mBed.mailbox().remove(id);
        return { name, QStringLiteral("removed") };
    }
    mBed.editContact(id, [&](Contact &contact) {
        if (what == 1)
            contact.setText(lastName, text);
        else if (what == 2)
            contact.setText(email, text + QStringLiteral("@example.org"));
        else if (what == 3)
            contact.setCategories(categories);
        else if (what == 4)
            contact.setPicture(TestPictures::png(++mPictures % 250));
        else
            contact.setNote(QStringLiteral("note ") + text);
    });
    return { name, QStringLiteral("changed (%1, %2)").arg(what).arg(text) };
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
    const QString text = QStringLiteral("d%1").arg(dice.below(1000));
    const QStringList categories = someCategories(dice);
    const int what = dice.below(6);
    if (what == 0) {
        mStore.manager().removeContact(contact.id());
        return { name, QStringLiteral("removed") };
    }
    if (what == 1) {
        QContactName detail = contact.detail<QContactName>();
        detail.setLastName(text);
        contact.saveDetail(&detail);
    } else if (what == 2) {
        QContactEmailAddress detail = contact.detail<QContactEmailAddress>();
        detail.setEmailAddress(text + QStringLiteral("@example.org"));
        contact.saveDetail(&detail);
    } else if (what == 3) {
        setTags(contact, categories);
    } else if (what == 4) {
        QContactAvatar known = contact.detail<QContactAvatar>();
        if (!known.isEmpty() && dice.oneIn(3)) {
            contact.removeDetail(&known);
        } else {
            ++mPictures;
            setAvatar(contact, TestPictures::png(mPictures % 250), mPictures);
        }
    } else {
        QContactNote detail = contact.detail<QContactNote>();
        detail.setNote(QStringLiteral("note ") + text);
        contact.saveDetail(&detail);
    }
    mStore.manager().saveContact(&contact);
    return { name, QStringLiteral("changed (%1, %2)").arg(what).arg(text) };
}

ItemActor::State ContactActor::serverState()
{
    return PimListing::serverContacts(mBed.mailbox());
}

ItemActor::State ContactActor::deviceState()
{
    return PimListing::deviceContacts(mBed.accountId());
}
