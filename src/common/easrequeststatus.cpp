// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/easrequeststatus.h"

#include <QMetaEnum>

QString EasRequestStatus::name(int status)
{
    return QString::fromLatin1(QMetaEnum::fromType<RequestStatus>().valueToKey(status));
}
