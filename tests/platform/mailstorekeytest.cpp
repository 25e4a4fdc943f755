// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/mailfixture.h"
#include "support/testmain.h"

#include <QtTest>

using namespace MailFixture;
using namespace QMailDataComparator;

class MailStoreKeyTest : public QObject
{
    Q_OBJECT

private:
    QMailStore *mStore = nullptr;
    QMailAccountId mAccount;
    QMailFolderId mInbox;
    QMailFolderId mOther;
    QMailMessageId mRead; ///< in the inbox, uid "r", read and replied, of noon
    QMailMessageId mNew; ///< in the inbox, uid "n", no flags, field "f" is "1", without a date
    QMailMessageId
        mMoved; ///< in the other folder, uid "it's; DROP", important, of one o'clock, field "f" is "2"
    const QDateTime mNoon { QDate(2024, 5, 6), QTime(12, 0), Qt::UTC };

    QMailMessageId add(const QMailFolderId &folder, const QString &uid, quint64 status, const QDateTime &date,
        const QString &field, const QMailFolderId &previous)
    {
        QMailMessage message = newMessage(mAccount, folder, uid);
        message.setStatus(status);
        message.setDate(QMailTimeStamp(date));
        message.setReceivedDate(QMailTimeStamp(date));
        message.setPreviousParentFolderId(previous);
        if (!field.isEmpty())
            message.setCustomField(QStringLiteral("f"), field);
        mStore->addMessage(&message);
        return message.id();
    }

    /** Among the messages of this test. */
    QMailMessageIdList query(const QMailMessageKey &key) const
    {
        const QMailMessageKey own = QMailMessageKey::parentAccountId(mAccount) & key;
        const QMailMessageIdList ids = mStore->queryMessages(own);
        return mStore->countMessages(own) == ids.size() ? ids
                                                        : QMailMessageIdList { QMailMessageId(~quint64(0)) };
    }

private Q_SLOTS:
    void initTestCase()
    {
        mStore = QMailStore::instance();
        mAccount = addAccount();
        mInbox = addFolder(mAccount);
        mOther = addFolder(mAccount, QStringLiteral("Other"), mInbox);
        mRead = add(
            mInbox, QStringLiteral("r"), QMailMessage::Read | QMailMessage::Replied, mNoon, QString(), {});
        mNew = add(mInbox, QStringLiteral("n"), 0, QDateTime(), QStringLiteral("1"), {});
        mMoved = add(mOther, QStringLiteral("it's; DROP"),
            QMailMessage::Important | QMailMessage::CalendarCancellation, mNoon.addSecs(3600),
            QStringLiteral("2"), mInbox);
    }

    void theEmptyKeyMatchesEverything()
    {
        QVERIFY(QMailMessageKey().isEmpty());
        QCOMPARE(query(QMailMessageKey()), (QMailMessageIdList { mRead, mNew, mMoved }));
        const QMailMessageKey key = QMailMessageKey::id(mRead);
        QVERIFY((QMailMessageKey() & key) == key);
        QVERIFY((key & QMailMessageKey()) == key);
        QVERIFY(QMailMessageKey::nonMatchingKey().isNonMatching());
        QVERIFY(query(QMailMessageKey::nonMatchingKey()).isEmpty());
        QVERIFY((~QMailMessageKey()).isNonMatching());
        QVERIFY((~key).isNegated());
        QVERIFY(~~key == key);
        QVERIFY(key != QMailMessageKey::id(mNew));
    }

