// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/contactchanges.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

/**
 * Carries changes over the session bus to every engine that has the same data, the one that made them
 * included: all of them learn of a change from the event loop. Without a bus nobody learns anything.
 */
class ContactChangeNotifier : public QObject
{
    Q_OBJECT

public:
    /** folder: where the data is; engines with other data do not listen. */
    explicit ContactChangeNotifier(const QString &folder);
    ~ContactChangeNotifier() override;

    void tell(const ContactChanges &changes);

Q_SIGNALS:
    void told(const ContactChanges &changes);

private Q_SLOTS:
    void onBusSignal(const QDBusMessage &message);

private:
    void flush();

    const QString mFolder;
    const QString mConnectionName;
    QDBusConnection mBus;
    bool mSent = false;
};
