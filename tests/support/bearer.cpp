// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/bearer.h"

#include <QSaveFile>

bool Bearer::setState(QNetworkSession::State state)
{
    QSaveFile file(qEnvironmentVariable("FENNEL_TEST_BEARER_FILE"));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QByteArray::number(state));
    return file.commit();
}
