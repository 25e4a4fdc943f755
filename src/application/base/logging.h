// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QLoggingCategory>

/** Everything that has no category of its own. */
const QLoggingCategory &eas();

/** Dumps of WBXML documents. */
const QLoggingCategory &easWbxml();

/** HTTP requests and replies. */
const QLoggingCategory &easNetwork();
