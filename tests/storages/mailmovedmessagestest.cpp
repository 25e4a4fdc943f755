// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmovedmessages.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmaildisconnected.h>

#include <QtTest>

namespace {

QString text(const QMailMessageId &id)
{
    return QString::number(id.toULongLong());
}

} // namespace

class MailMovedMessagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMoveGivesTheNewNameAndIsOver_data()
    {
        QTest::addColumn<bool>("mappingWrittenFirst");
        QTest::newRow("the mapping has the old name") << false;
        QTest::newRow("the mapping has the new name") << true;
    }
    void aMoveGivesTheNewNameAndIsOver()
    {
        QFETCH(bool, mappingWrittenFirst);
        MailFixture mail;
        mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, archive);
        EasEmailItem moved;
        moved.setPreviousServerId("5:1");
        moved.setServerId("6:7");
        moved.setCollectionId("6");
        moved.appendChangedField(Wbxml::AirSync::ServerId);
        const QString known = mappingWrittenFirst ? "6:7" : "5:1";
        QVERIFY(MailMovedMessages(mail.context).update({ moved }, { { known, text(id) } }));
        QCOMPARE(mail.message(id).serverUid(), QStringLiteral("6:7"));
        QCOMPARE(mail.message(id).parentFolderId(), archive);
        QVERIFY(!mail.message(id).previousParentFolderId().isValid());
    }

    void aMessageMovedOnIsStillToBeMoved()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        const QMailFolderId trash = mail.addFolder("7");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, archive);
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, trash);
        EasEmailItem moved;
        moved.setPreviousServerId("5:1");
        moved.setServerId("6:7");
        moved.setCollectionId("6");
        moved.appendChangedField(Wbxml::AirSync::ServerId);
        QVERIFY(MailMovedMessages(mail.context).update({ moved }, { { "5:1", text(id) } }));
        QCOMPARE(mail.message(id).parentFolderId(), trash);
        QCOMPARE(mail.message(id).previousParentFolderId(), archive);
    }

    void aMoveOfAnUnknownMessageIsPassedOver()
    {
        LogCollector log;
        MailFixture mail;
        EasEmailItem moved;
        moved.setPreviousServerId("5:1");
        moved.setServerId("6:7");
        QVERIFY(MailMovedMessages(mail.context).update({ moved }, {}));
        QVERIFY(log.contains(QtWarningMsg, { "messageId", "0", "is invalid" }));
    }
};

FENNEL_REGISTER_TEST(MailMovedMessagesTest)
#include "mailmovedmessagestest.moc"
