// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchfilerequest.h"

#include "protocol/base/protocolutils.h"
#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QSignalSpy>
#include <QtEndian>
#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr uint PartSize = 4;

/** A request for a file that keeps what it was told to store. */
class FileRequest : public FetchFileRequest
{
public:
    explicit FileRequest(uint partSize = PartSize)
        : FetchFileRequest(RequestBed::Account, RequestBed::Id)
    {
        setPartSize(partSize);
    }

    QString reference = QStringLiteral("ref");
    int estimatedBytes = 9;
    bool isWritable = true;
    int stored = 0;
    QByteArray file;
    QString mediaType;
    QString name;

protected:
    bool findFile(EasAccount &, QString *fileReference, int *estimatedSize) override
    {
        *fileReference = reference;
        *estimatedSize = estimatedBytes;
        return !reference.isEmpty();
    }
    bool storeFile(
        EasAccount &, const QString &type, const FetchedOctets &octets, const QString &fileName) override
    {
        ++stored;
        file = octets.all();
        mediaType = type;
        name = fileName;
        return isWritable;
    }
};

struct Range
{
    const char *range = nullptr;
    const char *total = nullptr;
};

WbxmlNode fetchNode(const char *status, const Range &range, const QByteArray &base64)
{
    QVector<WbxmlNode> properties;
    if (range.range)
        properties.append(node(ItemOperations::Range, range.range));
    if (range.total)
        properties.append(node(ItemOperations::Total, range.total));
    properties.append(node(AirSyncBase::ContentType, "image/png; name=a.png"));
    properties.append(
        base64.isNull() ? node(ItemOperations::Part, "1") : node(ItemOperations::Data, base64.constData()));
    return node(ItemOperations::Fetch,
        { node(ItemOperations::Status, status), node(AirSyncBase::FileReference, "ref"),
            node(ItemOperations::Properties, properties) });
}

QByteArray reply(const WbxmlNode &fetch)
{
    return document(node(ItemOperations::ItemOperations,
        { node(ItemOperations::Status, "1"), node(ItemOperations::Response, { fetch }) }));
}

/** The form with the data inside of the document. */
QByteArray single(const QByteArray &data, const Range &range = Range())
{
    return reply(fetchNode("1", range, data.isEmpty() ? QByteArray("") : data.toBase64()));
}

QByteArray refusal(const char *status)
{
    return reply(node(ItemOperations::Fetch,
        { node(ItemOperations::Status, status), node(AirSyncBase::FileReference, "ref") }));
}

ScriptedAnswer inParts(const QByteArray &data, const Range &range = Range())
{
    const QByteArray description = reply(fetchNode("1", range, QByteArray()));
    const qint32 numbers[] = { 2, 20, description.size(), 20 + description.size(), data.size() };
    ScriptedAnswer answer;
    answer.headers = { { "Content-Type", "application/vnd.ms-sync.multipart" } };
    for (const qint32 number : numbers) {
        char raw[4];
        qToLittleEndian(number, raw);
        answer.body.append(raw, sizeof(raw));
    }
    answer.body += description + data;
    return answer;
}

} // namespace