    void idsAndFolders()
    {
        QCOMPARE(query(QMailMessageKey::id(mRead)), QMailMessageIdList { mRead });
        QCOMPARE(query(QMailMessageKey::id(mRead, NotEqual)), (QMailMessageIdList { mNew, mMoved }));
        QCOMPARE(query(QMailMessageKey::id({ mRead, mMoved })), (QMailMessageIdList { mRead, mMoved }));
        QCOMPARE(query(QMailMessageKey::id({ mRead, mMoved }, Excludes)), QMailMessageIdList { mNew });
        QVERIFY(query(QMailMessageKey::id(QMailMessageIdList())).isEmpty());
        QCOMPARE(query(QMailMessageKey::id(QMailMessageIdList(), Excludes)).size(), 3);
        QCOMPARE(query(QMailMessageKey::parentFolderId(mOther)), QMailMessageIdList { mMoved });
        QCOMPARE(query(QMailMessageKey::parentFolderId({ mOther }, Excludes)),
            (QMailMessageIdList { mRead, mNew }));
        QCOMPARE(query(QMailMessageKey::parentAccountId({ mAccount })).size(), 3);
        QVERIFY(query(QMailMessageKey::parentAccountId(QMailAccountId(777))).isEmpty());
        QCOMPARE(query(QMailMessageKey::previousParentFolderId(QMailFolderId(), NotEqual)),
            QMailMessageIdList { mMoved });
    }

    void serverUids()
    {
        QCOMPARE(
            query(QMailMessageKey::serverUid(QStringLiteral("it's; DROP"))), QMailMessageIdList { mMoved });
        QCOMPARE(query(QMailMessageKey::serverUid(QStringList { QStringLiteral("r"), QStringLiteral("n") })),
            (QMailMessageIdList { mRead, mNew }));
        QVERIFY(query(QMailMessageKey::serverUid(QStringList())).isEmpty());
        QVERIFY(query(QMailMessageKey::serverUid(QStringLiteral("x' OR '1'='1"))).isEmpty());
    }

    void theStatusIncludesAnyBit()
    {
        const quint64 mask = QMailMessage::Read | QMailMessage::Important;
        QCOMPARE(query(QMailMessageKey::status(mask)), (QMailMessageIdList { mRead, mMoved }));
        QCOMPARE(query(QMailMessageKey::status(mask, Excludes)), QMailMessageIdList { mNew });
        QCOMPARE(query(QMailMessageKey::status(QMailMessage::CalendarCancellation)),
            QMailMessageIdList { mMoved });
        QCOMPARE(query(QMailMessageKey::status(
                     QMailMessage::Read | QMailMessage::Replied | QMailMessage::UnloadedData, Equal)),
            QMailMessageIdList { mRead });
        QVERIFY(query(QMailMessageKey::status(QMailMessage::Read, Equal)).isEmpty());
        QVERIFY(query(QMailMessageKey::status(QMailMessage::UnloadedData)).isEmpty());
    }

    void timesCompareInUtcAndNoTimeMatchesNothing()
    {
        const QDateTime noonElsewhere = mNoon.toOffsetFromUtc(7200);
        QCOMPARE(
            query(QMailMessageKey::timeStamp(noonElsewhere, GreaterThan)), QMailMessageIdList { mMoved });
        QCOMPARE(query(QMailMessageKey::timeStamp(noonElsewhere, GreaterThanEqual)),
            (QMailMessageIdList { mRead, mMoved }));
        QCOMPARE(query(QMailMessageKey::timeStamp(mNoon.addSecs(1), LessThan)), QMailMessageIdList { mRead });
        QCOMPARE(query(QMailMessageKey::timeStamp(mNoon)), QMailMessageIdList { mRead });
        QCOMPARE(
            query(QMailMessageKey::receptionTimeStamp(mNoon, LessThanEqual)), QMailMessageIdList { mRead });
    }

    void customFields()
    {
        const QString f = QStringLiteral("f");
        QCOMPARE(query(QMailMessageKey::customField(f)), (QMailMessageIdList { mNew, mMoved }));
        QCOMPARE(query(QMailMessageKey::customField(f, Absent)), QMailMessageIdList { mRead });
        QCOMPARE(query(QMailMessageKey::customField(f, QStringLiteral("2"))), QMailMessageIdList { mMoved });
        QCOMPARE(query(QMailMessageKey::customField(f, QStringLiteral("2"), NotEqual)),
            QMailMessageIdList { mNew });
    }

