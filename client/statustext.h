// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** The status of a finished request in words: its name, what happened and what to do. */
namespace StatusText {

/** "RequestStatusNoNetwork", "CommonStatusServerError", "AuthenticationRequiredError", or the number. */
QString name(int status);

/** One or two sentences for a person; ends with the name in brackets. */
QString explanation(int status);

} // namespace StatusText
