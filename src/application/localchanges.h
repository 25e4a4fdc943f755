// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/deadline.h"

#include <QObject>
#include <QStringList>

/**
 * The folders in which the user has changed something, gathered until nothing more has come for three
 * seconds. Owned by the AlwaysOnManager, main thread only.
 */
class LocalChanges : public QObject
{
    Q_OBJECT

public:
    explicit LocalChanges(QObject *parent = nullptr);

    bool isEmpty() const { return mFolders.isEmpty(); }
    /** Local identifiers, each once, in the order in which they came. */
    void add(const QStringList &folders);
    /** Waits from now on; without it changes are only kept. */
    void startWaiting();
    void stopWaiting() { mDeadline.stop(); }
    /** Hands the folders over. */
    QStringList take();
    void clear();

Q_SIGNALS:
    /** The wait is over. */
    void due();

private:
    QStringList mFolders;
    Deadline mDeadline;
};
