// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactitemplan.h"
#include "support/testmain.h"

#include <QtTest>

/** What a reply means for the contacts of its folder. */
class ContactItemPlanTest : public QObject
{
    Q_OBJECT

private:
    static EasContactsItem item(const char *serverId, const char *firstName = "", const char *localId = "")
    {
        EasContactsItem item;
        item.setServerId(QString::fromLatin1(serverId));
        item.setFirstName(QString::fromLatin1(firstName));
        item.setLocalId(QString::fromLatin1(localId));
        return item;
    }

    /** Rows "1" = "local-1" and "2" = "local-2"; strays "3", and "4", which the user has edited. */
    static ContactFolderState state()
    {
        ContactFolderState state;
        state.rows.insert(QStringLiteral("1"), QStringLiteral("local-1"), picture("row"));
        state.rows.insert(QStringLiteral("2"), QStringLiteral("local-2"));
        state.strays.insert(QStringLiteral("3"), { QStringLiteral("local-3"), false, picture("stray") });
        state.strays.insert(QStringLiteral("4"), { QStringLiteral("local-4"), true, picture("edited") });
        return state;
    }

    static QUrl picture(const char *name)
    {
        return QUrl(QStringLiteral("file:///pictures/") + QLatin1String(name));
    }

    /** "1=local-1 Ada, changed; 5= Bob, added" */
    static QString text(const ContactItemPlan &plan)
    {
        QStringList entries;
        for (const ContactItemPlan::Entry &entry : plan.entries()) {
            entries.append(QStringLiteral("%1=%2 %3, %4%5")
                               .arg(entry.item.serverId(), entry.item.localId(), entry.item.firstName(),
                                   entry.hasRow ? QStringLiteral("changed") : QStringLiteral("added"),
                                   entry.isStored ? QString() : QStringLiteral(" as it is")));
        }
        return entries.join(QStringLiteral("; "));
    }

private Q_SLOTS:
    void aNewContactGetsARow()
    {
        const ContactItemPlan plan(state(), { item("5", "Bob") }, {}, {});
        QCOMPARE(text(plan), QStringLiteral("5= Bob, added"));
        QVERIFY(plan.unknown().isEmpty());
    }

    void aMappedContactIsChangedHoweverItComes()
    {
        const ContactItemPlan plan(state(), { item("1", "Ada") }, { item("2", "Bob") }, {});
        QCOMPARE(text(plan), QStringLiteral("1=local-1 Ada, changed; 2=local-2 Bob, changed"));
        QCOMPARE(plan.entries().first().item.avatarUrl(), picture("row"));
    }

    void aChangeOfAnUnknownContactBringsIt()
    {
        const ContactItemPlan plan(state(), {}, { item("9", "New") }, {});
        QCOMPARE(text(plan), QStringLiteral("9= New, added"));
        QCOMPARE(plan.unknown(), QStringList(QStringLiteral("9")));
    }

    void whatWasStoredAndNotMappedIsAdopted()
    {
        const ContactItemPlan plan(state(), { item("3", "Cy") }, { item("4", "Dora") }, {});
        QCOMPARE(text(plan), QStringLiteral("3=local-3 Cy, added; 4=local-4 Dora, added as it is"));
        QCOMPARE(plan.entries().last().item.avatarUrl(), picture("edited"));
    }

    void whatTheReplyAcknowledgesIsTheUploadedContact()
    {
        const ContactItemPlan plan(state(), { item("5", "Bob", "local-5") }, { item("5", "Bea") }, {});
        QCOMPARE(text(plan), QStringLiteral("5=local-5 Bea, added"));
    }

    void theLastOfSeveralHolds()
    {
        const ContactItemPlan plan(state(), { item("5", "One"), item("5", "Two"), item("4", "Three") },
            { item("5", "Four"), item("4", "Five"), item("1", "Six"), item("1", "Seven") }, {});
        QCOMPARE(text(plan),
            QStringLiteral("5= Four, added; 4=local-4 Five, added as it is; 1=local-1 Seven, changed"));
    }

    void aLostCollectionHasNoContactsToBeChanged()
    {
        ContactFolderState lost = state();
        lost.collectionIsNew = true;
        const ContactItemPlan plan(lost, {}, { item("1", "Ada") }, {});
        QCOMPARE(text(plan), QStringLiteral("1= Ada, changed"));
    }

    void deletionsFindRowsAndStrays()
    {
        const ContactItemPlan plan(state(), {}, {},
            { QStringLiteral("1"), QStringLiteral("3"), QStringLiteral("4"), QStringLiteral("9") });
        QStringList localIds;
        for (const ContactItemPlan::Deletion &deletion : plan.deletions())
            localIds.append(deletion.serverId + QLatin1Char('=') + deletion.localId);
        QCOMPARE(localIds,
            QStringList(
                { QStringLiteral("1=local-1"), QStringLiteral("3=local-3"), QStringLiteral("4=local-4") }));
        QCOMPARE(plan.deletions().first().avatar, picture("row"));
        QCOMPARE(plan.unknown(), QStringList(QStringLiteral("9")));
    }
};

FENNEL_REGISTER_TEST(ContactItemPlanTest)
#include "contactitemplantest.moc"
