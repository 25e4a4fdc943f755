// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactavatars.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/testpictures.h"

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QImageReader>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QtTest>

/** Pictures in files. */
class ContactAvatarsTest : public QObject
{
    Q_OBJECT

private:
    static QByteArray content(const QUrl &url)
    {
        QFile file(url.toLocalFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QUrl written(const QByteArray &bytes)
    {
        QFile file(mFolder.filePath(QStringLiteral("picture-%1").arg(++mFiles)));
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
        return QUrl::fromLocalFile(file.fileName());
    }

    static QStringList files()
    {
        return QDir(QDir::homePath() + QStringLiteral("/.avatars/account-77")).entryList(QDir::Files);
    }

    const ContactAvatars mAvatars { 77 };
    QTemporaryDir mFolder;
    int mFiles = 0;

private Q_SLOTS:
    void cleanup() { mAvatars.removeAll(); }

    void aPictureBecomesAFileOfItsFormat()
    {
        const QUrl url = mAvatars.saveAvatar(TestPictures::png().toBase64());
        QVERIFY(url.isLocalFile());
        QVERIFY2(url.toLocalFile().endsWith(QStringLiteral(".png")), qPrintable(url.toString()));
        QVERIFY(mAvatars.isOwn(url));
        QCOMPARE(content(url), TestPictures::png());
        QVERIFY(ContactAvatars::holds(url, TestPictures::png().toBase64()));
        QVERIFY(!ContactAvatars::holds(url, TestPictures::png(1).toBase64()));
        QVERIFY(mAvatars.saveAvatar(TestPictures::png().toBase64()) != url);
    }

    void whatIsNoPictureGivesNoFile_data()
    {
        QTest::addColumn<QByteArray>("base64");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << QByteArray() << "Decoded picture's data is empty";
        QTest::newRow("no base64 at all") << QByteArray("(((") << "Decoded picture's data is empty";
        QTest::newRow("a text") << QByteArray("hello, I am no picture").toBase64()
                                << "The picture format was not detected";
        QTest::newRow("zeroes") << QByteArray(1000, 0).toBase64() << "The picture format was not detected";
        QTest::newRow("a script") << QByteArray("#!/bin/sh\nrm -rf /\n").toBase64()
                                  << "The picture format was not detected";
        QTest::newRow("too much") << QByteArray(40 * 1024 * 1024, 'x').toBase64()
                                  << "Decoded picture's data is empty";
    }

    void whatIsNoPictureGivesNoFile()
    {
        QFETCH(QByteArray, base64);
        QFETCH(QString, text);
        const LogCollector log;
        QVERIFY(mAvatars.saveAvatar(base64).isEmpty());
        QVERIFY(log.contains(text));
        QCOMPARE(files(), QStringList());
    }

    void aFolderThatCannotBeMadeIsLogged()
    {
        const QString path = QDir::homePath() + QStringLiteral("/.avatars/account-77");
        QVERIFY(QDir().mkpath(QDir::homePath() + QStringLiteral("/.avatars")));
        QFile inTheWay(path);
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        const LogCollector log;
        QVERIFY(mAvatars.saveAvatar(TestPictures::png().toBase64()).isEmpty());
        QVERIFY(log.contains(QStringLiteral("Failed to created avatars directory for account ")));
        QVERIFY(inTheWay.remove());
    }

    void aSmallPictureGoesUpUnchanged()
    {
        const QByteArray picture = TestPictures::noise(90);
        QVERIFY(picture.toBase64().size() <= ContactAvatars::MaxUploadSize);
        QVERIFY(picture.toBase64().size() > ContactAvatars::MaxUploadSize / 2);
        QCOMPARE(ContactAvatars::upload(written(picture)), QString::fromLatin1(picture.toBase64()));
    }

    void thePictureOfTheGreatestSizeGoesUpUnchanged_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("unchanged");
        // Three bytes are four characters, of which 49152 are taken.
        QTest::newRow("the last that is taken") << 36864 << true;
        QTest::newRow("one byte more") << 36865 << false;
    }

    void thePictureOfTheGreatestSizeGoesUpUnchanged()
    {
        QFETCH(int, size);
        QFETCH(bool, unchanged);
        // What stands behind the end of a picture is no part of it.
        const QByteArray picture = TestPictures::noise(90).leftJustified(size, '\0');
        QCOMPARE(picture.size(), size);
        const QString up = ContactAvatars::upload(written(picture));
        QVERIFY(!up.isEmpty());
        QCOMPARE(up == QString::fromLatin1(picture.toBase64()), unchanged);
    }

    void aPictureStandsUprightWhenItIsCompressed()
    {
        const QByteArray up = ContactAvatars::upload(written(TestPictures::lyingPhoto(400, 300))).toLatin1();
        QImage image;
        QVERIFY(image.loadFromData(QByteArray::fromBase64(up)));
        QCOMPARE(image.size(), QSize(300, 400));
        // Turned by a quarter, what was on the left is at the top.
        QVERIFY2(qRed(image.pixel(150, 20)) > qBlue(image.pixel(150, 20)), "red above");
        QVERIFY2(qBlue(image.pixel(150, 380)) > qRed(image.pixel(150, 380)), "blue below");
    }

    void aCompressedPictureIsTheSameAsItsFile()
    {
        const QUrl large = written(TestPictures::noise(300));
        const QByteArray up = ContactAvatars::upload(large).toLatin1();
        QVERIFY(!ContactAvatars::holds(large, up));
        QVERIFY(ContactAvatars::isPictureOf(large, up));
        QVERIFY(!ContactAvatars::isPictureOf(large, TestPictures::png(1).toBase64()));
        QVERIFY(!ContactAvatars::isPictureOf(large, QByteArray()));
        const QUrl small = written(TestPictures::png(1));
        QVERIFY(ContactAvatars::isPictureOf(small, TestPictures::png(1).toBase64()));
        QVERIFY(!ContactAvatars::isPictureOf(small, TestPictures::png(2).toBase64()));
    }

    void onlyTheUserMayLookAtPictures()
    {
        const QString folder = QDir::homePath() + QStringLiteral("/.avatars/account-77");
        QVERIFY(QDir().mkpath(folder));
        // As an older version has made it.
        QVERIFY(QFile::setPermissions(folder,
            QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther));
        const QUrl url = mAvatars.saveAvatar(TestPictures::png().toBase64());
        const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
            | QFile::WriteOther | QFile::ExeOther;
        QCOMPARE(QFile::permissions(url.toLocalFile()) & others, QFile::Permissions());
        QCOMPARE(QFile::permissions(folder) & others, QFile::Permissions());
        QVERIFY(QFile::permissions(folder) & QFile::ExeOwner);
    }

    void aLargePictureIsCompressed()
    {
        const QByteArray picture = TestPictures::noise(300);
        const LogCollector log;
        const QByteArray up = ContactAvatars::upload(written(picture)).toLatin1();
        QVERIFY(!up.isEmpty());
        QVERIFY(up.size() <= ContactAvatars::MaxUploadSize);
        QByteArray bytes = QByteArray::fromBase64(up);
        QBuffer buffer(&bytes);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        QCOMPARE(QImageReader(&buffer).format(), QByteArray("jpeg"));
        QVERIFY(log.contains(QStringLiteral("new compressed avatar size ")));
    }

    void aPictureThatDoesNotGetSmallEnoughGetsSmaller()
    {
        const QString up = ContactAvatars::upload(written(TestPictures::noise(1500)));
        QVERIFY(!up.isEmpty());
        QVERIFY(up.size() <= ContactAvatars::MaxUploadSize);
    }

    void whatCannotBeCompressedIsLeftOut()
    {
        const LogCollector log;
        QVERIFY(ContactAvatars::upload(written(QByteArray(100000, 'x'))).isEmpty());
        QVERIFY(log.contains(QStringLiteral("tried to compress avatar ")));
        QVERIFY(log.contains(QStringLiteral(", but image is null")));
        QVERIFY(log.contains(QStringLiteral("failed to convert avatar ")));
    }

    void hugeDimensionsAreNotDecoded()
    {
        // Four hundred gigabytes, if one believed it.
        const QByteArray bomb = TestPictures::hollowPng(320000, 320000) + QByteArray(100000, 'x');
        const QUrl url = mAvatars.saveAvatar(bomb.toBase64());
        QElapsedTimer timer;
        timer.start();
        QByteArray out;
        QVERIFY(!ContactAvatars::compressAvatar(url.toLocalFile(), out));
        QVERIFY(ContactAvatars::upload(url).isEmpty());
        QVERIFY(timer.elapsed() < 60000);
    }

    void whatIsNoFileIsNotRead()
    {
        QCOMPARE(ContactAvatars::upload(QUrl(QStringLiteral("https://example.org/ada.png"))), QString());
        QCOMPARE(ContactAvatars::upload(QUrl::fromLocalFile(QStringLiteral("/dev/zero"))), QString());
        QCOMPARE(ContactAvatars::upload(QUrl::fromLocalFile(QStringLiteral("/nowhere/at/all"))), QString());
        QCOMPARE(ContactAvatars::upload(QUrl()), QString());
    }

    void onlyOwnFilesAreRemoved()
    {
        const QUrl own = mAvatars.saveAvatar(TestPictures::png().toBase64());
        const QUrl foreign = written(TestPictures::png());
        const QUrl disguised = QUrl::fromLocalFile(QFileInfo(own.toLocalFile()).path()
            + QStringLiteral("/../../") + QFileInfo(foreign.toLocalFile()).fileName());
        QVERIFY(!mAvatars.isOwn(foreign));
        QVERIFY(!mAvatars.isOwn(disguised));
        mAvatars.removeAvatars({ own, foreign, disguised, QUrl() });
        QVERIFY(!QFile::exists(own.toLocalFile()));
        QVERIFY(QFile::exists(foreign.toLocalFile()));
    }

    void orphansGoAndOthersStay()
    {
        const QUrl used = mAvatars.saveAvatar(TestPictures::png(1).toBase64());
        mAvatars.saveAvatar(TestPictures::png(2).toBase64());
        mAvatars.removeOrphans({ used.toLocalFile() });
        QCOMPARE(files(), QStringList(QFileInfo(used.toLocalFile()).fileName()));
        mAvatars.removeAll();
        QVERIFY(!QDir(QDir::homePath() + QStringLiteral("/.avatars/account-77")).exists());
    }
};

FENNEL_REGISTER_TEST(ContactAvatarsTest)
#include "contactavatarstest.moc"
