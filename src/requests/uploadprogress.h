// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QSet>
#include <QString>

/** How far the local changes of one collection have gone up, where they take more than one Sync. */
struct UploadProgress
{
    /** Changes whose Sync was answered; they are not sent again by this request, taken or refused. */
    QSet<QString> sent;
    /** Changes of the Sync that is under way. */
    QSet<QString> sending;
    /** Whether there are changes that the Sync under way does not carry. */
    bool isWaiting = false;
    /** Whether the server has refused one of those that were sent. */
    bool hasRefused = false;
    /** Of a calendar: the time of the first query; what was changed after it is not among these changes. */
    qint64 queryTime = 0;
};
