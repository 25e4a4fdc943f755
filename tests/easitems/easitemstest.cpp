// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/easemailitem.h"
#include "easitems/easfolderitem.h"
#include "easitems/easgalitem.h"
#include "easitems/itemoperationsfetchitem.h"
#include "support/testmain.h"

#include <QtTest>

/** The base classes of the items, folders, and the small containers. */
class EasItemsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aChangedFieldIsEnteredOnce()
    {
        EasGeneralItem item;
        item.appendChangedField(0x215);
        item.appendChangedField(0x214);
        item.appendChangedField(0x215);
        QCOMPARE(item.changedFields(), (QList<uint> { 0x215, 0x214 }));
        item.clearChangedFields();
        QVERIFY(item.changedFields().isEmpty());
    }

    void clearEmptiesAnItemAndItsBases()
    {
        EasGeneralItem item;
        item.setServerId(QStringLiteral("1:2"));
        item.setLocalId(QStringLiteral("7"));
        item.setId(3);
        item.setLocalStorageAccountId(4);
        item.setCollectionId(QStringLiteral("1"));
        item.setLocalCollectionId(5);
        item.setLongId(QStringLiteral("long"));
        item.appendChangedField(13);
        item.clear();
        QVERIFY(item.serverId().isEmpty());
        QVERIFY(item.localId().isEmpty());
        QVERIFY(item.collectionId().isEmpty());
        QVERIFY(item.longId().isEmpty());
        QVERIFY(item.changedFields().isEmpty());
        QCOMPARE(item.id(), quint64(0));
        QCOMPARE(item.localStorageAccountId(), quint64(0));
        QCOMPARE(item.localCollectionId(), quint64(0));
    }

    void aContactOfTheAddressListClearsItsPicture()
    {
        EasGalItem item;
        QCOMPARE(item.pictureStatus(), 0);
        item.setPictureStatus(173);
        item.setFirstName(QStringLiteral("Ada"));
        const EasGalItem copy(item);
        item.clear();
        QCOMPARE(item.pictureStatus(), 0);
        QVERIFY(item.firstName().isEmpty());
        QCOMPARE(copy.pictureStatus(), 173);
    }

    void aCopyIsIndependent()
    {
        EasEmailItem item;
        item.setSubject(QStringLiteral("one"));
        const EasEmailItem copy = item;
        item.setSubject(QStringLiteral("two"));
        item.appendChangedField(0x214);
        QCOMPARE(copy.subject(), QStringLiteral("one"));
        QVERIFY(copy.changedFields().isEmpty());
    }

    void aNewMailHasTheDefaultsOfAnItemThatSaysNothing()
    {
        const EasEmailItem item;
        QVERIFY(item.read());
        QVERIFY(!item.isDraft());
        QVERIFY(!item.receivedAsBcc());
        QVERIFY(!item.hasAttachments());
        QCOMPARE(int(item.importance()), 1);
        QCOMPARE(int(item.lastVerbExecuted()), -1);
        QCOMPARE(int(item.nativeBodyType()), -1);
        QVERIFY(item.flag().isEmptyContainer());
        QCOMPARE(int(item.flag().status()), -1);
        QVERIFY(!item.meetingRequest().elementValid());
        QCOMPARE(item.meetingRequest().reminder(), -1);
        QCOMPARE(int(item.meetingRequest().instanceType()), -1);
        QCOMPARE(int(item.bodyPart().status()), 1);
        QCOMPARE(int(item.bodyPart().type()), 1);
        QVERIFY(item.body().isEmpty());
    }

    void clearMakesAFolderNew()
    {
        EasFolderItem folder;
        QCOMPARE(int(folder.type()), 18);
        QVERIFY(!folder.savedInStorage());
        folder.setServerId(QStringLiteral("1"));
        folder.setServerParentId(QStringLiteral("0"));
        folder.setLocalParentId(QStringLiteral("9"));
        folder.setDisplayName(QStringLiteral("Inbox"));
        folder.setSyncKey(QStringLiteral("5"));
        folder.setType(EasFolderItem::DefaultInboxFolder);
        folder.setSavedInStorage(true);
        folder.clear();
        QVERIFY(folder.serverId().isEmpty());
        QVERIFY(folder.serverParentId().isEmpty());
        QVERIFY(folder.localParentId().isEmpty());
        QVERIFY(folder.displayName().isEmpty());
        QVERIFY(folder.syncKey().isEmpty());
        QCOMPARE(int(folder.type()), 18);
        QVERIFY(!folder.savedInStorage());
    }

    void aFolderTypeTellsTheClass_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("expected");
        const QMap<int, QString> classes { { 1, "mail" }, { 2, "mail" }, { 3, "mail" }, { 4, "mail" },
            { 5, "mail" }, { 6, "mail" }, { 12, "mail" }, { 8, "calendar" }, { 13, "calendar" },
            { 9, "contacts" }, { 14, "contacts" } };
        for (int type = 0; type <= 19; ++type)
            QTest::newRow(qPrintable(QString::number(type))) << type << classes.value(type, "none");
    }

    void aFolderTypeTellsTheClass()
    {
        QFETCH(int, type);
        QFETCH(QString, expected);
        EasFolderItem folder;
        folder.setType(EasFolderItem::FolderType(type));
        QCOMPARE(folder.isEmail(), expected == QLatin1String("mail"));
        QCOMPARE(EasFolderItem::isEmailFolder(folder.type()), folder.isEmail());
        QCOMPARE(folder.isCalendar(), expected == QLatin1String("calendar"));
        QCOMPARE(folder.isContacts(), expected == QLatin1String("contacts"));
    }

    void aBodyIsEmptyUntilSomethingButThePreviewIsSet()
    {
        EasBodyContainer body;
        QVERIFY(body.isEmpty());
        body.setPreview(QStringLiteral("preview"));
        QVERIFY(body.isEmpty());
        const auto fills = [](auto set) {
            EasBodyContainer filled;
            set(filled);
            const bool isFilled = !filled.isEmpty();
            filled.clear();
            return isFilled && filled.isEmpty();
        };
        QVERIFY(fills([](EasBodyContainer &b) { b.setType(EasBodyContainer::PlainTextBodyType); }));
        QVERIFY(fills([](EasBodyContainer &b) { b.setData(QStringLiteral("text")); }));
        QVERIFY(fills([](EasBodyContainer &b) { b.setMime("mime"); }));
        QVERIFY(fills([](EasBodyContainer &b) { b.setEstimatedDataSize(1); }));
        QVERIFY(fills([](EasBodyContainer &b) { b.setPart(1); }));
        QVERIFY(fills([](EasBodyContainer &b) { b.setTruncated(true); }));
        QVERIFY(fills([](EasBodyContainer &b) { b.setSmartMimeData(true); }));
    }

    void aFetchedItemReachesThroughToItsMessage()
    {
        ItemOperationsFetchItem item;
        item.setBodyType(EasBodyContainer::HTMLBodyType);
        item.setBodyData(QStringLiteral("data"));
        item.setBodyPreview(QStringLiteral("preview"));
        item.setBodyDataSize(4);
        item.setBodyTruncated(true);
        item.setBodyPart(2);
        item.setBodyPartType(EasBodyContainer::PlainTextBodyType);
        item.setBodyPartData(QStringLiteral("part"));
        item.setBodyPartPreview(QStringLiteral("part preview"));
        item.setBodyPartDataSize(5);
        item.setBodyPartTruncated(true);
        item.setBodyPartStatus(EasBodyPartContainer::BodyPartStatusTooLong);
        EasAttachmentContainer attachment;
        attachment.setDisplayName(QStringLiteral("a.txt"));
        item.appendAttachment(attachment);

        const EasBodyContainer body = item.emailItem().body();
        QCOMPARE(int(body.type()), 2);
        QCOMPARE(body.data(), QStringLiteral("data"));
        QCOMPARE(body.preview(), QStringLiteral("preview"));
        QCOMPARE(body.estimatedDataSize(), 4);
        QVERIFY(body.truncated());
        QCOMPARE(body.part(), 2);
        const EasBodyPartContainer part = item.emailItem().bodyPart();
        QCOMPARE(int(part.type()), 1);
        QCOMPARE(part.data(), QStringLiteral("part"));
        QCOMPARE(part.preview(), QStringLiteral("part preview"));
        QCOMPARE(part.estimatedDataSize(), 5);
        QVERIFY(part.truncated());
        QCOMPARE(int(part.status()), 176);
        QCOMPARE(item.emailItem().attachments().first().displayName(), QStringLiteral("a.txt"));
    }

    void theClassOfAFetchedItemIsReadFromItsName()
    {
        ItemOperationsFetchItem item;
        QCOMPARE(item.getClass(), ItemsCommon::None);
        item.setClass(QStringLiteral("Email"));
        QCOMPARE(item.getClass(), ItemsCommon::Email);
        QCOMPARE(item.getClassStr(), QStringLiteral("Email"));
        item.setClass(QStringLiteral("Contacts"));
        QCOMPARE(item.getClass(), ItemsCommon::Contact);
        item.setClass(QStringLiteral("Calendar"));
        QCOMPARE(item.getClass(), ItemsCommon::Calendar);
        item.setClass(QStringLiteral("Notes"));
        QCOMPARE(item.getClass(), ItemsCommon::None);
    }
};

FENNEL_REGISTER_TEST(EasItemsTest)
#include "easitemstest.moc"