    void keysCombine()
    {
        const QMailMessageKey inInbox = QMailMessageKey::parentFolderId(mInbox);
        const QMailMessageKey isRead = QMailMessageKey::status(QMailMessage::Read);
        QCOMPARE(query(inInbox & isRead), QMailMessageIdList { mRead });
        QCOMPARE(query(inInbox & ~isRead), QMailMessageIdList { mNew });
        QCOMPARE(query(~inInbox | isRead), (QMailMessageIdList { mRead, mMoved }));
        QMailMessageKey built;
        built &= inInbox;
        built |= QMailMessageKey::id(mMoved);
        QCOMPARE(query(built).size(), 3);
        // "Not later" takes in what has no date.
        QCOMPARE(
            query(~QMailMessageKey::timeStamp(mNoon, GreaterThan)), (QMailMessageIdList { mRead, mNew }));
        QCOMPARE(
            mStore->queryMessages(QMailMessageKey::parentAccountId(mAccount), QMailMessageSortKey(), 1, 1),
            QMailMessageIdList { mNew });
    }

    void aListMayBeLong()
    {
        QMailMessageIdList ids;
        for (quint64 i = 1; i <= 100000; ++i)
            ids.append(QMailMessageId(i));
        QCOMPARE(query(QMailMessageKey::id(ids)).size(), 3);
        QVERIFY(mStore->updateMessagesMetaData(QMailMessageKey::id(ids), QMailMessage::New, true));
        QVERIFY(mStore->updateMessagesMetaData(QMailMessageKey::id(ids), QMailMessage::New, false));
    }

    void folders()
    {
        const QMailFolderId deep = addFolder(mAccount, QStringLiteral("Deep"), mOther);
        QMailFolder folder(deep);
        folder.setDisplayName(QStringLiteral("Shown"));
        folder.setStatus(QMailFolder::Favourite, true);
        QVERIFY(mStore->updateFolder(&folder));
        const auto found = [this](const QMailFolderKey &key) {
            return mStore->queryFolders(key);
        };
        const QMailFolderKey own = QMailFolderKey::parentAccountId(mAccount);
        QCOMPARE(found(own), (QMailFolderIdList { mInbox, mOther, deep }));
        QCOMPARE(mStore->countFolders(own), 3);
        QCOMPARE(found(QMailFolderKey::parentFolderId(mInbox)), QMailFolderIdList { mOther });
        QCOMPARE(found(own & QMailFolderKey::parentFolderId({ mInbox, mOther })),
            (QMailFolderIdList { mOther, deep }));
        QCOMPARE(found(QMailFolderKey::ancestorFolderIds(mInbox)), (QMailFolderIdList { mOther, deep }));
        QCOMPARE(found(own & QMailFolderKey::ancestorFolderIds(mOther, Excludes)),
            (QMailFolderIdList { mInbox, mOther }));
        QCOMPARE(
            found(own & QMailFolderKey::displayName(QStringLiteral("Shown"))), QMailFolderIdList { deep });
        QCOMPARE(
            found(own & QMailFolderKey::displayName(QStringLiteral("Inbox"))), QMailFolderIdList { mInbox });
        QCOMPARE(found(own & QMailFolderKey::path(QStringLiteral("Deep"))), QMailFolderIdList { deep });
        QCOMPARE(found(QMailFolderKey::status(QMailFolder::Favourite)), QMailFolderIdList { deep });
        QCOMPARE(found(own & ~QMailFolderKey::id(deep)), (QMailFolderIdList { mInbox, mOther }));
        QVERIFY(found(QMailFolderKey::id(QMailFolderIdList())).isEmpty());
        QVERIFY(found(QMailFolderKey::nonMatchingKey()).isEmpty());
    }
};

FENNEL_REGISTER_TEST(MailStoreKeyTest)
#include "mailstorekeytest.moc"