/** How the ranges of a file become the file, whatever form a server gives them. */
class FetchFileRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;

    /** The ranges that were asked for, "whole" for a request without one. */
    QStringList asked() const
    {
        QStringList ranges;
        const QStringList bodies = mBed->sent();
        for (const QString &body : bodies) {
            static const QRegularExpression range(QStringLiteral("([0-9]+-[0-9]+)"));
            const QRegularExpressionMatch match = range.match(body);
            ranges.append(match.hasMatch() ? match.captured(1) : QStringLiteral("whole"));
        }
        return ranges;
    }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(QStringList { ProtocolUtils::CommandItemOperations });
        QTRY_VERIFY(mBed->isOnline());
    }
    void cleanup() { mBed.reset(); }

    void rangesWithTheSizeOfTheWhole()
    {
        mBed->server.answer(inParts("abcd", { "0-3", "9" }));
        mBed->server.answer(inParts("efgh", { "4-7", "9" }));
        mBed->server.answer(inParts("i", { "8-8", "9" }));
        FileRequest request;
        QSignalSpy progress(&request, &Request::requestDownloadProgress);
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(request.file, QByteArray("abcdefghi"));
        QCOMPARE(request.mediaType, QStringLiteral("image/png"));
        QCOMPARE(request.name, QStringLiteral("a.png"));
        QCOMPARE(asked(), QStringList({ "0-3", "4-7", "8-8" }));
        QCOMPARE(progress.size(), 3);
        QCOMPARE(progress.at(0).mid(2), QVariantList({ 4, 9 }));
        QCOMPARE(progress.at(2).mid(2), QVariantList({ 9, 9 }));
    }

    void rangesWithoutTheSizeEndWithAShortOne()
    {
        mBed->server.answer(inParts("abcd"));
        mBed->server.answer(inParts("efgh"));
        mBed->server.answer(inParts("i"));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(request.file, QByteArray("abcdefghi"));
        QCOMPARE(asked(), QStringList({ "0-3", "4-7", "8-11" }));
        QCOMPARE(request.stored, 1);
    }

    void rangesWithoutTheSizeEndWithAnEmptyOne()
    {
        mBed->server.answer(inParts("abcd"));
        mBed->server.answer(inParts(""));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(request.file, QByteArray("abcd"));
    }

    void rangesWithoutTheSizeEndBehindTheLastByte_data()
    {
        QTest::addColumn<bool>("isInParts");
        QTest::newRow("in parts") << true;
        QTest::newRow("in the single form") << false;
    }
    void rangesWithoutTheSizeEndBehindTheLastByte()
    {
        QFETCH(bool, isInParts);
        if (isInParts)
            mBed->server.answer(inParts("abcd"));
        else
            mBed->answer(single("abcd"));
        mBed->answer(refusal("8"));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(request.file, QByteArray("abcd"));
        QCOMPARE(request.mediaType, QStringLiteral("image/png"));
    }

    void rangesInTheSingleForm()
    {
        mBed->answer(single("abcd", { "0-3", "6" }));
        mBed->answer(single("ef", { "4-5", "6" }));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(request.file, QByteArray("abcdef"));
        QCOMPARE(asked(), QStringList({ "0-3", "4-5" }));
    }

    void rangesInBothForms()
    {
        mBed->answer(single("abcd", { "0-3", "6" }));
        mBed->server.answer(inParts("ef", { "4-5", "6" }));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(request.file, QByteArray("abcdef"));
    }

    void aServerWithoutRangesSendsTheWholeFile_data()
    {
        QTest::addColumn<QByteArray>("total");
        QTest::newRow("with its size") << QByteArray("6");
        QTest::newRow("without its size") << QByteArray();
    }
    void aServerWithoutRangesSendsTheWholeFile()
    {
        QFETCH(QByteArray, total);
        mBed->answer(single("abcdef", { nullptr, total.isEmpty() ? nullptr : total.constData() }));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(request.file, QByteArray("abcdef"));
    }

    void aFileThatWasAnnouncedAndComesEmptyIsNotStored_data()
    {
        QTest::addColumn<bool>("inRanges");
        QTest::newRow("in parts") << true;
        QTest::newRow("in the single form") << false;
    }
    void aFileThatWasAnnouncedAndComesEmptyIsNotStored()
    {
        QFETCH(bool, inRanges);
        if (inRanges)
            mBed->server.answer(inParts("", { nullptr, "0" }));
        else
            mBed->answer(single("", { nullptr, nullptr }));
        FileRequest request;
        request.estimatedBytes = 9;
        QCOMPARE(RequestBed::run(request), int(Request::RequestStatusInternalError));
        QCOMPARE(request.stored, 0);
    }

    void aFileWithoutBytesIsAFile_data()
    {
        QTest::addColumn<int>("form");
        QTest::newRow("in parts") << 0;
        QTest::newRow("in the single form") << 1;
        QTest::newRow("said by its status") << 2;
        QTest::newRow("asked for whole, as it has no range") << 3;
        QTest::newRow("known before") << 4;
    }
    void aFileWithoutBytesIsAFile()
    {
        QFETCH(int, form);
        if (form == 0)
            mBed->server.answer(inParts("", { nullptr, "0" }));
        if (form == 2)
            mBed->answer(refusal("10"));
        if (form == 3)
            mBed->answer(refusal("8"));
        if (form == 1 || form >= 3)
            mBed->answer(single("", { nullptr, form == 1 ? "0" : nullptr }));
        FileRequest request;
        constexpr int unknown = -1;
        request.estimatedBytes = form == 4 ? 0 : form == 2 ? 9 : unknown;
        request.file = "not stored";
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(request.stored, 1);
        QVERIFY(request.file.isEmpty());
        if (form == 3)
            QCOMPARE(asked(), QStringList({ "0-3", "whole" }));
        if (form == 4)
            QCOMPARE(asked(), QStringList { "whole" });
    }

    void aPartOfAFileIsNeverStored_data()
    {
        QTest::addColumn<QByteArray>("range");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<int>("status");
        QTest::newRow("an empty part in the middle") << QByteArray("4-7") << QByteArray() << -2;
        QTest::newRow("a part from further on") << QByteArray("6-8") << QByteArray("ghi") << -2;
        QTest::newRow("the first part once more") << QByteArray("0-2") << QByteArray("abc") << -2;
    }
    void aPartOfAFileIsNeverStored()
    {
        QFETCH(QByteArray, range);
        QFETCH(QByteArray, data);
        QFETCH(int, status);
        mBed->server.answer(inParts("abcd", { "0-3", "9" }));
        mBed->server.answer(inParts(data, { range.constData(), "9" }));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), status);
        QCOMPARE(request.stored, 0);
        QCOMPARE(mBed->server.unexpected(), 0);
    }

    void theSameRangeForEverDoesNotLoop()
    {
        for (int i = 0; i < 2; ++i)
            mBed->server.answer(inParts("abcd", { "0-3", nullptr }));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), -2);
        QCOMPARE(request.stored, 0);
        QCOMPARE(mBed->server.unexpected(), 0);
    }

    void wholeTheSingleFormIsAskedFor()
    {
        mBed->answer(single("abcdef"));
        FileRequest request(0);
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(request.file, QByteArray("abcdef"));
        QCOMPARE(asked(), QStringList { "whole" });
        QVERIFY(!mBed->server.requests().last().hasHeader("MS-ASAcceptMultiPart"));
    }

    void rangesAreOfferedTheFormInParts()
    {
        mBed->server.answer(inParts("a", { "0-0", "1" }));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(mBed->server.requests().last().header("MS-ASAcceptMultiPart"), QByteArray("T"));
    }

    void lessThanTheSizeOfTheWholeIsNoFile()
    {
        mBed->answer(single("abc", { nullptr, "6" }));
        FileRequest request(0);
        QCOMPARE(RequestBed::run(request), -2);
        QCOMPARE(request.stored, 0);
    }

    void aRefusedFileEndsWithItsStatus()
    {
        mBed->answer(refusal("15"));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), 15);
        QCOMPARE(request.stored, 0);
    }

    void aFileThatCannotBeStoredIsAFailure()
    {
        mBed->answer(single("abc"));
        FileRequest request;
        request.isWritable = false;
        QCOMPARE(RequestBed::run(request), -2);
    }

    void withoutAReferenceNothingIsSent()
    {
        FileRequest request;
        request.reference.clear();
        QCOMPARE(RequestBed::run(request), -2);
        QVERIFY(mBed->sent().isEmpty());
    }

    void aRangeThatFailsIsAskedForAgainAndThoseBeforeAreKept()
    {
        mBed->server.answer(inParts("abcd", { "0-3", "6" }));
        mBed->answer(document(node(ItemOperations::ItemOperations, { node(ItemOperations::Status, "111") })));
        mBed->server.answer(inParts("ef", { "4-5", "6" }));
        FileRequest request;
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(request.file, QByteArray("abcdef"));
        QCOMPARE(asked(), QStringList({ "0-3", "4-5", "4-5" }));
    }
};

FENNEL_REGISTER_TEST(FetchFileRequestTest)
#include "fetchfilerequesttest.moc"
