// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/mailfixture.h"
#include "support/testmain.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

using namespace MailFixture;

/** Bodies too long to be stored and read at once. */
class MailLongBodyTest : public QObject
{
    Q_OBJECT

private:
    QMailStore *mStore = nullptr;
    QMailAccountId mAccount;
    QMailFolderId mInbox;
    QTemporaryDir mFolder;

    static constexpr int pieceSize = 256 * 1024;

    static QByteArray octets(int size)
    {
        QByteArray bytes(size, Qt::Uninitialized);
        for (int i = 0; i < size; ++i)
            bytes[i] = char(i * 31 + i / 251);
        return bytes;
    }

    QString fileOf(const QByteArray &bytes) const
    {
        QFile file(mFolder.filePath(QStringLiteral("octets")));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName()
                                                                                    : QString();
    }

    static QMailMessagePart partOf(const QMailMessageBody &body)
    {
        QMailMessagePart part;
        part.setBody(body);
        part.setContentDisposition(
            QMailMessageContentDisposition(QMailMessageContentDisposition::Attachment));
        return part;
    }

    static QMailMessagePart partOf(const QByteArray &bytes)
    {
        return partOf(QMailMessageBody::fromData(bytes, QMailMessageContentType("application/octet-stream"),
            QMailMessageBody::NoEncoding, QMailMessageBody::AlreadyEncoded));
    }

    static QMailMessagePart partOfFile(const QString &file)
    {
        return partOf(QMailMessageBody::fromFile(file, QMailMessageContentType("application/octet-stream"),
            QMailMessageBody::NoEncoding, QMailMessageBody::AlreadyEncoded));
    }

    QMailMessage messageWith(const QList<QMailMessagePart> &parts) const
    {
        QMailMessage message = newMessage(mAccount, mInbox);
        message.setMultipartType(QMailMessage::MultipartMixed);
        message.appendPart(partOf(textBody(QStringLiteral("See the files."))));
        for (const QMailMessagePart &part : parts)
            message.appendPart(part);
        return message;
    }

    static QByteArray storedPart(const QMailMessageId &id, uint part)
    {
        QByteArray bytes;
        withOtherStore([&] { bytes = QMailMessage(id).partAt(part).body().data(QMailMessageBody::Decoded); });
        return bytes;
    }

    static QList<int> numbers(const QString &sql)
    {
        QList<int> numbers;
        const QString name = QStringLiteral("beside");
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            database.setDatabaseName(qEnvironmentVariable("QMF_DATA") + QStringLiteral("/mailstore.db"));
            if (!database.open())
                return { -1 };
            QSqlQuery query(sql, database);
            while (query.next())
                numbers.append(query.value(0).toInt());
        }
        QSqlDatabase::removeDatabase(name);
        return numbers;
    }

    static QList<int> bodies() { return numbers(QStringLiteral("SELECT id FROM bodies")); }
    static int pieces() { return numbers(QStringLiteral("SELECT COUNT(*) FROM body_pieces")).value(0); }

    /** The most memory that this process has held since it was asked to forget, in bytes. */
    static qint64 peakMemory()
    {
        QFile status(QStringLiteral("/proc/self/status"));
        if (!status.open(QIODevice::ReadOnly))
            return -1;
        const QList<QByteArray> lines = status.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (line.startsWith("VmHWM:"))
                return line.mid(6).trimmed().split(' ').first().toLongLong() * 1024;
        }
        return -1;
    }

    static bool forgetPeakMemory()
    {
        QFile file(QStringLiteral("/proc/self/clear_refs"));
        return file.open(QIODevice::WriteOnly) && file.write("5") == 1;
    }

