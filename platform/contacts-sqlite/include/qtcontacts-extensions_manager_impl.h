// SPDX-License-Identifier: LGPL-2.1-or-later
// To be included by one source file of each program or library that uses the extensions.
#pragma once

#include "contactmanagerengine.h"
#include "qtcontacts-extensions.h"

#include <QCoreApplication>
#include <QVariant>

namespace QtContactsSqliteExtensions {

ContactManagerEngine *contactManagerEngine(QTCONTACTS_PREPEND_NAMESPACE(QContactManager) & manager)
{
    if (!qApp)
        return nullptr;
    const QVariantList engines = qApp->property("qc_sqlite_extension_engine").toList();
    for (const QVariant &entry : engines) {
        // Plugin and user have a meta object each, so a cast that asks for it could fail.
        auto *engine = static_cast<ContactManagerEngine *>(entry.value<QObject *>());
        if (engine && engine->managerName() == manager.managerName())
            return engine;
    }
    return nullptr;
}

} // namespace QtContactsSqliteExtensions
