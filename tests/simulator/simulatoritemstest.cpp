// SPDX-License-Identifier: LGPL-2.1-or-later
#include "samplemessages.h"
#include "simulatorclient.h"

#include "simulator/itemfetch.h"
#include "simulator/multipart.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

namespace {

QString operation(const QString &inner)
{
    return QStringLiteral("<ItemOperations xmlns='ItemOperations' xmlns:a='AirSync' xmlns:b='AirSyncBase' "
                          "xmlns:s='Search'><Fetch><Store>Mailbox</Store>%1</Fetch></ItemOperations>")
        .arg(inner);
}

QString byPlace(const QString &folder, const QString &id, const QString &options = QString())
{
    return operation(QStringLiteral("<a:CollectionId>%1</a:CollectionId><a:ServerId>%2</a:ServerId>%3")
                         .arg(folder, id, options));
}

QString byReference(const QString &reference, const QString &range = QString())
{
    const QString options =
        range.isEmpty() ? QString() : QStringLiteral("<Options><Range>%1</Range></Options>").arg(range);
    return operation(QStringLiteral("<b:FileReference>%1</b:FileReference>%2").arg(reference, options));
}

} // namespace

/** @short MoveItems, ItemOperations and GetAttachment. */
class SimulatorItemsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
        mInbox = mServer->mailbox().inboxId();
        mId = mServer->mailbox().deliver(mInbox, SampleMessages::nested());
    }

    void cleanup()
    {
        QCOMPARE(mServer->failures(), QStringList());
        mClient.reset();
        mServer.reset();
    }

    void movedItemsGetNewIdentifiers()
    {
        const QString other = mServer->mailbox().addFolder(QStringLiteral("Other"));
        const WbxmlNode reply = move(mId, mInbox, other);
        QCOMPARE(reply.text(QStringLiteral("SrcMsgId")), mId);
        QCOMPARE(reply.text(QStringLiteral("Status")), QStringLiteral("3"));
        const QString newId = reply.text(QStringLiteral("DstMsgId"));
        QVERIFY(newId != mId);
        QVERIFY(mServer->mailbox().item(newId));
        QVERIFY(!mServer->mailbox().item(mId));
    }

    void movesThatCannotBeHaveStatusesOfTheirOwn()
    {
        const QString other = mServer->mailbox().addFolder(QStringLiteral("Other"));
        QCOMPARE(
            move(QStringLiteral("9:9"), mInbox, other).text(QStringLiteral("Status")), QStringLiteral("1"));
        QCOMPARE(move(mId, other, mInbox).text(QStringLiteral("Status")), QStringLiteral("1"));
        QCOMPARE(move(mId, mInbox, QStringLiteral("99")).text(QStringLiteral("Status")), QStringLiteral("2"));
        QCOMPARE(move(mId, mInbox, mInbox).text(QStringLiteral("Status")), QStringLiteral("4"));
        mServer->overrideNext(QStringLiteral("MoveItems"), Override::itemStatus(7));
        QCOMPARE(move(mId, mInbox, other).text(QStringLiteral("Status")), QStringLiteral("7"));
        QVERIFY(mServer->mailbox().item(mId));
    }

    void anItemIsFetchedByItsPlaceOrItsLongId()
    {
        const WbxmlNode place = fetch(byPlace(mInbox, mId));
        QCOMPARE(place.text(QStringLiteral("Status")), QStringLiteral("1"));
        QCOMPARE(place.text(QStringLiteral("AirSync:Class")), QStringLiteral("Email"));
        QCOMPARE(place.text(QStringLiteral("Properties/Email:Subject")), QStringLiteral("RE: Übersicht €"));
        QVERIFY(
            place.text(QStringLiteral("Properties/AirSyncBase:Body/Data")).contains(QStringLiteral("Köln")));
        const WbxmlNode search = fetch(operation(QStringLiteral("<s:LongId>%1</s:LongId>").arg(longId(mId))));
        QCOMPARE(search.text(QStringLiteral("Search:LongId")), longId(mId));
        QCOMPARE(search.text(QStringLiteral("Properties/Email:Subject")), QStringLiteral("RE: Übersicht €"));
        QCOMPARE(fetch(byPlace(mInbox, QStringLiteral("1:99"))).text(QStringLiteral("Status")),
            QStringLiteral("6"));
    }

    void thePreferencesOfASyncHoldForLaterFetches()
    {
        mClient->firstKey(mInbox,
            QStringLiteral("<Options><b:BodyPreference><b:Type>1</b:Type>"
                           "<b:TruncationSize>4</b:TruncationSize></b:BodyPreference></Options>"));
        WbxmlNode body = fetch(byPlace(mInbox, mId)).at(QStringLiteral("Properties/AirSyncBase:Body"));
        QCOMPARE(body.text(QStringLiteral("Type")), QStringLiteral("1"));
        QCOMPARE(body.text(QStringLiteral("Truncated")), QStringLiteral("1"));
        body = fetch(
            byPlace(mInbox, mId,
                QStringLiteral("<Options><b:BodyPreference><b:Type>2</b:Type></b:BodyPreference></Options>")))
                   .at(QStringLiteral("Properties/AirSyncBase:Body"));
        QCOMPARE(body.text(QStringLiteral("Type")), QStringLiteral("2"));
        QVERIFY(!body.has(QStringLiteral("Truncated")));
        mClient->setDevice(QStringLiteral("device2"));
        body = fetch(byPlace(mInbox, mId)).at(QStringLiteral("Properties/AirSyncBase:Body"));
        QCOMPARE(body.text(QStringLiteral("Type")), QStringLiteral("2"));
    }

    void anAttachmentComesInBase64()
    {
        const WbxmlNode reply = fetch(byReference(reference(1)));
        QCOMPARE(reply.text(QStringLiteral("AirSyncBase:FileReference")), reference(1));
        const WbxmlNode properties = reply.at(QStringLiteral("Properties"));
        QCOMPARE(properties.text(QStringLiteral("AirSyncBase:ContentType")),
            QStringLiteral("application/octet-stream"));
        QCOMPARE(QByteArray::fromBase64(properties.text(QStringLiteral("Data")).toLatin1()),
            SampleMessages::attachment());
        QVERIFY(!properties.has(QStringLiteral("Range")));
        QCOMPARE(fetch(byReference(QStringLiteral("nonsense"))).text(QStringLiteral("Status")),
            QStringLiteral("15"));
    }

    void rangesCutTheAttachment_data()
    {
        QTest::addColumn<QString>("range");
        QTest::addColumn<QString>("given");
        QTest::addColumn<int>("status");
        QTest::newRow("the start") << "0-9"
                                   << "0-9" << 1;
        QTest::newRow("one byte") << "5-5"
                                  << "5-5" << 1;
        QTest::newRow("over the end") << "1000-5000"
                                      << "1000-1005" << 1;
        QTest::newRow("beyond the end") << "5000-6000"
                                        << "" << 8;
        QTest::newRow("backwards") << "9-0"
                                   << "" << 8;
    }

    void rangesCutTheAttachment()
    {
        QFETCH(QString, range);
        QFETCH(QString, given);
        QFETCH(int, status);
        const WbxmlNode reply = fetch(byReference(reference(1), range));
        QCOMPARE(reply.text(QStringLiteral("Status")).toInt(), status);
        QCOMPARE(reply.text(QStringLiteral("Properties/Range")), given);
        if (status != 1)
            return;
        const int first = given.section(QLatin1Char('-'), 0, 0).toInt();
        const int last = given.section(QLatin1Char('-'), 1).toInt();
        QCOMPARE(QByteArray::fromBase64(reply.text(QStringLiteral("Properties/Data")).toLatin1()),
            SampleMessages::attachment().mid(first, last - first + 1));
        QCOMPARE(reply.text(QStringLiteral("Properties/Total")).toInt(), SampleMessages::attachment().size());
    }

    void theMultipartFormKeepsTheBytesApart()
    {
        mClient->setHeader("MS-ASAcceptMultiPart", "T");
        const PlainReply reply = mClient->post(
            QStringLiteral("ItemOperations"), byReference(reference(1), QStringLiteral("10-19")));
        QCOMPARE(reply.header("Content-Type"), QByteArray("application/vnd.ms-sync.multipart"));
        const QVector<QByteArray> parts = Multipart::split(reply.body);
        QCOMPARE(parts.size(), 2);
        QCOMPARE(parts.at(1), SampleMessages::attachment().mid(10, 10));
        const WbxmlNode properties = reply.document.at(QStringLiteral("Response/Fetch/Properties"));
        QCOMPARE(properties.text(QStringLiteral("Part")), QStringLiteral("1"));
        QVERIFY(!properties.has(QStringLiteral("Data")));
        QCOMPARE(reply.body.left(4).toHex(), QByteArray("02000000"));
    }

    void bodiesGoIntoPartsAsWell()
    {
        mClient->setHeader("MS-ASAcceptMultiPart", "T");
        const PlainReply reply = mClient->post(QStringLiteral("ItemOperations"), byPlace(mInbox, mId));
        const WbxmlNode body =
            reply.document.at(QStringLiteral("Response/Fetch/Properties/AirSyncBase:Body"));
        QCOMPARE(body.text(QStringLiteral("ItemOperations:Part")), QStringLiteral("1"));
        QVERIFY(Multipart::split(reply.body).value(1).startsWith("<html>"));
    }

    void severalFetchesGetPartsInOrder()
    {
        mClient->setHeader("MS-ASAcceptMultiPart", "T");
        QString xml = byReference(reference(0));
        const QString second = byReference(reference(1))
                                   .section(QStringLiteral("<Fetch>"), 1)
                                   .section(QStringLiteral("</ItemOperations>"), 0, 0);
        xml.replace(QStringLiteral("</ItemOperations>"),
            QStringLiteral("<Fetch>") + second + QStringLiteral("</ItemOperations>"));
        const PlainReply reply = mClient->post(QStringLiteral("ItemOperations"), xml);
        const QVector<QByteArray> parts = Multipart::split(reply.body);
        QCOMPARE(parts.size(), 3);
        QVERIFY(parts.at(1).startsWith("\x89PNG"));
        QCOMPARE(parts.at(2), SampleMessages::attachment());
    }

    void aFolderCanBeEmptied()
    {
        const QString child = mServer->mailbox().addFolder(QStringLiteral("Child"), UserMailFolder, mInbox);
        const QString xml =
            QStringLiteral("<ItemOperations xmlns='ItemOperations' xmlns:a='AirSync'><EmptyFolderContents>"
                           "<a:CollectionId>%1</a:CollectionId>%2</EmptyFolderContents></ItemOperations>");
        mClient->post(QStringLiteral("ItemOperations"), xml.arg(mInbox, QString()));
        QCOMPARE(mServer->mailbox().itemCount(mInbox), 0);
        QVERIFY(!mServer->mailbox().folder(child).id.isEmpty());
        const PlainReply reply = mClient->post(QStringLiteral("ItemOperations"),
            xml.arg(mInbox, QStringLiteral("<Options><DeleteSubFolders/></Options>")));
        QCOMPARE(
            reply.document.text(QStringLiteral("Response/EmptyFolderContents/Status")), QStringLiteral("1"));
        QVERIFY(mServer->mailbox().folder(child).id.isEmpty());
    }

    void getAttachmentIsThereUpToTwelveOne()
    {
        const QString name = QString::fromLatin1(QUrl::toPercentEncoding(reference(1)));
        mClient->setQuery(QStringLiteral("&AttachmentName=") + name);
        mClient->setVersion(QStringLiteral("12.1"));
        const PlainReply reply = mClient->postBytes(QStringLiteral("GetAttachment"), QByteArray());
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.body, SampleMessages::attachment());
        QCOMPARE(reply.header("Content-Type"), QByteArray("application/octet-stream"));
        mClient->setVersion(QStringLiteral("14.0"));
        QCOMPARE(mClient->postBytes(QStringLiteral("GetAttachment"), QByteArray()).status, 501);
    }

private:
    QString reference(int attachment) const
    {
        return QString::fromLatin1(QUrl::toPercentEncoding(QStringLiteral("%1:%2").arg(mId).arg(attachment)));
    }

    WbxmlNode fetch(const QString &xml)
    {
        return mClient->post(QStringLiteral("ItemOperations"), xml)
            .document.at(QStringLiteral("Response/Fetch"));
    }

    WbxmlNode move(const QString &id, const QString &from, const QString &to)
    {
        const QString xml =
            QStringLiteral("<MoveItems xmlns='Move'><Move><SrcMsgId>%1</SrcMsgId><SrcFldId>%2</SrcFldId>"
                           "<DstFldId>%3</DstFldId></Move></MoveItems>")
                .arg(id, from, to);
        return mClient->post(QStringLiteral("MoveItems"), xml).document.at(QStringLiteral("Response"));
    }

    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
    QString mInbox;
    QString mId;
};

FENNEL_REGISTER_TEST(SimulatorItemsTest)
#include "simulatoritemstest.moc"
