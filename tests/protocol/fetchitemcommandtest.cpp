// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/fetchitemcommand.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "protocol/base/protocolutils.h"
#include "protocol/getattachmentcommand.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/scriptedmanager.h"
#include "support/stubmailstorage.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QDataStream>
#include <QLoggingCategory>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSignalSpy>
#include <QUrlQuery>
#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = 1;

/** A reply that is there, with a content type; its body is handed over beside it. */
class ReplyWithType : public QNetworkReply
{
public:
    explicit ReplyWithType(const QString &contentType)
    {
        setHeader(QNetworkRequest::ContentTypeHeader, contentType);
    }

    void abort() override {}

protected:
    qint64 readData(char *, qint64) override { return -1; }
};

class OpenedFetch : public FetchItemCommand
{
public:
    OpenedFetch()
        : FetchItemCommand(Account, RequestManager::instance())
    {
        setStore(ProtocolUtils::StorageMailbox);
    }

    using FetchItemCommand::checkBound;
    using FetchItemCommand::commandName;
    using FetchItemCommand::handleDownloadProgress;
    using FetchItemCommand::logBody;
    using FetchItemCommand::prepareRequest;

    bool body(FakeAccount &account, QString *outline)
    {
        QByteArray bytes;
        const bool encoded = encodeBody(account, &bytes);
        *outline = WbxmlDocument::outline(bytes);
        return encoded;
    }

    bool read(const QByteArray &reply, const QString &contentType = ProtocolUtils::ContentTypeMultiPart)
    {
        ReplyWithType carrier(contentType);
        return parseReply(&carrier, reply);
    }
};

class OpenedGetAttachment : public GetAttachmentCommand
{
public:
    explicit OpenedGetAttachment(const QString &name)
        : GetAttachmentCommand(Account, name, RequestManager::instance())
    {
    }

    using GetAttachmentCommand::configureCommandSpecificQueryValues;
    using GetAttachmentCommand::encodeBody;
    using GetAttachmentCommand::handleDownloadProgress;
    using GetAttachmentCommand::parseReply;
    using GetAttachmentCommand::prepareRequest;
};

WbxmlNode fetchOf(const char *fileReference, const char *status)
{
    return node(ItemOperations::Fetch,
        { node(ItemOperations::Status, status), node(AirSyncBase::FileReference, fileReference),
            node(ItemOperations::Properties,
                { node(ItemOperations::Range, "0-3"), node(ItemOperations::Total, "9"),
                    node(AirSyncBase::ContentType, "image/png"), node(ItemOperations::Part, "1") }) });
}

QByteArray documentOf(const char *fileReference, const char *status = "1")
{
    return document(node(ItemOperations::ItemOperations,
        { node(ItemOperations::Status, "1"),
            node(ItemOperations::Response, { fetchOf(fileReference, status) }) }));
}

struct Place
{
    qint32 offset;
    qint32 length;
};

QByteArray frame(qint32 partsCount, const QVector<Place> &places, const QByteArray &parts)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << partsCount;
    for (const Place &place : places)
        stream << place.offset << place.length;
    return bytes + parts;
}

/** A well-formed reply of these pairs of document and data. */
QByteArray multipart(const QVector<QPair<QByteArray, QByteArray>> &pairs)
{
    QVector<Place> places;
    QByteArray parts;
    qint32 offset = 4 + 16 * pairs.size();
    for (const auto &pair : pairs) {
        for (const QByteArray &part : { pair.first, pair.second }) {
            places.append({ offset, part.size() });
            offset += part.size();
            parts += part;
        }
    }
    return frame(2 * pairs.size(), places, parts);
}

} // namespace

class FetchItemCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("Fennel.eas=true"));
        EasDatabase::initializeInstance(nullptr, nullptr, nullptr);
        mManager = ScriptedManager::install();
    }

    void cleanupTestCase()
    {
        ScriptedManager::uninstall();
        EasDatabase::releaseInstance();
        QLoggingCategory::setFilterRules(QString());
    }

    void init()
    {
        mLog.reset(new LogCollector);
        mAccount = mManager->addAccount(Account);
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersion141);
    }

    void cleanup()
    {
        mManager->storage->forget(Account);
        mLog.reset();
    }

    void aRangeIsWrittenIfItIsOne_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("range");
        QTest::newRow("unset") << -1 << -1 << QString();
        QTest::newRow("one byte") << 0 << 0 << "0-0";
        QTest::newRow("a chunk") << 65536 << 131071 << "65536-131071";
        QTest::newRow("backwards") << 5 << 4 << QString();
        QTest::newRow("before the start") << -1 << 4 << QString();
    }

    void aRangeIsWrittenIfItIsOne()
    {
        QFETCH(int, start);
        QFETCH(int, end);
        QFETCH(QString, range);
        OpenedFetch command;
        command.setFileReference(QStringLiteral("ref"));
        command.setRange(start, end);
        QCOMPARE(command.rangeString(), range);
        QString body;
        QVERIFY(command.body(*mAccount, &body));
        const QString options = range.isEmpty() ? QString() : QStringLiteral(",Options(Range=%1)").arg(range);
        QCOMPARE(
            body, QStringLiteral("ItemOperations(Fetch(Store=Mailbox,FileReference=ref%1))").arg(options));
    }

    void aMessageWhoseRowCannotBeReadIsNotAskedForAsASearchResult()
    {
        const auto storage = QSharedPointer<StubMailStorage>::create();
        storage->serverUids = { { 1, QStringLiteral("5:1") } };
        mAccount->mails = storage;
        OpenedFetch command;
        command.setLocalIds({ 1 });
        QString body;
        const HiddenTable hidden("emails");
        QVERIFY(!command.body(*mAccount, &body));
    }

    void messagesAreAskedForByTheirFolderOrAsSearchResults()
    {
        EasEmailItem known;
        known.setServerId(QStringLiteral("5:1"));
        known.setCollectionId(QStringLiteral("5"));
        known.setLocalId(QStringLiteral("1"));
        QVERIFY(EasDatabase::instance()->addEmailItems(Account, { known }));
        const auto storage = QSharedPointer<StubMailStorage>::create();
        storage->serverUids = { { 1, QStringLiteral("5:1") }, { 2, QStringLiteral("long") } };
        mAccount->mails = storage;
        OpenedFetch command;
        command.setLocalIds({ 1, 2 });
        QString body;
        QVERIFY(command.body(*mAccount, &body));
        QCOMPARE(body,
            QStringLiteral(
                "ItemOperations(Fetch(Store=Mailbox,CollectionId=5,ServerId=5:1,"
                "Options(MIMESupport=1)),Fetch(Store=Mailbox,LongId=long,Options(MIMESupport=1)))"));
        QCOMPARE(command.commandName(), QStringLiteral("ItemOperations"));
        QCOMPARE(command.getLocalIdByLongId(QStringLiteral("long")), quint64(2));
        QCOMPARE(command.getLocalIdByLongId(QStringLiteral("other")), quint64(0));
    }

    void messagesNeedAMailStore()
    {
        OpenedFetch command;
        command.setLocalIds({ 1 });
        QString body;
        QVERIFY(!command.body(*mAccount, &body));
        QVERIFY(mLog->contains(QStringLiteral("MailStorage is null")));
    }

    void aVersionBelow120IsRefused()
    {
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersionUnknown);
        OpenedFetch command;
        command.setFileReference(QStringLiteral("ref"));
        QString body;
        QVERIFY(!command.body(*mAccount, &body));
        QVERIFY(mLog->contains(QStringLiteral("Fetch is not supported on protocols < 12.0")));
    }

    void onlyTheMultipartFormAsksForIt()
    {
        OpenedFetch command;
        QNetworkRequest single;
        command.prepareRequest(single);
        QCOMPARE(single.rawHeader("Connection"), QByteArray("Keep-Alive"));
        QVERIFY(!single.hasRawHeader("MS-ASAcceptMultiPart"));
        command.setAcceptMultipart(true);
        QNetworkRequest multiple;
        command.prepareRequest(multiple);
        QCOMPARE(multiple.rawHeader("MS-ASAcceptMultiPart"), QByteArray("T"));
    }

    void progressIsPassedOn()
    {
        OpenedFetch command;
        QSignalSpy progress(&command, &FetchItemCommand::downloadProgress);
        command.handleDownloadProgress(3, 9);
        QCOMPARE(progress.size(), 1);
        QCOMPARE(progress.first().first().toLongLong(), 3LL);
        QVERIFY(mLog->contains(QtDebugMsg, { "Download item:", "3", "9" }));
    }

    void theSingleFormGivesItems()
    {
        OpenedFetch command;
        QVERIFY(command.read(documentOf("ref"), ProtocolUtils::ContentTypeWbxml));
        QCOMPARE(command.status(), 1);
        QCOMPARE(command.fetchItems().size(), 1);
        QCOMPARE(command.fetchItems().first().fileReference(), QStringLiteral("ref"));
        QVERIFY(mLog->contains(QStringLiteral("Treating response as a single response")));
    }

    void aSingleFormThatCannotBeReadIsAFailure()
    {
        OpenedFetch command;
        QVERIFY(!command.read("<html>", ProtocolUtils::ContentTypeWbxml));
        QVERIFY(mLog->contains(QStringLiteral("Parser not ready, failed to parse response")));
        QVERIFY(!command.read({}, ProtocolUtils::ContentTypeWbxml));
    }

    void theMultipartFormGivesTheData()
    {
        OpenedFetch command;
        expectPart(command);
        QVERIFY(command.read(multipart({ { documentOf("ref"), "raw" } })));
        QCOMPARE(command.status(), 1);
        QCOMPARE(command.partContentType(), QStringLiteral("image/png"));
        QCOMPARE(command.totalSize(), 9);
        QCOMPARE(command.partData(), QByteArray("raw"));
    }

    void aReplyInPartsIsLoggedAsItsDocuments()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("Fennel.*.debug=true"));
        OpenedFetch command;
        expectPart(command);
        const QByteArray reply = multipart({ { documentOf("ref"), "raw" } });
        command.logBody(reply);
        QCOMPARE(mLog->count(QStringLiteral("FileReference")), 0);
        QVERIFY(command.read(reply));
        QVERIFY(mLog->contains(QStringLiteral("FileReference")));
        QVERIFY(!mLog->contains(QStringLiteral("Malformed")));
        QVERIFY(!mLog->contains(QStringLiteral("Bytes after the end")));
    }

    void theContentTypeMayHaveParameters()
    {
        OpenedFetch command;
        expectPart(command);
        QVERIFY(command.read(multipart({ { documentOf("ref"), "raw" } }),
            QStringLiteral("Application/vnd.ms-sync.multipart; charset=utf-8")));
        QCOMPARE(command.partData(), QByteArray("raw"));
    }

    void aSecondPairMatchesIfTheFirstIsOfAnotherFile()
    {
        OpenedFetch command;
        expectPart(command);
        QVERIFY(command.read(multipart({ { documentOf("other"), "no" }, { documentOf("ref"), "yes" } })));
        QCOMPARE(command.partData(), QByteArray("yes"));
    }

    void aLastPairWithoutALengthTakesTheRest()
    {
        const QByteArray meta = documentOf("ref");
        OpenedFetch command;
        expectPart(command);
        QVERIFY(
            command.read(frame(2, { { 20, meta.size() }, { 20 + meta.size(), 0 } }, meta + "all the rest")));
        QCOMPARE(command.partData(), QByteArray("all the rest"));
        QVERIFY(mLog->contains(
            QtWarningMsg, { "length2 is 0 in a last part. New length2 value calculated:", "12" }));
    }

    void framesThatAreNotInOrderAreRefused_data()
    {
        const QByteArray meta = documentOf("ref");
        const qint32 behind = 36 + meta.size();
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QStringList>("logged");
        const auto row = [](const char *name, const QByteArray &reply, const QStringList &logged) {
            QTest::newRow(name) << reply << logged;
        };
        row("no parts", frame(0, {}, {}), { "The part was not found in multipart response" });
        row("a negative number of parts", frame(-2, {}, {}),
            { "The part was not found in multipart response" });
        row("three parts", frame(3, { { 20, 1 }, { 21, 1 } }, "xx"),
            { "The parts should be in pairs:", "3" });
        row("no whole number", "abc", { "The data size is less than required response header" });
        row("nothing at all", {}, { "The data size is less than required response header" });
        row("no offset", frame(2, {}, {}), { "Failed to read offset of first item in pair" });
        row("no length", frame(2, {}, QByteArray("\4\0\0\0", 4)),
            { "Failed to read length of first item in pair" });
        row("no second offset", frame(2, { { 4, 1 } }, {}),
            { "Failed to read offset of second item in pair" });
        row("no second length", frame(2, { { 4, 1 } }, QByteArray("\4\0\0\0", 4)),
            { "Failed to read length of second item in pair" });
        row("a document past the end", frame(2, { { 1000, 1 }, { 20, 1 } }, "x"),
            { "The meta data at", "0", "is out of data:", "dataSize", "21", "offset1", "1000", "length1",
                "1" });
        row("a document of no length", frame(2, { { 20, 0 }, { 20, 1 } }, "x"),
            { "The meta data at", "0", "is out of data:", "length1", "0" });
        row("a document before the start", frame(2, { { -1, 1 }, { 20, 1 } }, "x"),
            { "The meta data at", "0", "is out of data:", "offset1", "-1" });
        row("a document whose end overflows", frame(2, { { 0x7FFFFFFF, 0x7FFFFFFF }, { 20, 1 } }, "x"),
            { "The meta data at", "0", "is out of data:" });
        row("data past the end", frame(2, { { 20, meta.size() }, { 20, 1000 } }, meta),
            { "The meta data at", "1", "is out of data.", "dataSize", "offset2", "20", "length2", "1000" });
        row("data before the start, without a length",
            frame(2, { { 20, meta.size() }, { std::numeric_limits<qint32>::min(), 0 } }, meta),
            { "The meta data at", "1", "is out of data." });
        row("a pair before the last without a length",
            frame(4, { { 36, meta.size() }, { behind, 0 }, { 36, meta.size() }, { behind, 1 } }, meta + "x"),
            { "The meta data at", "1", "is out of data.", "length2", "0" });
        row("documents that lie on one another",
            frame(4, { { 36, meta.size() }, { behind, 1 }, { 36, meta.size() }, { behind, 1 } },
                documentOf("xxx") + "x"),
            { "The meta data at", "2", "is out of data:" });
        row("a part that is no document", frame(2, { { 20, 1 }, { 20, 1 } }, "x"),
            { "The part was not found in multipart response" });
        row("a file that was not asked for", multipart({ { documentOf("other"), "raw" } }),
            { "The part was not found in multipart response" });
    }

    void framesThatAreNotInOrderAreRefused()
    {
        QFETCH(QByteArray, reply);
        QFETCH(QStringList, logged);
        OpenedFetch command;
        expectPart(command);
        QVERIFY(!command.read(reply));
        QVERIFY(command.partData().isEmpty());
        QVERIFY(command.partContentType().isEmpty());
        const auto holds = [&](const QString &text) {
            int from = 0;
            for (const QString &piece : logged) {
                from = text.indexOf(piece, from);
                if (from < 0)
                    return false;
                from += piece.size();
            }
            return true;
        };
        const QStringList texts = mLog->texts();
        QVERIFY2(std::any_of(texts.cbegin(), texts.cend(), holds), qPrintable(texts.join(QLatin1Char('\n'))));
        QVERIFY(mLog->contains(QtDebugMsg, { "Processed multi part response; succeeded?", "false" }));
    }

    void aFileThatIsRefusedInPartsKeepsItsStatus()
    {
        OpenedFetch command;
        expectPart(command);
        QVERIFY(command.read(multipart({ { documentOf("ref", "15"), "what lies there" } })));
        QCOMPARE(command.status(), 15);
        QVERIFY(command.partData().isEmpty());
    }

    void aFileWithoutBytesIsAnEmptyPart()
    {
        OpenedFetch command;
        expectPart(command);
        QVERIFY(command.read(multipart({ { documentOf("ref"), "" } })));
        QVERIFY(command.hasPart());
        QVERIFY(command.partData().isEmpty());
        QCOMPARE(command.partRange(), QStringLiteral("0-3"));
    }

    void theSizeOfTheWholeIsUnknownIfItIsNotThere()
    {
        const WbxmlNode fetch = node(ItemOperations::Fetch,
            { node(ItemOperations::Status, "1"), node(AirSyncBase::FileReference, "ref"),
                node(ItemOperations::Properties, { node(ItemOperations::Part, "1") }) });
        const QByteArray description = document(node(ItemOperations::ItemOperations,
            { node(ItemOperations::Status, "1"), node(ItemOperations::Response, { fetch }) }));
        OpenedFetch command;
        expectPart(command);
        QVERIFY(command.read(multipart({ { description, "raw" } })));
        QCOMPARE(command.totalSize(), -1);
        QVERIFY(command.partRange().isEmpty());
    }

    void everyTruncatedFrameIsRefusedOrShort()
    {
        const QByteArray whole = multipart({ { documentOf("ref"), "raw" } });
        for (int size = 0; size < whole.size(); ++size) {
            OpenedFetch command;
            expectPart(command);
            QVERIFY2(!command.read(whole.left(size)), qPrintable(QString::number(size)));
        }
    }

    void anErrorInTheSingleFormKeepsItsStatus()
    {
        OpenedFetch command;
        expectPart(command);
        QVERIFY(command.read(
            document(node(ItemOperations::ItemOperations, { node(ItemOperations::Status, "111") })),
            ProtocolUtils::ContentTypeWbxml));
        QCOMPARE(command.status(), 111);
        QVERIFY(command.partData().isEmpty());
        QCOMPARE(command.totalSize(), -1);
    }

    void aMultipartReplyUnderTheWrongTypeIsStillRead()
    {
        OpenedFetch command;
        expectPart(command);
        QVERIFY(command.read(multipart({ { documentOf("ref"), "raw" } }), ProtocolUtils::ContentTypeWbxml));
        QCOMPARE(command.partData(), QByteArray("raw"));
        QVERIFY(mLog->contains(QtWarningMsg,
            { "We failed to handle the response as a webxml response, so trying to handle it as a multipart "
              "response" }));
    }

    void anyOtherTypeIsRefused()
    {
        OpenedFetch command;
        expectPart(command);
        QVERIFY(!command.read(multipart({ { documentOf("ref"), "raw" } }), QStringLiteral("text/html")));
        QVERIFY(mLog->contains(QtCriticalMsg, { "Invalid content type for multipart response" }));
    }

    void boundsHoldForAnyNumbers()
    {
        QVERIFY(OpenedFetch::checkBound(10, 0, 10));
        QVERIFY(!OpenedFetch::checkBound(10, 0, 11));
        QVERIFY(!OpenedFetch::checkBound(10, 0, 0));
        QVERIFY(!OpenedFetch::checkBound(10, -1, 5));
        QVERIFY(!OpenedFetch::checkBound(10, 10, 1));
        QVERIFY(!OpenedFetch::checkBound(10, 0x7FFFFFFF, 0x7FFFFFFF));
    }

    void anAttachmentByNameIsForTheOldVersions()
    {
        OpenedGetAttachment command(QStringLiteral("5:1&a=b#c"));
        QByteArray body;
        QVERIFY(!command.encodeBody(*mAccount, &body));
        QVERIFY(mLog->contains(QStringLiteral("This command is not supported on > 12.1 protocols")));
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersion121);
        QVERIFY(command.encodeBody(*mAccount, &body));
        QVERIFY(body.isEmpty());

        QUrlQuery query;
        query.addQueryItem(QStringLiteral("Cmd"), QStringLiteral("GetAttachment"));
        command.configureCommandSpecificQueryValues(query);
        QCOMPARE(query.queryItemValue(QStringLiteral("AttachmentName"), QUrl::FullyDecoded),
            QStringLiteral("5:1&a=b#c"));
        QCOMPARE(query.queryItems().size(), 2);
        QUrl url;
        url.setQuery(query);
        QVERIFY(!url.hasFragment());

        QNetworkRequest request;
        command.prepareRequest(request);
        QCOMPARE(
            request.header(QNetworkRequest::ContentTypeHeader).toString(), QStringLiteral("message/rfc822"));
    }

    void theWholeReplyIsTheAttachment()
    {
        OpenedGetAttachment command(QStringLiteral("name"));
        command.handleDownloadProgress(1, 3);
        QVERIFY(mLog->contains(QtDebugMsg, { "Download attachment:", "1", "3" }));
        const QByteArray bytes("\x00\x01\xFF", 3);
        QVERIFY(command.parseReply(nullptr, bytes));
        QCOMPARE(command.attachmentData(), bytes);
        QVERIFY(mLog->contains(QtDebugMsg, { "Attachment data size: ", "3" }));
    }

private:
    static void expectPart(OpenedFetch &command)
    {
        command.setFileReference(QStringLiteral("ref"));
        command.setAcceptMultipart(true);
    }

    ScriptedManager *mManager = nullptr;
    QScopedPointer<LogCollector> mLog;
    FakeAccount *mAccount = nullptr;
};

FENNEL_REGISTER_TEST(FetchItemCommandTest)
#include "fetchitemcommandtest.moc"
