// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/fetchedoctets.h"

#include "support/logcollector.h"
#include "support/testmain.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QtTest>

/** Where fetched octets are, and what is left of them. */
class FetchedOctetsTest : public QObject
{
    Q_OBJECT

private:
    static QString folder()
    {
        return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QStringLiteral("/fetched");
    }

    static QStringList files() { return QDir(folder()).entryList(QDir::Files | QDir::Hidden); }

    static const QByteArray &longOctets()
    {
        static const QByteArray octets = QByteArray("0123456789abcdef").repeated(64 * 1024);
        return octets;
    }

private Q_SLOTS:
    void cleanup() { FetchedOctets::removeLeftBehind(); }

    void fewStayInMemory()
    {
        FetchedOctets octets("first ");
        QVERIFY(octets.append("second"));
        QVERIFY(!octets.isInFile());
        QCOMPARE(octets.size(), 12);
        QCOMPARE(octets.all(), QByteArray("first second"));
        LogCollector log;
        QCOMPARE(octets.fileName(), QString());
        QVERIFY(log.contains("what is fetched is in no file"));
    }

    void manyGoIntoAFileOfTheUsersAlone()
    {
        QString name;
        {
            FetchedOctets octets;
            QVERIFY(octets.append("begin"));
            QVERIFY(octets.append(longOctets()));
            QVERIFY(octets.append("end"));
            QVERIFY(octets.isInFile());
            QCOMPARE(octets.size(), longOctets().size() + 8);
            QVERIFY(octets.all() == "begin" + longOctets() + "end");

            const FetchedOctets copy = octets;
            octets = FetchedOctets();
            name = copy.fileName();
            QCOMPARE(QFileInfo(name).path(), folder());
            const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
            QVERIFY(!(QFile::permissions(name) & others));
            QVERIFY(!(QFile::permissions(folder()) & others));
            QFile file(name);
            QVERIFY(file.open(QIODevice::ReadOnly) && file.readAll() == copy.all());
        }
        QVERIFY(!QFile::exists(name));
    }

    void moreIsWrittenBehindWhatWasRead()
    {
        FetchedOctets octets;
        QVERIFY(octets.append(longOctets()));
        QVERIFY(octets.all() == longOctets());
        QVERIFY(octets.append("end"));
        QVERIFY(octets.all() == longOctets() + "end");
    }

    void whatAKilledProcessLeftGoesAtTheStart()
    {
        QVERIFY(QDir().mkpath(folder()));
        QFile left(folder() + QStringLiteral("/left"));
        QVERIFY(left.open(QIODevice::WriteOnly));
        left.close();
        FetchedOctets::removeLeftBehind();
        QCOMPARE(files(), QStringList());
    }

    void withoutAFolderNothingIsTaken()
    {
        QVERIFY(QDir().mkpath(QFileInfo(folder()).path()));
        QFile inTheWay(folder());
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        LogCollector log;
        FetchedOctets octets;
        QVERIFY(!octets.append(longOctets()));
        QVERIFY(log.contains("cannot make the folder for what is fetched"));
        QVERIFY(octets.isEmpty());
        QVERIFY(inTheWay.remove());
        QVERIFY(octets.append(longOctets()));
    }
};

FENNEL_REGISTER_TEST(FetchedOctetsTest)
#include "fetchedoctetstest.moc"