private Q_SLOTS:
    void initTestCase() { mStore = QMailStore::instance(); }

    void init()
    {
        mAccount = addAccount();
        mInbox = addFolder(mAccount);
    }

    void cleanup()
    {
        QVERIFY(mStore->removeAccount(mAccount));
        QCOMPARE(bodies(), QList<int>());
        QCOMPARE(pieces(), 0);
    }

    void allOctetsComeBack_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("pieces");
        QTest::newRow("one octet") << 1 << 0;
        QTest::newRow("as long as a piece") << pieceSize << 0;
        QTest::newRow("longer than a piece") << pieceSize + 1 << 2;
        QTest::newRow("two pieces and no more") << 2 * pieceSize << 2;
        QTest::newRow("many pieces") << 9 * pieceSize + 7 << 10;
    }

    void allOctetsComeBack()
    {
        QFETCH(int, size);
        QFETCH(int, pieces);
        const QByteArray bytes = octets(size);
        QMailMessage message = messageWith({ partOf(bytes), partOfFile(fileOf(bytes)) });
        QCOMPARE(message.partAt(2).body().length(), size);
        QVERIFY(mStore->addMessage(&message));
        QCOMPARE(this->pieces(), 2 * pieces);
        QVERIFY(storedPart(message.id(), 1) == bytes);
        QVERIFY(storedPart(message.id(), 2) == bytes);
        QCOMPARE(QMailMessage(message.id()).partAt(1).body().length(), size);
        QVERIFY(QMailMessage(message.id()).toRfc2822().contains(bytes.toBase64().left(60)));
    }

    void aFileIsEncodedAsItIsRead_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : { 0, 1, 2, 3, 56, 57, 58, 114, 115, pieceSize, 3 * pieceSize + 1 })
            QTest::addRow("%d octets", size) << size;
    }

    void aFileIsEncodedAsItIsRead()
    {
        QFETCH(int, size);
        const QByteArray bytes = octets(size);
        const QMailMessageContentType type("application/octet-stream");
        const QMailMessageBody expected = QMailMessageBody::fromData(
            bytes, type, QMailMessageBody::Base64, QMailMessageBody::RequiresEncoding);
        const QMailMessageBody body = QMailMessageBody::fromFile(
            fileOf(bytes), type, QMailMessageBody::Base64, QMailMessageBody::RequiresEncoding);
        QCOMPARE(body.length(), expected.length());
        QVERIFY(body.data(QMailMessageBody::Encoded) == expected.data(QMailMessageBody::Encoded));
        QMailMessage message = messageWith({ partOf(body) });
        QVERIFY(mStore->addMessage(&message));
        QVERIFY(storedPart(message.id(), 1) == bytes);
    }

    void aLargeFileIsStoredInLittleMemory()
    {
#if defined(__SANITIZE_ADDRESS__)
        QSKIP("The sanitizer keeps what is freed.");
#endif
        const qint64 size = 25 * 1024 * 1024;
        const QString file = mFolder.filePath(QStringLiteral("large"));
        QFile large(file);
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(size));
        if (!forgetPeakMemory())
            QSKIP("this kernel does not forget a peak");
        const qint64 before = peakMemory();
        QMailMessage message = messageWith(
            { partOf(QMailMessageBody::fromFile(file, QMailMessageContentType("application/octet-stream"),
                QMailMessageBody::Base64, QMailMessageBody::RequiresEncoding)) });
        QVERIFY(mStore->addMessage(&message));
        QVERIFY2(peakMemory() - before < size / 2, QByteArray::number(peakMemory() - before));
        QVERIFY(QFile::remove(file));
    }

    void aFileMayGoBeforeItIsStored()
    {
        const QByteArray bytes = octets(3 * pieceSize);
        const QString file = fileOf(bytes);
        QMailMessage message = messageWith({ partOfFile(file) });
        QVERIFY(QFile::remove(file));
        QVERIFY(mStore->addMessage(&message));
        QVERIFY(storedPart(message.id(), 1) == bytes);
    }

    void aFileThatWasCutShortIsNotStored()
    {
        QMailMessage message = messageWith({ partOf(QByteArray("what there was")) });
        QVERIFY(mStore->addMessage(&message));
        const QString file = fileOf(octets(3 * pieceSize));
        message.partAt(1).setBody(partOfFile(file).body());
        QVERIFY(QFile::resize(file, pieceSize));
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression(QStringLiteral("cannot read the body of a message from")));
        QVERIFY(!mStore->updateMessage(&message));
        QCOMPARE(mStore->lastError(), QMailStore::ContentInaccessible);
        QCOMPARE(storedPart(message.id(), 1), QByteArray("what there was"));
        QCOMPARE(pieces(), 0);
    }

    void whatStaysIsNotWrittenAnew()
    {
        const QByteArray bytes = octets(4 * pieceSize);
        QMailMessage message = messageWith({ partOf(bytes), partOf(QByteArray("short")) });
        QVERIFY(mStore->addMessage(&message));
        const QList<int> before = bodies();
        QCOMPARE(before.size(), 1);

        QMailMessage loaded(message.id());
        loaded.partAt(2).setBody(partOf(octets(2 * pieceSize)).body());
        QVERIFY(mStore->updateMessage(&loaded));
        QCOMPARE(bodies().mid(0, 1), before);
        QCOMPARE(pieces(), 6);
        QVERIFY(storedPart(message.id(), 1) == bytes);

        QMailMessage shortened(message.id());
        shortened.partAt(1).setBody(textBody(QStringLiteral("gone")));
        QVERIFY(mStore->updateMessage(&shortened));
        QCOMPARE(pieces(), 2);
        QVERIFY(storedPart(message.id(), 2) == octets(2 * pieceSize));
    }

    void aCopyHasABodyOfItsOwn()
    {
        const QByteArray bytes = octets(2 * pieceSize + 1);
        QMailMessage message = messageWith({ partOf(bytes) });
        QVERIFY(mStore->addMessage(&message));
        QMailMessage copy(message.id());
        copy.setId(QMailMessageId());
        copy.setServerUid(QString());
        QVERIFY(mStore->addMessage(&copy));
        QCOMPARE(bodies().size(), 2);
        QVERIFY(mStore->removeMessage(message.id()));
        QCOMPARE(bodies().size(), 1);
        QVERIFY(storedPart(copy.id(), 1) == bytes);
    }

    void aBodyThatHasGoneIsNotTakenForAnEmptyOne()
    {
        QMailMessage message = messageWith({ partOf(octets(2 * pieceSize)) });
        QVERIFY(mStore->addMessage(&message));
        QMailMessage early(message.id());
        QCOMPARE(early.partCount(), 2u); // Read here, but for the long body.
        QMailMessage other(message.id());
        other.partAt(1).setBody(textBody(QStringLiteral("short")));
        QVERIFY(mStore->updateMessage(&other));

        early.partAt(0).setBody(textBody(QStringLiteral("changed as well")));
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression(QStringLiteral("the store has the body of a message no more")));
        QVERIFY(!mStore->updateMessage(&early));
        QCOMPARE(storedPart(message.id(), 1), QByteArray("short"));
    }

    void aLongFileCostsLittleMemory()
    {
#if defined(__SANITIZE_ADDRESS__)
        QSKIP("The sanitizer keeps what is freed.");
#endif
        const int megabytes = 32;
        QFile file(mFolder.filePath(QStringLiteral("long")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QByteArray megabyte = octets(1024 * 1024);
        for (int i = 0; i < megabytes; ++i)
            QCOMPARE(file.write(megabyte), qint64(megabyte.size()));
        file.close();

        QVERIFY(forgetPeakMemory());
        const qint64 before = peakMemory();
        QVERIFY(before > 0);
        QMailMessage message = messageWith({ partOfFile(file.fileName()) });
        QVERIFY(mStore->addMessage(&message));
        QMailMessage loaded(message.id());
        QCOMPARE(loaded.partAt(1).body().length(), megabytes * 1024 * 1024);
        loaded.partAt(0).setBody(textBody(QStringLiteral("changed")));
        QVERIFY(mStore->updateMessage(&loaded));
        const qint64 grown = peakMemory() - before;
        QVERIFY2(grown < megabytes * 1024 * 1024 / 2, qPrintable(QString::number(grown)));
    }
};

FENNEL_REGISTER_TEST(MailLongBodyTest)
#include "maillongbodytest.moc"
