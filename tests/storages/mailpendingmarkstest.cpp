// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailpendingmarks.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

/** The marks of an account, told by its store. */
struct Told : MailFixture
{
    Told()
        : marks(context)
    {
        listener = QObject::connect(context.store, &QMailStore::messagesUpdated, context.store,
            [this](const QMailMessageIdList &ids) { marks.messagesUpdated(ids); });
    }
    ~Told() { QObject::disconnect(listener); }

    MailPendingMarks marks;
    QMetaObject::Connection listener;
};

} // namespace

class MailPendingMarksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMarkThatTheStoreTellsOfIsFound()
    {
        Told mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailMessageId one = mail.addMessage(mail.item("5:1", "5"));
        const QMailMessageId two = mail.addMessage(mail.item("5:2", "5"));
        QVERIFY(mail.marks.inFolder(inbox).isEmpty());
        mail.setStatus(one, QMailMessage::Read, false);
        QCOMPARE(mail.marks.inFolder(inbox), QMailMessageIdList { one });
        mail.setStatus(two, QMailMessage::Read, false);
        QCOMPARE(mail.marks.inFolder(inbox).size(), 2);
    }

    void aMarkThatIsPendingStaysUntilItIsKnown()
    {
        Told mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailMessageId one = mail.addMessage(mail.item("5:1", "5"));
        mail.setStatus(one, QMailMessage::Read, false);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(mail.marks.inFolder(inbox), QMailMessageIdList { one });
        mail.setStatus(one, QMailMessage::ReadElsewhere, false);
        QVERIFY(mail.marks.inFolder(inbox).isEmpty());
    }

    void eachFolderIsToldOfAnUpdate()
    {
        Told mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailFolderId other = mail.addFolder("6");
        const QMailMessageId id = mail.addMessage(mail.item("6:1", "6"));
        QVERIFY(mail.marks.inFolder(inbox).isEmpty());
        QVERIFY(mail.marks.inFolder(other).isEmpty());
        mail.setStatus(id, QMailMessage::Read, false);
        QVERIFY(mail.marks.inFolder(inbox).isEmpty());
        QCOMPARE(mail.marks.inFolder(other), QMailMessageIdList { id });
    }

    void whatTheStoreDidNotTellOfIsFoundByALookAnew()
    {
        MailFixture mail;
        MailPendingMarks marks(mail.context);
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        QVERIFY(marks.inFolder(inbox).isEmpty());
        mail.setStatus(id, QMailMessage::Read, false);
        QVERIFY(marks.inFolder(inbox).isEmpty());
        marks.lookAnew();
        QCOMPARE(marks.inFolder(inbox), QMailMessageIdList { id });
    }

    void manyUpdatesAreALookAnew()
    {
        MailFixture mail;
        MailPendingMarks marks(mail.context);
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        QVERIFY(marks.inFolder(inbox).isEmpty());
        mail.setStatus(id, QMailMessage::Read, false);
        QMailMessageIdList many;
        for (int i = 0; i < 6000; ++i)
            many.append(QMailMessageId(1000000 + i));
        marks.messagesUpdated(many);
        QCOMPARE(marks.inFolder(inbox), QMailMessageIdList { id });
    }
};

FENNEL_REGISTER_TEST(MailPendingMarksTest)
#include "mailpendingmarkstest.moc"
