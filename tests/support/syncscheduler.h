// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QPair>
#include <QStringList>

/** Stands for the device's sync scheduler: a real service on the private bus, with a connection of its own.
 */
class SyncScheduler : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.plover.msyncd")

public:
    using Query = QPair<uint, QString>;

    explicit SyncScheduler(QObject *parent = nullptr);
    ~SyncScheduler() override;

    bool isRegistered() const;
    /** Whether the accounts are always on, which is published at each question. */
    void setAnswer(bool isOn) { mAnswer = isOn; }
    QList<Query> queries() const;
    /** The switches that were set: "1 PROFILE on". */
    QStringList switches() const;

public Q_SLOTS:
    Q_SCRIPTABLE void setSyncedExternally(uint accountId, const QString &profileName, bool on);
    Q_SCRIPTABLE bool isSyncedExternally(uint accountId, const QString &profileName);

Q_SIGNALS:
    Q_SCRIPTABLE void syncedExternallyStatus(uint accountId, const QString &profileName, bool enabled);
    /** For the test alone: somebody asked. */
    void queried();

private:
    QDBusConnection mConnection;
    QList<Query> mQueries;
    QStringList mSwitches;
    bool mRegistered = false;
    bool mAnswer = false;
};
