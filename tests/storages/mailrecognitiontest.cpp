// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailrecognition.h"
#include "storages/mail/mailmessagewriter.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmaildisconnected.h>

#include <QtTest>

namespace {

enum Row { NoRow, RowHere, RowElsewhere };
enum Message { NoMessage, Here, Elsewhere, MovedAway, SearchHit, RenamedByAMove };
enum Removal { NoRemoval, RemovedHere, RemovedElsewhere };

} // namespace

Q_DECLARE_METATYPE(Row)
Q_DECLARE_METATYPE(Message)
Q_DECLARE_METATYPE(Removal)

/** What follows from each state of mapping and store, for a message "7" that a reply adds to a folder. */
class MailRecognitionTest : public QObject
{
    Q_OBJECT

private:
    static QMailMessageId store(MailFixture &mail, const EasEmailItem &item)
    {
        const auto message = MailMessageWriter(mail.context).mailMessageFromEmailItem(item);
        return mail.context.store->addMessage(message.get()) ? message->id() : QMailMessageId();
    }

    static QMailMessageId place(MailFixture &mail, Message where)
    {
        const QMailFolderId other(mail.item("7", "6").localCollectionId());
        switch (where) {
        case NoMessage:
            return QMailMessageId(424242);
        case Elsewhere:
            return store(mail, mail.item("7", "6"));
        case RenamedByAMove:
            return store(mail, mail.item("old name", "5"));
        case Here:
        case MovedAway:
        case SearchHit:
            break;
        }
        const QMailMessageId id = store(mail, mail.item("7", "5"));
        if (where == MovedAway)
            QMailDisconnected::moveToFolder(QMailMessageIdList { id }, other);
        if (where == SearchHit)
            mail.setStatus(id, QMailMessage::Temporary, true);
        return id;
    }

    static void remove(MailFixture &mail, Removal removal)
    {
        if (removal == NoRemoval)
            return;
        const QMailMessageId id = store(mail, mail.item("7", removal == RemovedHere ? "5" : "6"));
        QVERIFY(mail.context.store->removeMessage(id, QMailStore::CreateRemovalRecord));
    }

private Q_SLOTS:
    void eachCase_data()
    {
        QTest::addColumn<Row>("row");
        QTest::addColumn<Message>("message");
        QTest::addColumn<Removal>("removal");
        QTest::addColumn<int>("finding");
        using R = MailRecognition;
        QTest::newRow("nothing is known") << NoRow << NoMessage << NoRemoval << int(R::New);
        QTest::newRow("removed before its row was written")
            << NoRow << NoMessage << RemovedHere << int(R::RemovedHere);
        QTest::newRow("another message of that name was removed elsewhere")
            << NoRow << NoMessage << RemovedElsewhere << int(R::New);
        QTest::newRow("stored before its row was written")
            << NoRow << Here << NoRemoval << int(R::LeftBehind);
        QTest::newRow("stored and moved before its row was written")
            << NoRow << MovedAway << NoRemoval << int(R::LeftBehind);
        QTest::newRow("found by a search") << NoRow << SearchHit << NoRemoval << int(R::LeftBehind);
        QTest::newRow("in both") << RowHere << Here << NoRemoval << int(R::Known);
        QTest::newRow("in both, and moved") << RowHere << MovedAway << NoRemoval << int(R::Known);
        QTest::newRow("the row has the name of an interrupted move")
            << RowHere << RenamedByAMove << NoRemoval << int(R::Known);
        QTest::newRow("removed, and the server is to be told")
            << RowHere << NoMessage << RemovedHere << int(R::RemovedHere);
        QTest::newRow("moved, then removed, and the server is to be told")
            << RowHere << NoMessage << RemovedElsewhere << int(R::RemovedHere);
        QTest::newRow("gone from the store") << RowHere << NoMessage << NoRemoval << int(R::Lost);
        QTest::newRow("a row of another folder alone")
            << RowElsewhere << NoMessage << NoRemoval << int(R::New);
        QTest::newRow("another message of another folder")
            << RowElsewhere << Elsewhere << NoRemoval << int(R::TakenByAnother);
        QTest::newRow("moved here, with the row of before")
            << RowElsewhere << Here << NoRemoval << int(R::LeftBehind);
        QTest::newRow("a search hit under the row of another folder")
            << RowElsewhere << SearchHit << NoRemoval << int(R::LeftBehind);
    }
    void eachCase()
    {
        QFETCH(Row, row);
        QFETCH(Message, message);
        QFETCH(Removal, removal);
        QFETCH(int, finding);
        MailFixture mail;
        mail.addFolder("5");
        mail.addFolder("6");
        remove(mail, removal);
        const QMailMessageId id = place(mail, message);
        if (row != NoRow)
            mail.map(mail.item("7", row == RowHere ? "5" : "6"), id);
        const EasEmailItem item = mail.item("7", "5");
        const auto recognition = MailRecognition::of(mail.context, { item, mail.item("other", "5") });
        QVERIFY(recognition);
        QCOMPARE(int(recognition->finding(item)), finding);
        QCOMPARE(int(recognition->finding(mail.item("other", "5"))), int(MailRecognition::New));
    }

    void anItemWithoutANameIsNew()
    {
        MailFixture mail;
        mail.addFolder("5");
        const EasEmailItem nameless = mail.item(QString(), "5");
        const auto recognition = MailRecognition::of(mail.context, { nameless });
        QVERIFY(recognition);
        QCOMPARE(int(recognition->finding(nameless)), int(MailRecognition::New));
    }
};

FENNEL_REGISTER_TEST(MailRecognitionTest)
#include "mailrecognitiontest.moc"
