// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/passwordtrial.h"

#include <utility>

namespace {
constexpr int MaximalAnswers = 2;
}

void PasswordTrial::begin(const QString &password)
{
    mGiven = password;
    mAnswers = 0;
}

bool PasswordTrial::answer(const QString &password)
{
    if (mAnswers == MaximalAnswers)
        return false;
    mGiven = password;
    ++mAnswers;
    return true;
}

void PasswordTrial::accept()
{
    mAccepted = mGiven;
    mRefusedBefore = false;
}

bool PasswordTrial::refuse()
{
    const bool refusedBefore = std::exchange(mRefusedBefore, true);
    return refusedBefore || mGiven.isEmpty() || mGiven != mAccepted;
}
