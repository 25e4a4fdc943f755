// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QStringList>

/** What a shell may put in for a word that is being typed; all of it comes from the table of commands. */
namespace Completion {

/** Where accounts are to be put in; called only then. */
using Accounts = QStringList (*)();

/**
 * The words that the last one may become, by those before it: commands, options, and values that are one of
 * several words. Empty where a name or a file of the user's is meant.
 */
QStringList candidates(const QStringList &words, Accounts accounts);

} // namespace Completion
