// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

/** Stands for the daemon on the bus: takes the calls that push makes, and does nothing about them. */
class FakeDaemon : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.fennelos.easdaemon")

public:
    explicit FakeDaemon(QObject *parent = nullptr);
    ~FakeDaemon() override;

    bool isRegistered() const { return mRegistered; }
    /** "sync 7", "foldersSync 7", "syncFolders 7 a,b", in their order. */
    QStringList calls;

public Q_SLOTS:
    Q_SCRIPTABLE qulonglong sync(qulonglong accountId);
    Q_SCRIPTABLE qulonglong foldersSync(qulonglong accountId);
    Q_SCRIPTABLE qulonglong syncFolders(qulonglong accountId, const QStringList &folderIds);

Q_SIGNALS:
    void called();

private:
    qulonglong note(const QString &call);

    QDBusConnection mConnection;
    bool mRegistered = false;
    qulonglong mLastId = 0;
};
