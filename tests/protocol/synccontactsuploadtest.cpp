// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/fields/contactsfields.h"
#include "protocol/uploadscene.h"
#include "protocol/wbxml/wbxmlparserbase.h"
#include "support/testmain.h"

#include <QtTest>

#include "protocol/wbxml/wbxmlabi.h"

using namespace Wbxml;
using namespace ExchangeActiveSync;
using namespace UploadScene;

namespace {

/** The keys of the elements below ApplicationData, in the order of a document. */
class FieldOrder : public WbxmlParserBase
{
public:
    void onStartElement(uint page, uint token) override
    {
        WbxmlParserBase::onStartElement(page, token);
        if (mElementStack.size() == 4)
            keys.append(Wbxml::key(page, token));
    }

    void onContent(uint, uint, const QString &, const QByteArray &) override {}

    QList<uint> keys;
};

/** Every element of a contact that can go up, in the order of the published table. */
QList<uint> publishedOrder()
{
    QList<uint> keys;
    const auto append = [&keys](uint page, uint first, uint last) {
        for (uint token = first; token <= last; ++token)
            keys.append(Wbxml::key(page, token));
    };
    append(1, 5, 8);
    append(1, 12, 20);
    keys.append(Contacts::Categories);
    keys.append(Contacts::Children);
    append(1, 25, 58);
    append(1, 60, 60);
    append(12, 5, 14);
    keys.append(AirSyncBase::Body);
    return keys;
}

EasContactsItem fullContact()
{
    EasContactsItem contact;
    contact.setServerId(QStringLiteral("3:1"));
    contact.setLocalId(QStringLiteral("c1"));
    for (const auto &field : ContactsFields::itemFields().fields()) {
        if (field.take)
            field.take(contact, QString::number(field.tag.key()), {});
    }
    contact.setCategories({ QStringLiteral("Red"), QStringLiteral("Blue") });
    contact.setChildren({ QStringLiteral("Cid") });
    EasBodyContainer body;
    body.setType(EasBodyContainer::PlainTextBodyType);
    body.setEstimatedDataSize(4);
    body.setData(QStringLiteral("note"));
    body.setPreview(QStringLiteral("pre"));
    contact.setBody(body);
    return contact;
}

} // namespace

/** Contacts on their way to the server, at each version. */
class SyncContactsUploadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allFieldsGoUpInTheOrderOfThePublishedTable()
    {
        SyncCommandChange change;
        change.setContactItems({ fullContact() });
        for (const ProtocolVersion version : versions()) {
            FieldOrder order;
            order.parse(encoded(change, version));
            QVERIFY(order.ready());
            QCOMPARE(order.keys, publishedOrder());
        }
    }

    void eachFieldHasItsOwnValue()
    {
        SyncCommandChange change;
        change.setContactItems({ fullContact() });
        const QString outline = outlined(change, ProtocolVersion141);
        for (const uint key : publishedOrder()) {
            if (key == Contacts::Categories || key == Contacts::Children || key == AirSyncBase::Body)
                continue;
            const WBXMLTagEntry *const entry = WbxmlEncoder::tagEntry(key >> 8U, key & 0xFFU);
            QVERIFY(entry);
            const QString field = QStringLiteral("%1=%2").arg(QString::fromUtf8(entry->xmlName)).arg(key);
            QVERIFY2(outline.contains(field), qPrintable(field));
        }
        QVERIFY(
            outline.contains(QStringLiteral("Categories(Category=Red,Category=Blue),Children(Child=Cid),")));
    }

    void aNoteHasAPreviewFrom140On()
    {
        SyncCommandChange change;
        change.setContactItems({ fullContact() });
        for (const ProtocolVersion version : versions())
            QVERIFY(outlined(change, version)
                        .endsWith(version >= ProtocolVersion140
                                ? QStringLiteral("Body(Type=1,EstimatedDataSize=4,Data=note,Preview=pre))))")
                                : QStringLiteral("Body(Type=1,EstimatedDataSize=4,Data=note))))")));
    }

    void anEmptyContactIsAnEmptyElement()
    {
        EasContactsItem contact;
        contact.setServerId(QStringLiteral("3:1"));
        SyncCommandChange change;
        change.setContactItems({ contact });
        for (const ProtocolVersion version : versions())
            QCOMPARE(
                outlined(change, version), QStringLiteral("Commands(Change(ServerId=3:1,ApplicationData))"));
    }

    void aRemovedPictureIsAnEmptyElement()
    {
        EasContactsItem contact;
        contact.setServerId(QStringLiteral("3:1"));
        contact.setFileAs(QStringLiteral("file"));
        contact.appendChangedField(Contacts::Picture.key());
        SyncCommandChange change;
        change.setContactItems({ contact });
        for (const ProtocolVersion version : versions())
            QCOMPARE(outlined(change, version),
                QStringLiteral("Commands(Change(ServerId=3:1,ApplicationData(FileAs=file,Picture)))"));
    }

    void anAdditionHasAClassFrom140On()
    {
        EasContactsItem contact;
        contact.setLocalId(QStringLiteral("c1"));
        contact.setFileAs(QStringLiteral("file"));
        SyncCommandAdd add;
        add.setContactItems({ contact });
        for (const ProtocolVersion version : versions())
            QCOMPARE(outlined(add, version),
                QStringLiteral("Commands(Add(")
                    + (version >= ProtocolVersion140 ? QStringLiteral("Class=Contacts,") : QString())
                    + QStringLiteral("ClientId=c1,ApplicationData(FileAs=file)))"));
    }
};

FENNEL_REGISTER_TEST(SyncContactsUploadTest)
#include "synccontactsuploadtest.moc"
