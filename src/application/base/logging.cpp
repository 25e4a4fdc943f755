// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/logging.h"

const QLoggingCategory &eas()
{
    static const QLoggingCategory category("Fennel.eas");
    return category;
}

const QLoggingCategory &easWbxml()
{
    static const QLoggingCategory category("Fennel.easwbxml");
    return category;
}

const QLoggingCategory &easNetwork()
{
    static const QLoggingCategory category("Fennel.easnetwork");
    return category;
}
