// SPDX-License-Identifier: LGPL-2.1-or-later
#include "interopbed.h"
#include "support/realserver.h"
#include "support/serversearches.h"
#include "support/testmain.h"

#include <QRegularExpression>
#include <QtTest>

#include <qmailmessage.h>

/** @short What a real server finds, of mail beside what IMAP tells, and of people by parts of their names. */
class SearchInteropTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void mailIsFound_data() { eachVersion(); }
    void mailIsFound();
    void peopleAreFound_data() { eachVersion(); }
    void peopleAreFound();

private:
    using Condition = std::function<bool(const ImapMessage &)>;

    static void eachVersion();
    /** "folder|subject|sender|time" of the messages that a search has found, sorted. */
    static QStringList found(const ServerSearches::Result &result);
    QStringList expected(const Condition &condition) const;

    RealServer mServer;
    QList<ImapMessage> mImap;
};

namespace {

const QString User = QStringLiteral("alice");
const QString OtherFolder = QStringLiteral("Projekte/Älteres & mehr");

QString line(const QString &folder, const QString &subject, const QString &sender)
{
    return QStringList { folder, subject, sender }.join(QLatin1Char('|'));
}

QStringList names(const ServerSearches::Result &result)
{
    QStringList all;
    for (const GalItem &person : result.people)
        all.append(person.displayName() + QLatin1Char('|') + person.emailAddress());
    all.sort();
    return all;
}

} // namespace

void SearchInteropTest::initTestCase()
{
    const QString obstacle = RealServer::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    QVERIFY(mServer.start());
    QVERIFY(mServer.seed(User, 20));
    QVERIFY(mServer.seed(User, 5, OtherFolder));
    ImapClient imap(RealServer::host(), mServer.imapPort(), User, RealServer::password());
    QVERIFY(imap.append(QStringLiteral("INBOX"), QStringLiteral("Zebra Übersicht")));
    QVERIFY(imap.append(OtherFolder, QStringLiteral("Zebra two")));
    mImap = imap.messages();
    QCOMPARE(mImap.size(), 27);
}

void SearchInteropTest::eachVersion()
{
    QTest::addColumn<QString>("version");
    for (const char *version : { "12.0", "12.1", "14.0", "14.1" })
        QTest::newRow(version) << version;
}

QStringList SearchInteropTest::found(const ServerSearches::Result &result)
{
    QStringList lines;
    for (const qulonglong id : result.ids) {
        const QMailMessageMetaData message { QMailMessageId(id) };
        lines.append(line(EngineTestBed::devicePath(message.restoreFolderId()), message.subject(),
            message.from().address()));
    }
    lines.sort();
    return lines;
}

QStringList SearchInteropTest::expected(const Condition &condition) const
{
    QStringList lines;
    for (const ImapMessage &message : mImap) {
        if (condition(message))
            lines.append(line(message.folder, message.subject, message.from.value(0).second));
    }
    lines.sort();
    return lines;
}

void SearchInteropTest::mailIsFound()
{
    QFETCH(QString, version);
    InteropBed bed(mServer, User, { version });
    QVERIFY(bed.isReady());
    QCOMPARE(bed.sync(), 0);
    const QStringList state = bed.deviceState();
    ServerSearches searches(bed.accountId());
    const auto has = [](const QString &text) {
        return [text](const ImapMessage &message) {
            return message.subject.contains(text);
        };
    };
    ServerSearches::Result result = searches.mail({ QStringLiteral("Zebra") });
    QCOMPARE(result.status, 0);
    QCOMPARE(found(result), expected(has(QStringLiteral("Zebra"))));
    result = searches.mail({ QStringLiteral("Übersicht") });
    QCOMPARE(found(result), expected(has(QStringLiteral("Übersicht"))));

    ServerSearches::Mail inFolder { QStringLiteral("Zebra") };
    inFolder.folderId = QString::number(bed.deviceFolder(OtherFolder).toULongLong());
    result = searches.mail(inFolder);
    QCOMPARE(result.status, 0);
    QCOMPARE(found(result), expected([](const ImapMessage &message) {
        return message.folder == OtherFolder && message.subject.contains(QStringLiteral("Zebra"));
    }));

    // The text stands in each sender.
    QList<QDateTime> times;
    for (const ImapMessage &message : qAsConst(mImap))
        times.append(message.date);
    std::sort(times.begin(), times.end());
    const QDateTime middle(times.at(times.size() / 2).toUTC().date(), QTime(0, 0), Qt::UTC);
    ServerSearches::Mail inTime { QStringLiteral("example") };
    inTime.folderId = QString::number(bed.deviceFolder(QStringLiteral("INBOX")).toULongLong());
    const QStringList all =
        expected([](const ImapMessage &message) { return message.folder == QLatin1String("INBOX"); });
    inTime.from = middle.toString(Qt::ISODate);
    result = searches.mail(inTime);
    QCOMPARE(result.status, 0);
    // The server goes by the time at which it got a message, which is that of the test for the later ones.
    const QRegularExpression seeded(QStringLiteral("^((?!Zebra).)*$"));
    QCOMPARE(found(result).filter(seeded), expected([&](const ImapMessage &message) {
        return message.folder == QLatin1String("INBOX") && message.date > middle;
    }).filter(seeded));
    // An end of the time it does not look at.
    inTime.to = inTime.from;
    inTime.from.clear();
    result = searches.mail(inTime);
    QCOMPARE(result.status, 0);
    QCOMPARE(found(result), all);

    QVERIFY(searches.mail({ QStringLiteral("xyzzy") }).ids.isEmpty());
    QCOMPARE(bed.deviceState(), state);
    mServer.forgetRequests();
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.deviceState(), state);
    for (const QString &request : mServer.requests(QStringLiteral("Sync")))
        QVERIFY2(!request.contains(QStringLiteral("<Commands")), qPrintable(request));
}

void SearchInteropTest::peopleAreFound()
{
    QFETCH(QString, version);
    InteropBed bed(mServer, User, { version });
    QVERIFY(bed.isReady());
    QCOMPARE(bed.foldersSync(), 0);
    ServerSearches searches(bed.accountId());
    const QString carol = QStringLiteral("Carol Čapková|carol@example.org");
    for (const char *text : { "Čap", "čap", "Carol", "carol@" }) {
        const ServerSearches::Result result = searches.people(QString::fromUtf8(text));
        QCOMPARE(result.status, 0);
        QVERIFY2(names(result) == QStringList { carol }, text);
        QCOMPARE(result.ids, QList<qulonglong> { 1 });
    }
    const ServerSearches::Result all = searches.people(QStringLiteral("example.org"));
    QCOMPARE(all.status, 0);
    QCOMPARE(all.people.size(), 4);
    QVERIFY(searches.people(QStringLiteral("nobody")).people.isEmpty());
    QCOMPARE(searches.find(QStringLiteral("Zebra")).status, -8);
}

FENNEL_REGISTER_TEST(SearchInteropTest)
#include "searchinteroptest.moc"
