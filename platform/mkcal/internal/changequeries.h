// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/calendarrows.h"

namespace mKCal {

/**
 * Which rows a question for changes means. Times count in whole seconds, the second itself included. An empty
 * notebook uid stands for all notebooks.
 */
namespace ChangeQueries {

RowFilter inserted(const QDateTime &after, const QString &notebookUid);
/** What is new is not modified: created says which. */
RowFilter modified(const QDateTime &after, const QString &notebookUid);
/** All deleted ones for an invalid time; otherwise without those that were made after it. */
RowFilter deleted(const QDateTime &after, const QString &notebookUid);
RowFilter all(const QString &notebookUid);

} // namespace ChangeQueries

} // namespace mKCal
