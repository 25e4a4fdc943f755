// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "switches.h"

#include <QDBusContext>
#include <QObject>

class QDBusConnection;

/**
 * The scheduler as the engine and its clients see it on the session bus: keeps which accounts are always on
 * and tells of it. It starts no work; that is the engine's. Lives as long as the process.
 */
class Synchronizer : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.plover.msyncd")

public:
    explicit Synchronizer(const QString &fileName);

    /** False if another scheduler runs already, or there is no bus. */
    bool serve(QDBusConnection bus);

public Q_SLOTS:
    /** Publishes the state of the account, which is the answer that the engine waits for. */
    Q_SCRIPTABLE bool isSyncedExternally(uint accountId, const QString &profileName);
    /** Answers with an error, and publishes nothing, if the switch cannot be kept. */
    Q_SCRIPTABLE void setSyncedExternally(uint accountId, const QString &profileName, bool on);

Q_SIGNALS:
    Q_SCRIPTABLE void syncedExternallyStatus(uint accountId, const QString &profileName, bool enabled);

private:
    Switches mSwitches;
};
