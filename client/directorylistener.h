// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/galitem.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QTimer>

/**
 * Hears of the people that directory searches of the daemon find, which come beside the bus because of their
 * pictures. Listens to the daemon that runs when it is made; on the stack of a command.
 */
class DirectoryListener : public QObject
{
    Q_OBJECT

public:
    DirectoryListener();
    ~DirectoryListener() override;

    /** Connects, and waits until the daemon tells this client as well; false if it cannot be reached. */
    bool listen();

    /**
     * The people that a search has found, by their numbers in its result. Waits for those that are still
     * under way; runs the application's event loop. Fewer than the numbers if some do not come.
     */
    QList<GalItem> people(qulonglong requestId, const QList<qulonglong> &numbers);

private Q_SLOTS:
    void onItem(qulonglong accountId, qulonglong requestId, qulonglong number, const GalItem &item);

private:
    bool hasAll() const;

    QMap<qulonglong, QMap<qulonglong, GalItem>> mItems;
    /** What people() waits for. */
    qulonglong mWantedRequest = 0;
    QList<qulonglong> mWanted;
    QTimer mPatience;
};
