// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/synccollection.h"
#include "protocol/elements/airsyncbasepreference.h"
#include "protocol/elements/airsyncoptions.h"
#include "protocol/elements/synccommandadd.h"
#include "protocol/elements/synccommandchange.h"
#include "protocol/elements/synccommanddelete.h"
#include "protocol/elements/synccommandfetch.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QPointer>
#include <QtTest>

using namespace Wbxml;
using namespace ExchangeActiveSync;

namespace {

const QList<ProtocolVersion> Versions { ProtocolVersion120, ProtocolVersion121, ProtocolVersion140,
    ProtocolVersion141, ProtocolVersion160, ProtocolVersion161 };

template <class Item> QString encoded(const Item &item, ProtocolVersion version)
{
    WbxmlEncoder encoder;
    WBXMLTreeNode *const root = encoder.appendElement(AirSync::Collections, true);
    item.encode(encoder, version);
    if (encoder.currentNode() != root)
        return QStringLiteral("the current node moved");
    const QString outline = WbxmlDocument::outline(encoder.encoded());
    if (outline == QLatin1String("Collections"))
        return {};
    return outline.mid(int(strlen("Collections(")), outline.size() - int(strlen("Collections()")));
}

QSharedPointer<AirSyncBasePreference> preference(uint token, EasBodyContainer::BodyType type)
{
    const auto preference = QSharedPointer<AirSyncBasePreference>::create(token);
    preference->setType(type);
    return preference;
}

SyncCollection continuing()
{
    SyncCollection collection;
    collection.setId(QStringLiteral("5"));
    collection.setSyncKey(QStringLiteral("7"));
    collection.setGetChanges(true);
    return collection;
}

} // namespace

class SyncCollectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anInitialSyncCarriesNothingButKeyFolderAndGetChanges()
    {
        SyncCollection collection;
        collection.setId(QStringLiteral("5"));
        collection.setSyncKey(QStringLiteral("0"));
        collection.setClass(QStringLiteral("Email"));
        collection.setDeletesAsMoves(false);
        collection.setConversationMode(true);
        collection.setWindowSize(10);
        collection.setOptions(new AirSyncOptions);
        collection.appendCommand(new SyncCommandDelete);
        for (const ProtocolVersion version : Versions) {
            const QString itemClass =
                version == ProtocolVersion120 ? QStringLiteral("Class=Email,") : QString();
            QCOMPARE(encoded(collection, version),
                QStringLiteral("Collection(SyncKey=0,CollectionId=5,%1GetChanges=0)").arg(itemClass));
        }
    }

    void anInitialSyncOfACalendarFolderHasNoOptions()
    {
        SyncCollection collection;
        collection.setId(QStringLiteral("8"));
        collection.setSyncKey(QStringLiteral("0"));
        QVERIFY(collection.deletesAsMoves());
        QCOMPARE(encoded(collection, ProtocolVersion141),
            QStringLiteral("Collection(SyncKey=0,CollectionId=8,GetChanges=0)"));
    }

    void aContinuingSyncCarriesItsFlags()
    {
        SyncCollection collection = continuing();
        QCOMPARE(encoded(collection, ProtocolVersion141),
            QStringLiteral("Collection(SyncKey=7,CollectionId=5,GetChanges=1)"));
        collection.setDeletesAsMoves(false);
        collection.setConversationMode(true);
        collection.setWindowSize(100);
        collection.setClass(QStringLiteral("Email"));
        QCOMPARE(encoded(collection, ProtocolVersion121),
            QStringLiteral("Collection(SyncKey=7,CollectionId=5,WindowSize=100,Class=Email,"
                           "DeletesAsMoves=0,GetChanges=1)"));
        QCOMPARE(encoded(collection, ProtocolVersion140),
            QStringLiteral("Collection(SyncKey=7,CollectionId=5,WindowSize=100,DeletesAsMoves=0,"
                           "GetChanges=1,ConversationMode)"));
        collection.setGetChanges(false);
        QVERIFY(encoded(collection, ProtocolVersion140).contains(QLatin1String("GetChanges=0")));
    }

    void mailOptionsOfVersion121KeepTheirOrder()
    {
        SyncCollection collection = continuing();
        auto *const options = new AirSyncOptions;
        options->setFilter(AirSyncOptions::FilterOneWeek);
        options->setMimeTruncation(AirSyncOptions::MimeTruncateAll);
        options->setMimeSupport(AirSyncOptions::MimeForSecureMessages);
        options->setConflicts(AirSyncOptions::ClientReplacesServer);
        options->setClass(QStringLiteral("Email"));
        options->setMaxItems(5);
        options->setRightsManagmentSupport(true);
        const auto text = preference(AirSyncBase::BodyPreference.token, EasBodyContainer::PlainTextBodyType);
        text->setPreview(100);
        options->appendBodyPreference(text);
        options->appendBodyPreference(
            preference(AirSyncBase::BodyPreference.token, EasBodyContainer::HTMLBodyType));
        options->appendBodyPartPreference(
            preference(AirSyncBase::BodyPartPreference.token, EasBodyContainer::HTMLBodyType));
        collection.setOptions(options);
        QCOMPARE(encoded(collection, ProtocolVersion121),
            QStringLiteral("Collection(SyncKey=7,CollectionId=5,GetChanges=1,Options(FilterType=3,"
                           "MIMETruncation=0,MIMESupport=1,Conflict=0,BodyPreference(Type=1),"
                           "BodyPreference(Type=2)))"));
        QCOMPARE(encoded(*collection.options(), ProtocolVersion141),
            QStringLiteral("Options(FilterType=3,MIMETruncation=0,MIMESupport=1,Class=Email,MaxItems=5,"
                           "Conflict=0,BodyPreference(Type=1,Preview=100),BodyPreference(Type=2),"
                           "BodyPartPreference(Type=2),RightsManagementSupport=1)"));
    }

    void optionsThatAreUnsetAreEmpty()
    {
        QCOMPARE(encoded(AirSyncOptions(), ProtocolVersion161), QStringLiteral("Options"));
    }

    void aPreferenceWritesWhatItsVersionKnows()
    {
        const auto text = preference(AirSyncBase::BodyPreference.token, EasBodyContainer::PlainTextBodyType);
        for (const ProtocolVersion version : Versions)
            QCOMPARE(encoded(*text, version), QStringLiteral("BodyPreference(Type=1)"));
        text->setAllOrNone(true);
        QCOMPARE(encoded(*text, ProtocolVersion161), QStringLiteral("BodyPreference(Type=1)"));
        text->setTruncationSize(0);
        QCOMPARE(encoded(*text, ProtocolVersion161),
            QStringLiteral("BodyPreference(Type=1,AllOrNone=1,TruncationSize=0)"));
        text->setAllOrNone(false);
        text->setPreview(255);
        QCOMPARE(encoded(*text, ProtocolVersion140),
            QStringLiteral("BodyPreference(Type=1,Preview=255,TruncationSize=0)"));
        QCOMPARE(
            encoded(*text, ProtocolVersion121), QStringLiteral("BodyPreference(Type=1,TruncationSize=0)"));
        text->setPreview(256);
        QCOMPARE(
            encoded(*text, ProtocolVersion140), QStringLiteral("BodyPreference(Type=1,TruncationSize=0)"));
    }

    void aPreferenceWithoutATypeIsNotWritten()
    {
        AirSyncBasePreference preference(AirSyncBase::BodyPreference.token);
        QVERIFY(preference.isEmpty());
        QVERIFY(encoded(preference, ProtocolVersion161).isEmpty());
        preference.setType(EasBodyContainer::BodyType(0));
        QVERIFY(preference.isEmpty());
    }

    void bodyPartsNeedVersion141()
    {
        const auto part = preference(AirSyncBase::BodyPartPreference.token, EasBodyContainer::HTMLBodyType);
        QVERIFY(encoded(*part, ProtocolVersion140).isEmpty());
        QCOMPARE(encoded(*part, ProtocolVersion141), QStringLiteral("BodyPartPreference(Type=2)"));
    }

    void commandsGoUpInOneElement()
    {
        SyncCollection collection = continuing();
        auto *const deletion = new SyncCommandDelete;
        deletion->setServerIds({ QStringLiteral("5:1"), QStringLiteral("5:2") });
        collection.appendCommand(deletion);
        auto *const fetch = new SyncCommandFetch;
        fetch->setServerIds({ QStringLiteral("5:3") });
        collection.appendCommands({ QSharedPointer<SyncCommandBase>(fetch) });
        QCOMPARE(encoded(collection, ProtocolVersion141),
            QStringLiteral("Collection(SyncKey=7,CollectionId=5,GetChanges=1,Commands("
                           "Delete(ServerId=5:1),Delete(ServerId=5:2),Fetch(ServerId=5:3)))"));
        QCOMPARE(collection.commands().size(), 2);
    }

    void aDeletionOfOccurrencesWritesNoPlainDelete()
    {
        SyncCommandDelete deletion;
        deletion.setInstanceIds({ { QStringLiteral("8:1"), QStringLiteral("20240501T100000Z") } });
        QCOMPARE(encoded(deletion, ProtocolVersion161),
            QStringLiteral("Delete(ServerId=8:1,InstanceId=20240501T100000Z)"));
    }

    void theTypesOfTheCommandsAreThoseOfTheirElements()
    {
        QCOMPARE(int(SyncCommandAdd().type()), 0);
        QCOMPARE(int(SyncCommandDelete().type()), 1);
        QCOMPARE(int(SyncCommandChange().type()), 2);
        QCOMPARE(int(SyncCommandFetch().type()), 3);
    }

    void aBasicCommandOfAnotherTypeIsLogged()
    {
        class Odd : public SyncCommandBasic
        {
        public:
            Type type() const override { return AddCommand; }
        };
        const LogCollector log;
        QVERIFY(encoded(Odd(), ProtocolVersion141).isEmpty());
        QVERIFY(log.contains(QtWarningMsg, { "Encoding is not implemented for type: ", "0" }));
    }

    void whatHasOnlyAVersionedFormLogsThatItHasNoOther()
    {
        const LogCollector log;
        WbxmlEncoder encoder;
        SyncCommandAdd().encode(encoder);
        QVERIFY(log.contains(QtCriticalMsg, { "No implementation" }));
        QVERIFY(encoder.encoded().isEmpty());
    }

    void aCopyHasItsOwnOptionsAndSharesTheCommands()
    {
        SyncCollection collection = continuing();
        QPointer<AirSyncOptions> options = new AirSyncOptions;
        options->setFilter(AirSyncOptions::FilterOneDay);
        collection.setOptions(options);
        collection.appendCommand(new SyncCommandDelete);
        SyncCollection copy = collection;
        QVERIFY(copy.options() != collection.options());
        options->setFilter(AirSyncOptions::NoFilter);
        QCOMPARE(copy.options()->filter(), AirSyncOptions::FilterOneDay);
        QCOMPARE(copy.commands(), collection.commands());
        QCOMPARE(copy.syncKey(), QStringLiteral("7"));

        collection.setOptions(new AirSyncOptions);
        QVERIFY(options.isNull());
        copy = SyncCollection();
        QVERIFY(copy.options() == nullptr);
        QVERIFY(copy.commands().isEmpty());
    }

    void collectionsAreEqualByTheirFolderAlone()
    {
        SyncCollection one = continuing();
        SyncCollection other;
        QVERIFY(one != other);
        other.setId(QStringLiteral("5"));
        QVERIFY(one == other);
    }

    void resultsGetTheirIdentifiers()
    {
        SyncCollection collection = continuing();
        collection.setQueryTime(100);
        collection.appendChangedEmails(EasEmailItem(), QStringLiteral("5:1"));
        QCOMPARE(collection.changedEmails().first().serverId(), QStringLiteral("5:1"));
        QCOMPARE(collection.changedEmails().first().collectionId(), QStringLiteral("5"));
        QCOMPARE(collection.changedEmails().first().changedFields(), (QList<uint> { 18, 13 }));
        collection.appendAddedCalendars(EasCalendarItem(), QStringLiteral("5:2"));
        QCOMPARE(collection.addedCalendarItems().first().createdTimestamp(), qint64(99));
        collection.clear();
        QVERIFY(collection.changedEmails().isEmpty());
        QVERIFY(collection.id().isEmpty());
        QVERIFY(collection.deletesAsMoves());
    }
};

FENNEL_REGISTER_TEST(SyncCollectionTest)
#include "synccollectiontest.moc"
