// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** The status of a finished request in words: its name, what happened and what to do. */
namespace StatusText {

/** A row of a table of what statuses mean. */
struct Sentence
{
    int status;
    const char *text;
};

/** "RequestStatusNoNetwork", "CommonStatusServerError", "AuthenticationRequiredError", or the number. */
QString name(int status);

/** Why nothing is done for an account whose password was refused. */
QString blocked();

/** A sentence with the name and number of its status in brackets. */
QString withName(const QString &sentence, int status);

/** One or two sentences for a person; ends with the name in brackets. */
QString explanation(int status);

} // namespace StatusText
