// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/crashpim.h"
#include "support/soak.h"
#include "support/storecheck.h"
#include "support/synctestbed.h"
#include "support/testmain.h"

#include <QtTest>

using Simulator::Override;

namespace {

const QString syncCommand = QStringLiteral("Sync");

/** A device and a server with the events and contacts of CrashPim. */
class Scene
{
public:
    explicit Scene(const QString &version)
        : mBed(emptied(version), SyncTestBed::everyService())
    {
        mPim.begin(mBed.accountId(), mBed.mailbox(), version);
        mPim.fillMailbox();
    }

    SyncTestBed &bed() { return mBed; }
    CrashPim &pim() { return mPim; }

    /** A first sync, and edits on both sides after it. */
    bool isEdited()
    {
        if (mBed.sync() != 0)
            return false;
        mBed.clock().advance(5000);
        mPim.changeBothSides();
        mBed.clock().advance(5000);
        mBed.server().clearRequests();
        return true;
    }

    /** Empty if all is well after two more syncs, and one after these has nothing to do. */
    QString whatIsWrong()
    {
        mBed.server().clearScript();
        int status = 0;
        for (int further = 0; further < 3 && status == 0; ++further) {
            mBed.clock().advance(5000);
            mBed.server().clearRequests();
            status = mBed.sync();
        }
        QString wrong = mPim.wrongState() + mPim.wrongStores();
        if (status != 0)
            wrong += QStringLiteral("a further sync ended with %1\n").arg(status);
        for (const Simulator::RecordedRequest &request : mBed.server().requests(syncCommand)) {
            if ((request.document.toXml() + request.replyDocument.toXml())
                    .contains(QLatin1String("Commands")))
                wrong += QStringLiteral("there was still something to do:\n") + request.dump();
        }
        return wrong + mBed.server().failures().join(QLatin1Char('\n'));
    }

private:
    static QStringList emptied(const QString &version)
    {
        CrashPim().clearDevice();
        // With what it holds of the account before this one.
        for (const char *suffix : { "", "-journal", "-wal", "-shm" })
            QFile::remove(StoreCheck::mappingFile() + QLatin1String(suffix));
        return { version };
    }

    SyncTestBed mBed;
    CrashPim mPim;
};

} // namespace

/**
 * Answers about events and contacts are cut or refuse the key; nothing is lost, doubled or come back, and
 * pictures and rows of attachments are those of what there is.
 */
class PimCutReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theReplyIsCutEverywhere_data();
    void theReplyIsCutEverywhere();
    void theServerRefusesTheKeys_data();
    void theServerRefusesTheKeys();
    void theServerHasForgottenTheDevice_data();
    void theServerHasForgottenTheDevice();
};

void PimCutReplyTest::theReplyIsCutEverywhere_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("isFirst");
    for (const char *version : { "14.1", "16.1" }) {
        QTest::addRow("of the first items, %s", version) << QString::fromLatin1(version) << true;
        QTest::addRow("of edits on both sides, %s", version) << QString::fromLatin1(version) << false;
    }
}

void PimCutReplyTest::theReplyIsCutEverywhere()
{
    QFETCH(QString, version);
    QFETCH(bool, isFirst);
    int length = 0;
    // The first reply of a new device brings keys alone.
    const int before = isFirst ? 1 : 0;
    const int cuts = Soak::samples(6, 150);
    for (int cut = 0; cut <= cuts; ++cut) {
        Scene scene(version);
        QVERIFY(scene.bed().isReady());
        QVERIFY(isFirst || scene.isEdited());
        const int position = length * cut / (cuts + 1);
        if (before > 0)
            scene.bed().server().overrideNext(syncCommand, Override(), before);
        if (cut > 0)
            scene.bed().server().overrideNext(syncCommand, Override().truncateAt(position));
        scene.bed().sync();
        if (cut == 0)
            length = scene.bed().server().requests(syncCommand).value(before).replyBody.size();
        QVERIFY(length > 100);
        const QString wrong = scene.whatIsWrong();
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("cut at %1:\n%2").arg(position).arg(wrong)));
    }
}

void PimCutReplyTest::theServerRefusesTheKeys_data()
{
    QTest::addColumn<QString>("version");
    for (const char *version : { "12.0", "12.1", "14.0", "14.1", "16.0", "16.1" })
        QTest::newRow(version) << QString::fromLatin1(version);
}

/** The server has the last word on what it knows; what was made here goes up after all. */
void PimCutReplyTest::theServerRefusesTheKeys()
{
    QFETCH(QString, version);
    Scene scene(version);
    QVERIFY(scene.bed().isReady());
    QVERIFY(scene.isEdited());
    scene.bed().server().overrideNext(syncCommand, Override::topStatus(3));
    scene.bed().sync();
    scene.pim().wantServersEdits(CrashPim::AndWhatIsNewHere);
    const QString wrong = scene.whatIsWrong();
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
}

void PimCutReplyTest::theServerHasForgottenTheDevice_data()
{
    theServerRefusesTheKeys_data();
}

void PimCutReplyTest::theServerHasForgottenTheDevice()
{
    QFETCH(QString, version);
    Scene scene(version);
    QVERIFY(scene.bed().isReady());
    QVERIFY(scene.isEdited());
    scene.bed().server().forgetDevices();
    scene.bed().sync();
    scene.pim().wantServersEdits(CrashPim::Alone);
    const QString wrong = scene.whatIsWrong();
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
}

FENNEL_REGISTER_TEST(PimCutReplyTest)
#include "pimcutreplytest.moc"
