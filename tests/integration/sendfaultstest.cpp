// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/requestmanager.h"
#include "integration/sendscene.h"
#include "support/bearer.h"
#include "support/soak.h"
#include "support/testmain.h"

#include <QtTest>

using namespace SendScene;
using Simulator::Override;

namespace {

const QString SendMail = QStringLiteral("SendMail");

/** The server says that it went well, at some length. */
Override longSuccess()
{
    const QString padding(190, QLatin1Char('p'));
    return Override::edited([padding](Simulator::WbxmlNode &reply) {
        reply = Simulator::WbxmlNode::fromXml(QStringLiteral(
            "<SendMail xmlns=\"ComposeMail\"><ClientId>%1</ClientId><Status>1</Status></SendMail>")
                                                  .arg(padding));
    });
}

} // namespace

/** Connections that fail while a message is sent: it goes once, or stays in the Outbox and the user is told.
 */
class SendFaultsTest : public QObject
{
    Q_OBJECT

private:
    static void versions()
    {
        QTest::addColumn<QString>("version");
        for (const char *version : { "12.1", "14.0", "14.1", "16.1" })
            QTest::newRow(version) << QString::fromLatin1(version);
    }

    static bool remembersClientIds(const QString &version) { return version >= QLatin1String("14"); }

    /** Empty if the one message in the Outbox was told of, and goes once at the end. */
    static QString whatIsWrong(SendBed &bed, const QString &version, quint64 id, int end, int sentBefore)
    {
        const QStringList outbox = bed.inFolder(QMailFolder::OutboxFolder);
        const int sent = bed.received(QStringLiteral("bob")).size() - sentBefore;
        if (end == 0)
            return outbox.isEmpty() && sent == 1 ? QString() : QStringLiteral("a success that is none");
        if (outbox.size() != 1 || sent > 1)
            return QStringLiteral("%1 in the Outbox, sent %2 times").arg(outbox.size()).arg(sent);
        bed.server().clearScript();
        if (remembersClientIds(version) || sent == 0) {
            const int again = bed.sendMail(id);
            const int total = bed.received(QStringLiteral("bob")).size() - sentBefore;
            if (again != 0 || total != 1 || !bed.inFolder(QMailFolder::OutboxFolder).isEmpty())
                return QStringLiteral("the next attempt ended with %1, sent %2 times").arg(again).arg(total);
        } else {
            SendBed::discard(id);
        }
        return QString();
    }

private Q_SLOTS:
    void anAnswerIsCutAnywhere_data() { versions(); }
    void anAnswerIsCutAnywhere()
    {
        QFETCH(QString, version);
        if (!remembersClientIds(version))
            QSKIP("an answer has no body there");
        SendBed bed(version);
        QVERIFY(bed.isReady());
        const int cuts = Soak::samples(25, 200);
        QStringList wrong;
        for (int cut = 0; cut < cuts; ++cut) {
            const int sent = bed.received(QStringLiteral("bob")).size();
            const quint64 id = bed.write(OutgoingMail::plain(QString::number(cut), "bob@example.com"));
            bed.server().overrideNext(SendMail, longSuccess().truncateAt(200 * cut / cuts));
            const QString what = whatIsWrong(bed, version, id, bed.sendMail(id), sent);
            if (!what.isEmpty())
                wrong.append(QStringLiteral("cut at %1: ").arg(200 * cut / cuts) + what);
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QLatin1Char('\n'))));
    }

    void theLineDrops_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<int>("fault");
        for (const char *version : { "12.0", "12.1", "14.0", "14.1", "16.1" }) {
            QTest::addRow("%s: before the body", version) << QString::fromLatin1(version) << 0;
            QTest::addRow("%s: before the first byte", version) << QString::fromLatin1(version) << 1;
            QTest::addRow("%s: the body is no document", version) << QString::fromLatin1(version) << 2;
            QTest::addRow("%s: the length is too large", version) << QString::fromLatin1(version) << 3;
            QTest::addRow("%s: a page of a network", version) << QString::fromLatin1(version) << 4;
        }
    }

    void theLineDrops()
    {
        QFETCH(QString, version);
        QFETCH(int, fault);
        const Override faults[] = { Override::drop(), Override::dropSilently(),
            Override::bytes(QByteArray("\x03\x01\x6a\x00\x45\xff\xff", 7), "application/vnd.ms-sync.wbxml"),
            Override().falseLength(1000),
            Override::httpStatus(302, { { "Location", "http://127.0.0.1/" } }) };
        SendBed bed(version);
        QVERIFY(bed.isReady());
        const quint64 id = bed.write(OutgoingMail::plain("hello", "bob@example.com"));
        // The network layer tries a connection that ends without a word again and again.
        bed.server().overrideNext(SendMail, faults[fault], fault == 1 ? -1 : 1);
        const int end = bed.sendMail(id);
        QVERIFY(end != 0);
        QCOMPARE(whatIsWrong(bed, version, id, end, 0), QString());
    }

    void aConnectionThatEndsWithoutAWordIsNotTriedAgain()
    {
        for (const QString &version : { QStringLiteral("12.0"), QStringLiteral("12.1") }) {
            SendBed bed(version);
            QVERIFY(bed.isReady());
            const quint64 id = bed.write(OutgoingMail::plain("hello", "bob@example.com"));
            bed.server().overrideNext(SendMail, Override::dropSilently());
            QVERIFY(bed.sendMail(id) > 10000);
            QCOMPARE(bed.received(QStringLiteral("bob")).size(), 1);
            QCOMPARE(bed.server().requests(SendMail).size(), 1);
            QCOMPARE(bed.inFolder(QMailFolder::OutboxFolder), QStringList { "hello" });
        }
    }

    void theNetworkGoesMeanwhile_data() { versions(); }
    void theNetworkGoesMeanwhile()
    {
        QFETCH(QString, version);
        SendBed bed(version);
        QVERIFY(bed.isReady());
        const quint64 id = bed.write(OutgoingMail::plain("hello", "bob@example.com"));
        const auto gate = std::make_shared<Simulator::Gate>();
        bed.server().overrideNext(SendMail, Override().holdUntil(gate));
        const qulonglong request = bed.startSendMail(id);
        QTRY_COMPARE(bed.received(QStringLiteral("bob")).size(), 1);
        QVERIFY(Bearer::loseNetwork());
        const int end = bed.waitFor(request);
        gate->open();
        QVERIFY(Bearer::settleConnected());
        QVERIFY2(end != 0, qPrintable(QString::number(end)));
        QCOMPARE(whatIsWrong(bed, version, id, end, 0), QString());
    }

    void aCancelMeanwhile_data() { versions(); }
    void aCancelMeanwhile()
    {
        QFETCH(QString, version);
        SendBed bed(version);
        QVERIFY(bed.isReady());
        const quint64 id = bed.write(OutgoingMail::plain("hello", "bob@example.com"));
        const auto gate = std::make_shared<Simulator::Gate>();
        bed.server().overrideNext(SendMail, Override().holdUntil(gate));
        const qulonglong request = bed.startSendMail(id);
        QTRY_COMPARE(bed.received(QStringLiteral("bob")).size(), 1);
        RequestManager::instance()->onCancelRequest(bed.accountId(), request);
        QCOMPARE(bed.waitFor(request), -4);
        gate->open();
        QCOMPARE(whatIsWrong(bed, version, id, -4, 0), QString());
    }

    void theEngineEndsMeanwhile()
    {
        SendBed bed;
        QVERIFY(bed.isReady());
        const quint64 id = bed.write(OutgoingMail::plain("hello", "bob@example.com"));
        const auto gate = std::make_shared<Simulator::Gate>();
        bed.server().overrideNext(SendMail, Override().holdUntil(gate));
        bed.startSendMail(id);
        QTRY_COMPARE(bed.received(QStringLiteral("bob")).size(), 1);
        bed.restartEngine();
        gate->open();
        QCOMPARE(bed.inFolder(QMailFolder::OutboxFolder), QStringList { "hello" });
        QCOMPARE(bed.sendMail(id), 0);
        QCOMPARE(bed.received(QStringLiteral("bob")).size(), 1);
        QVERIFY(bed.inFolder(QMailFolder::OutboxFolder).isEmpty());
    }
};

FENNEL_REGISTER_TEST(SendFaultsTest)
#include "sendfaultstest.moc"
