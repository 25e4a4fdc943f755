// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"
#include "support/testmain.h"

#include "simulator/protocolversion.h"

#include <QtTest>

using namespace Simulator;

/** Out-of-office settings, as a client sees them. */
class SimulatorSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
    }

    void cleanup()
    {
        mClient.reset();
        mServer.reset();
    }

    void atFirstNobodyIsAway_data()
    {
        QTest::addColumn<QString>("version");
        for (const int version : protocolVersions())
            QTest::newRow(qPrintable(versionText(version))) << versionText(version);
    }

    void atFirstNobodyIsAway()
    {
        QFETCH(QString, version);
        mClient->setVersion(version);
        QCOMPARE(read(),
            QStringLiteral("<Get><OofState>0</OofState>"
                           "<OofMessage><AppliesToInternal/><Enabled>0</Enabled></OofMessage>"
                           "<OofMessage><AppliesToExternalKnown/><Enabled>0</Enabled></OofMessage>"
                           "<OofMessage><AppliesToExternalUnknown/><Enabled>0</Enabled></OofMessage></Get>"));
        QCOMPARE(mServer->failures(), QStringList());
    }

    void whatIsWrittenIsReadAgain()
    {
        QCOMPARE(write(QStringLiteral("<OofState>2</OofState><StartTime>2026-05-01T08:00:00.000Z</StartTime>"
                                      "<EndTime>2026-05-08T16:30:00.000Z</EndTime>")
                     + message(QStringLiteral("Internal"), QStringLiteral("On leave"))
                     + message(QStringLiteral("ExternalUnknown"), QStringLiteral("Away"))),
            QStringLiteral("1"));
        QCOMPARE(read(),
            QStringLiteral("<Get><OofState>2</OofState><StartTime>2026-05-01T08:00:00.000Z</StartTime>"
                           "<EndTime>2026-05-08T16:30:00.000Z</EndTime>")
                + message(QStringLiteral("Internal"), QStringLiteral("On leave"))
                + QStringLiteral("<OofMessage><AppliesToExternalKnown/><Enabled>0</Enabled></OofMessage>")
                + message(QStringLiteral("ExternalUnknown"), QStringLiteral("Away"))
                + QStringLiteral("</Get>"));
        const OutOfOffice state = mServer->mailbox().outOfOffice();
        QCOMPARE(state.internal.text, QStringLiteral("On leave"));
        QVERIFY(!state.knownExternal.isEnabled);
        QCOMPARE(state.end, QDateTime(QDate(2026, 5, 8), QTime(16, 30), Qt::UTC));
    }

    void anAnswerThatIsSwitchedOffKeepsItsText()
    {
        OutOfOffice state;
        state.state = 1;
        state.internal = { true, QStringLiteral("On leave"), QStringLiteral("Text") };
        mServer->mailbox().setOutOfOffice(state);
        QCOMPARE(
            write(QStringLiteral("<OofState>0</OofState><OofMessage><AppliesToInternal/><Enabled>0</Enabled>"
                                 "</OofMessage>")),
            QStringLiteral("1"));
        state.state = 0;
        state.internal.isEnabled = false;
        QVERIFY(mServer->mailbox().outOfOffice() == state);
    }

    void whatCannotBeIsRefusedAndNothingChanges_data()
    {
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QString>("status");
        const QString times =
            QStringLiteral("<OofState>2</OofState><StartTime>%1</StartTime><EndTime>%2</EndTime>");
        const QString early = QStringLiteral("2026-05-01T08:00:00.000Z");
        const QString late = QStringLiteral("2026-05-02T08:00:00.000Z");
        QTest::newRow("a state of another number") << "<OofState>3</OofState>"
                                                   << "2";
        QTest::newRow("an answer for no group") << "<OofMessage><Enabled>1</Enabled></OofMessage>"
                                                << "2";
        QTest::newRow("no times") << "<OofState>2</OofState>"
                                  << "5";
        QTest::newRow("one time alone")
            << QStringLiteral("<OofState>2</OofState><StartTime>%1</StartTime>").arg(early) << "5";
        QTest::newRow("reversed times") << times.arg(late, early) << "5";
        QTest::newRow("times that are none") << times.arg(early, QStringLiteral("later")) << "5";
        const QString twice = message(QStringLiteral("Internal"), QStringLiteral("a"));
        QTest::newRow("two answers for a group") << twice + twice << "6";
    }

    void whatCannotBeIsRefusedAndNothingChanges()
    {
        QFETCH(QString, settings);
        const OutOfOffice before = mServer->mailbox().outOfOffice();
        QTEST(write(settings), "status");
        QVERIFY(mServer->mailbox().outOfOffice() == before);
    }

    void whatIsNotKnownIsAProtocolError()
    {
        QCOMPARE(post(QStringLiteral("<Oof/>")).text(QStringLiteral("Oof/Status")), QStringLiteral("2"));
        QCOMPARE(
            post(QStringLiteral("<UserInformation><Get/></UserInformation>")).text(QStringLiteral("Status")),
            QStringLiteral("2"));
        QCOMPARE(post(QStringLiteral("<DeviceInformation><Set><Model>m</Model></Set></DeviceInformation>"))
                     .text(QStringLiteral("DeviceInformation/Status")),
            QStringLiteral("1"));
    }

private:
    static QString message(const QString &group, const QString &text)
    {
        return QStringLiteral("<OofMessage><AppliesTo%1/><Enabled>1</Enabled><ReplyMessage>%2</ReplyMessage>"
                              "<BodyType>Text</BodyType></OofMessage>")
            .arg(group, text);
    }

    WbxmlNode post(const QString &inner)
    {
        return mClient
            ->post(QStringLiteral("Settings"),
                QStringLiteral("<Settings xmlns='Settings'>%1</Settings>").arg(inner))
            .document;
    }

    QString read()
    {
        const WbxmlNode reply = post(QStringLiteral("<Oof><Get><BodyType>Text</BodyType></Get></Oof>"));
        if (reply.text(QStringLiteral("Oof/Status")) != QLatin1String("1"))
            return QString();
        return reply.at(QStringLiteral("Oof/Get"))
            .toXml(false)
            .remove(QStringLiteral(" xmlns=\"Settings\""))
            .trimmed();
    }

    QString write(const QString &settings)
    {
        return post(QStringLiteral("<Oof><Set>%1</Set></Oof>").arg(settings))
            .text(QStringLiteral("Oof/Status"));
    }

    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
};

FENNEL_REGISTER_TEST(SimulatorSettingsTest)
#include "simulatorsettingstest.moc"
