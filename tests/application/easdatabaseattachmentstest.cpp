// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "easitems/containers/attachmententity.h"
#include "easitems/containers/easattachmentcontainer.h"
#include "support/databasefixture.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

EasAttachmentContainer attachment(const QString &contentId, const QString &fileReference)
{
    EasAttachmentContainer container;
    container.setContentId(contentId);
    container.setFileReference(fileReference);
    return container;
}

EasDatabase *database()
{
    return EasDatabase::instance();
}

} // namespace

class EasDatabaseAttachmentsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mFixture = std::make_unique<DatabaseFixture>();
        mFixture->open();
        QVERIFY(database()->addCalendarAttachment("uid-1", attachment("cid-1", "ref-1")));
        QVERIFY(database()->addCalendarAttachment("uid-1", AttachmentEntity(attachment("cid-2", QString()))));
        QVERIFY(database()->addCalendarAttachment("uid-2", attachment("cid-1", "ref-3")));
    }

    void cleanup() { mFixture.reset(); }

    void addedAttachmentsAreKeptAndLogged()
    {
        const LogCollector log;
        QVERIFY(database()->addCalendarAttachment("uid-3", attachment("cid", "ref")));
        QVERIFY(log.contains(QtInfoMsg,
            { "Successfully added new attachment to database for event: ", "uid-3", " with contentID:", "cid",
                ", file reference:", "ref" }));
        QCOMPARE(rows(),
            (QStringList { "uid-1|cid-1|ref-1", "uid-1|cid-2|", "uid-2|cid-1|ref-3", "uid-3|cid|ref" }));
    }

    void anAttachmentThatIsThereStaysAsItWas()
    {
        const QStringList before = rows();
        QVERIFY(database()->addCalendarAttachment("uid-1", attachment("cid-1", "another")));
        QCOMPARE(rows(), before);
    }

    void anAttachmentIsFoundByEitherName()
    {
        const auto byReference = *database()->getAttachmentByFileReference("uid-1", "ref-1");
        QVERIFY(byReference.has_value());
        QCOMPARE(byReference->contentId(), QString("cid-1"));
        QCOMPARE(byReference->fileReference(), QString("ref-1"));
        const auto byContent = *database()->getAttachmentByContentId("uid-2", "cid-1");
        QVERIFY(byContent.has_value());
        QCOMPARE(byContent->fileReference(), QString("ref-3"));
        QCOMPARE(byContent->contentId(), QString("cid-1"));
    }

    void whatIsNotThereIsEmptyAndNoError()
    {
        const LogCollector log;
        QVERIFY(!database()->getAttachmentByFileReference("uid-2", "ref-1")->has_value());
        QVERIFY(!database()->getAttachmentByContentId("uid-9", "cid-1")->has_value());
        QVERIFY(database()->getCalendarAttachments("uid-9")->isEmpty());
        QCOMPARE(log.texts(QtCriticalMsg), QStringList());
    }

    void theAttachmentsOfAnEventAreListed()
    {
        const auto attachments = database()->getCalendarAttachments("uid-1");
        QVERIFY(attachments);
        QCOMPARE(attachments->size(), 2);
        QCOMPARE(attachments->at(0).contentId(), QString("cid-1"));
        QCOMPARE(attachments->at(0).fileReference(), QString("ref-1"));
        QCOMPARE(attachments->at(1).contentId(), QString("cid-2"));
    }

    void anUploadedAttachmentGetsItsFileReference()
    {
        const LogCollector log;
        QVERIFY(database()->updateCalendarAttachmentFileRefernce("uid-1", attachment("cid-2", "ref-2")));
        QVERIFY(log.contains(QtInfoMsg,
            { "Successfully updated attachment for event: ", "uid-1", " with new contentID:", "cid-2",
                " and new refernce ID:", "ref-2" }));
        QVERIFY(database()->updateCalendarAttachmentFileRefernce(
            "uid-2", AttachmentEntity(attachment("cid-1", "ref-9"))));
        QCOMPARE(rows(), (QStringList { "uid-1|cid-1|ref-1", "uid-1|cid-2|ref-2", "uid-2|cid-1|ref-9" }));
    }

    void aContentIdentifierIsReplacedUnlessItIsTaken()
    {
        QVERIFY(database()->updateCalendarAttachmentContentId("uid-1", attachment("cid-9", "ref-1")));
        QCOMPARE(rows(), (QStringList { "uid-1|cid-9|ref-1", "uid-1|cid-2|", "uid-2|cid-1|ref-3" }));
        QVERIFY(database()->updateCalendarAttachmentContentId("uid-1", attachment("cid-2", "ref-1")));
        QCOMPARE(rows(), (QStringList { "uid-1|cid-9|ref-1", "uid-1|cid-2|", "uid-2|cid-1|ref-3" }));
    }

    void attachmentsAreDeletedByEitherName()
    {
        QVERIFY(database()->deleteCalendarAttachmentByContentId("uid-1", "cid-2"));
        QVERIFY(database()->deleteCalendarAttachmentByFileReference("uid-2", "ref-3"));
        QCOMPARE(rows(), QStringList { "uid-1|cid-1|ref-1" });
    }

    void existenceGoesByEitherName()
    {
        QVERIFY(*database()->isCalendarAttachmentExists("uid-1", "cid-1") == Existence::Present);
        QVERIFY(*database()->isCalendarAttachmentExists("uid-1", "ref-1") == Existence::Present);
        QVERIFY(*database()->isCalendarAttachmentExists("uid-1", "ref-3") == Existence::Missing);
        QVERIFY(*database()->isCalendarAttachmentExists("uid-9", "cid-1") == Existence::Missing);
    }

    void anEntityTakesOverAnAttachmentAndIsEmptied()
    {
        AttachmentEntity entity(attachment("cid", "ref"));
        AttachmentEntity copy;
        copy = entity;
        entity.clear();
        QCOMPARE(entity.contentId(), QString());
        QCOMPARE(copy.contentId(), QString("cid"));
        QCOMPARE(copy.fileReference(), QString("ref"));
    }

private:
    QStringList rows() const { return mFixture->rows("SELECT * FROM attachments ORDER BY rowid"); }

    std::unique_ptr<DatabaseFixture> mFixture;
};

FENNEL_REGISTER_TEST(EasDatabaseAttachmentsTest)
#include "easdatabaseattachmentstest.moc"
