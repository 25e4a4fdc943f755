// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/mailchanges.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

class QMailStore;

/** Tells what changed: the store object's own listeners at once, other processes over the session bus. */
class ChangeNotifier : public QObject
{
    Q_OBJECT

public:
    /** folder: where the data is; stores with other data do not listen. */
    ChangeNotifier(QMailStore &store, const QString &folder);
    ~ChangeNotifier() override;

    void tellAll(const MailChanges &changes);
    void tellListeners(MailChanges::Kind kind, const QList<quint64> &ids);
    /** Returns once what was told has left the process. */
    void flush();

private Q_SLOTS:
    void onBusSignal(const QDBusMessage &message);

private:
    void tellOthers(MailChanges::Kind kind, const QList<quint64> &ids);

    QMailStore &mStore;
    const QString mFolder;
    const QString mConnectionName;
    QDBusConnection mBus;
    bool mSent = false;
};
