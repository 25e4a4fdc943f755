// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/dbustypes.h"

#include <QDBusMetaType>

void ExchangeActiveSync::registerDBusTypes()
{
    qRegisterMetaType<FailedPolicyMap>("FailedPolicyMap");
    qRegisterMetaType<GalItem>("GalItem");
    qDBusRegisterMetaType<FailedPolicyMap>();
    qDBusRegisterMetaType<GalItem>();
    qDBusRegisterMetaType<QList<qulonglong>>();
}

namespace {

void registerAtLoad()
{
    ExchangeActiveSync::registerDBusTypes();
}
Q_CONSTRUCTOR_FUNCTION(registerAtLoad)

} // namespace
