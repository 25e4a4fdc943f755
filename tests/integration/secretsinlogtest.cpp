// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/easaccount.h"
#include "application/requestmanager.h"
#include "integration/statusscene.h"
#include "support/testmain.h"

#include <QLoggingCategory>

using Simulator::Override;
using namespace StatusScene;

/** @short With every category at its lowest level, a log holds no password, no cookie and no policy key. */
class SecretsInLogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLoggingCategory::setFilterRules(QString()); }

    void nothingThatIsLoggedGivesTheAccountAway();

private:
    static EasAccount *account(const SyncTestBed &bed)
    {
        return RequestManager::instance()->account(bed.accountId());
    }
};

void SecretsInLogTest::nothingThatIsLoggedGivesTheAccountAway()
{
    QLoggingCategory::setFilterRules(QStringLiteral("*=true"));
    const LogCollector log;
    SyncTestBed bed({ QStringLiteral("16.1") }, SyncTestBed::everyService());
    QVERIFY(bed.isReady());
    account(bed)->setPolicyKey(QStringLiteral("2718281828"));
    QStringList secrets { QStringLiteral("2718281828"), QStringLiteral("cookie-of-the-session"),
        QStringLiteral("s3cret"), QString::fromLatin1(account(bed)->authenticationBasicCookie()) };
    for (const char *command : { "OPTIONS", "FolderSync", "Sync" })
        bed.server().overrideAll(
            QString::fromLatin1(command), Override().header("Set-Cookie", "session=cookie-of-the-session"));
    QVERIFY(missesOneMessage(bed));
    QVERIFY(markRead(bed, "old"));
    QCOMPARE(bed.sync(), 0);
    QVERIFY(bed.server().requests().last().header("Cookie").contains("cookie-of-the-session"));

    bed.server().clearScript();
    bed.server().overrideNext(QStringLiteral("Sync"), Override::redirect(bed.server().url()));
    bed.server().overrideNext(QStringLiteral("Sync"), Override::httpStatus(500));
    QCOMPARE(bed.sync(), 10401);
    bed.server().overrideNext(QStringLiteral("Sync"), Override::drop());
    QVERIFY(bed.sync() > 10000);

    bed.server().clearScript();
    bed.server().setPassword(QStringLiteral("alice"), QStringLiteral("an0ther"));
    QCOMPARE(bed.sync(), 10204);
    QVERIFY(bed.changePassword(QStringLiteral("an0ther")));
    QTRY_COMPARE_WITH_TIMEOUT(account(bed)->password(), QStringLiteral("an0ther"), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(!account(bed)->isCredentialsNeedUpdate(), 20000);
    secrets << QStringLiteral("an0ther") << QString::fromLatin1(account(bed)->authenticationBasicCookie());
    QVERIFY(nextSyncRepairs(bed));

    QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("Headers: "), QStringLiteral("Set-Cookie: ...") }));
    const QStringList texts = log.texts();
    QVERIFY(texts.size() > 200);
    for (const QString &text : texts) {
        for (const QString &secret : qAsConst(secrets))
            QVERIFY2(!text.contains(secret), qPrintable(text));
    }
}

FENNEL_REGISTER_TEST(SecretsInLogTest)
#include "secretsinlogtest.moc"
