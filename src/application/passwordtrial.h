// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/**
 * What a server says about the password of one account, and which of its refusals counts.
 *
 * A password that the server has never accepted is wrong at the first refusal. One that it has accepted
 * before may be refused once, since servers err; the second refusal in a row counts. Known since the start of
 * the process.
 */
class PasswordTrial
{
public:
    /** A request goes out with this password, which may be empty. */
    void begin(const QString &password);
    /** The server asks for a password and is to get this one; false if it has had too many in this request.
     */
    bool answer(const QString &password);
    /** Whether the server has asked in this request before. */
    bool hasAnswered() const { return mAnswers > 0; }

    void accept();
    /** The request ends with a refusal; true if the account is to be blocked. */
    bool refuse();

private:
    QString mGiven;
    QString mAccepted;
    int mAnswers = 0;
    bool mRefusedBefore = false;
};
