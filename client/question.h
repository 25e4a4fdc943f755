// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** What a command asks before it does something that cannot be taken back. */
namespace Question {

/** True if the user says yes, or if there is no terminal to ask on. */
bool confirm(const QString &question);

} // namespace Question
