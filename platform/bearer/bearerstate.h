// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QNetworkSession>
#include <QString>

/** The state file, which FENNEL_TEST_BEARER_FILE names: it holds the number of a session state. */
namespace BearerState {

QString fileName();

/** The state in the file; connected without a file, with an empty one or with one that holds no state. */
QNetworkSession::State read();

} // namespace BearerState
