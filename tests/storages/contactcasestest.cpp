// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactcases.h"
#include "support/testmain.h"

#include <QtTest>

using namespace ContactCases;

/** What holds of the cases of a contact, whatever its state. */
class ContactCasesTest : public QObject
{
    Q_OBJECT

private:
    static void states()
    {
        QTest::addColumn<bool>("hasOrigin");
        QTest::addColumn<bool>("hasRow");
        QTest::addColumn<bool>("isEdited");
        for (int bits = 0; bits < 8; ++bits)
            QTest::addRow("%s, %s, %s", bits & 1 ? "of the server" : "without an origin",
                bits & 2 ? "mapped" : "not mapped", bits & 4 ? "edited" : "not edited")
                << bool(bits & 1) << bool(bits & 2) << bool(bits & 4);
    }

    static State current()
    {
        QFETCH(bool, hasOrigin);
        QFETCH(bool, hasRow);
        QFETCH(bool, isEdited);
        return { hasOrigin, hasRow, isEdited };
    }

    static QList<Moment> moments()
    {
        return { Moment::Start, Moment::Query, Moment::Named, Moment::AllReceived };
    }

private Q_SLOTS:
    void onlyWhatTheServerSendsAgainIsRemoved_data() { states(); }
    void onlyWhatTheServerSendsAgainIsRemoved()
    {
        const State state = current();
        for (const Moment moment : moments()) {
            if (action(moment, state) == Action::Remove)
                QVERIFY(state.hasOrigin && !state.hasRow && !state.isEdited);
        }
    }

    void onlyWhatTheServerDoesNotHaveGoesUpAsNew_data() { states(); }
    void onlyWhatTheServerDoesNotHaveGoesUpAsNew()
    {
        const State state = current();
        const bool goesUp = action(Moment::Query, state) == Action::UploadAsNew;
        QCOMPARE(goesUp, !state.hasOrigin && !state.hasRow);
    }

    void anEditOfAMappedContactGoesUpAsAChange_data() { states(); }
    void anEditOfAMappedContactGoesUpAsAChange()
    {
        const State state = current();
        const bool goesUp = action(Moment::Query, state) == Action::UploadAsChange;
        QCOMPARE(goesUp, state.hasRow && state.isEdited);
    }

    void aMappedContactHasAnOriginInTheEnd_data() { states(); }
    void aMappedContactHasAnOriginInTheEnd()
    {
        const State state = current();
        for (const Moment moment : { Moment::Start, Moment::AllReceived })
            QCOMPARE(action(moment, state) == Action::Sign, state.hasRow && !state.hasOrigin);
    }

    void anEditIsNotOverwrittenByARepetition_data() { states(); }
    void anEditIsNotOverwrittenByARepetition()
    {
        const State state = current();
        const bool isKept = action(Moment::Named, state) == Action::MapAsItIs;
        QCOMPARE(isKept, state.hasOrigin && !state.hasRow && state.isEdited);
    }

    void nothingWaitsOnceAllIsReceived_data() { states(); }
    void nothingWaitsOnceAllIsReceived()
    {
        const State state = current();
        if (action(Moment::Query, state) == Action::Await)
            QCOMPARE(action(Moment::AllReceived, state), state.isEdited ? Action::Disown : Action::Remove);
    }
};

FENNEL_REGISTER_TEST(ContactCasesTest)
#include "contactcasestest.moc"
