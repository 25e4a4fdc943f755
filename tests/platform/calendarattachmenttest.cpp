// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/testmain.h"

#include <attachmentinfo.h>
#include <attachmentmanager.h>

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

using KCalendarCore::Attachment;
using mKCal::AttachmentInfo;
using mKCal::AttachmentManager;

/** Attachments whose bytes are elsewhere. */
class CalendarAttachmentTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir mFolder;
    QByteArray mOldDatabase;

private Q_SLOTS:
    void initTestCase()
    {
        mOldDatabase = qgetenv("SQLITESTORAGEDB");
        qputenv("SQLITESTORAGEDB", mFolder.filePath(QStringLiteral("db")).toLocal8Bit());
    }

    void cleanupTestCase()
    {
        if (mOldDatabase.isNull())
            qunsetenv("SQLITESTORAGEDB");
        else
            qputenv("SQLITESTORAGEDB", mOldDatabase);
    }

    void theUriTellsEverything()
    {
        AttachmentManager manager;
        manager.setServiceProperty(QStringLiteral("reference"), QStringLiteral("5:1 ä&b=c/d+e"));
        manager.setFileName(QStringLiteral("a b.txt"));
        manager.setEstimatedSize(1234);
        manager.setServiceProperty(QStringLiteral("gone"), QStringLiteral("x"));
        manager.setServiceProperty(QStringLiteral("gone"), QString());
        const Attachment attachment = manager.attachment();
        QVERIFY(attachment.isUri());
        QCOMPARE(attachment.uri(),
            QStringLiteral("x-mkcal-attachment:?name=a%20b.txt&reference=5%3A1%20%C3%A4%26b%3Dc%2Fd%2Be"
                           "&size=1234"));
        for (const AttachmentInfo &info : { AttachmentInfo(attachment), AttachmentInfo(attachment.uri()) }) {
            QCOMPARE(info.fileName(), QStringLiteral("a b.txt"));
            QCOMPARE(info.fileSize(), qint64(1234));
            QCOMPARE(info.uri(), attachment.uri());
            QVERIFY(info.contentLocation().isEmpty());
            QCOMPARE(
                info.extractServiceProperty(QStringLiteral("reference")), QStringLiteral("5:1 ä&b=c/d+e"));
            QVERIFY(info.extractServiceProperty(QStringLiteral("gone")).isNull());
        }
        QCOMPARE(AttachmentInfo::extractServiceProperty(attachment.uri(), QStringLiteral("reference")),
            QStringLiteral("5:1 ä&b=c/d+e"));
    }

    void equalAttachmentsHaveEqualUris()
    {
        AttachmentManager first;
        first.setFileName(QStringLiteral("a"));
        first.setServiceProperty(QStringLiteral("key"), QStringLiteral("b"));
        AttachmentManager second;
        second.setServiceProperty(QStringLiteral("key"), QStringLiteral("b"));
        second.setFileName(QStringLiteral("a"));
        QCOMPARE(first.attachment().uri(), second.attachment().uri());
        AttachmentManager changed(first.attachment());
        changed.setServiceProperty(QStringLiteral("key"), QStringLiteral("c"));
        QCOMPARE(AttachmentInfo(changed.attachment()).fileName(), QStringLiteral("a"));
        QVERIFY(changed.attachment().uri() != first.attachment().uri());
    }

    void bytesComeLater()
    {
        AttachmentManager manager;
        manager.setFileName(QStringLiteral("later.txt"));
        manager.setEstimatedSize(99);
        const Attachment attachment = manager.attachment();
        const QByteArray data("some bytes\0with a null", 22);
        QString error;
        QVERIFY2(AttachmentManager(attachment).saveData(data, &error), qPrintable(error));
        const AttachmentInfo info(attachment.uri()); // The URI stays.
        QCOMPARE(info.fileSize(), qint64(data.size()));
        QFile file(QUrl(info.contentLocation()).toLocalFile());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), data);
        QCOMPARE(file.fileName(),
            mFolder.filePath(QStringLiteral("attachments/")
                + QString::fromLatin1(
                    QCryptographicHash::hash(attachment.uri().toUtf8(), QCryptographicHash::Sha1).toHex())));
    }

    void bytesThatCannotBeKept()
    {
        AttachmentManager manager;
        manager.setFileName(QStringLiteral("unlucky.txt"));
        qputenv("SQLITESTORAGEDB", "/dev/null/db");
        QString error;
        const bool saved = manager.saveData("x", &error);
        qputenv("SQLITESTORAGEDB", mFolder.filePath(QStringLiteral("db")).toLocal8Bit());
        QVERIFY(!saved);
        QVERIFY(!error.isEmpty());
    }

    void aFileOfTheDevice()
    {
        QFile file(mFolder.filePath(QStringLiteral("own file.txt")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("12345") == 5);
        file.close();
        const AttachmentInfo info(QUrl::fromLocalFile(file.fileName()).toString(QUrl::FullyEncoded));
        QCOMPARE(info.fileName(), QStringLiteral("own file.txt"));
        QCOMPARE(info.fileSize(), qint64(5));
        QCOMPARE(info.contentLocation(), file.fileName());
        QVERIFY(info.extractServiceProperty(QStringLiteral("reference")).isNull());
        const AttachmentInfo missing(QStringLiteral("file:///nowhere/at/all.txt"));
        QCOMPARE(missing.fileSize(), qint64(-1));
    }

    void uriOfSomebodyElse()
    {
        const AttachmentInfo info(QStringLiteral("https://example.com/a.txt?name=x"));
        QVERIFY(info.fileName().isEmpty());
        QCOMPARE(info.fileSize(), qint64(-1));
        QVERIFY(info.contentLocation().isEmpty());
        QVERIFY(info.extractServiceProperty(QStringLiteral("name")).isNull());
    }
};

FENNEL_REGISTER_TEST(CalendarAttachmentTest)
#include "calendarattachmenttest.moc"
