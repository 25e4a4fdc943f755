// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/fetchscene.h"
#include "support/accountfactory.h"
#include "support/bearer.h"
#include "support/daemonprocess.h"
#include "support/faultshim.h"
#include "support/maillisting.h"
#include "support/privatebus.h"
#include "support/soak.h"
#include "support/storecheck.h"
#include "support/testmain.h"

#include <QDirIterator>
#include <QtTest>

#include <csignal>

using namespace FetchScene;

/**
 * The daemon dies in the middle of the download of a long file: what it leaves is not taken for the file, and
 * the next daemon fetches it whole.
 */
class DownloadKillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aDeathBetweenTwoRanges_data();
    void aDeathBetweenTwoRanges();
    void aDeathAtAnyDurableStep();

private:
    /** More than the daemon keeps in memory. */
    static constexpr int Ranges = 12;

    /** A message with the file stands on the device, the file does not; zero if it failed. */
    qulonglong receives();
    /** The status of a download; dies with the request for a range, counted from 1, 0 for none. */
    int download(qulonglong message, const QProcessEnvironment &environment, int lastRange = 0);
    /** Empty if the part of the message is the file or is not there. */
    QString wrongFile(qulonglong message) const;
    /** Lets another daemon fetch the file; what is wrong then. */
    QString wrongAfterAnotherDownload(qulonglong message);

    bool mHasBus = PrivateBus::ensure();
    std::unique_ptr<AccountFactory> mAccounts;
    Simulator::ExchangeServer mServer;
    const QByteArray mFile = bytesOf(Ranges * RangeSize - 100);
    EasAccountId mAccountId = 0;
    int mMessages = 0;
};

void DownloadKillTest::initTestCase()
{
    QVERIFY(mHasBus && Bearer::connectNetwork());
    mServer.addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
    QVERIFY(mServer.start());
    mAccounts = std::make_unique<AccountFactory>();
    AccountOptions options;
    options.port = mServer.port();
    mAccountId = mAccounts->create(options);
    QVERIFY(mAccountId != 0);
}

qulonglong DownloadKillTest::receives()
{
    const QByteArray subject = "file " + QByteArray::number(++mMessages);
    mServer.mailbox().deliver(mServer.mailbox().inboxId(), messageWith({ mFile }, subject));
    DaemonProcess daemon;
    if (daemon.sync(mAccountId) != 0)
        return 0;
    return MailListing::deviceMessage(mAccountId, QString::fromLatin1(subject)).toULongLong();
}

int DownloadKillTest::download(qulonglong message, const QProcessEnvironment &environment, int lastRange)
{
    DaemonProcess daemon(environment);
    int range = 0;
    const auto connection = connect(&mServer, &Simulator::ExchangeServer::requestReceived, this,
        [&](const Simulator::RecordedRequest &request) {
            if (request.command == fetchCommand() && ++range == lastRange)
                ::kill(pid_t(daemon.processId()), SIGKILL);
        });
    const int status = daemon.downloadPart(mAccountId, message, fileLocation(0));
    disconnect(connection);
    return status;
}

QString DownloadKillTest::wrongFile(qulonglong message) const
{
    if (!hasFile(message, 0) || fileOnDevice(message, 0) == mFile)
        return QString();
    return QStringLiteral("the file is damaged, it has %1 bytes\n").arg(fileOnDevice(message, 0).size());
}

QString DownloadKillTest::wrongAfterAnotherDownload(qulonglong message)
{
    QString wrong = wrongFile(message);
    const bool isThere = hasFile(message, 0);
    const int status = download(message, QProcessEnvironment::systemEnvironment());
    // Nothing is left to fetch of a file that is there.
    if (status != (isThere ? -2 : 0))
        wrong += QStringLiteral("the download afterwards ended with %1\n").arg(status);
    if (!hasFile(message, 0) || fileOnDevice(message, 0) != mFile)
        wrong += QStringLiteral("the file is not there\n");
    // What a daemon that is killed right after its request leaves goes with the next start.
    DaemonProcess cleaning;
    if (!cleaning.start())
        wrong += QStringLiteral("another daemon does not start\n");
    QDirIterator files(qEnvironmentVariable("XDG_CACHE_HOME"), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        if (files.next().contains(QLatin1String("/fetched/")))
            wrong += files.filePath() + QStringLiteral(" was left behind\n");
    }
    return wrong + StoreCheck::damage(qEnvironmentVariable("QMF_DATA") + QStringLiteral("/mailstore.db"));
}

void DownloadKillTest::aDeathBetweenTwoRanges_data()
{
    QTest::addColumn<int>("lastRange");
    QTest::newRow("with the first") << 1;
    QTest::newRow("while all of it is in memory") << 3;
    QTest::newRow("while it is in a file") << 10;
    QTest::newRow("with the last") << Ranges;
}

void DownloadKillTest::aDeathBetweenTwoRanges()
{
    QFETCH(int, lastRange);
    const qulonglong message = receives();
    QVERIFY(message != 0);
    QCOMPARE(
        download(message, QProcessEnvironment::systemEnvironment(), lastRange), int(DaemonProcess::Died));
    QVERIFY(!hasFile(message, 0));
    mServer.clearRequests();
    QCOMPARE(wrongAfterAnotherDownload(message), QString());
    QCOMPARE(mServer.requests(fetchCommand()).size(), Ranges);
}

void DownloadKillTest::aDeathAtAnyDurableStep()
{
    const FaultShim plain(QDir::homePath(), DaemonProcess::program());
    const qulonglong whole = receives();
    QCOMPARE(download(whole, plain.environment()), 0);
    QCOMPARE(fileOnDevice(whole, 0), mFile);
    const int steps = plain.steps().size();
    QVERIFY(steps > 10);
    const int stride = qMax(1, steps / Soak::samples(12, steps));
    qInfo("%d durable steps, tried in strides of %d", steps, stride);
    for (int number = 1; number <= steps; number += stride) {
        const qulonglong message = receives();
        FaultShim fault(QDir::homePath(), DaemonProcess::program());
        fault.killAtStep(number);
        download(message, fault.environment());
        const QString wrong = wrongAfterAnotherDownload(message);
        QVERIFY2(wrong.isEmpty(),
            qPrintable(QStringLiteral("killed before step %1 of %2, %3\n")
                           .arg(number)
                           .arg(steps)
                           .arg(fault.steps().value(number - 1))
                + wrong));
    }
}

FENNEL_REGISTER_TEST(DownloadKillTest)
#include "downloadkilltest.moc"
