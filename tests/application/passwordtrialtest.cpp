// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/passwordtrial.h"
#include "support/testmain.h"

#include <QtTest>

namespace {
const QString Right = QStringLiteral("Right");
const QString Other = QStringLiteral("Other");
} // namespace

/** @short Which refusal of a password counts. */
class PasswordTrialTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPasswordThatWasNeverAcceptedIsWrongAtOnce()
    {
        PasswordTrial trial;
        QVERIFY(refused(trial, Right));
    }

    void anAcceptedPasswordIsWrongAtTheSecondRefusalInARow()
    {
        PasswordTrial trial;
        accept(trial, Right);
        QVERIFY(!refused(trial, Right));
        QVERIFY(refused(trial, Right));
    }

    void anAcceptanceInBetweenStartsTheRowAnew()
    {
        PasswordTrial trial;
        accept(trial, Right);
        QVERIFY(!refused(trial, Right));
        accept(trial, Right);
        QVERIFY(!refused(trial, Right));
    }

    void anotherPasswordHasToProveItselfAgain()
    {
        PasswordTrial trial;
        accept(trial, Right);
        QVERIFY(refused(trial, Other));
        accept(trial, Other);
        QVERIFY(refused(trial, Right));
    }

    void thePasswordThatWasAnsweredWithCounts()
    {
        PasswordTrial trial;
        trial.begin(Other);
        QVERIFY(trial.answer(Right));
        trial.accept();
        QVERIFY(!refused(trial, Right));
    }

    void theServerMayAskTwiceInARequest()
    {
        PasswordTrial trial;
        for (int request = 0; request < 2; ++request) {
            trial.begin(Right);
            QVERIFY(!trial.hasAnswered());
            QVERIFY(trial.answer(Right));
            QVERIFY(trial.hasAnswered());
            QVERIFY(trial.answer(Right));
            QVERIFY(!trial.answer(Right));
        }
    }

private:
    static void accept(PasswordTrial &trial, const QString &password)
    {
        trial.begin(password);
        trial.accept();
    }
    static bool refused(PasswordTrial &trial, const QString &password)
    {
        trial.begin(password);
        return trial.answer(password) && trial.refuse();
    }
};

FENNEL_REGISTER_TEST(PasswordTrialTest)
#include "passwordtrialtest.moc"
