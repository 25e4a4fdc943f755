// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/contactscene.h"

#include "application/mapping/easdatabase.h"
#include "easitems/fields/contactsfields.h"
#include "simulator/itemshape.h"
#include "simulator/wbxmlcodec.h"
#include "storages/contacts/contactreader.h"
#include "storages/contacts/contactstorecontext.h"
#include "support/testpictures.h"

#include <QDir>

QTCONTACTS_USE_NAMESPACE
using Simulator::Contact;

ContactScene::ContactScene(const QString &version)
    : mBed({ version }, SyncTestBed::everyService())
{
    if (!mBed.isReady())
        qFatal("no engine");
}

ContactSides::ContactSides(ContactFixture &store, Simulator::Mailbox &mailbox, EasAccountId accountId)
    : mStore(store)
    , mMailbox(mailbox)
    , mAccountId(accountId)
{
}

QStringList ContactSides::pictures() const
{
    QStringList files = QDir(QDir::homePath() + QStringLiteral("/.avatars/account-%1").arg(mAccountId))
                            .entryList(QDir::Files);
    files.sort();
    return files;
}

Contact ContactSides::onWire(const QContact &contact) const
{
    ContactStoreContext context;
    context.manager = &mStore.manager();
    context.accountId = mAccountId;
    const EasContactsItem item = ContactReader(context).convertContact(contact);
    WbxmlEncoder encoder;
    encoder.appendElement(Wbxml::AirSync::ApplicationData, true);
    ContactsFields::itemFields().send(item, encoder, ExchangeActiveSync::ProtocolVersion141);
    const Simulator::WbxmlCodec::Decoded decoded = Simulator::WbxmlCodec::decode(encoder.encoded());
    Simulator::UploadShape shape;
    shape.version = 0x1401;
    const Simulator::ItemPtr uploaded = Simulator::ContactItem::fromUpload(decoded.root, shape);
    if (!uploaded)
        qWarning("the contact cannot be uploaded: %s", qPrintable(decoded.error));
    return uploaded ? std::static_pointer_cast<const Simulator::ContactItem>(uploaded)->value() : Contact();
}

QStringList ContactSides::differences(
    const QMap<QString, QString> &mapping, const QContactCollectionId &collection)
{
    QStringList found;
    QSet<QContactId> seen;
    const QString folder = mMailbox.folderOfType(Simulator::ContactsFolder).id;
    for (const Simulator::ItemEntry &entry : mMailbox.items(folder)) {
        const QContactId id = QContactId::fromString(mapping.value(entry.serverId));
        const QContact contact = mStore.manager().contact(id);
        if (contact.id().isNull()) {
            found.append(QLatin1String("only on the server: ") + entry.serverId);
            continue;
        }
        seen.insert(id);
        const QStringList server = lines(*mMailbox.value<Simulator::ContactItem>(entry.serverId));
        const QStringList device = lines(onWire(contact));
        for (const QString &line : server) {
            if (!device.contains(line))
                found.append(entry.serverId + QLatin1String(" server: ") + line.left(100));
        }
        for (const QString &line : device) {
            if (!server.contains(line))
                found.append(entry.serverId + QLatin1String(" device: ") + line.left(100));
        }
    }
    for (const QContact &contact : mStore.contacts(collection)) {
        if (!seen.contains(contact.id()))
            found.append(QLatin1String("only on the device: ") + ContactFixture::name(contact));
    }
    return found;
}

Contact ContactSides::full(int number)
{
    Contact contact;
    for (const QString &field : Contact::textFields()) {
        // Servers send these and do not take them from clients.
        if (field != QLatin1String("Alias") && field != QLatin1String("WeightedRank"))
            contact.setText(field, QStringLiteral("%1 %2").arg(field).arg(number));
    }
    for (const char *field : { "Email1Address", "Email2Address", "Email3Address" })
        contact.setText(
            QLatin1String(field), QStringLiteral("%1.%2@example.org").arg(QLatin1String(field)).arg(number));
    contact.setText(QStringLiteral("FirstName"), QStringLiteral("First %1").arg(number));
    contact.setDate(QStringLiteral("Birthday"), QDate(1980, 5, 1 + number));
    contact.setDate(QStringLiteral("Anniversary"), QDate(2004, 2, 10 + number));
    contact.setCategories({ QStringLiteral("Friends"), QStringLiteral("Nr %1").arg(number) });
    contact.setChildren({ QStringLiteral("Ann"), QStringLiteral("Bo") });
    contact.setPicture(TestPictures::png(10 + number));
    contact.setNote(QStringLiteral("Note %1\nünïcödé").arg(number));
    return contact;
}

QStringList ContactSides::lines(const Contact &contact)
{
    QStringList list;
    for (auto it = contact.texts().cbegin(); it != contact.texts().cend(); ++it) {
        if (it.key() != QLatin1String("Alias") && it.key() != QLatin1String("WeightedRank"))
            list.append(it.key() + QLatin1Char('=') + it.value());
    }
    list.append(QLatin1String("Categories=") + contact.categories().join(QLatin1Char('|')));
    list.append(QLatin1String("Children=") + contact.children().join(QLatin1Char('|')));
    list.append(QLatin1String("Picture=") + QString::fromLatin1(contact.picture().toBase64()));
    list.append(QLatin1String("Note=") + contact.note());
    list.sort();
    return list;
}

QContactCollectionId ContactScene::collection(const QString &serverId)
{
    const QString wanted = serverId.isEmpty() ? mBed.contactsId() : serverId;
    const QString localId =
        EasDatabase::instance()->folderItemByServerId(mBed.accountId(), wanted)->localId();
    return QContactCollectionId::fromString(localId);
}

QList<QContact> ContactScene::deviceContacts()
{
    return mStore.contacts(collection());
}

QContact ContactScene::deviceContact(const QString &firstName)
{
    for (const QContact &contact : deviceContacts()) {
        if (ContactFixture::name(contact) == firstName)
            return contact;
    }
    return QContact();
}

QStringList ContactScene::serverNames()
{
    QStringList names;
    for (const Contact &contact : mBed.serverContacts())
        names.append(contact.text(QStringLiteral("FirstName")));
    names.sort();
    return names;
}

ContactSides ContactScene::sides()
{
    return ContactSides(mStore, mBed.mailbox(), mBed.accountId());
}

QStringList ContactScene::differences()
{
    return sides().differences(
        *EasDatabase::instance()->serverToLocalContactIds(mBed.accountId()), collection());
}

bool ContactScene::furtherSyncIsSilent()
{
    mBed.server().clearRequests();
    const QStringList before = pictures();
    if (mBed.sync() != 0)
        return false;
    bool silent = pictures() == before;
    for (const Simulator::RecordedRequest &request : mBed.server().requests(QStringLiteral("Sync"))) {
        for (const QString &xml : { request.document.toXml(), request.replyDocument.toXml() }) {
            if (xml.contains(QLatin1String("Commands")) || xml.contains(QLatin1String("Responses"))) {
                qWarning("%s", qPrintable(xml.left(3000)));
                silent = false;
            }
        }
    }
    return silent;
}
